#pragma once

#include "MMTDescPayload.h"

/// Caption assets (ATSC A/331 7.2.3), tag 8.
class VYR_API CMMTDescCaption : public CMMTDescPayload {
  public:
    static constexpr unsigned int k_tag = 8;  ///< descriptor_tag

    /// One caption asset.
    struct SAsset {
        std::string_view assetId;                  ///< asset_id
        std::string_view language;                 ///< BCP 47
        std::optional<unsigned char> role;         ///< role, 4 bits
        std::optional<unsigned char> aspectRatio;  ///< aspect_ratio, 4 bits
        std::optional<bool> easyReader;            ///< easy_reader
        std::optional<unsigned char> profile;      ///< profile, 2 bits
        std::optional<bool> support3d;             ///< 3d_support
    };

    CMMTDescCaption() : CMMTDescPayload("CMMTDescCaption", k_tag) {}
    void Dump() const override;

    /// In order.
    const std::vector<SAsset>& Assets() const { return m_assets; }

  private:
    void t_ParsePayload(vyr::CBitReader& reader) override;

    std::vector<SAsset> m_assets;
};
