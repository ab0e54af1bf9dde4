#include "mmt/desc/MMTMpuComponent.h"

#include "common/XmlParser.h"
#include "common/XmlRead.h"

namespace {

struct SState : vyr::TXmlState<CMMTMpuComponent::SMpuComponent> {
    bool m_ProcessParse(void* root) override
    {
        CMMTMpuComponent::SMpuComponent component;
        vyr::ReadAttribute(root, "mmtPackageId", component.mmtPackageId);
        vyr::ReadAttribute(root, "contentIdSchemeIdUri", component.contentIdSchemeIdUri);
        vyr::ReadAttribute(root, "contentIdValue", component.contentIdValue);
        // Read in either spelling.
        if (!vyr::ReadAttribute(root, "nextMMTPackageId", component.nextMMTPackageId)) {
            vyr::ReadAttribute(root, "nextMmtPackageId", component.nextMMTPackageId);
        }
        vyr::ReadAttribute(root, "nextContentIdSchemeIdUri", component.nextContentIdSchemeIdUri);
        vyr::ReadAttribute(root, "nextContentIdValue", component.nextContentIdValue);
        values = std::move(component);
        return true;
    }
};

}  // namespace

vyr::SXmlKind CMMTMpuComponent::t_Kind() const
{
    return vyr::XmlKind<SState>("CMMTMpuComponent");
}
