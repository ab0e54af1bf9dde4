#include "mmt/desc/MMTDescCaption.h"

#include "common/Log.h"

CMMTDescCaption::CMMTDescCaption() : CMMTDescPayload("CMMTDescCaption", 8) {}

void CMMTDescCaption::t_ParsePayload(SItem* payload)
{
    t_Assets(payload, m_assets, [&](SAsset& asset) {
        asset.language = t_CountedView(payload, 8);
        t_Field(payload, 4, asset.role);
        t_Field(payload, 4, asset.aspectRatio);
        t_Field(payload, 1, asset.easyReader);
        t_Field(payload, 2, asset.profile);
        t_Field(payload, 1, asset.support3d);
        t_Value(payload, 4);
    });
}

void CMMTDescCaption::Dump() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "******Caption Asset Descriptor******");
    CMMTDesc::Dump();
    for (const SAsset& asset : m_assets) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "asset id[%.*s] language[%.*s] role[%d] aspect ratio[%d]",
                static_cast<int>(asset.assetId.size()), asset.assetId.data(), static_cast<int>(asset.language.size()),
                asset.language.data(), asset.role.value_or(0), asset.aspectRatio.value_or(0));
    }
}
