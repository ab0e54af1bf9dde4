#include "mmt/desc/MMTUsbd.h"

#include "common/ServiceLinkage.h"
#include "common/XmlParser.h"
#include "mmt/desc/MMTBroadbandComponent.h"
#include "mmt/desc/MMTChannel.h"
#include "mmt/desc/MMTComponentInfo.h"
#include "mmt/desc/MMTContentAdvisoryRatings.h"
#include "mmt/desc/MMTMpuComponent.h"
#include "mmt/desc/MMTName.h"
#include "mmt/desc/MMTRouteComponent.h"
#include "platform/Log.h"

using vyr::CNodeText;

namespace {

/// The record of the index-th component info; null without one.
const CMMTComponentInfo::SComponentInfo* ComponentInfo(const CMMTUsbd::SMMTUsbd& values, int index)
{
    void* info = nullptr;
    return values.componentInfos.GetAt(index, &info) ? static_cast<CMMTComponentInfo*>(info)->State() : nullptr;
}

}  // namespace

CMMTUsbd::SMMTUsbd::SMMTUsbd()
    : globalServiceId(nullptr),
      serviceId(0),
      serviceStatus(false),
      routeComponent(nullptr),
      broadbandComponent(nullptr),
      mpuComponent(nullptr),
      channel(nullptr),
      serviceLinkage(nullptr),
      names(vyr::RemoveChild<CMMTName>, nullptr),
      svcLanguages(vyr::RemoveText, nullptr),
      componentInfos(vyr::RemoveChild<CMMTComponentInfo>, nullptr),
      contentAdvisoryRatings(vyr::RemoveChild<CMMTContentAdvisoryRatings>, nullptr)
{
}

CMMTUsbd::SMMTUsbd::~SMMTUsbd()
{
    delete[] globalServiceId;
    vyr::HoldChild(routeComponent, {});
    vyr::HoldChild(broadbandComponent, {});
    vyr::HoldChild(mpuComponent, {});
    vyr::HoldChild(channel, {});
    vyr::HoldChild(serviceLinkage, {});
}

struct CMMTUsbd::SState : vyr::SHandlers {
    SMMTUsbd values;
};

CMMTUsbd::CMMTUsbd() : m(nullptr)
{
    t_keepsDocument = false;
}

CMMTUsbd::~CMMTUsbd() = default;

bool CMMTUsbd::Create()
{
    return vyr::CreateXmlParser(m, "[CMMTUsbd::Create]", VYR_HERE, [this] { return t_CreateCallback(); });
}

bool CMMTUsbd::t_CreateCallback()
{
    static constexpr vyr::SElementHandler<CMMTUsbd> k_handlers[] = {
        {"userServiceDescription", sm_CbUSD},
        {"UserServiceDescription", sm_CbUSD},
        {"name", sm_CbName},
        {"Name", sm_CbName},
        {"serviceLanguage", sm_CbSvcLanguage},
        {"ServiceLanguage", sm_CbSvcLanguage},
        {"Channel", sm_CbChannel},
        {"mpuComponent", sm_CbMpuComponent},
        {"MPUComponent", sm_CbMpuComponent},
        {"routeComponent", sm_CbRouteComponent},
        {"ROUTEComponent", sm_CbRouteComponent},
        {"broadbandComponent", sm_CbBroadbandComponent},
        {"BroadbandComponent", sm_CbBroadbandComponent},
        {"ComponentInfo", sm_CbComponentInfo},
        {"serviceLinkage", sm_CbServiceLinkage},
        {"ServiceLinkage", sm_CbServiceLinkage},
        {"ContentAdvisoryRatings", sm_CbContentAdvisoryRatings},
        {"ContentAdvisoryRating", sm_CbContentAdvisoryRatings},
    };
    return vyr::AddHandlers(m->handlers, k_handlers);
}

void CMMTUsbd::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CMMTUsbd::Destroy]", VYR_HERE);
}

bool CMMTUsbd::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    if (!t_xml.Compare(root, "bundleDescriptionMMT") && !t_xml.Compare(root, "BundleDescriptionMMT")) {
        return false;
    }
    vyr::Renew(t_replace, m->values);
    vyr::DispatchChildren(this, m->handlers, root, vyr::LOG_HANDLED_CHILDREN, "[CMMTUsbd::m_ProcessParseUsbd] %s",
                          VYR_HERE);
    return true;
}

void CMMTUsbd::sm_CbUSD(CMMTUsbd* usbd, void* node)
{
    SMMTUsbd& values = usbd->m->values;
    delete[] values.globalServiceId;
    values.globalServiceId = nullptr;
    for (const char* name : {"globalServiceID", "globalServiceId"}) {
        if (!values.globalServiceId && CNodeText::Attribute(node, name).Found()) {
            values.globalServiceId = vyr::Allocated(usbd->t_xml.PropStr(node, name, nullptr));
        }
    }
    values.serviceId = static_cast<unsigned short>(CNodeText::Attribute(node, "serviceId").Int(-1));
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTUsbd::sm_CbUSD] globalServiceId [%s] serviceId [%d]",
            values.globalServiceId ? values.globalServiceId : "", values.serviceId);
    values.serviceStatus = CNodeText::Attribute(node, "serviceStatus").Int(-1) == 1;
    vyr::DispatchChildren(usbd, usbd->m->handlers, node, vyr::LOG_HANDLED_CHILDREN, "[CMMTUsbd::sm_CbUSD] %s",
                          VYR_HERE);
}

void CMMTUsbd::sm_CbName(CMMTUsbd* root, void* cur)
{
    static constexpr vyr::SChildSteps k_steps = {"name->Create()", "name->Parse(root->t_xml.Doc(), cur)"};
    vyr::AddXmlChild<CMMTName>(root->m->values.names, root->t_xml.Doc(), cur, k_steps, VYR_HERE);
}

void CMMTUsbd::sm_CbSvcLanguage(CMMTUsbd* usbd, void* node)
{
    const CNodeText language = CNodeText::Content(node);
    if (!language.HasText()) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTUsbd::sm_CbSvcLanguage] svcLanguage value is not exist !!!");
        return;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTUsbd::sm_CbSvcLanguage] language[%s], size[%zu]", language.Text(),
            std::char_traits<char>::length(language.Text()));
    vyr::AddText(usbd->m->values.svcLanguages, usbd->t_xml.Content(node, nullptr));
}

void CMMTUsbd::sm_CbChannel(CMMTUsbd* root, void* cur)
{
    static constexpr vyr::SChildSteps k_steps = {"channel->Create()", "channel->Parse(root->t_xml.Doc(), cur)"};
    vyr::HoldXmlChild(root->m->values.channel, root->t_xml.Doc(), cur, k_steps, VYR_HERE);
}

void CMMTUsbd::sm_CbMpuComponent(CMMTUsbd* root, void* cur)
{
    static constexpr vyr::SChildSteps k_steps = {"mpuComponent->Create()",
                                                 "mpuComponent->Parse(root->t_xml.Doc(), cur)"};
    vyr::HoldXmlChild(root->m->values.mpuComponent, root->t_xml.Doc(), cur, k_steps, VYR_HERE);
}

void CMMTUsbd::sm_CbRouteComponent(CMMTUsbd* root, void* cur)
{
    static constexpr vyr::SChildSteps k_steps = {"routeComponent->Create()",
                                                 "routeComponent->Parse(root->t_xml.Doc(), cur)"};
    vyr::HoldXmlChild(root->m->values.routeComponent, root->t_xml.Doc(), cur, k_steps, VYR_HERE);
}

void CMMTUsbd::sm_CbBroadbandComponent(CMMTUsbd* root, void* cur)
{
    static constexpr vyr::SChildSteps k_steps = {"broadbandComponent->Create()",
                                                 "broadbandComponent->Parse(root->t_xml.Doc(), cur)"};
    vyr::HoldXmlChild(root->m->values.broadbandComponent, root->t_xml.Doc(), cur, k_steps, VYR_HERE);
}

void CMMTUsbd::sm_CbComponentInfo(CMMTUsbd* root, void* cur)
{
    static constexpr vyr::SChildSteps k_steps = {"componentInfo->Create()",
                                                 "componentInfo->Parse(root->t_xml.Doc(), cur)"};
    vyr::AddXmlChild<CMMTComponentInfo>(root->m->values.componentInfos, root->t_xml.Doc(), cur, k_steps, VYR_HERE);
}

void CMMTUsbd::sm_CbServiceLinkage(CMMTUsbd* root, void* cur)
{
    static constexpr vyr::SChildSteps k_steps = {"serviceLinkage->Create()",
                                                 "serviceLinkage->Parse(root->t_xml.Doc(), cur)"};
    vyr::HoldXmlChild(root->m->values.serviceLinkage, root->t_xml.Doc(), cur, k_steps, VYR_HERE);
}

void CMMTUsbd::sm_CbContentAdvisoryRatings(CMMTUsbd* root, void* cur)
{
    static constexpr vyr::SChildSteps k_steps = {"rating->Create()", "rating->Parse(root->t_xml.Doc(), cur)"};
    vyr::AddXmlChild<CMMTContentAdvisoryRatings>(root->m->values.contentAdvisoryRatings, root->t_xml.Doc(), cur,
                                                 k_steps, VYR_HERE);
}

const char* CMMTUsbd::GlobalServiceId() const
{
    return VYR_ASSERT(m, "m") ? m->values.globalServiceId : nullptr;
}

unsigned short CMMTUsbd::ServiceId() const
{
    return VYR_ASSERT(m, "m") ? m->values.serviceId : 0;
}

bool CMMTUsbd::ServiceStatus() const
{
    return VYR_ASSERT(m, "m") && m->values.serviceStatus;
}

bool CMMTUsbd::CheckRouteComponent() const
{
    return VYR_ASSERT(m, "m") && m->values.routeComponent;
}

bool CMMTUsbd::CheckBroadbandComponent() const
{
    return VYR_ASSERT(m, "m") && m->values.broadbandComponent;
}

bool CMMTUsbd::GetsTSIDUri(std::string& uri) const
{
    return CheckRouteComponent() && vyr::Give(m->values.routeComponent->State()->sTSIDUri, uri);
}

bool CMMTUsbd::GetRouteComponentSrcIp(unsigned int& address) const
{
    return CheckRouteComponent() && vyr::Give(m->values.routeComponent->State()->sTSIDSourceIpAddress, address);
}

bool CMMTUsbd::GetRouteComponentDestIp(unsigned int& address) const
{
    return CheckRouteComponent() && vyr::Give(m->values.routeComponent->State()->sTSIDDestinationIpAddress, address);
}

bool CMMTUsbd::GetRouteComponentDestPort(unsigned short& port) const
{
    return CheckRouteComponent() && vyr::Give(m->values.routeComponent->State()->sTSIDDestinationUdpPort, port);
}

bool CMMTUsbd::GetFullMPDUri(std::string& uri) const
{
    return CheckBroadbandComponent() && vyr::Give(m->values.broadbandComponent->State()->fullMPDUri, uri);
}

int CMMTUsbd::ComponentInfoSize() const
{
    return VYR_ASSERT(m, "m") ? m->values.componentInfos.Size() : 0;
}

bool CMMTUsbd::GetComponentType(int index, unsigned char& type) const
{
    const auto* info = VYR_ASSERT(m, "m") ? ComponentInfo(m->values, index) : nullptr;
    return info && vyr::Give(info->componentType, type);
}

bool CMMTUsbd::GetComponentRole(int index, unsigned char& role) const
{
    const auto* info = VYR_ASSERT(m, "m") ? ComponentInfo(m->values, index) : nullptr;
    return info && vyr::Give(info->componentRole, role);
}

bool CMMTUsbd::ComponentProtectedFlag(int index) const
{
    const auto* info = VYR_ASSERT(m, "m") ? ComponentInfo(m->values, index) : nullptr;
    return info && info->componentProtectedFlag;
}

bool CMMTUsbd::GetComponentId(int index, std::string& id) const
{
    const auto* info = VYR_ASSERT(m, "m") ? ComponentInfo(m->values, index) : nullptr;
    return info && vyr::Give(info->componentId, id);
}

bool CMMTUsbd::GetComponentName(int index, std::string& name) const
{
    const auto* info = VYR_ASSERT(m, "m") ? ComponentInfo(m->values, index) : nullptr;
    return info && vyr::Give(info->componentName, name);
}

int CMMTUsbd::LanguageSize() const
{
    return VYR_ASSERT(m, "m") ? m->values.svcLanguages.Size() : 0;
}

bool CMMTUsbd::GetLanguageInfo(int index, char** language) const
{
    void* text = nullptr;
    return VYR_ASSERT(m, "m") && VYR_ASSERT(language, "language") && m->values.svcLanguages.GetAt(index, &text) &&
           vyr::Give(static_cast<char*>(text), *language);
}

int CMMTUsbd::LinkServiceId() const
{
    return !VYR_ASSERT(m, "m") ? 0 : m->values.serviceLinkage ? m->values.serviceLinkage->LinkServiceId() : -1;
}

const char* CMMTUsbd::ActivationTime() const
{
    return VYR_ASSERT(m, "m") && m->values.serviceLinkage ? m->values.serviceLinkage->ActivationTime() : nullptr;
}

const char* CMMTUsbd::DeActivationTime() const
{
    return VYR_ASSERT(m, "m") && m->values.serviceLinkage ? m->values.serviceLinkage->DeActivationTime() : nullptr;
}

int CMMTUsbd::ServiceCategory() const
{
    return !VYR_ASSERT(m, "m") ? 0 : m->values.serviceLinkage ? m->values.serviceLinkage->ServiceCategory() : -1;
}

int CMMTUsbd::LinkageType() const
{
    return !VYR_ASSERT(m, "m") ? 0 : m->values.serviceLinkage ? m->values.serviceLinkage->LinkageType() : -1;
}

bool CMMTUsbd::GetRatingStringTable(std::vector<std::string>& ratings) const
try {
    if (!VYR_ASSERT(m, "m")) {
        return false;
    }
    const CCPtrArray& parsed = m->values.contentAdvisoryRatings;
    if (parsed.Size() == 0) {
        VYR_LOG(LOG_PRIORITY_ERROR, "[CMMTUsbd::GetRatingStringTable] Content Advisory Data not parsed");
        return false;
    }
    for (int i = 0; i < parsed.Size(); ++i) {
        static_cast<CMMTContentAdvisoryRatings*>(parsed.Data(i))->GetContentRatingString(ratings.emplace_back());
    }
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

const CMMTUsbd::SMMTUsbd* CMMTUsbd::State() const
{
    return m ? &m->values : nullptr;
}
