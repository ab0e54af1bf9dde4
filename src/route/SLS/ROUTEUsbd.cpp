#include "route/SLS/ROUTEUsbd.h"

#include "common/ServiceLinkage.h"
#include "common/UsbdState.h"
#include "platform/Log.h"
#include "route/SLS/DeliveryMethod.h"
#include "route/SLS/ServiceName.h"

using vyr::CNodeText;

namespace {

struct SState : vyr::TUsbdState<CROUTEUsbd::SROUTEUsbd> {
    bool m_ProcessParse(void* root) override;
    void m_Dispatch(void* node);
};

void sm_CbUSD(SState* m, void* node)
{
    m->ReadDescription(node);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CROUTEUsbd::m_ProcessParseUsbd] serviceId [%d]", m->values.serviceId);
    m->m_Dispatch(node);
}

void sm_CbName(SState* m, void* node)
{
    vyr::AddChild(m->values.names, *m, node, {"name->Create()", "name->Parse(root->t_xml.Doc(), cur)"});
}

void sm_CbSvcLanguage(SState* m, void* node)
{
    const CNodeText language = CNodeText::Content(node);
    if (!language.HasText()) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CROUTEUsbd::sm_CbSvcLanguage] svcLanguage value is not exist !!!");
        return;
    }
    m->values.languages.Append(vyr::NewText(language));
}

void sm_CbDeliveryMethod(SState* m, void* node)
{
    vyr::AddChild(m->values.deliveryMethods, *m, node,
                  {"deliveryMethod->Create()", "deliveryMethod->Parse(root->t_xml.Doc(), cur)"});
}

void sm_CbServiceLinkage(SState* m, void* node)
{
    vyr::AddChild(m->values.serviceLinkage, *m, node,
                  {"serviceLinkage->Create()", "serviceLinkage->Parse(root->t_xml.Doc(), cur)"});
}

constexpr vyr::SElementHandler<SState> k_handlers[] = {
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

bool SState::m_ProcessParse(void* root)
{
    if (!Begin(root, "bundleDescriptionROUTE", "BundleDescriptionROUTE")) {
        return false;
    }
    m_Dispatch(root);
    return true;
}

void SState::m_Dispatch(void* node)
{
    vyr::DispatchChildren(this, k_handlers, node, "[CROUTEUsbd::m_ProcessParseUsbd] %s");
}

}  // namespace

CROUTEUsbd::SROUTEUsbd::SROUTEUsbd() : SUsbd{nullptr, 0xFFFF, true} {}

int CROUTEUsbd::NumOfDeliveryMethod() const
{
    return VYR_ASSERT(State(), "m") ? State()->deliveryMethods.Size() : 0;
}

vyr::SXmlKind CROUTEUsbd::t_Kind() const
{
    return vyr::XmlKind<SState>("CROUTEUsbd");
}
