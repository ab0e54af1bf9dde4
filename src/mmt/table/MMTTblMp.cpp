#include "mmt/table/MMTTblMp.h"

#include "common/OutOfMemory.h"
#include "mmt/Elements.h"

CMMTTblMp::CMMTTblMp() : CMMTTbl(CLASS_TYPE_MP) {}

bool CMMTTblMp::Parse(SItem* item)
try {
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTTblMp::Parse]");
    if (!t_ParseHeader(item, "[CMMTTblMp::Parse] ERROR")) {
        return false;
    }
    const unsigned char id = TableId();
    if (id < 0x11 || id > 0x20) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTTblMp::Parse] Table ID ERROR ID=%x", id);
        return false;
    }
    m_reserved = static_cast<unsigned char>(t_Value(item, 6));
    m_mode = static_cast<unsigned char>(t_Value(item, 2));
    if (id == 0x11 || id == 0x20) {
        const unsigned int packageIdLength = t_Value(item, 8);
        m_packageId.Take(t_AllocAndCopy(item, packageIdLength), packageIdLength);
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTTblMp::Parse] packageId = %s", m_packageId ? m_packageId.Text() : "");
        const unsigned int length = t_Value(item, 16);
        // Required: where the data end here, the rest is empty, and the table is good.
        if (item->valid && !vyr::ParseDescriptorLoop(item, length, m_arrayDescriptor)) {
            return false;
        }
    }
    const unsigned int assets = t_Value(item, 8);
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
    VYR_LOG(LOG_PRIORITY_DEBUG, "reserved [%u] mode [%u] package id [%s]", m_reserved, m_mode,
            m_packageId ? m_packageId.Text() : "");
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
