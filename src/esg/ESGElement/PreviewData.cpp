#include "esg/ESGElement/PreviewData.h"

#include "esg/ESGKind.h"

namespace {

using TState = CPreviewData::SPreviewData;

constexpr vyr::SESGSteps k_desc{"pDesc->Create(root->m->pdoc, curr)", "pDesc->Parse()"};

void ReadAttributes(TState& state, void* node)
{
    vyr::ReadAttribute(node, "usage", state.usage);
    vyr::ReadMediaInfo(state.media, node);
}

constexpr vyr::SElementHandler<TState> k_handlers[] = {
    {"PreviewContent", vyr::TakeRecord<&TState::previewContents, vyr::ReadMedia>},
    {"PreviewIcon", vyr::TakeRecord<&TState::previewIcons, vyr::ReadMedia>},
    {"Description", vyr::TakeElement<&TState::descriptions, k_desc>},
    {"PreviewDescription", vyr::TakeElement<&TState::descriptions, k_desc>},
};

}  // namespace

const vyr::SESGKind& CPreviewData::t_Kind() const
{
    return vyr::ElementKind<TState, ReadAttributes, k_handlers>("CPreviewData", "Preview");
}
