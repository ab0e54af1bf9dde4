#include "mmt/msg/MMTMsgLdc.h"

#include "common/BitReader.h"

bool CMMTMsgLdc::Parse(SItem* item)
{
    SItem payload;
    if (!t_ParsePayload(item, 16, "[CMMTMsgLdc::Parse] Item size ERROR len[%u], length[%u]", payload)) {
        return false;
    }
    vyr::CBitReader reader(&payload);
    m_lowDelay.ParseFields(reader);
    return true;
}

void CMMTMsgLdc::Dump() const
{
    CMMTMsg::Dump();
    m_lowDelay.Dump();
}
