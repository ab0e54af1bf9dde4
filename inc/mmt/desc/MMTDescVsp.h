#pragma once

#include "MMTDescPayload.h"

/// Video stream properties of assets (ATSC A/331 7.2.3.2), tag 5.
class VYR_API CMMTDescVsp : public CMMTDescPayload {
  public:
    static constexpr unsigned int k_tag = 5;  ///< descriptor_tag

    /// Sub-layers of the stream.
    struct STemporalScalability {
        unsigned char maxSubLayersInstream;     ///< max_sub_layers_instream, 6 bits
        bool subLayerProfileTierLevelPresent;   ///< sub_layer_profile_tier_level_info_present
        bool temporalFilterPresent;             ///< temporal_filter_present
        unsigned char tidMax;                   ///< tid_max, 3 bits
        unsigned char tidMin;                   ///< tid_min, 3 bits
        std::optional<unsigned char> tfweight;  ///< tfweight, 2 bits, with temporalFilterPresent
    };
    /// Place of the asset among several views.
    struct SMultiview {
        unsigned char viewNuhLayerId;      ///< view_nuh_layer_id, 6 bits
        unsigned char viewPos;             ///< view_pos, 6 bits
        unsigned short minDispWithOffset;  ///< min_disp_with_offset, 11 bits
        unsigned short maxDispRange;       ///< max_disp_range, 11 bits
    };
    /// Resolution, chroma format and bit depth.
    struct SResolution {
        unsigned short width;                         ///< luma samples
        unsigned short height;                        ///< luma samples
        unsigned char chromaFormatIdc;                ///< chroma_format_idc, 2 bits
        std::optional<bool> separateColourPlaneFlag;  ///< with chroma_format_idc 3
        bool videoStillPresent;                       ///< video_still_present
        bool video24hrPicPresent;                     ///< video_24hr_pic_present
        unsigned char bitDepthLumaMinus8;             ///< bit_depth_luma_minus8, 4 bits
        unsigned char bitDepthChromaMinus8;           ///< bit_depth_chroma_minus8, 4 bits
    };
    /// Picture rate of a sub-layer.
    struct SPictureRate {
        unsigned char code;                     ///< picture_rate_code
        std::optional<unsigned short> average;  ///< average_picture_rate, with code 255
    };
    /// Bit rates of a sub-layer.
    struct SBitRate {
        unsigned short average;  ///< average_bitrate
        unsigned short maximum;  ///< maximum_bitrate
    };
    /// Colour of the video.
    struct SColour {
        unsigned char colourPrimaries;          ///< colour_primaries (ITU-T H.265 table E.3)
        unsigned char transferCharacteristics;  ///< transfer_characteristics (table E.4)
        unsigned char matrixCoeffs;             ///< matrix_coeffs (table E.5)
        std::optional<bool> cgCompatibility;    ///< cg_compatibility, with primaries from 9 on
        std::string_view eotfInfo;              ///< with transfer characteristics from 16 on; empty: none
    };
    /// A profile of ITU-T H.265 7.3.3.
    struct SProfile {
        unsigned char profileSpace;          ///< profile_space, 2 bits
        bool tierFlag;                       ///< tier_flag
        unsigned char profileIdc;            ///< profile_idc, 5 bits
        unsigned int compatibilityFlags;     ///< profile_compatibility_flag[0] is the highest bit
        bool progressiveSourceFlag;          ///< progressive_source_flag
        bool interlacedSourceFlag;           ///< interlaced_source_flag
        bool nonPackedConstraintFlag;        ///< non_packed_constraint_flag
        bool frameOnlyConstraintFlag;        ///< frame_only_constraint_flag
        unsigned long long constraintFlags;  ///< the 44 bits that follow, as they stand
    };
    /// What profile_tier_level tells of one sub-layer.
    struct SSubLayer {
        std::optional<SProfile> profile;        ///< with sub_layer_profile_present_flag
        std::optional<unsigned char> levelIdc;  ///< with sub_layer_level_present_flag
    };
    /// profile_tier_level(1, m) of ITU-T H.265 7.3.3.
    struct SProfileTierLevel {
        SProfile profile;                  ///< of the whole stream
        unsigned char levelIdc;            ///< general_level_idc: 30 times the level
        std::vector<SSubLayer> subLayers;  ///< m of them
    };
    /// One video asset.
    struct SAsset {
        std::string_view assetId;                                 ///< asset_id
        std::string_view codecCode;                               ///< four characters, such as "hev1"
        std::optional<STemporalScalability> temporalScalability;  ///< with temporal_scalability_present
        std::optional<unsigned char> assetLayerId;                ///< asset_layer_id, with scalability_info_present
        std::optional<SMultiview> multiview;                      ///< with multiview_info_present
        std::optional<SResolution> resolution;                    ///< with res_cf_bd_info_present
        std::vector<SPictureRate> pictureRates;                   ///< with pr_info_present
        std::vector<SBitRate> bitRates;                           ///< with br_info_present
        std::optional<SColour> colour;                            ///< with color_info_present
        std::optional<SProfileTierLevel> profileTierLevel;        ///< always there when it fits
    };

    CMMTDescVsp() : CMMTDescPayload("CMMTDescVsp", k_tag) {}
    void Dump() const override;

    /// In order. The rates are those of the sub-layers 0 to m, where m is maxSubLayersInstream - 1 when
    /// subLayerProfileTierLevelPresent, else 0.
    const std::vector<SAsset>& Assets() const { return m_assets; }

  private:
    void t_ParsePayload(vyr::CBitReader& reader) override;

    std::vector<SAsset> m_assets;
};
