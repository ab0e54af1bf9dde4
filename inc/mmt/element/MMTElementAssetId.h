#pragma once

#include <array>

#include "../../common/Bytes.h"
#include "../MMTParser.h"

/// Name of an asset: asset_id of ISO/IEC 23008-1, a scheme and an identifier.
class VYR_API CMMTElementAssetId : public IMMTParser {
  public:
    /// Reads it; a 16-byte identifier whose scheme ends in a zero byte is a UUID. False: the data ended.
    bool Parse(SItem* item) override;
    /// Logs the fields, at debug priority.
    virtual void Dump() const;

    /// asset_id_scheme, a four-character code: four bytes in wire order, zeros before Parse.
    const unsigned char* AssetIdScheme() const { return m_assetIdScheme.data(); }
    /// asset_id_length, in bytes on the wire.
    unsigned int AssetIdLength() const { return m_assetIdLength; }
    /// asset_id_byte with a zero byte behind it; of a UUID its 36 lower-case characters. Null before Parse.
    const char* AssetId() const { return m_assetId.Text(); }
    /// Bytes in AssetId, without the zero byte.
    unsigned int AssetIdTextLength() const { return m_assetId.Length(); }

  private:
    std::array<unsigned char, 4> m_assetIdScheme = {};
    unsigned int m_assetIdLength = 0;
    vyr::CBytes m_assetId;
};
