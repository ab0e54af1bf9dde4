#pragma once

#include "../../common/Owned.h"
#include "../table/MMTTbl.h"
#include "MMTMsg.h"

/// Package access message (PA message, message_id 0x0000; ISO/IEC 23008-1): a list of signalling tables, and
/// the tables.
class VYR_API CMMTMsgPa : public CMMTMsg {
  public:
    static constexpr unsigned short k_messageId = 0x0000;  ///< message_id
    CMMTMsgPa();

    /// A table that is unknown or does not parse fails the message; those before it are kept. Asserted
    /// ("!m_visiting"), false and nothing inside a callback of the message: its tables are in use.
    bool Parse(SItem* item) override;
    void Dump() const override;
    /// Processes each table; true.
    bool Process() override;
    /// Of each table; true.
    bool GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user) override;

    /// Number of tables announced.
    int TableCount() const { return m_arrayTableUnit.Size(); }
    /// The index-th table, the message's own; null when it was not parsed, and for an index outside the
    /// range (asserted).
    CMMTTbl* Table(int index) const;
    /// What the message's list says of the index-th table, which is not compared with the table's header:
    /// table_id, version and length. False: the index is outside the range (asserted).
    bool GetTableInfo(int index, unsigned char& tableId, unsigned char& version, unsigned short& length) const;

  private:
    struct STableUnit;

    TPtrArray<STableUnit> m_arrayTableUnit;
    bool m_visiting = false;
};
