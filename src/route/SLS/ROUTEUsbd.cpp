#include "route/SLS/ROUTEUsbd.h"

#include "common/ServiceLinkage.h"
#include "common/XmlParser.h"
#include "platform/Log.h"
#include "route/SLS/DeliveryMethod.h"
#include "route/SLS/ServiceName.h"

using vyr::CNodeText;

CROUTEUsbd::SROUTEUsbd::SROUTEUsbd()
    : globalServiceId(nullptr),
      serviceId(0xFFFF),
      serviceStatus(true),
      names(vyr::RemoveChild<CServiceName>, nullptr),
      languages(vyr::RemoveText, nullptr),
      deliveryMethods(vyr::RemoveChild<CDeliveryMethod>, nullptr),
      serviceLinkage(nullptr)
{
}

CROUTEUsbd::SROUTEUsbd::~SROUTEUsbd()
{
    delete[] globalServiceId;
    vyr::HoldChild(serviceLinkage, {});
}

struct CROUTEUsbd::SState : vyr::SHandlers {
    SROUTEUsbd values;
};

CROUTEUsbd::CROUTEUsbd() : m(nullptr)
{
    t_keepsDocument = false;
}

CROUTEUsbd::~CROUTEUsbd() = default;

bool CROUTEUsbd::Create()
{
    return vyr::CreateXmlParser(m, "[CROUTEUsbd::Create]", VYR_HERE, [this] { return t_CreateCallback(); });
}

bool CROUTEUsbd::t_CreateCallback()
{
    static constexpr vyr::SElementHandler<CROUTEUsbd> k_handlers[] = {
        {"userServiceDescription", sm_CbUSD},
        {"UserServiceDescription", sm_CbUSD},
        {"name", sm_CbName},
        {"Name", sm_CbName},
        {"serviceLanguage", sm_CbSvcLanguage},
        {"ServiceLanguage", sm_CbSvcLanguage},
        {"deliveryMethod", sm_CbDeliveryMethod},
        {"DeliveryMethod", sm_CbDeliveryMethod},
        {"serviceLinkage", sm_CbServiceLinkage},
        {"ServiceLinkage", sm_CbServiceLinkage},
    };
    return vyr::AddHandlers(m->handlers, k_handlers);
}

void CROUTEUsbd::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CROUTEUsbd::Destroy]", VYR_HERE);
}

bool CROUTEUsbd::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    if (!t_xml.Compare(root, "bundleDescriptionROUTE") && !t_xml.Compare(root, "BundleDescriptionROUTE")) {
        return false;
    }
    vyr::Renew(t_replace, m->values);
    m_Dispatch(root);
    return true;
}

void CROUTEUsbd::m_Dispatch(void* node)
{
    vyr::DispatchChildren(this, m->handlers, node, vyr::LOG_HANDLED_CHILDREN, "[CROUTEUsbd::m_ProcessParseUsbd] %s",
                          VYR_HERE);
}

void CROUTEUsbd::sm_CbUSD(CROUTEUsbd* usbd, void* node)
{
    SROUTEUsbd& values = usbd->m->values;
    delete[] values.globalServiceId;
    values.globalServiceId = nullptr;
    for (const char* name : {"globalServiceID", "globalServiceId"}) {
        if (!values.globalServiceId && CNodeText::Attribute(node, name).Found()) {
            values.globalServiceId = vyr::Allocated(usbd->t_xml.PropStr(node, name, nullptr));
        }
    }
    values.serviceId = static_cast<unsigned short>(CNodeText::Attribute(node, "serviceId").Int(-1));
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CROUTEUsbd::m_ProcessParseUsbd] serviceId [%d]", values.serviceId);
    // Required: the description decides alone, so that a missing attribute is false.
    values.serviceStatus = CNodeText::Attribute(node, "serviceStatus").Int(-1) == 1;
    usbd->m_Dispatch(node);
}

void CROUTEUsbd::sm_CbName(CROUTEUsbd* usbd, void* cur)
{
    static constexpr vyr::SChildSteps k_steps = {"name->Create()", "name->Parse(root->t_xml.Doc(), cur)"};
    vyr::AddXmlChild<CServiceName>(usbd->m->values.names, usbd->t_xml.Doc(), cur, k_steps, VYR_HERE);
}

void CROUTEUsbd::sm_CbSvcLanguage(CROUTEUsbd* usbd, void* node)
{
    if (!CNodeText::Content(node).HasText()) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CROUTEUsbd::sm_CbSvcLanguage] svcLanguage value is not exist !!!");
        return;
    }
    vyr::AddText(usbd->m->values.languages, usbd->t_xml.Content(node, nullptr));
}

void CROUTEUsbd::sm_CbDeliveryMethod(CROUTEUsbd* usbd, void* cur)
{
    static constexpr vyr::SChildSteps k_steps = {"deliveryMethod->Create()",
                                                 "deliveryMethod->Parse(root->t_xml.Doc(), cur)"};
    vyr::AddXmlChild<CDeliveryMethod>(usbd->m->values.deliveryMethods, usbd->t_xml.Doc(), cur, k_steps, VYR_HERE);
}

void CROUTEUsbd::sm_CbServiceLinkage(CROUTEUsbd* usbd, void* cur)
{
    static constexpr vyr::SChildSteps k_steps = {"serviceLinkage->Create()",
                                                 "serviceLinkage->Parse(root->t_xml.Doc(), cur)"};
    vyr::HoldXmlChild(usbd->m->values.serviceLinkage, usbd->t_xml.Doc(), cur, k_steps, VYR_HERE);
}

const char* CROUTEUsbd::GlobalServiceId() const
{
    return VYR_ASSERT(m, "m") ? m->values.globalServiceId : nullptr;
}

unsigned short CROUTEUsbd::ServiceId() const
{
    return VYR_ASSERT(m, "m") ? m->values.serviceId : 0;
}

bool CROUTEUsbd::ServiceStatus() const
{
    return VYR_ASSERT(m, "m") && m->values.serviceStatus;
}

int CROUTEUsbd::NumOfDeliveryMethod() const
{
    return VYR_ASSERT(m, "m") ? m->values.deliveryMethods.Size() : 0;
}

int CROUTEUsbd::LinkServiceId() const
{
    return !VYR_ASSERT(m, "m") ? 0 : m->values.serviceLinkage ? m->values.serviceLinkage->LinkServiceId() : -1;
}

int CROUTEUsbd::ServiceCategory() const
{
    return !VYR_ASSERT(m, "m") ? 0 : m->values.serviceLinkage ? m->values.serviceLinkage->ServiceCategory() : -1;
}

int CROUTEUsbd::LinkageType() const
{
    return !VYR_ASSERT(m, "m") ? 0 : m->values.serviceLinkage ? m->values.serviceLinkage->LinkageType() : -1;
}

const char* CROUTEUsbd::ActivationTime() const
{
    return VYR_ASSERT(m, "m") && m->values.serviceLinkage ? m->values.serviceLinkage->ActivationTime() : nullptr;
}

const char* CROUTEUsbd::DeActivationTime() const
{
    return VYR_ASSERT(m, "m") && m->values.serviceLinkage ? m->values.serviceLinkage->DeActivationTime() : nullptr;
}

const CROUTEUsbd::SROUTEUsbd* CROUTEUsbd::State() const
{
    return m ? &m->values : nullptr;
}
