#include "mmt/desc/MMTDescSp.h"

#include "common/BitReader.h"
#include "platform/Log.h"

namespace {

constexpr unsigned int k_idSize = 16;

}  // namespace

bool CMMTDescSp::t_Takes(unsigned int tag) const
{
    return tag == k_tag || tag == k_licenseUrlTag;
}

void CMMTDescSp::t_ParsePayload(vyr::CBitReader& reader)
{
    reader.Assets(m_assets, [&](SAsset& asset) {
        if (t_tag == k_licenseUrlTag) {
            reader.List(asset.licenseUrls, [&](SLicenseUrl& license) {
                reader.Field(8, license.type);
                license.url = reader.CountedView(8);
            });
            return;
        }
        asset.schemeCode = reader.View(4);
        asset.defaultKeyId = reader.View(k_idSize);
        reader.List(
            asset.systems, [&](SSystem& system) { system.systemId = reader.View(k_idSize); },
            [&](SSystem& system) { system.data = reader.CountedView(16); });
    });
}

void CMMTDescSp::Dump() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    VYR_DUMP("******SP Descriptor******");
    CMMTDesc::Dump();
    for (const SAsset& asset : m_assets) {
        VYR_DUMP("asset id[%.*s] scheme[%.*s] systems[%zu]", static_cast<int>(asset.assetId.size()),
                 asset.assetId.data(), static_cast<int>(asset.schemeCode.size()), asset.schemeCode.data(),
                 asset.systems.size());
        for (const SLicenseUrl& license : asset.licenseUrls) {
            VYR_DUMP("license type[%u] url[%.*s]", license.type, static_cast<int>(license.url.size()),
                     license.url.data());
        }
    }
}
