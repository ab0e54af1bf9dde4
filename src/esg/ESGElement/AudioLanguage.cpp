#include "esg/ESGElement/AudioLanguage.h"

#include "esg/ESGKind.h"

const vyr::SESGKind& CAudioLanguage::t_Kind() const
{
    return vyr::ElementKind<SAudioLanguage, sm_Read>("CAudioLanguage", "AudioLanguage");
}
