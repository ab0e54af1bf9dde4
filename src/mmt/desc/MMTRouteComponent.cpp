#include "mmt/desc/MMTRouteComponent.h"

#include "common/XmlParser.h"
#include "common/XmlRead.h"
#include "platform/Log.h"

using vyr::CNodeText;

namespace {

struct SState : vyr::TXmlState<CMMTRouteComponent::SRouteComponent> {
    bool m_ProcessParse(void* root) override
    {
        CMMTRouteComponent::SRouteComponent component;
        vyr::ReadAttribute(root, "sTSIDUri", component.sTSIDUri);
        vyr::ReadIpv4(CNodeText::Attribute(root, "sTSIDDestinationIpAddress"), component.sTSIDDestinationIpAddress);
        vyr::ReadAttribute(root, "sTSIDDestinationUdpPort", component.sTSIDDestinationUdpPort);
        vyr::ReadIpv4(CNodeText::Attribute(root, "sTSIDSourceIpAddress"), component.sTSIDSourceIpAddress);
        vyr::ReadAttribute(root, "sTSIDMajorProtocolVersion", component.sTSIDMajorProtocolVersion);
        vyr::ReadAttribute(root, "sTSIDMinorProtocolVersion", component.sTSIDMinorProtocolVersion);
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTUsbd::m_ProcessParseRouteComponent] dip[%d] port[%d]",
                static_cast<int>(component.sTSIDDestinationIpAddress), component.sTSIDDestinationUdpPort);
        values = std::move(component);
        return true;
    }
};

}  // namespace

vyr::SXmlKind CMMTRouteComponent::t_Kind() const
{
    return vyr::XmlKind<SState>("CMMTRouteComponent");
}
