#include "esg/ESGElement/Description.h"

#include "esg/ESGKind.h"

const vyr::SESGKind& CDescription::t_Kind() const
{
    static constexpr vyr::SESGKind k_kind = {
        VYR_HERE, "CDescription", "Description", "m_Process()", vyr::NewState<SDescription>, sm_Handlers, sm_Read};
    return k_kind;
}
