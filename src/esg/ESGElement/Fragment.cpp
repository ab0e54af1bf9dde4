#include "esg/ESGElement/Fragment.h"

#include "esg/ESGElement/Grouping.h"
#include "esg/ESGKind.h"

namespace {

using TState = CFragment::SFragment;

void ReadAttributes(TState& state, void* node)
{
    vyr::ReadAttribute(node, "transportID", state.transportID);
    vyr::ReadAttribute(node, "id", state.id);
    vyr::ReadAttribute(node, "validFrom", state.validFrom);
    vyr::ReadAttribute(node, "validTo", state.validTo);
    vyr::ReadAttribute(node, "fragmentEncoding", state.fragmentEncoding);
    vyr::ReadAttribute(node, "fragmentType", state.fragmentType);
    vyr::ReadAttribute(node, "idRef", state.idRef);
    vyr::ReadAttribute(node, "startTime", state.startTime);
    vyr::ReadAttribute(node, "endTime", state.endTime);
}

void TakeGrouping(TState* state, void* child);

constexpr vyr::SElementHandler<TState> k_handlers[] = {
    {"GroupingCriteria", TakeGrouping},
    {"TimeGroupingCriteria", vyr::TakeTimeCriteria<TState>},
    {"BSMSelector", vyr::TakeSelector<TState>},
};

void TakeGrouping(TState* state, void* child)
{
    vyr::DispatchChildren(state, k_handlers, child);
}

}  // namespace

const vyr::SESGKind& CFragment::t_Kind() const
{
    return vyr::ElementKind<TState, ReadAttributes, k_handlers>("CFragment", "Fragment");
}
