#include "mmt/msg/MMTMsgMpt.h"

#include "platform/Log.h"

bool CMMTMsgMpt::Parse(SItem* item)
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTMsgMpt::Parse]");
    return t_ParseHeader(item, 16, "[CMMTMsgMpt::Parse] Item size ERROR len[%u], length[%u]") && m_mpTable.Parse(item);
}

void CMMTMsgMpt::Dump() const
{
    CMMTMsg::Dump();
    m_mpTable.Dump();
}

bool CMMTMsgMpt::Process()
{
    m_mpTable.Process();
    return true;
}

bool CMMTMsgMpt::GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user)
{
    return m_mpTable.GetDescriptors(callback, user);
}
