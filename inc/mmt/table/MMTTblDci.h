#pragma once

#include <optional>

#include "../../common/Owned.h"
#include "../element/MMTElementAssetId.h"
#include "../element/MMTElementMime.h"
#include "MMTTblPayload.h"

/// Device capability information table (DCI table, table_id 0x22; ISO/IEC 23008-1): what a device must be capable
/// of for each asset.
class VYR_API CMMTTblDci : public CMMTTblPayload {
  public:
    static constexpr unsigned char k_tableId = 0x22;  ///< table_id

    /// One asset; a field that its kind does not have, or that does not fit in the table, is absent. Rates,
    /// sizes and resolutions are in the units of the DCI table.
    struct SAsset {
        CMMTElementAssetId assetId;                          ///< asset_id
        CMMTElementMime mimeType;                            ///< mime_type
        std::optional<bool> codecComplexityFlag;             ///< codec_complexity_flag
        std::optional<unsigned short> averageBitrate;        ///< video and audio
        std::optional<unsigned short> maximumBitrate;        ///< video and audio
        std::optional<unsigned short> horizontalResolution;  ///< video
        std::optional<unsigned short> verticalResolution;    ///< video
        std::optional<unsigned char> temporalResolution;     ///< video
        std::optional<unsigned short> minimumBufferSize;     ///< video and audio
        std::optional<unsigned int> requiredStorage;         ///< without codecComplexityFlag
    };

    CMMTTblDci() : CMMTTblPayload(CLASS_TYPE_DCI) {}

    bool Parse(SItem* item) override;
    void Dump() const override;
    /// True: there are none.
    bool GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user) override;

    /// Number of assets whose id and MIME type are there.
    int AssetCount() const { return m_arrayAsset.Size(); }
    /// The index-th asset, the table's own; null for an index outside the range (asserted).
    const SAsset* Asset(int index) const { return m_arrayAsset.At(index); }

  private:
    TPtrArray<SAsset> m_arrayAsset;
};
