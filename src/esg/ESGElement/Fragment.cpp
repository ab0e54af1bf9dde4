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

constexpr vyr::SElementHandler<TState> k_handlers[] = {
    {"GroupingCriteria", vyr::TakeChildren<TState>},
    {"TimeGroupingCriteria", vyr::TakeTimeCriteria<TState>},
    {"BSMSelector", vyr::TakeSelector<TState>},
};

}  // namespace

const vyr::SESGKind& CFragment::t_Kind() const
{
    static constexpr vyr::SESGKind k_kind =
        vyr::ElementKind<TState, ReadAttributes, k_handlers>("CFragment", "Fragment");
    return k_kind;
}
