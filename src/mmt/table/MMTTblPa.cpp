#include "mmt/table/MMTTblPa.h"

#include "common/OutOfMemory.h"
#include "mmt/Elements.h"

bool CMMTTblPa::Parse(SItem* item)
try {
    if (!t_ParseHeader(item, "[CMMTTblPa::Parse] ERROR")) {
        if (item) {
            item->valid = false;
        }
        return false;
    }
    vyr::CBitReader reader(item);
    const unsigned int count = reader.Value(8);
    if (!vyr::ParseElements(item, count, m_arrayTable, 75, "p_unit->Parse(item)")) {
        return false;
    }
    reader.Field(7, m_reserved);
    reader.Field(1, m_privateFlag);
    return reader.Valid();
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CMMTTblPa::Dump() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    CMMTTbl::Dump();
    vyr::DumpElements(m_arrayTable);
    VYR_DUMP("reserved [%u] private extension [%u]", m_reserved, m_privateFlag);
}

bool CMMTTblPa::GetDescriptors(void (* /*callback*/)(void* user, CMMTDesc* descriptor), void* /*user*/)
{
    return true;
}

bool CMMTTblPa::Process()
{
    const vyr::CScoped<bool> visiting(t_visiting, true, t_visiting);
    for (int i = 0; i < m_arrayTable.Size(); ++i) {
        CMMTTblPaInfo& info = *Info(i);
        SLocationInfo location;
        SLocationInfo alternative;
        if (t_GetMMTGeneralLocationInfo(&location, info.Location()) &&
            t_GetMMTGeneralLocationInfo(&alternative, info.AlternativeLocation()) && m_callback.onTableInfo) {
            m_callback.onTableInfo(m_callback.user, info.SignallingInformationTableId(),
                                   info.SignallingInformationTableVersion(), &location, &alternative);
        }
    }
    return true;
}

void CMMTTblPa::SetCallback(const SCallback* callback)
{
    m_callback = callback ? *callback : SCallback{};
}
