#include "mmt/desc/MMTRouteComponent.h"

#include <utility>

#include "common/Ipv4.h"
#include "common/XmlNode.h"
#include "common/XmlParser.h"
#include "platform/Log.h"

using vyr::CNodeText;

CMMTRouteComponent::CMMTRouteComponent() : m(nullptr) {}

CMMTRouteComponent::~CMMTRouteComponent() = default;

bool CMMTRouteComponent::Create()
{
    return vyr::CreateXmlParser(m, "[CMMTRouteComponent::Create]", VYR_HERE);
}

void CMMTRouteComponent::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CMMTRouteComponent::Destroy]", VYR_HERE);
}

bool CMMTRouteComponent::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    SRouteComponent component;
    const auto address = [root](const char* name) {
        const CNodeText text = CNodeText::Attribute(root, name);
        return text.Found() ? vyr::Ipv4Address(text.Text()) : 0;
    };
    CNodeText::Attribute(root, "sTSIDUri").CopyTo(component.sTSIDUri);
    component.sTSIDDestinationIpAddress = address("sTSIDDestinationIpAddress");
    component.sTSIDDestinationUdpPort =
        static_cast<unsigned short>(CNodeText::Attribute(root, "sTSIDDestinationUdpPort").Int(0));
    component.sTSIDSourceIpAddress = address("sTSIDSourceIpAddress");
    component.sTSIDMajorProtocolVersion = CNodeText::Attribute(root, "sTSIDMajorProtocolVersion").Int(0);
    component.sTSIDMinorProtocolVersion = CNodeText::Attribute(root, "sTSIDMinorProtocolVersion").Int(0);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTUsbd::m_ProcessParseRouteComponent] dip[%d] port[%d]",
            static_cast<int>(component.sTSIDDestinationIpAddress), component.sTSIDDestinationUdpPort);
    *m = std::move(component);
    return true;
}
