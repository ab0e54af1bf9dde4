#include "mmt/table/MMTTblPaInfo.h"

#include "common/BitReader.h"
#include "platform/Log.h"

bool CMMTTblPaInfo::Parse(SItem* item)
{
    vyr::CBitReader reader(item);
    reader.Field(8, m_tableId);
    reader.Field(8, m_tableVersion);
    if (!m_location.Parse(item)) {
        return false;
    }
    reader.Field(7, m_reserved);
    reader.Field(1, m_flag);
    if (m_flag && !m_alternativeLocation.Parse(item)) {
        return false;
    }
    return reader.Valid();
}

void CMMTTblPaInfo::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "table id [%u] version [%u] reserved [%u] alternative location [%u]", m_tableId,
            m_tableVersion, m_reserved, m_flag);
    m_location.Dump();
    m_alternativeLocation.Dump();
}
