#pragma once

#include "MMTMsgLicence.h"

/// Licence signalling message (LS message, message_id 0x020B; ISO/IEC 23008-1).
class VYR_API CMMTMsgLs : public CMMTMsgLicence {
  public:
    static constexpr unsigned short k_messageId = 0x020B;  ///< message_id
    CMMTMsgLs() : CMMTMsgLicence(CLASS_TYPE_LS) {}

    bool Parse(SItem* item) override;
};
