#include "esg/ESGElement/TextLanguage.h"

#include "esg/ESGKind.h"

const vyr::SESGKind& CTextLanguage::t_Kind() const
{
    return vyr::ElementKind<STextLanguage, sm_Read>("CTextLanguage", "TextLanguage");
}
