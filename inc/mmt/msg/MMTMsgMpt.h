#pragma once

#include "../table/MMTTblMp.h"
#include "MMTMsg.h"

/// MMT package table message (MPT message, message_ids 0x0011 to 0x0020; ISO/IEC 23008-1): one MP table.
class VYR_API CMMTMsgMpt : public CMMTMsg {
  public:
    static constexpr unsigned short k_messageId = 0x0011;      ///< first message_id
    static constexpr unsigned short k_lastMessageId = 0x0020;  ///< last
    CMMTMsgMpt() : CMMTMsg(CLASS_TYPE_MPT) {}

    bool Parse(SItem* item) override;
    void Dump() const override;
    /// Processes the table; true.
    bool Process() override;
    /// The table's. True; a null callback is asserted: false.
    bool GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user) override;

    /// The message's own, never null.
    CMMTTblMp* MPTable() { return &m_mpTable; }

  private:
    CMMTTblMp m_mpTable;
};
