#pragma once

#include "MMTMsgLicence.h"

/// Licence signalling message (LS message, message_id 0x020B; ISO/IEC 23008-1).
class VYR_API CMMTMsgLs : public CMMTMsgLicence {
  public:
    CMMTMsgLs();

    bool Parse(SItem* item) override;
};
