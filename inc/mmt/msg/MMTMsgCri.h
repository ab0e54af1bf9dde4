#pragma once

#include "../table/MMTTblCri.h"
#include "MMTMsgPayload.h"

/// Clock relation information message (CRI message, message_id 0x0200; ISO/IEC 23008-1): one CRI table.
class VYR_API CMMTMsgCri : public CMMTMsgPayload {
  public:
    static constexpr unsigned short k_messageId = 0x0200;  ///< message_id
    CMMTMsgCri() : CMMTMsgPayload(CLASS_TYPE_CRI) {}

    /// False too when the table does not parse.
    bool Parse(SItem* item) override;
    void Dump() const override;
    /// The table's. True; a null callback is asserted: false.
    bool GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user) override;

    /// The message's own, never null.
    CMMTTblCri* CRITable() { return &m_table; }

  private:
    CMMTTblCri m_table;
};
