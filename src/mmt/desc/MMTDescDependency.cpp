#include "mmt/desc/MMTDescDependency.h"

#include "common/BitReader.h"
#include "platform/Log.h"

void CMMTDescDependency::t_ParsePayload(vyr::CBitReader& reader)
{
    m_assets.clear();
    reader.List(m_assets, [&](SAsset& asset) {
        asset.scheme = reader.View(4);
        asset.assetId = reader.CountedView(32);
    });
}

void CMMTDescDependency::Dump() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    VYR_DUMP("******Dependency Descriptor******");
    CMMTDesc::Dump();
    for (const SAsset& asset : m_assets) {
        VYR_DUMP("asset id[%.*s]", static_cast<int>(asset.assetId.size()), asset.assetId.data());
    }
}
