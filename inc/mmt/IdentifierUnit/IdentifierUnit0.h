#pragma once

#include "../element/MMTElementAssetId.h"
#include "IdentifierUnitBase.h"

/// Identifier type 0x00: an asset id.
class VYR_API CIdentifierUnit0 : public CIdentifierUnitBase {
  public:
    bool Parse(SItem* item) override;
    void Dump() const override;

    /// The unit's own, never null.
    CMMTElementAssetId* AssetId() { return &m_assetId; }
    /// The unit's own, never null.
    const CMMTElementAssetId* AssetId() const { return &m_assetId; }

  private:
    CMMTElementAssetId m_assetId;
};
