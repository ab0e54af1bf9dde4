#include "mmt/desc/MMTBroadbandComponent.h"

#include <utility>

#include "common/XmlNode.h"
#include "common/XmlParser.h"
#include "platform/Log.h"

using vyr::CNodeText;

CMMTBroadbandComponent::CMMTBroadbandComponent() : m(nullptr) {}

CMMTBroadbandComponent::~CMMTBroadbandComponent() = default;

bool CMMTBroadbandComponent::Create()
{
    return vyr::CreateXmlParser(m, "[CMMTBroadbandComponent::Create]", VYR_HERE);
}

void CMMTBroadbandComponent::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CMMTBroadbandComponent::Destroy]", VYR_HERE);
}

bool CMMTBroadbandComponent::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    SBroadbandComponent component;
    CNodeText::Attribute(root, "fullMPDUri").CopyTo(component.fullMPDUri);
    *m = std::move(component);
    return true;
}
