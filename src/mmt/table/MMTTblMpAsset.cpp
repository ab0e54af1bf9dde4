#include "mmt/table/MMTTblMpAsset.h"

#include <algorithm>

#include "common/OutOfMemory.h"
#include "mmt/Elements.h"

bool CMMTTblMpAsset::Parse(SItem* item)
try {
    if (!m_identifier.Parse(item)) {
        return false;
    }
    vyr::CBitReader reader(item);
    const unsigned char* type = reader.Bytes(4);
    if (!type) {
        return false;
    }
    std::copy(type, type + m_assetType.size(), m_assetType.begin());
    reader.Field(6, m_reserved);
    reader.Field(1, m_defaultAssetFlag);
    reader.Field(1, m_assetClockRelationFlag);
    if (m_assetClockRelationFlag) {
        reader.Field(8, m_assetClockRelationId);
        reader.Field(7, m_reserved);
        reader.Field(1, m_assetTimeScaleFlag);
        if (m_assetTimeScaleFlag) {
            reader.Field(32, m_assetTimeScale);
        }
    }
    const unsigned int locations = reader.Value(8);
    if (!reader.Valid() || !vyr::ParseElements(item, locations, m_arrayLocation, 73, "location->Parse(item)")) {
        return false;
    }
    const unsigned int length = reader.Value(16);
    if (!reader.Valid() || !vyr::ParseDescriptorLoop(item, length, m_arrayDescriptor)) {
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
    VYR_DUMP("asset type [%02x%02x%02x%02x] reserved [%u] default [%d]", m_assetType[0], m_assetType[1], m_assetType[2],
             m_assetType[3], m_reserved, m_defaultAssetFlag);
    VYR_DUMP("clock relation [%d] id [%u] timescale [%d] [%u]", m_assetClockRelationFlag, m_assetClockRelationId,
             m_assetTimeScaleFlag, m_assetTimeScale);
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
