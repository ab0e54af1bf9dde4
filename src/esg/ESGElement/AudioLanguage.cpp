#include "esg/ESGElement/AudioLanguage.h"

#include "esg/ESGKind.h"

const vyr::SESGKind& CAudioLanguage::t_Kind() const
{
    static constexpr vyr::SESGKind k_kind =
        vyr::ElementKind<SAudioLanguage, sm_Read, SLanguageTag>("CAudioLanguage", "AudioLanguage");
    return k_kind;
}
