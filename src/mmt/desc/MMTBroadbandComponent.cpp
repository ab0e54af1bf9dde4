#include "mmt/desc/MMTBroadbandComponent.h"

#include "common/XmlParser.h"
#include "common/XmlRead.h"

namespace {

struct SState : vyr::TXmlState<CMMTBroadbandComponent::SBroadbandComponent> {
    bool m_ProcessParse(void* root) override
    {
        CMMTBroadbandComponent::SBroadbandComponent component;
        vyr::ReadAttribute(root, "fullMPDUri", component.fullMPDUri);
        values = std::move(component);
        return true;
    }
};

}  // namespace

vyr::SXmlKind CMMTBroadbandComponent::t_Kind() const
{
    return vyr::XmlKind<SState>("CMMTBroadbandComponent");
}
