#include "esg/ESGElement/Description.h"

#include "esg/ESGKind.h"

const vyr::SESGKind& CDescription::t_Kind() const
{
    static constexpr vyr::SESGKind k_kind = {vyr::k_source.text,          "CDescription", "Description", "m_Process()",
                                             vyr::NewState<SDescription>, sm_Handlers,    sm_Read};
    return k_kind;
}
