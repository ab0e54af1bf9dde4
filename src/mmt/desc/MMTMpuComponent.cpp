#include "mmt/desc/MMTMpuComponent.h"

#include <utility>

#include "common/XmlNode.h"
#include "common/XmlParser.h"
#include "platform/Log.h"

using vyr::CNodeText;

CMMTMpuComponent::CMMTMpuComponent() : m(nullptr) {}

CMMTMpuComponent::~CMMTMpuComponent() = default;

bool CMMTMpuComponent::Create()
{
    return vyr::CreateXmlParser(m, "[CMMTMpuComponent::Create]", VYR_HERE);
}

void CMMTMpuComponent::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CMMTMpuComponent::Destroy]", VYR_HERE);
}

bool CMMTMpuComponent::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    SMpuComponent component;
    CNodeText::Attribute(root, "mmtPackageId").CopyTo(component.mmtPackageId);
    CNodeText::Attribute(root, "contentIdSchemeIdUri").CopyTo(component.contentIdSchemeIdUri);
    CNodeText::Attribute(root, "contentIdValue").CopyTo(component.contentIdValue);
    // Read in either spelling.
    if (!CNodeText::Attribute(root, "nextMMTPackageId").CopyTo(component.nextMMTPackageId)) {
        CNodeText::Attribute(root, "nextMmtPackageId").CopyTo(component.nextMMTPackageId);
    }
    CNodeText::Attribute(root, "nextContentIdSchemeIdUri").CopyTo(component.nextContentIdSchemeIdUri);
    CNodeText::Attribute(root, "nextContentIdValue").CopyTo(component.nextContentIdValue);
    *m = std::move(component);
    return true;
}
