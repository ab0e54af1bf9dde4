#include "esg/ESGElement/SGDeliveryUnit.h"

#include "esg/ESGKind.h"

namespace {

using TState = CSGDeliveryUnit::SSGDeliveryUnit;

constexpr vyr::SESGSteps k_fragment{"p_frag->Create(root->m->pdoc, curr)", "p_frag->Parse()"};

void ReadAttributes(TState& state, void* node)
{
    vyr::ReadAttribute(node, "transportObjectID", state.transportObjectID);
    vyr::ReadAttribute(node, "versionIDLength", state.versionIDLength);
    vyr::ReadAttribute(node, "contentLocation", state.contentLocation);
    vyr::ReadAttribute(node, "validFrom", state.validFrom);
    vyr::ReadAttribute(node, "validTo", state.validTo);
}

constexpr vyr::SElementHandler<TState> k_handlers[] = {
    {"Fragment", vyr::TakeElement<&TState::fragments, k_fragment>},
};

}  // namespace

const vyr::SESGKind& CSGDeliveryUnit::t_Kind() const
{
    return vyr::ElementKind<TState, ReadAttributes, k_handlers>("CSGDeliveryUnit", "ServiceGuideDeliveryUnit");
}
