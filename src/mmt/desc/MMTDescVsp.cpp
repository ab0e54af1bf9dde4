#include "mmt/desc/MMTDescVsp.h"

#include "common/Log.h"

namespace {

/// Keeps a group of fields that fitted whole.
template <class T>
void Keep(const IParse::SItem* payload, T group, std::optional<T>& kept)
{
    if (payload->valid) {
        kept = std::move(group);
    }
}

}  // namespace

CMMTDescVsp::CMMTDescVsp() : CMMTDescPayload("CMMTDescVsp", 5) {}

void CMMTDescVsp::t_ParsePayload(SItem* payload)
{
    t_Assets(payload, m_assets, [&](SAsset& asset) { m_ParseAsset(payload, asset); });
}

void CMMTDescVsp::m_ParseAsset(SItem* payload, SAsset& asset)
{
    asset.codecCode = t_View(payload, 4);
    const bool temporalScalabilityPresent = t_Flag(payload);
    const bool scalabilityInfoPresent = t_Flag(payload);
    const bool multiviewInfoPresent = t_Flag(payload);
    const bool resCfBdInfoPresent = t_Flag(payload);
    const bool prInfoPresent = t_Flag(payload);
    const bool brInfoPresent = t_Flag(payload);
    const bool colorInfoPresent = t_Flag(payload);
    t_Value(payload, 1);
    unsigned int m = 0;
    if (temporalScalabilityPresent) {
        const STemporalScalability temporal = m_TemporalScalability(payload);
        if (temporal.subLayerProfileTierLevelPresent && temporal.maxSubLayersInstream > 0) {
            m = temporal.maxSubLayersInstream - 1u;
        }
        Keep(payload, temporal, asset.temporalScalability);
    }
    if (scalabilityInfoPresent) {
        t_Field(payload, 6, asset.assetLayerId);
        t_Value(payload, 2);
    }
    if (multiviewInfoPresent) {
        Keep(payload, m_Multiview(payload), asset.multiview);
    }
    if (resCfBdInfoPresent) {
        Keep(payload, m_Resolution(payload), asset.resolution);
    }
    const auto nothing = [](auto&) {};
    if (prInfoPresent) {
        t_Entries(
            payload, m + 1, asset.pictureRates,
            [&](SPictureRate& rate) {
                rate.code = static_cast<unsigned char>(t_Value(payload, 8));
                if (rate.code == 255) {
                    t_Field(payload, 16, rate.average);
                }
            },
            nothing);
    }
    if (brInfoPresent) {
        t_Entries(
            payload, m + 1, asset.bitRates,
            [&](SBitRate& rate) {
                rate.average = static_cast<unsigned short>(t_Value(payload, 16));
                rate.maximum = static_cast<unsigned short>(t_Value(payload, 16));
            },
            nothing);
    }
    if (colorInfoPresent) {
        Keep(payload, m_Colour(payload), asset.colour);
    }
    Keep(payload, m_ProfileTierLevel(payload, m), asset.profileTierLevel);
}

CMMTDescVsp::STemporalScalability CMMTDescVsp::m_TemporalScalability(SItem* payload)
{
    STemporalScalability temporal{};
    temporal.maxSubLayersInstream = static_cast<unsigned char>(t_Value(payload, 6));
    temporal.subLayerProfileTierLevelPresent = t_Flag(payload);
    temporal.temporalFilterPresent = t_Flag(payload);
    temporal.tidMax = static_cast<unsigned char>(t_Value(payload, 3));
    temporal.tidMin = static_cast<unsigned char>(t_Value(payload, 3));
    const unsigned int tfweight = t_Value(payload, 2);
    if (temporal.temporalFilterPresent) {
        temporal.tfweight = static_cast<unsigned char>(tfweight);
    }
    return temporal;
}

CMMTDescVsp::SMultiview CMMTDescVsp::m_Multiview(SItem* payload)
{
    SMultiview multiview{};
    multiview.viewNuhLayerId = static_cast<unsigned char>(t_Value(payload, 6));
    multiview.viewPos = static_cast<unsigned char>(t_Value(payload, 6));
    t_Value(payload, 4);
    multiview.minDispWithOffset = static_cast<unsigned short>(t_Value(payload, 11));
    multiview.maxDispRange = static_cast<unsigned short>(t_Value(payload, 11));
    t_Value(payload, 2);
    return multiview;
}

CMMTDescVsp::SResolution CMMTDescVsp::m_Resolution(SItem* payload)
{
    SResolution resolution{};
    resolution.width = static_cast<unsigned short>(t_Value(payload, 16));
    resolution.height = static_cast<unsigned short>(t_Value(payload, 16));
    resolution.chromaFormatIdc = static_cast<unsigned char>(t_Value(payload, 2));
    const bool separateColourPlaneFlag = t_Flag(payload);
    if (resolution.chromaFormatIdc == 3) {
        resolution.separateColourPlaneFlag = separateColourPlaneFlag;
    }
    t_Value(payload, 3);
    resolution.videoStillPresent = t_Flag(payload);
    resolution.video24hrPicPresent = t_Flag(payload);
    resolution.bitDepthLumaMinus8 = static_cast<unsigned char>(t_Value(payload, 4));
    resolution.bitDepthChromaMinus8 = static_cast<unsigned char>(t_Value(payload, 4));
    return resolution;
}

CMMTDescVsp::SColour CMMTDescVsp::m_Colour(SItem* payload)
{
    SColour colour{};
    colour.colourPrimaries = static_cast<unsigned char>(t_Value(payload, 8));
    colour.transferCharacteristics = static_cast<unsigned char>(t_Value(payload, 8));
    colour.matrixCoeffs = static_cast<unsigned char>(t_Value(payload, 8));
    if (colour.colourPrimaries >= 9) {
        t_Field(payload, 1, colour.cgCompatibility);
        t_Value(payload, 7);
    }
    if (colour.transferCharacteristics >= 16) {
        if (t_Flag(payload)) {
            const unsigned int eotfInfoLenMinus1 = t_Value(payload, 15);
            colour.eotfInfo = t_View(payload, eotfInfoLenMinus1 + 1);
        } else {
            t_Value(payload, 7);
        }
    }
    return colour;
}

CMMTDescVsp::SProfile CMMTDescVsp::m_Profile(SItem* payload)
{
    SProfile profile{};
    profile.profileSpace = static_cast<unsigned char>(t_Value(payload, 2));
    profile.tierFlag = t_Flag(payload);
    profile.profileIdc = static_cast<unsigned char>(t_Value(payload, 5));
    profile.compatibilityFlags = t_Value(payload, 32);
    profile.progressiveSourceFlag = t_Flag(payload);
    profile.interlacedSourceFlag = t_Flag(payload);
    profile.nonPackedConstraintFlag = t_Flag(payload);
    profile.frameOnlyConstraintFlag = t_Flag(payload);
    profile.constraintFlags = t_Value64(payload, 44);
    return profile;
}

CMMTDescVsp::SProfileTierLevel CMMTDescVsp::m_ProfileTierLevel(SItem* payload, unsigned int m)
{
    constexpr unsigned int k_most = 6;
    SProfileTierLevel level{};
    level.profile = m_Profile(payload);
    level.levelIdc = static_cast<unsigned char>(t_Value(payload, 8));
    if (m > k_most) {
        // No stream has so many sub-layers: where this ends, and with it the next asset's start, is unknown.
        payload->valid = false;
        return level;
    }
    bool profilePresent[k_most] = {};
    bool levelPresent[k_most] = {};
    for (unsigned int i = 0; i < m; ++i) {
        profilePresent[i] = t_Flag(payload);
        levelPresent[i] = t_Flag(payload);
    }
    if (m > 0) {
        t_Value(payload, 2 * (8 - m));
    }
    for (unsigned int i = 0; i < m && payload->valid; ++i) {
        SSubLayer& subLayer = level.subLayers.emplace_back();
        if (profilePresent[i]) {
            subLayer.profile = m_Profile(payload);
        }
        if (levelPresent[i]) {
            t_Field(payload, 8, subLayer.levelIdc);
        }
    }
    return level;
}

void CMMTDescVsp::Dump() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "******VSP Descriptor******");
    CMMTDesc::Dump();
    for (const SAsset& asset : m_assets) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "asset id[%.*s] codec[%.*s]", static_cast<int>(asset.assetId.size()),
                asset.assetId.data(), static_cast<int>(asset.codecCode.size()), asset.codecCode.data());
        if (asset.temporalScalability) {
            VYR_LOG(LOG_PRIORITY_DEBUG, "sub-layers[%u]", asset.temporalScalability->maxSubLayersInstream);
        }
        if (asset.resolution) {
            VYR_LOG(LOG_PRIORITY_DEBUG, "width[%u] height[%u]", asset.resolution->width, asset.resolution->height);
        }
        for (const SPictureRate& rate : asset.pictureRates) {
            VYR_LOG(LOG_PRIORITY_DEBUG, "picture rate code[%u] average[%d]", rate.code, rate.average.value_or(0));
        }
        for (const SBitRate& rate : asset.bitRates) {
            VYR_LOG(LOG_PRIORITY_DEBUG, "bit rate average[%u] maximum[%u]", rate.average, rate.maximum);
        }
        if (asset.profileTierLevel) {
            VYR_LOG(LOG_PRIORITY_DEBUG, "profile[%u] level[%u]", asset.profileTierLevel->profile.profileIdc,
                    asset.profileTierLevel->levelIdc);
        }
    }
}
