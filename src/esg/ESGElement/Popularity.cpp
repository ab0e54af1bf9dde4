#include "esg/ESGElement/Popularity.h"

#include "esg/ESGKind.h"

namespace {

using TState = CPopularity::SPopularity;

void ReadPopularity(TState& state, void* node)
{
    vyr::ReadAttribute(node, "rating", state.rating);
    vyr::ReadAttribute(node, "noOfViews", state.noOfViews);
    vyr::ReadAttribute(node, "noOfDiscussions", state.noOfDiscussions);
    vyr::ReadDate(node, "samplingDate", state.samplingDate);
}

}  // namespace

const vyr::SESGKind& CPopularity::t_Kind() const
{
    return vyr::ElementKind<TState, ReadPopularity>("CPopularity", "Popularity");
}
