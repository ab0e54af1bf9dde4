#include "esg/ESGElement/Description.h"

#include "esg/ESGKind.h"

const vyr::SESGKind& CDescription::t_Kind() const
{
    return vyr::ElementKind<SDescription, sm_Read>("CDescription", "Description");
}
