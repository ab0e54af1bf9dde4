#include "mmt/msg/MMTMsgDci.h"

bool CMMTMsgDci::Parse(SItem* item)
{
    SItem payload;
    return t_ParsePayload(item, 16, "[CMMTMsgDci::Parse] Item size ERROR len[%u], length[%u]", payload) &&
           m_table.Parse(&payload);
}

void CMMTMsgDci::Dump() const
{
    CMMTMsg::Dump();
    m_table.Dump();
}

bool CMMTMsgDci::GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user)
{
    return m_table.GetDescriptors(callback, user);
}
