#include "mmt/desc/MMTDescCaption.h"

#include "common/BitReader.h"
#include "platform/Log.h"

void CMMTDescCaption::t_ParsePayload(vyr::CBitReader& reader)
{
    reader.Assets(m_assets, [&](SAsset& asset) {
        asset.language = reader.CountedView(8);
        reader.Field(4, asset.role);
        reader.Field(4, asset.aspectRatio);
        reader.Field(1, asset.easyReader);
        reader.Field(2, asset.profile);
        reader.Field(1, asset.support3d);
        reader.Value(4);
    });
}

void CMMTDescCaption::Dump() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    VYR_DUMP("******Caption Asset Descriptor******");
    CMMTDesc::Dump();
    for (const SAsset& asset : m_assets) {
        VYR_DUMP("asset id[%.*s] language[%.*s] role[%d] aspect ratio[%d]", static_cast<int>(asset.assetId.size()),
                 asset.assetId.data(), static_cast<int>(asset.language.size()), asset.language.data(),
                 asset.role.value_or(0), asset.aspectRatio.value_or(0));
    }
}
