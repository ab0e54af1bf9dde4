#include "esg/ESGElement/BroadcastArea.h"

#include "esg/ESGKind.h"

namespace {

using TState = CBroadcastArea::SBroadcastArea;

/// Begins the area that `node` describes.
void NewArea(TState* state, void* node)
{
    state->p_area = std::make_unique<CBroadcastArea::SArea>();
    vyr::ReadAttribute(*state, node, "cc", state->p_area->cc);
    vyr::ReadAttribute(*state, node, "mcc", state->p_area->mcc);
    vyr::ReadAttribute(*state, node, "name_area", state->p_area->nameArea);
}

void TakeArea(TState* state, void* child)
{
    NewArea(state, child);
    vyr::TakeChildren(state, child);
}

/// The area of a child, which may stand in the element itself.
CBroadcastArea::SArea& Area(TState* state)
{
    if (!state->p_area) {
        NewArea(state, state->proot);
    }
    return *state->p_area;
}

void TakeZipCode(TState* state, void* child)
{
    vyr::ReadContent(child, Area(state).zipCodes);
}

void TakeCells(TState* state, void* child)
{
    static constexpr vyr::SChildSteps k_steps = {"root->m->p_area->cellTargetArea->Create(root->m->pdoc, curr)",
                                                 "root->m->p_area->cellTargetArea->Parse()"};
    vyr::Build(Area(state).cellTargetArea, state->pdoc, child, k_steps, VYR_HERE);
}

void ReadAttributes(TState& state, void* node)
{
    vyr::ReadAttribute(node, "polarity", state.polarity);
}

constexpr vyr::SElementHandler<TState> k_handlers[] = {
    {"TargetArea", TakeArea, "sm_CbTargetAreaEntry"},
    {"ZipCode", TakeZipCode, "sm_CbZipCodeEntry"},
    {"CellTargetArea", TakeCells, "sm_CbCellTargetAreaEntry"},
};

}  // namespace

const vyr::SESGKind& CBroadcastArea::t_Kind() const
{
    static constexpr vyr::SESGKind k_kind =
        vyr::ElementKind<TState, ReadAttributes, k_handlers>(vyr::k_source.text, "CBroadcastArea", "BroadcastArea");
    return k_kind;
}
