#pragma once

#include "MMTDescPayload.h"

/// Security properties of assets (ATSC A/331 7.2.3), tag 12, and the URLs of their licence servers, tag 13:
/// Tag() tells which.
class VYR_API CMMTDescSp : public CMMTDescPayload {
  public:
    static constexpr unsigned int k_tag = 12;            ///< descriptor_tag of security properties
    static constexpr unsigned int k_licenseUrlTag = 13;  ///< of licence URLs

    /// A security system of tag 12.
    struct SSystem {
        std::string_view systemId;  ///< 16 bytes
        std::string_view data;      ///< private to the system
    };
    /// A licence server of tag 13.
    struct SLicenseUrl {
        unsigned char type;    ///< kind of licence
        std::string_view url;  ///< where it is had
    };
    /// One protected asset.
    struct SAsset {
        std::string_view assetId;              ///< asset_id
        std::string_view schemeCode;           ///< tag 12: four characters, such as "cenc"
        std::string_view defaultKeyId;         ///< tag 12: 16 bytes
        std::vector<SSystem> systems;          ///< tag 12
        std::vector<SLicenseUrl> licenseUrls;  ///< tag 13
    };

    CMMTDescSp() : CMMTDescPayload("CMMTDescSp", k_tag) {}
    void Dump() const override;

    /// In order.
    const std::vector<SAsset>& Assets() const { return m_assets; }

  private:
    bool t_Takes(unsigned int tag) const override;
    void t_ParsePayload(vyr::CBitReader& reader) override;

    std::vector<SAsset> m_assets;
};
