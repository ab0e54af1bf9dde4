#include "esg/ESGElement/PresentationWindow.h"

#include "esg/ESGKind.h"

namespace {

using TState = CPresentationWindow::SPresentationWindow;

void ReadAttributes(TState& state, void* node)
{
    vyr::ReadAttribute(node, "id", state.id);
    vyr::ReadAttribute(node, "startTime", state.startTime);
    vyr::ReadAttribute(node, "endTime", state.endTime);
}

constexpr vyr::SElementHandler<TState> k_handlers[] = {
    {"StartTime", vyr::TakeContent<&TState::startTimeElement>},
    {"EndTime", vyr::TakeContent<&TState::endTimeElement>},
    {"Duration", vyr::TakeContent<&TState::duration>},
};

}  // namespace

const vyr::SESGKind& CPresentationWindow::t_Kind() const
{
    return vyr::ElementKind<TState, ReadAttributes, k_handlers>("CPresentationWindow", "PresentationWindow");
}
