#pragma once

#include "../../common/Owned.h"
#include "MMTTbl.h"
#include "MMTTblMpiContent.h"

/// Media presentation information table (MPI table, table_ids 0x01 to 0x10; ISO/IEC 23008-1).
class VYR_API CMMTTblMpi : public CMMTTbl {
  public:
    static constexpr unsigned char k_tableId = 0x01;      ///< first table_id
    static constexpr unsigned char k_lastTableId = 0x10;  ///< last
    CMMTTblMpi() : CMMTTbl(CLASS_TYPE_MPI) {}

    /// False: a table_id outside the range, a content that does not parse, or the data ended; contents before
    /// are kept.
    bool Parse(SItem* item) override;
    void Dump() const override;
    /// The table's own, then each content's. True; a null callback is asserted: false.
    bool GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user) override;

    /// PI_mode, 0 to 3.
    unsigned char PiMode() const { return m_piMode; }

    /// Number of descriptors kept.
    int DescriptorCount() const { return m_arrayDescriptor.Size(); }
    /// The index-th of the table's own descriptors; null for an index outside the range (asserted).
    CMMTDesc* Descriptor(int index) const { return m_arrayDescriptor.At(index); }

    /// Number of contents kept, 0 to 255.
    unsigned char PiContentCount() const { return static_cast<unsigned char>(m_arrayPiContent.Size()); }
    /// The index-th content, the table's own; null for an index outside the range (asserted).
    CMMTTblMpiContent* PiContent(unsigned short index) const { return m_arrayPiContent.At(index); }

  private:
    unsigned char m_reservedBeforeMode = 0;
    unsigned char m_piMode = 0;
    unsigned char m_reservedBehindMode = 0;
    TPtrArray<CMMTDesc> m_arrayDescriptor;
    TPtrArray<CMMTTblMpiContent> m_arrayPiContent;
};
