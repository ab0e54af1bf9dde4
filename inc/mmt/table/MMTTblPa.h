#pragma once

#include "../../common/Owned.h"
#include "MMTTbl.h"
#include "MMTTblPaInfo.h"

/// Package access table (PA table, table_id 0x00; ISO/IEC 23008-1): where each signalling table is delivered.
class VYR_API CMMTTblPa : public CMMTTbl {
  public:
    static constexpr unsigned char k_tableId = 0x00;  ///< table_id

    /// Who is told of the entries.
    struct SCallback {
        void* user;  ///< handed to the callback
        /// Called inside Process, on its thread. The records live until it returns. It may call anything of the
        /// table, and of the message that holds it but Parse, and may throw.
        void (*onTableInfo)(void* user, unsigned char tableId, unsigned char tableVersion, SLocationInfo* location,
                            SLocationInfo* alternativeLocation);
    };

    CMMTTblPa() : CMMTTbl(CLASS_TYPE_PA) {}

    /// Required: a table longer than the data makes the item invalid. The private extension is not read.
    bool Parse(SItem* item) override;
    void Dump() const override;
    /// True: there are none.
    bool GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user) override;
    /// Calls back for each entry; true. Required: only entries whose location and alternative location both
    /// are of type 0 or 1 are reported, so one without an alternative location never is.
    bool Process() override;

    /// Copies the record; null clears it.
    void SetCallback(const SCallback* callback);
    /// private_extension_flag, 0 or 1.
    unsigned char PrivateFlag() const { return m_privateFlag; }

    /// Number of tables told of.
    int InfoCount() const { return m_arrayTable.Size(); }
    /// The index-th entry, the table's own; null for an index outside the range (asserted).
    CMMTTblPaInfo* Info(int index) const { return m_arrayTable.At(index); }

  private:
    TPtrArray<CMMTTblPaInfo> m_arrayTable;
    unsigned char m_reserved = 0;
    unsigned char m_privateFlag = 0;
    SCallback m_callback = {};
};
