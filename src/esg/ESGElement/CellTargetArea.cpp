#include "esg/ESGElement/CellTargetArea.h"

#include "esg/ESGKind.h"

namespace {

using TState = CCellTargetArea::SCellTargetArea;

void TakeCell(TState* state, void* child);

void TakePP2Cell(TState* state, void* child)
{
    if (state->cells.empty()) {
        state->cells.emplace_back();
    }
    vyr::ReadContent(child, state->cells.back().pp2CellIDs);
}

void ReadAttributes(TState& state, void* node)
{
    vyr::ReadAttribute(node, "type", state.type);
    vyr::ReadAttribute(node, "value", state.value);
}

constexpr vyr::SElementHandler<TState> k_handlers[] = {
    {"CellArea", TakeCell},
    {"PP2CellID", TakePP2Cell},
};

void TakeCell(TState* state, void* child)
{
    vyr::ReadAttribute(child, "value", state->cells.emplace_back().value);
    vyr::DispatchChildren(state, k_handlers, child);
}

}  // namespace

const vyr::SESGKind& CCellTargetArea::t_Kind() const
{
    return vyr::ElementKind<TState, ReadAttributes, k_handlers>("CCellTargetArea", "CellTargetArea");
}
