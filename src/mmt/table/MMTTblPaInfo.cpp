#include "mmt/table/MMTTblPaInfo.h"

#include "platform/Log.h"

bool CMMTTblPaInfo::Parse(SItem* item)
{
    m_tableId = static_cast<unsigned char>(t_Value(item, 8));
    m_tableVersion = static_cast<unsigned char>(t_Value(item, 8));
    if (!m_location.Parse(item)) {
        return false;
    }
    m_reserved = static_cast<unsigned char>(t_Value(item, 7));
    m_flag = static_cast<unsigned char>(t_Value(item, 1));
    if (m_flag && !m_alternativeLocation.Parse(item)) {
        return false;
    }
    return item->valid;
}

void CMMTTblPaInfo::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "table id [%u] version [%u] reserved [%u] alternative location [%u]", m_tableId,
            m_tableVersion, m_reserved, m_flag);
    m_location.Dump();
    m_alternativeLocation.Dump();
}
