#include "mmt/table/MMTTblDci.h"

#include "common/BitReader.h"
#include "common/OutOfMemory.h"
#include "mmt/Elements.h"

bool CMMTTblDci::Parse(SItem* item)
try {
    SItem payload;
    if (!t_ParsePayload(item, "[CMMTTblDci::Parse] ERROR", payload)) {
        return false;
    }
    vyr::CBitReader reader(&payload);
    const unsigned int count = reader.Value(8);
    for (unsigned int i = 0; i < count; ++i) {
        auto asset = std::make_unique<SAsset>();
        if (!asset->assetId.Parse(reader.Item()) || !asset->mimeType.Parse(reader.Item())) {
            break;
        }
        SAsset& a = *asset;
        m_arrayAsset.Append(std::move(asset));
        reader.Value(7);
        reader.Field(1, a.codecComplexityFlag);
        const bool video = a.mimeType.IsVideo();
        if (!a.codecComplexityFlag.value_or(false)) {
            reader.Field(32, a.requiredStorage);
        } else if (video || a.mimeType.IsAudio()) {
            reader.Field(16, a.averageBitrate);
            reader.Field(16, a.maximumBitrate);
            if (video) {
                reader.Field(16, a.horizontalResolution);
                reader.Field(16, a.verticalResolution);
                reader.Field(8, a.temporalResolution);
            }
            reader.Field(16, a.minimumBufferSize);
        }
    }
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CMMTTblDci::Dump() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    CMMTTbl::Dump();
    for (int i = 0; i < AssetCount(); ++i) {
        const SAsset& a = *Asset(i);
        a.assetId.Dump();
        a.mimeType.Dump();
        VYR_DUMP("bitrate [%u, %u] resolution [%u x %u, %u] buffer [%u] storage [%u]", a.averageBitrate.value_or(0),
                 a.maximumBitrate.value_or(0), a.horizontalResolution.value_or(0), a.verticalResolution.value_or(0),
                 a.temporalResolution.value_or(0), a.minimumBufferSize.value_or(0), a.requiredStorage.value_or(0));
    }
}

bool CMMTTblDci::GetDescriptors(void (* /*callback*/)(void* user, CMMTDesc* descriptor), void* /*user*/)
{
    return true;
}
