#pragma once

#include "../../common/Owned.h"
#include "../desc/MMTDesc.h"
#include "MMTTblPayload.h"

/// Security information table (SI table, table_id 0x23): descriptors up to its end.
class VYR_API CMMTTblSi : public CMMTTblPayload {
  public:
    static constexpr unsigned char k_tableId = 0x23;  ///< table_id
    CMMTTblSi() : CMMTTblPayload(CLASS_TYPE_SI) {}

    bool Parse(SItem* item) override;
    void Dump() const override;
    /// True; a null callback is asserted: false.
    bool GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user) override;

    /// Number of descriptors kept.
    int DescriptorCount() const { return m_arrayDescriptor.Size(); }
    /// The index-th descriptor, the table's own; null for an index outside the range (asserted).
    CMMTDesc* Descriptor(int index) const { return m_arrayDescriptor.At(index); }

  private:
    TPtrArray<CMMTDesc> m_arrayDescriptor;
};
