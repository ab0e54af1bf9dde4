#pragma once

#include "../../common/Owned.h"
#include "../desc/MMTDesc.h"
#include "MMTTblPayload.h"

/// Clock relation information table (CRI table, table_id 0x21; ISO/IEC 23008-1): how the clocks of assets relate
/// to NTP time.
class VYR_API CMMTTblCri : public CMMTTblPayload {
  public:
    static constexpr unsigned char k_tableId = 0x21;  ///< table_id
    CMMTTblCri() : CMMTTblPayload(CLASS_TYPE_CRI) {}

    /// False too when a clock relation descriptor has a length that it cannot have.
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
