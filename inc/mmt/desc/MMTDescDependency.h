#pragma once

#include "MMTDescPayload.h"

/// Dependency (ISO/IEC 23008-1), tag 2: the assets that the asset it stands with needs.
class VYR_API CMMTDescDependency : public CMMTDescPayload {
  public:
    static constexpr unsigned int k_tag = 2;  ///< descriptor_tag

    /// One asset that is needed.
    struct SAsset {
        std::string_view scheme;   ///< asset_id_scheme, its four bytes
        std::string_view assetId;  ///< asset_id
    };

    CMMTDescDependency() : CMMTDescPayload("CMMTDescDependency", k_tag) {}
    void Dump() const override;

    /// In order.
    const std::vector<SAsset>& Assets() const { return m_assets; }

  private:
    void t_ParsePayload(vyr::CBitReader& reader) override;

    std::vector<SAsset> m_assets;
};
