#pragma once

#include "../table/MMTTblMp.h"
#include "../table/MMTTblMpi.h"
#include "MMTMsg.h"

/// Media presentation information message (MPI message, message_ids 0x0001 to 0x0010; ISO/IEC 23008-1): one
/// MPI table and, when it says so, an MP table.
class VYR_API CMMTMsgMpi : public CMMTMsg {
  public:
    static constexpr unsigned short k_messageId = 0x0001;      ///< first message_id
    static constexpr unsigned short k_lastMessageId = 0x0010;  ///< last
    CMMTMsgMpi() : CMMTMsg(CLASS_TYPE_MPI) {}

    bool Parse(SItem* item) override;
    void Dump() const override;
    /// Required: false, and nothing is done.
    bool Process() override;
    /// The MPI table's, then the MP table's. True; a null callback is asserted: false.
    bool GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user) override;

    /// associated_MP_table_flag: whether MPTable was carried.
    bool AssociatedMPTableFlag() const { return m_associatedMPTableFlag; }
    /// The message's own, never null.
    CMMTTblMpi* MPITable() { return &m_mpiTable; }
    /// The message's own, never null; unparsed unless AssociatedMPTableFlag.
    CMMTTblMp* MPTable() { return &m_mpTable; }

  private:
    unsigned char m_reserved = 0;
    bool m_associatedMPTableFlag = false;
    CMMTTblMpi m_mpiTable;
    CMMTTblMp m_mpTable;
};
