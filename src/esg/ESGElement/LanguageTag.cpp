#include "esg/ESGElement/LanguageTag.h"

#include "esg/ESGKind.h"

void CLanguageTag::sm_Read(SLanguageTag& state, void* node)
{
    vyr::ReadContent(node, state.content);
    vyr::ReadAttribute(node, "languageSDPTag", state.languageSDPTag);
}
