#pragma once

#include "../desc/MMTDescLowDelay.h"
#include "MMTMsgPayload.h"

/// Low delay consumption message (LDC message, message_id 0x020E; ISO/IEC 23008-1): the fields of the low delay
/// descriptor.
class VYR_API CMMTMsgLdc : public CMMTMsgPayload {
  public:
    static constexpr unsigned short k_messageId = 0x020E;  ///< message_id
    CMMTMsgLdc() : CMMTMsgPayload(CLASS_TYPE_LDC) {}

    bool Parse(SItem* item) override;
    void Dump() const override;

    /// What the message said, zeros before Parse; the message's own.
    const CMMTDescLowDelay::SLowDelay& Fields() const { return m_lowDelay.Fields(); }

  private:
    CMMTDescLowDelay m_lowDelay;
};
