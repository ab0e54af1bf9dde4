#pragma once

#include <array>

#include "../../common/Owned.h"
#include "../desc/MMTDesc.h"
#include "../element/MMTElementIdentifierMapping.h"
#include "../element/MMTElementLocation.h"

/// One asset of the MP table (ISO/IEC 23008-1).
class VYR_API CMMTTblMpAsset : public IMMTParser {
  public:
    /// False: identifier or a location does not parse, or the data ended.
    bool Parse(SItem* item) override;
    /// Logs the fields, at debug priority.
    virtual void Dump() const;
    /// Calls `callback(user, descriptor)` for each descriptor of the asset; they stay the asset's. True; a
    /// null callback is asserted: false.
    virtual bool GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user);

    /// identifier_mapping; the asset's own, never null.
    CMMTElementIdentifierMapping* Identifier() { return &m_identifier; }
    /// asset_type, a four-character code: four bytes in wire order, zeros before Parse.
    const unsigned char* AssetType() const { return m_assetType.data(); }
    /// default_asset_flag: the asset is a default one of the package.
    bool DefaultAssetFlag() const { return m_defaultAssetFlag; }
    /// asset_clock_relation_flag: AssetClockRelationId was sent.
    bool AssetClockRelationFlag() const { return m_assetClockRelationFlag; }
    /// asset_clock_relation_id; 0 unless AssetClockRelationFlag.
    unsigned char AssetClockRelationId() const { return m_assetClockRelationId; }
    /// asset_timescale_flag: AssetTimeScale was sent.
    bool AssetTimeScaleFlag() const { return m_assetTimeScaleFlag; }
    /// asset_timescale, in units a second; 0 unless AssetTimeScaleFlag.
    unsigned int AssetTimeScale() const { return m_assetTimeScale; }

    /// Number of locations kept, 0 to 255.
    unsigned char LocationCount() const { return static_cast<unsigned char>(m_arrayLocation.Size()); }
    /// The index-th location, the asset's own; null for an index outside the range (asserted).
    CMMTElementLocation* Location(unsigned char index) const { return m_arrayLocation.At(index); }

    /// Number of descriptors kept.
    unsigned int AssetDescriptorSize() const { return static_cast<unsigned int>(m_arrayDescriptor.Size()); }
    /// The index-th descriptor, the asset's own; null for an index outside the range.
    CMMTDesc* AssetDescriptor(unsigned int index) const;

  private:
    CMMTElementIdentifierMapping m_identifier;
    std::array<unsigned char, 4> m_assetType = {};
    unsigned char m_reserved = 0;
    unsigned char m_assetClockRelationId = 0;
    bool m_defaultAssetFlag = false;
    bool m_assetClockRelationFlag = false;
    bool m_assetTimeScaleFlag = false;
    unsigned int m_assetTimeScale = 0;
    TPtrArray<CMMTElementLocation> m_arrayLocation;
    TPtrArray<CMMTDesc> m_arrayDescriptor;
};
