#pragma once

#include "MMTDescPayload.h"

/// Security information (ISO/IEC 23008-1), tag 4: the security systems that protect something, and their keys.
class VYR_API CMMTDescSi : public CMMTDescPayload {
  public:
    static constexpr unsigned int k_tag = 4;  ///< descriptor_tag

    /// One security system.
    struct SSystem {
        std::string_view systemId;             ///< 16 bytes
        std::vector<std::string_view> keyIds;  ///< 16 bytes each
        std::string_view data;                 ///< private to the system
    };

    CMMTDescSi() : CMMTDescPayload("CMMTDescSi", k_tag) {}
    void Dump() const override;

    /// In order.
    const std::vector<SSystem>& Systems() const { return m_systems; }

  private:
    void t_ParsePayload(vyr::CBitReader& reader) override;

    std::vector<SSystem> m_systems;
};
