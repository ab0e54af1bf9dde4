#include "esg/ESGElement/Component.h"

#include "esg/ESGKind.h"

namespace {

using TState = CComponent::SComponent;

void ReadComponent(CComponent::SComponentItem& component, const SESGElement& state, void* child)
{
    vyr::ReadContent(child, component.content);
    vyr::ReadAttribute(state, child, "language", component.language);
}

constexpr vyr::SElementHandler<TState> k_handlers[] = {
    {"VideoComponent", vyr::TakeRecord<&TState::videoComponents, ReadComponent>, "sm_CbVideoComponentEntry"},
    {"AudioComponent", vyr::TakeRecord<&TState::audioComponents, ReadComponent>, "sm_CbAudioComponentEntry"},
    {"CCComponent", vyr::TakeRecord<&TState::ccComponents, ReadComponent>, "sm_CbCCComponentEntry"},
    {"AppComponent", vyr::TakeRecord<&TState::appComponents, ReadComponent>, "sm_CbAppComponentEntry"},
};

}  // namespace

const vyr::SESGKind& CComponent::t_Kind() const
{
    static constexpr vyr::SESGKind k_kind =
        vyr::ElementKind<TState, vyr::NoAttributes, k_handlers>(vyr::k_source.text, "CComponent", "Components");
    return k_kind;
}
