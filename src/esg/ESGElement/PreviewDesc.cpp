#include "esg/ESGElement/PreviewDesc.h"

#include "esg/ESGKind.h"

namespace {

using TState = CPreviewDesc::SPreviewDesc;

void ReadDescription(TState& state, void* node)
{
    vyr::ReadContent(node, state.content);
    vyr::ReadAttribute(node, "lang", state.lang);
    vyr::ReadAttribute(node, "linkUri", state.linkUri);
    vyr::ReadAttribute(node, "uriType", state.uriType);
}

}  // namespace

const vyr::SESGKind& CPreviewDesc::t_Kind() const
{
    return vyr::ElementKind<TState, ReadDescription>("CPreviewDesc", "PreviewDescription", "m_Process()",
                                                     "Description");
}
