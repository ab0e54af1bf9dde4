#include "esg/ESGElement/PresentationWindow.h"

#include "esg/ESGKind.h"

namespace {

struct SState : CPresentationWindow::SPresentationWindow {
    CPresentationWindow::SGiven given;
};

void ReadAttributes(SState& state, void* node)
{
    vyr::ReadAttribute(node, "id", state.id);
    vyr::ReadAttribute(node, "startTime", state.startTime);
    vyr::ReadAttribute(node, "endTime", state.endTime);
    vyr::ReadAttribute(node, "duration", state.given.duration);
}

/// Handler: as TakeContent, of a member of the public record.
template <auto TMember>
void Take(SState* state, void* node)
{
    vyr::TakeContent<TMember>(state, node);
}

constexpr vyr::SElementHandler<SState> k_handlers[] = {
    {"StartTime", Take<&SState::startTimeElement>},
    {"EndTime", Take<&SState::endTimeElement>},
    {"Duration", Take<&SState::duration>},
};

}  // namespace

const vyr::SESGKind& CPresentationWindow::t_Kind() const
{
    return vyr::ElementKind<SState, ReadAttributes, k_handlers>("CPresentationWindow", "PresentationWindow");
}

const CPresentationWindow::SGiven* CPresentationWindow::Given() const
{
    const auto* state = static_cast<const SState*>(t_State());
    return state ? &state->given : nullptr;
}
