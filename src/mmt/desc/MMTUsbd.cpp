#include "mmt/desc/MMTUsbd.h"

#include "common/Give.h"
#include "common/ServiceLinkage.h"
#include "common/UsbdState.h"
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

struct SState : vyr::TUsbdState<CMMTUsbd::SMMTUsbd> {
    bool m_ProcessParse(void* root) override;
};

void sm_CbUSD(SState* m, void* node);

void sm_CbName(SState* m, void* node)
{
    vyr::AddChild(m->values.names, *m, node, {"name->Create()", "name->Parse(root->t_xml.Doc(), cur)"});
}

void sm_CbSvcLanguage(SState* m, void* node)
{
    const CNodeText language = CNodeText::Content(node);
    if (!language.HasText()) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTUsbd::sm_CbSvcLanguage] svcLanguage value is not exist !!!");
        return;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTUsbd::sm_CbSvcLanguage] language[%s], size[%zu]", language.Text(),
            std::char_traits<char>::length(language.Text()));
    m->values.svcLanguages.Append(vyr::NewText(language));
}

void sm_CbChannel(SState* m, void* node)
{
    vyr::AddChild(m->values.channel, *m, node, {"channel->Create()", "channel->Parse(root->t_xml.Doc(), cur)"});
}

void sm_CbMpuComponent(SState* m, void* node)
{
    vyr::AddChild(m->values.mpuComponent, *m, node,
                  {"mpuComponent->Create()", "mpuComponent->Parse(root->t_xml.Doc(), cur)"});
}

void sm_CbRouteComponent(SState* m, void* node)
{
    vyr::AddChild(m->values.routeComponent, *m, node,
                  {"routeComponent->Create()", "routeComponent->Parse(root->t_xml.Doc(), cur)"});
}

void sm_CbBroadbandComponent(SState* m, void* node)
{
    vyr::AddChild(m->values.broadbandComponent, *m, node,
                  {"broadbandComponent->Create()", "broadbandComponent->Parse(root->t_xml.Doc(), cur)"});
}

void sm_CbComponentInfo(SState* m, void* node)
{
    vyr::AddChild(m->values.componentInfos, *m, node,
                  {"componentInfo->Create()", "componentInfo->Parse(root->t_xml.Doc(), cur)"});
}

void sm_CbServiceLinkage(SState* m, void* node)
{
    vyr::AddChild(m->values.serviceLinkage, *m, node,
                  {"serviceLinkage->Create()", "serviceLinkage->Parse(root->t_xml.Doc(), cur)"});
}

void sm_CbContentAdvisoryRatings(SState* m, void* node)
{
    vyr::AddChild(m->values.contentAdvisoryRatings, *m, node,
                  {"rating->Create()", "rating->Parse(root->t_xml.Doc(), cur)"});
}

constexpr vyr::SElementHandler<SState> k_handlers[] = {
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

void sm_CbUSD(SState* m, void* node)
{
    m->ReadDescription(node);
    const char* id = m->values.globalServiceId;
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTUsbd::sm_CbUSD] globalServiceId [%s] serviceId [%d]", id ? id : "",
            m->values.serviceId);
    vyr::DispatchChildren(m, k_handlers, node, "[CMMTUsbd::sm_CbUSD] %s");
}

bool SState::m_ProcessParse(void* root)
{
    if (!Begin(root, "bundleDescriptionMMT", "BundleDescriptionMMT")) {
        return false;
    }
    vyr::DispatchChildren(this, k_handlers, root, "[CMMTUsbd::m_ProcessParseUsbd] %s");
    return true;
}

/// The record of a component that there is one of; null without it.
template <class T>
const auto* Component(const CMMTUsbd::SMMTUsbd* values, TOwned<T> CMMTUsbd::SMMTUsbd::*component, VYR_CALLER)
{
    const TOwned<T>* const held = values || vyr::AssertFailed(here, "m") ? &(values->*component) : nullptr;
    return held && *held ? (*held)->State() : nullptr;
}

/// The record of the index-th component info; null without one.
const CMMTComponentInfo::SComponentInfo* ComponentInfo(const CMMTUsbd::SMMTUsbd* values, int index, VYR_CALLER)
{
    const CMMTComponentInfo* info =
        values || vyr::AssertFailed(here, "m") ? values->componentInfos.Get(index) : nullptr;
    return info ? info->State() : nullptr;
}

}  // namespace

bool CMMTUsbd::CheckRouteComponent() const
{
    return VYR_ASSERT(State(), "m") && State()->routeComponent;
}

bool CMMTUsbd::CheckBroadbandComponent() const
{
    return VYR_ASSERT(State(), "m") && State()->broadbandComponent;
}

bool CMMTUsbd::GetsTSIDUri(std::string& uri) const
{
    const auto* route = Component(State(), &SMMTUsbd::routeComponent);
    return route && vyr::Give(route->sTSIDUri, uri);
}

bool CMMTUsbd::GetRouteComponentSrcIp(unsigned int& address) const
{
    const auto* route = Component(State(), &SMMTUsbd::routeComponent);
    return route && vyr::Give(route->sTSIDSourceIpAddress, address);
}

bool CMMTUsbd::GetRouteComponentDestIp(unsigned int& address) const
{
    const auto* route = Component(State(), &SMMTUsbd::routeComponent);
    return route && vyr::Give(route->sTSIDDestinationIpAddress, address);
}

bool CMMTUsbd::GetRouteComponentDestPort(unsigned short& port) const
{
    const auto* route = Component(State(), &SMMTUsbd::routeComponent);
    return route && vyr::Give(route->sTSIDDestinationUdpPort, port);
}

bool CMMTUsbd::GetFullMPDUri(std::string& uri) const
{
    const auto* broadband = Component(State(), &SMMTUsbd::broadbandComponent);
    return broadband && vyr::Give(broadband->fullMPDUri, uri);
}

int CMMTUsbd::ComponentInfoSize() const
{
    return VYR_ASSERT(State(), "m") ? State()->componentInfos.Size() : 0;
}

bool CMMTUsbd::GetComponentType(int index, unsigned char& type) const
{
    const auto* info = ComponentInfo(State(), index);
    return info && vyr::Give(info->componentType, type);
}

bool CMMTUsbd::GetComponentRole(int index, unsigned char& role) const
{
    const auto* info = ComponentInfo(State(), index);
    return info && vyr::Give(info->componentRole, role);
}

bool CMMTUsbd::ComponentProtectedFlag(int index) const
{
    const auto* info = ComponentInfo(State(), index);
    return info && info->componentProtectedFlag;
}

bool CMMTUsbd::GetComponentId(int index, std::string& id) const
{
    const auto* info = ComponentInfo(State(), index);
    return info && vyr::Give(info->componentId, id);
}

bool CMMTUsbd::GetComponentName(int index, std::string& name) const
{
    const auto* info = ComponentInfo(State(), index);
    return info && vyr::Give(info->componentName, name);
}

int CMMTUsbd::LanguageSize() const
{
    return VYR_ASSERT(State(), "m") ? State()->svcLanguages.Size() : 0;
}

bool CMMTUsbd::GetLanguageInfo(int index, char** language) const
{
    char* text =
        VYR_ASSERT(State(), "m") && VYR_ASSERT(language, "language") ? State()->svcLanguages.Get(index) : nullptr;
    return text && vyr::Give(text, *language);
}

bool CMMTUsbd::GetRatingStringTable(std::vector<std::string>& ratings) const
try {
    if (!VYR_ASSERT(State(), "m")) {
        return false;
    }
    const auto& parsed = State()->contentAdvisoryRatings;
    if (parsed.Size() == 0) {
        VYR_LOG(LOG_PRIORITY_ERROR, "[CMMTUsbd::GetRatingStringTable] Content Advisory Data not parsed");
        return false;
    }
    for (const CMMTContentAdvisoryRatings* rating : parsed) {
        if (!rating->GetContentRatingString(ratings.emplace_back())) {
            ratings.pop_back();
            return false;
        }
    }
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

vyr::SXmlKind CMMTUsbd::t_Kind() const
{
    return vyr::XmlKind<SState>("CMMTUsbd");
}
