#include "esg/ESGElement/TargetUserProfile.h"

#include "esg/ESGKind.h"

namespace {

using TState = CTargetUserProfile::STargetUserProfile;

void ReadAttributes(TState& state, void* node)
{
    vyr::ReadAttribute(node, "attributeName", state.attributeName);
    vyr::ReadAttribute(node, "attributeValue", state.attributeValue);
}

}  // namespace

const vyr::SESGKind& CTargetUserProfile::t_Kind() const
{
    return vyr::ElementKind<TState, ReadAttributes>("CTargetUserProfile", "TargetUserProfile");
}
