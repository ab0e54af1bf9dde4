#include "esg/ESGElement/ScheduleContentRef.h"

#include "esg/ESGKind.h"

namespace {

using TState = CScheduleContentRef::SScheduleContentRef;

constexpr vyr::SESGSteps k_window{"p_win->Create(root->m->pdoc, curr)", "p_win->Parse()"};

void ReadAttributes(TState& state, void* node)
{
    vyr::ReadAttribute(node, "idRef", state.idRef);
    vyr::ReadAttribute(node, "contentLocation", state.contentLocation);
}

constexpr vyr::SElementHandler<TState> k_handlers[] = {
    {"PresentationWindow", vyr::TakeElement<&TState::presentationWindows, k_window>},
};

}  // namespace

const vyr::SESGKind& CScheduleContentRef::t_Kind() const
{
    return vyr::ElementKind<TState, ReadAttributes, k_handlers>("CScheduleContentRef", "ContentReference");
}
