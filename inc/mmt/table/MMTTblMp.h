#pragma once

#include "../../common/Bytes.h"
#include "../../common/Owned.h"
#include "MMTTbl.h"
#include "MMTTblMpAsset.h"

/// MMT package table (MP table, table_ids 0x11 to 0x20; ISO/IEC 23008-1): the assets of a package.
class VYR_API CMMTTblMp : public CMMTTbl {
  public:
    static constexpr unsigned char k_tableId = 0x11;      ///< first table_id
    static constexpr unsigned char k_lastTableId = 0x20;  ///< last
    CMMTTblMp() : CMMTTbl(CLASS_TYPE_MP) {}

    /// False: a table_id outside the range, a descriptor that is cut, an asset that does not parse; assets before
    /// are kept. Required: only table_ids 0x11 and 0x20 have a package id and table descriptors, and where the
    /// data end in front of the first asset, or behind the last descriptor, what is missing is empty: true.
    bool Parse(SItem* item) override;
    void Dump() const override;
    /// The table's own, then each asset's. True; a null callback is asserted: false.
    bool GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user) override;
    /// True: there is nothing to report.
    bool Process() override;

    /// MP_table_mode, 0 to 3.
    unsigned char Mode() const { return m_mode; }
    /// Length of PackageId() in bytes: MMT_package_id_length, but 0 when the identifier is cut.
    unsigned char PackageIdLength() const { return static_cast<unsigned char>(m_packageId.Length()); }
    /// MMT_package_id, zero-terminated, the table's own; null when the table has none.
    const char* PackageId() const { return m_packageId.Text(); }

    /// Number of descriptors kept.
    int DescriptorCount() const { return m_arrayDescriptor.Size(); }
    /// The index-th of the table's own descriptors; null for an index outside the range (asserted).
    CMMTDesc* Descriptor(int index) const { return m_arrayDescriptor.At(index); }

    /// Number of assets kept.
    int AssetCount() const { return m_arrayAsset.Size(); }
    /// The index-th asset, the table's own; null for an index outside the range (asserted).
    CMMTTblMpAsset* Asset(int index) const { return m_arrayAsset.At(index); }

  private:
    unsigned char m_reserved = 0;
    unsigned char m_mode = 0;
    vyr::CBytes m_packageId;
    TPtrArray<CMMTDesc> m_arrayDescriptor;
    TPtrArray<CMMTTblMpAsset> m_arrayAsset;
};
