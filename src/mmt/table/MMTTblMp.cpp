#include "mmt/table/MMTTblMp.h"

#include "common/OutOfMemory.h"
#include "mmt/Elements.h"
#include "platform/FailureKeeping.h"

bool CMMTTblMp::Parse(SItem* item)
try {
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTTblMp::Parse]");
    if (!t_ParseHeader(item, "[CMMTTblMp::Parse] ERROR")) {
        return false;
    }
    const unsigned char id = TableId();
    if (id < k_tableId || id > k_lastTableId) {
        return VYR_FAIL(FAILURE_KIND, "[CMMTTblMp::Parse] Table ID ERROR ID=%x", id);
    }
    vyr::CBitReader reader(item);
    reader.Field(6, m_reserved);
    reader.Field(2, m_mode);
    if (id == k_tableId || id == k_lastTableId) {
        reader.Keep(reader.Value(8), m_packageId);
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTTblMp::Parse] packageId = %s", m_packageId ? m_packageId.Text() : "");
        const unsigned int length = reader.Value(16);
        // Required: where the data end here, the rest is empty, and the table is good.
        if (!reader.Valid()) {
            CMMTDescFactory::ParseDescriptors(item, 0, &m_arrayDescriptor);
        } else if (!vyr::ParseDescriptorLoop(item, length, m_arrayDescriptor)) {
            return false;
        }
    }
    const unsigned int assets = reader.Value(8);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTTblMp::Parse] assetNum = %d", static_cast<int>(assets));
    return vyr::ParseElements(item, assets, m_arrayAsset, 84, "p_asset->Parse(item)");
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CMMTTblMp::Dump() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    CMMTTbl::Dump();
    VYR_DUMP("reserved [%u] mode [%u] package id [%s]", m_reserved, m_mode, m_packageId ? m_packageId.Text() : "");
    vyr::DumpElements(m_arrayDescriptor);
    vyr::DumpElements(m_arrayAsset);
}

bool CMMTTblMp::GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user)
{
    const vyr::CScoped<bool> visiting(t_visiting, true, t_visiting);
    if (!vyr::VisitDescriptors(m_arrayDescriptor, callback, user)) {
        return false;
    }
    for (int i = 0; i < AssetCount(); ++i) {
        Asset(i)->GetDescriptors(callback, user);
    }
    return true;
}

bool CMMTTblMp::Process()
{
    return true;
}
