#include "mmt/msg/MMTMsgMpi.h"

#include "common/BitReader.h"
#include "platform/FailureKeeping.h"
#include "platform/Log.h"

bool CMMTMsgMpi::Parse(SItem* item)
{
    const vyr::CEntry entry;  // one record for both tables
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTMsgMpi::Parse");
    if (!t_ParseHeader(item, 32, "[CMMTMsgMpi::Parse] Item size ERROR len[%u], length[%u]")) {
        return false;
    }
    vyr::CBitReader reader(item);
    reader.Field(7, m_reserved);
    reader.Field(1, m_associatedMPTableFlag);
    return m_mpiTable.Parse(item) && (!m_associatedMPTableFlag || m_mpTable.Parse(item));
}

void CMMTMsgMpi::Dump() const
{
    CMMTMsg::Dump();
    VYR_LOG(LOG_PRIORITY_DEBUG, "reserved [%u] associated MP table [%d]", m_reserved, m_associatedMPTableFlag);
    m_mpiTable.Dump();
    m_mpTable.Dump();
}

bool CMMTMsgMpi::Process()
{
    return false;
}

bool CMMTMsgMpi::GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user)
{
    return m_mpiTable.GetDescriptors(callback, user) && m_mpTable.GetDescriptors(callback, user);
}
