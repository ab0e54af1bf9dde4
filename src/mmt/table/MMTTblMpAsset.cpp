#include "mmt/table/MMTTblMpAsset.h"

#include <algorithm>

#include "common/OutOfMemory.h"
#include "mmt/Elements.h"

bool CMMTTblMpAsset::Parse(SItem* item)
try {
    if (!m_identifier.Parse(item)) {
        return false;
    }
    const unsigned char* type = t_Byte(item, 4);
    if (!type) {
        return false;
    }
    std::copy(type, type + m_assetType.size(), m_assetType.begin());
    m_reserved = static_cast<unsigned char>(t_Value(item, 6));
    m_defaultAssetFlag = t_Value(item, 1) != 0;
    m_assetClockRelationFlag = t_Value(item, 1) != 0;
    if (m_assetClockRelationFlag) {
        m_assetClockRelationId = static_cast<unsigned char>(t_Value(item, 8));
        m_reserved = static_cast<unsigned char>(t_Value(item, 7));
        m_assetTimeScaleFlag = t_Value(item, 1) != 0;
        if (m_assetTimeScaleFlag) {
            m_assetTimeScale = t_Value(item, 32);
        }
    }
    const unsigned int locations = t_Value(item, 8);
    if (!item->valid || !vyr::ParseElements(item, locations, m_arrayLocation, 73, "location->Parse(item)")) {
        return false;
    }
    const unsigned int length = t_Value(item, 16);
    if (!item->valid || !vyr::ParseDescriptorLoop(item, length, m_arrayDescriptor)) {
        return false;
    }
    Dump();
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CMMTTblMpAsset::Dump() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    m_identifier.Dump();
    VYR_LOG(LOG_PRIORITY_DEBUG, "asset type [%02x%02x%02x%02x] reserved [%u] default [%d]", m_assetType[0],
            m_assetType[1], m_assetType[2], m_assetType[3], m_reserved, m_defaultAssetFlag);
    VYR_LOG(LOG_PRIORITY_DEBUG, "clock relation [%d] id [%u] timescale [%d] [%u]", m_assetClockRelationFlag,
            m_assetClockRelationId, m_assetTimeScaleFlag, m_assetTimeScale);
    vyr::DumpElements(m_arrayLocation);
    vyr::DumpElements(m_arrayDescriptor);
}

bool CMMTTblMpAsset::GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user)
{
    return vyr::VisitDescriptors(m_arrayDescriptor, callback, user);
}

CMMTDesc* CMMTTblMpAsset::AssetDescriptor(unsigned int index) const
{
    return index < AssetDescriptorSize() ? m_arrayDescriptor.At(static_cast<int>(index)) : nullptr;
}
