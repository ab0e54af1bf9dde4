#pragma once

#include "MMTMsgLicence.h"

/// Licence revocation message (LR message, message_id 0x020C; ISO/IEC 23008-1). Required: CMMTMsgFactory does
/// not make it.
class VYR_API CMMTMsgLr : public CMMTMsgLicence {
  public:
    static constexpr unsigned short k_messageId = 0x020C;  ///< message_id
    CMMTMsgLr() : CMMTMsgLicence(CLASS_TYPE_LR) {}

    bool Parse(SItem* item) override;
};
