#include "esg/ESGElement/ContentPrivateExt.h"

#include "esg/ESGKind.h"

namespace {

using TState = CContentPrivateExt::SContentPrivateExt;

constexpr vyr::SESGSteps k_comp{"root->m->comp->Create(root->m->pdoc, curr)", "root->m->comp->Parse()"};
constexpr vyr::SESGSteps k_preview{"previewData->Create(root->m->pdoc, curr)", "previewData->Parse()"};

constexpr vyr::SElementHandler<TState> k_handlers[] = {
    {"Capabilities", vyr::TakeContent<&TState::capabilities>},
    {"Components", vyr::TakeElement<&TState::comp, k_comp>},
    {"ContentIcon", vyr::TakeRecord<&TState::contentIcons, vyr::ReadMedia>},
    {"Preview", vyr::TakeElement<&TState::previews, k_preview>},
};

void ReadAttributes(TState& state, void* node)
{
    vyr::ReadMediaInfo(state.media, node);
}

}  // namespace

const vyr::SESGKind& CContentPrivateExt::t_Kind() const
{
    return vyr::ElementKind<TState, ReadAttributes, k_handlers>("CContentPrivateExt", "PrivateExt");
}
