#include "esg/ESGElement/TextLanguage.h"

#include "esg/ESGKind.h"

const vyr::SESGKind& CTextLanguage::t_Kind() const
{
    static constexpr vyr::SESGKind k_kind =
        vyr::ElementKind<STextLanguage, sm_Read, SLanguageTag>("CTextLanguage", "TextLanguage");
    return k_kind;
}
