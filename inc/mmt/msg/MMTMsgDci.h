#pragma once

#include "../table/MMTTblDci.h"
#include "MMTMsgPayload.h"

/// Device capability information message (DCI message, message_id 0x0201; ISO/IEC 23008-1): one DCI table.
class VYR_API CMMTMsgDci : public CMMTMsgPayload {
  public:
    static constexpr unsigned short k_messageId = 0x0201;  ///< message_id
    CMMTMsgDci() : CMMTMsgPayload(CLASS_TYPE_DCI) {}

    /// False too when the table does not parse.
    bool Parse(SItem* item) override;
    void Dump() const override;
    /// True: the table has none.
    bool GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user) override;

    /// The message's own, never null.
    CMMTTblDci* DCITable() { return &m_table; }

  private:
    CMMTTblDci m_table;
};
