#include "esg/ESGElement/BroadcastArea.h"

#include "esg/ESGKind.h"

namespace {

using TState = CBroadcastArea::SBroadcastArea;

void ReadNames(CBroadcastArea::SAreaNames& names, void* node)
{
    vyr::ReadAttribute(node, "cc", names.cc);
    vyr::ReadAttribute(node, "mcc", names.mcc);
    vyr::ReadAttribute(node, "name_area", names.nameArea);
}

void TakeArea(TState* state, void* child);

/// The area of a child, which may stand in the element itself.
CBroadcastArea::SArea& Area(TState* state)
{
    return state->p_area ? *state->p_area : vyr::Fresh(state->p_area);
}

void TakeZipCode(TState* state, void* child)
{
    vyr::ReadContent(child, Area(state).zipCodes);
}

void TakeCells(TState* state, void* child)
{
    static constexpr vyr::SChildSteps k_steps = {"root->m->p_area->cellTargetArea->Create(root->m->pdoc, curr)",
                                                 "root->m->p_area->cellTargetArea->Parse()"};
    vyr::Build(Area(state).cellTargetArea, child, k_steps);
}

void ReadAttributes(TState& state, void* node)
{
    vyr::ReadAttribute(node, "polarity", state.polarity);
    ReadNames(state.names, node);
}

constexpr vyr::SElementHandler<TState> k_handlers[] = {
    {"TargetArea", TakeArea},
    {"ZipCode", TakeZipCode},
    {"CellTargetArea", TakeCells},
};

void TakeArea(TState* state, void* child)
{
    ReadNames(vyr::Fresh(state->p_area), child);
    vyr::DispatchChildren(state, k_handlers, child);
}

}  // namespace

const vyr::SESGKind& CBroadcastArea::t_Kind() const
{
    return vyr::ElementKind<TState, ReadAttributes, k_handlers>("CBroadcastArea", "BroadcastArea");
}
