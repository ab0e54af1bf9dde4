#include "esg/ESGElement/Component.h"

#include "esg/ESGKind.h"

namespace {

using TState = CComponent::SComponent;

void ReadComponent(CComponent::SComponentItem& component, void* node)
{
    vyr::ReadContent(node, component.content);
    vyr::ReadAttribute(node, "language", component.language);
}

void ReadAttributes(TState& state, void* node)
{
    vyr::ReadAttribute(node, "language", state.language);
}

constexpr vyr::SElementHandler<TState> k_handlers[] = {
    {"VideoComponent", vyr::TakeRecord<&TState::videoComponents, ReadComponent>},
    {"AudioComponent", vyr::TakeRecord<&TState::audioComponents, ReadComponent>},
    {"CCComponent", vyr::TakeRecord<&TState::ccComponents, ReadComponent>},
    {"AppComponent", vyr::TakeRecord<&TState::appComponents, ReadComponent>},
};

}  // namespace

const vyr::SESGKind& CComponent::t_Kind() const
{
    return vyr::ElementKind<TState, ReadAttributes, k_handlers>("CComponent", "Components");
}
