#include "esg/ESGElement/ATSC3ServiceExt.h"

#include "esg/ESGKind.h"

namespace {

using TState = CATSC3ServiceExt::SATSC3ServiceExt;

constexpr vyr::SElementHandler<TState> k_handlers[] = {
    {"MajorChannelNum", vyr::TakeContent<&TState::majorChannelNum>},
    {"MinorChannelNum", vyr::TakeContent<&TState::minorChannelNum>},
    {"Icon", vyr::TakeRecord<&TState::icons, vyr::ReadMedia>},
};

void ReadAttributes(TState& state, void* node)
{
    vyr::ReadMediaInfo(state.media, node);
}

}  // namespace

const vyr::SESGKind& CATSC3ServiceExt::t_Kind() const
{
    return vyr::ElementKind<TState, ReadAttributes, k_handlers>("CATSC3ServiceExt", "ATSC3ServiceExtension");
}
