#include "mmt/desc/MMTDescDependency.h"

#include "common/Log.h"

CMMTDescDependency::CMMTDescDependency() : CMMTDescPayload("CMMTDescDependency", 2) {}

void CMMTDescDependency::t_ParsePayload(SItem* payload)
{
    m_assets.clear();
    t_List(
        payload, m_assets,
        [&](SAsset& asset) {
            asset.scheme = t_View(payload, 4);
            asset.assetId = t_CountedView(payload, 32);
        },
        [](SAsset&) {});
}

void CMMTDescDependency::Dump() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "******Dependency Descriptor******");
    CMMTDesc::Dump();
    for (const SAsset& asset : m_assets) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "asset id[%.*s]", static_cast<int>(asset.assetId.size()), asset.assetId.data());
    }
}
