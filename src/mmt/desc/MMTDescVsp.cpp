#include "mmt/desc/MMTDescVsp.h"

#include "common/BitReader.h"
#include "platform/Log.h"

namespace {

/// Stores a group of fields that fitted whole.
template <class T>
void StoreIfWhole(const vyr::CBitReader& reader, T group, std::optional<T>& kept)
{
    if (reader.Valid()) {
        kept = std::move(group);
    }
}

CMMTDescVsp::STemporalScalability TemporalScalability(vyr::CBitReader& reader)
{
    CMMTDescVsp::STemporalScalability temporal{};
    reader.Field(6, temporal.maxSubLayersInstream);
    temporal.subLayerProfileTierLevelPresent = reader.Flag();
    temporal.temporalFilterPresent = reader.Flag();
    reader.Field(3, temporal.tidMax);
    reader.Field(3, temporal.tidMin);
    const unsigned int tfweight = reader.Value(2);
    if (temporal.temporalFilterPresent) {
        temporal.tfweight = static_cast<unsigned char>(tfweight);
    }
    return temporal;
}

CMMTDescVsp::SMultiview Multiview(vyr::CBitReader& reader)
{
    CMMTDescVsp::SMultiview multiview{};
    reader.Field(6, multiview.viewNuhLayerId);
    reader.Field(6, multiview.viewPos);
    reader.Value(4);
    reader.Field(11, multiview.minDispWithOffset);
    reader.Field(11, multiview.maxDispRange);
    reader.Value(2);
    return multiview;
}

CMMTDescVsp::SResolution Resolution(vyr::CBitReader& reader)
{
    CMMTDescVsp::SResolution resolution{};
    reader.Field(16, resolution.width);
    reader.Field(16, resolution.height);
    reader.Field(2, resolution.chromaFormatIdc);
    const bool separateColourPlaneFlag = reader.Flag();
    if (resolution.chromaFormatIdc == 3) {
        resolution.separateColourPlaneFlag = separateColourPlaneFlag;
    }
    reader.Value(3);
    resolution.videoStillPresent = reader.Flag();
    resolution.video24hrPicPresent = reader.Flag();
    reader.Field(4, resolution.bitDepthLumaMinus8);
    reader.Field(4, resolution.bitDepthChromaMinus8);
    return resolution;
}

CMMTDescVsp::SColour Colour(vyr::CBitReader& reader)
{
    CMMTDescVsp::SColour colour{};
    reader.Field(8, colour.colourPrimaries);
    reader.Field(8, colour.transferCharacteristics);
    reader.Field(8, colour.matrixCoeffs);
    if (colour.colourPrimaries >= 9) {
        reader.Field(1, colour.cgCompatibility);
        reader.Value(7);
    }
    if (colour.transferCharacteristics >= 16) {
        if (reader.Flag()) {
            const unsigned int eotfInfoLenMinus1 = reader.Value(15);
            colour.eotfInfo = reader.View(eotfInfoLenMinus1 + 1);
        } else {
            reader.Value(7);
        }
    }
    return colour;
}

CMMTDescVsp::SProfile Profile(vyr::CBitReader& reader)
{
    CMMTDescVsp::SProfile profile{};
    reader.Field(2, profile.profileSpace);
    profile.tierFlag = reader.Flag();
    reader.Field(5, profile.profileIdc);
    profile.compatibilityFlags = reader.Value(32);
    profile.progressiveSourceFlag = reader.Flag();
    profile.interlacedSourceFlag = reader.Flag();
    profile.nonPackedConstraintFlag = reader.Flag();
    profile.frameOnlyConstraintFlag = reader.Flag();
    profile.constraintFlags = reader.Value64(44);
    return profile;
}

CMMTDescVsp::SProfileTierLevel ProfileTierLevel(vyr::CBitReader& reader, unsigned int m)
{
    constexpr unsigned int k_most = 6;
    CMMTDescVsp::SProfileTierLevel level{};
    level.profile = Profile(reader);
    reader.Field(8, level.levelIdc);
    if (m > k_most) {
        // No stream has so many sub-layers: where this ends, and with it the next asset's start, is unknown.
        reader.Stop();
        return level;
    }
    bool profilePresent[k_most] = {};
    bool levelPresent[k_most] = {};
    for (unsigned int i = 0; i < m; ++i) {
        profilePresent[i] = reader.Flag();
        levelPresent[i] = reader.Flag();
    }
    if (m > 0) {
        reader.Value(2 * (8 - m));
    }
    for (unsigned int i = 0; i < m && reader.Valid(); ++i) {
        CMMTDescVsp::SSubLayer& subLayer = level.subLayers.emplace_back();
        if (profilePresent[i]) {
            subLayer.profile = Profile(reader);
        }
        if (levelPresent[i]) {
            reader.Field(8, subLayer.levelIdc);
        }
    }
    return level;
}

void ParseAsset(vyr::CBitReader& reader, CMMTDescVsp::SAsset& asset)
{
    asset.codecCode = reader.View(4);
    const bool temporalScalabilityPresent = reader.Flag();
    const bool scalabilityInfoPresent = reader.Flag();
    const bool multiviewInfoPresent = reader.Flag();
    const bool resCfBdInfoPresent = reader.Flag();
    const bool prInfoPresent = reader.Flag();
    const bool brInfoPresent = reader.Flag();
    const bool colorInfoPresent = reader.Flag();
    reader.Value(1);
    unsigned int m = 0;
    if (temporalScalabilityPresent) {
        const CMMTDescVsp::STemporalScalability temporal = TemporalScalability(reader);
        if (temporal.subLayerProfileTierLevelPresent && temporal.maxSubLayersInstream > 0) {
            m = temporal.maxSubLayersInstream - 1u;
        }
        StoreIfWhole(reader, temporal, asset.temporalScalability);
    }
    if (scalabilityInfoPresent) {
        reader.Field(6, asset.assetLayerId);
        reader.Value(2);
    }
    if (multiviewInfoPresent) {
        StoreIfWhole(reader, Multiview(reader), asset.multiview);
    }
    if (resCfBdInfoPresent) {
        StoreIfWhole(reader, Resolution(reader), asset.resolution);
    }
    if (prInfoPresent) {
        reader.Entries(m + 1, asset.pictureRates, [&](CMMTDescVsp::SPictureRate& rate) {
            reader.Field(8, rate.code);
            if (rate.code == 255) {
                reader.Field(16, rate.average);
            }
        });
    }
    if (brInfoPresent) {
        reader.Entries(m + 1, asset.bitRates, [&](CMMTDescVsp::SBitRate& rate) {
            reader.Field(16, rate.average);
            reader.Field(16, rate.maximum);
        });
    }
    if (colorInfoPresent) {
        StoreIfWhole(reader, Colour(reader), asset.colour);
    }
    StoreIfWhole(reader, ProfileTierLevel(reader, m), asset.profileTierLevel);
}

}  // namespace

void CMMTDescVsp::t_ParsePayload(vyr::CBitReader& reader)
{
    reader.Assets(m_assets, [&](SAsset& asset) { ParseAsset(reader, asset); });
}

void CMMTDescVsp::Dump() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    VYR_DUMP("******VSP Descriptor******");
    CMMTDesc::Dump();
    for (const SAsset& asset : m_assets) {
        VYR_DUMP("asset id[%.*s] codec[%.*s]", static_cast<int>(asset.assetId.size()), asset.assetId.data(),
                 static_cast<int>(asset.codecCode.size()), asset.codecCode.data());
        if (asset.temporalScalability) {
            VYR_DUMP("sub-layers[%u]", asset.temporalScalability->maxSubLayersInstream);
        }
        if (asset.resolution) {
            VYR_DUMP("width[%u] height[%u]", asset.resolution->width, asset.resolution->height);
        }
        for (const SPictureRate& rate : asset.pictureRates) {
            VYR_DUMP("picture rate code[%u] average[%d]", rate.code, rate.average.value_or(0));
        }
        for (const SBitRate& rate : asset.bitRates) {
            VYR_DUMP("bit rate average[%u] maximum[%u]", rate.average, rate.maximum);
        }
        if (asset.profileTierLevel) {
            VYR_DUMP("profile[%u] level[%u]", asset.profileTierLevel->profile.profileIdc,
                     asset.profileTierLevel->levelIdc);
        }
    }
}
