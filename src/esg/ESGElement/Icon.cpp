#include "esg/ESGElement/Icon.h"

#include "esg/ESGKind.h"

namespace {

using TState = CIcon::SIcon;

void ReadAttributes(TState& state, void* node)
{
    vyr::ReadAttribute(node, "uri", state.uri);
    vyr::ReadAttribute(node, "uriType", state.uriType);
    vyr::ReadAttribute(node, "MIMEType", state.mimeType);
    vyr::ReadAttribute(node, "size", state.size);
    vyr::ReadAttribute(node, "language", state.language);
    vyr::ReadAttribute(node, "iconUri", state.iconUri);
}

constexpr vyr::SElementHandler<TState> k_handlers[] = {
    {"Link", vyr::TakeContent<&TState::link>},
    {"Description", vyr::TakeContent<&TState::description>},
};

}  // namespace

const vyr::SESGKind& CIcon::t_Kind() const
{
    return vyr::ElementKind<TState, ReadAttributes, k_handlers>("CIcon", "Icon");
}
