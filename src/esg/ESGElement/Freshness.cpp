#include "esg/ESGElement/Freshness.h"

#include "esg/ESGKind.h"

namespace {

using TState = CFreshness::SFreshness;

void ReadFreshness(TState& state, void* node)
{
    vyr::ReadDate(node, "broadcastDate", state.broadcastDate);
    vyr::ReadDate(node, "releastDate", state.releaseDate);  // required: the attribute is spelt so
}

}  // namespace

const vyr::SESGKind& CFreshness::t_Kind() const
{
    return vyr::ElementKind<TState, ReadFreshness>("CFreshness", "Freshness");
}
