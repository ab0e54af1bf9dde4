#include "mmt/msg/MMTMsgCri.h"

bool CMMTMsgCri::Parse(SItem* item)
{
    SItem payload;
    return t_ParsePayload(item, 16, "[CMMTMsgCri::Parse] Item size ERROR len[%u], length[%u]", payload) &&
           m_table.Parse(&payload);
}

void CMMTMsgCri::Dump() const
{
    CMMTMsg::Dump();
    m_table.Dump();
}

bool CMMTMsgCri::GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user)
{
    return m_table.GetDescriptors(callback, user);
}
