#include "esg/ESGElement/GroupingCri.h"

#include "esg/ESGElement/Grouping.h"
#include "esg/ESGKind.h"

namespace {

using TState = CGroupingCri::SGroupingCri;

void TakeGenre(TState* state, void* child)
{
    vyr::ReadContent(child, state->genre);
    vyr::UpdateAttribute(child, "type", state->type);
    vyr::UpdateAttribute(child, "href", state->href);
}

void ReadAttributes(TState& state, void* node)
{
    vyr::ReadAttribute(node, "startTime", state.startTime);
    vyr::ReadAttribute(node, "endTime", state.endTime);
    vyr::ReadAttribute(node, "type", state.type);
    vyr::ReadAttribute(node, "href", state.href);
    vyr::ReadAttribute(node, "idRef", state.idRef);
}

constexpr vyr::SElementHandler<TState> k_handlers[] = {
    {"TimeGroupingCriteria", vyr::TakeTimeCriteria<TState>},
    {"GenreGroupingCriteria", TakeGenre},
    {"BSMSelector", vyr::TakeSelector<TState>},
    {"ServiceCriteria", vyr::TakeContent<&TState::serviceCriteria>},
};

}  // namespace

const vyr::SESGKind& CGroupingCri::t_Kind() const
{
    return vyr::ElementKind<TState, ReadAttributes, k_handlers>("CGroupingCri", "GroupingCriteria");
}
