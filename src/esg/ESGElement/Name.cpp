#include "esg/ESGElement/Name.h"

#include "esg/ESGKind.h"

const vyr::SESGKind& CName::t_Kind() const
{
    static constexpr vyr::SESGKind k_kind = {VYR_HERE,    "CName", "Name", "m_Process()", vyr::NewState<SName>,
                                             sm_Handlers, sm_Read};
    return k_kind;
}
