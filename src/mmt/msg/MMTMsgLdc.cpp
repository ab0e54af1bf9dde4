#include "mmt/msg/MMTMsgLdc.h"

CMMTMsgLdc::CMMTMsgLdc() : CMMTMsgPayload(CLASS_TYPE_LDC) {}

CMMTMsgLdc::~CMMTMsgLdc() = default;

bool CMMTMsgLdc::Parse(SItem* item)
{
    SItem payload;
    if (!t_ParsePayload(item, 16, "[CMMTMsgLdc::Parse] Item size ERROR len[%u], length[%u]", payload)) {
        return false;
    }
    m_lowDelay.ParseFields(&payload);
    return true;
}

void CMMTMsgLdc::Dump() const
{
    CMMTMsg::Dump();
    m_lowDelay.Dump();
}
