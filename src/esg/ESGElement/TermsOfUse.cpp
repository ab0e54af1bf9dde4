#include "esg/ESGElement/TermsOfUse.h"

#include "esg/ESGKind.h"

namespace {

using TState = CTermsOfUse::STermsOfUse;

void ReadAttributes(TState& state, void* node)
{
    vyr::ReadAttribute(node, "type", state.type);
    vyr::ReadAttribute(node, "id", state.id);
    vyr::ReadAttribute(node, "userConsentRequired", state.userConsentRequired);
}

constexpr vyr::SElementHandler<TState> k_handlers[] = {
    {"Country", vyr::TakeContent<&TState::countries>},
    {"Language", vyr::TakeContent<&TState::language>},
    {"TermsOfUseText", vyr::TakeContent<&TState::termsOfUseText>},
};

}  // namespace

const vyr::SESGKind& CTermsOfUse::t_Kind() const
{
    return vyr::ElementKind<TState, ReadAttributes, k_handlers>("CTermsOfUse", "TermsOfUse");
}
