#include "esg/ESGElement/Text.h"

#include "esg/ESGKind.h"

namespace {

using TState = CText::SText;

void ReadAttributes(TState& state, void* node)
{
    vyr::ReadAttribute(node, "uri", state.uri);
    vyr::ReadAttribute(node, "uriType", state.uriType);
    vyr::ReadAttribute(node, "language", state.language);
}

constexpr vyr::SElementHandler<TState> k_handlers[] = {
    {"Link", vyr::TakeContent<&TState::link>},
    {"Description", vyr::TakeContent<&TState::description>},
    {"TextString", vyr::TakeContent<&TState::textString>},
};

}  // namespace

const vyr::SESGKind& CText::t_Kind() const
{
    return vyr::ElementKind<TState, ReadAttributes, k_handlers>("CText", "Text");
}
