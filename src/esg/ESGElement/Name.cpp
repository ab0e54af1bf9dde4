#include "esg/ESGElement/Name.h"

#include "esg/ESGKind.h"

const vyr::SESGKind& CName::t_Kind() const
{
    return vyr::ElementKind<SName, sm_Read>("CName", "Name");
}
