#include "mmt/table/MMTTblMpi.h"

#include "common/OutOfMemory.h"
#include "mmt/Elements.h"
#include "platform/FailureKeeping.h"

bool CMMTTblMpi::Parse(SItem* item)
try {
    if (!t_ParseHeader(item, "[CMMTTblMpi::Parse] ERROR")) {
        return false;
    }
    const unsigned char id = TableId();
    if (id < k_tableId || id > k_lastTableId) {
        return VYR_FAIL(FAILURE_KIND, "[CMMTTblMpi::Parse] Table ID ERROR ID=%x", id);
    }
    vyr::CBitReader reader(item);
    reader.Field(4, m_reservedBeforeMode);
    reader.Field(2, m_piMode);
    reader.Field(2, m_reservedBehindMode);
    const unsigned int length = reader.Value(16);
    if (!reader.Valid() || !vyr::ParseDescriptorLoop(item, length, m_arrayDescriptor)) {
        return false;
    }
    const unsigned int contents = reader.Value(8);
    return reader.Valid() && vyr::ParseElements(item, contents, m_arrayPiContent, 71, "p_content->Parse(item)");
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CMMTTblMpi::Dump() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    CMMTTbl::Dump();
    VYR_DUMP("reserved [%u] PI mode [%u] reserved [%u]", m_reservedBeforeMode, m_piMode, m_reservedBehindMode);
    vyr::DumpElements(m_arrayDescriptor);
    vyr::DumpElements(m_arrayPiContent);
}

bool CMMTTblMpi::GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user)
{
    const vyr::CScoped<bool> visiting(t_visiting, true, t_visiting);
    if (!vyr::VisitDescriptors(m_arrayDescriptor, callback, user)) {
        return false;
    }
    for (int i = 0; i < m_arrayPiContent.Size(); ++i) {
        m_arrayPiContent.At(i)->GetDescriptors(callback, user);
    }
    return true;
}
