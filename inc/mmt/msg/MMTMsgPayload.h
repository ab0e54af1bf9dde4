#pragma once

#include "../../common/Bytes.h"
#include "MMTMsg.h"

/// Base of the messages that keep the bytes of their payload beside what they read of it. The cursor ends
/// where the message's length says, and only a length that runs past the data fails the message; a field
/// that does not fit is absent.
class VYR_API CMMTMsgPayload : public CMMTMsg {
  public:
    /// As CMMTMsg.
    using CMMTMsg::CMMTMsg;

    bool Parse(SItem* item) override = 0;
    /// True: there is nothing to report.
    bool Process() override;
    /// True: there are none. Subclasses that have descriptors hand them out.
    bool GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user) override;

    /// What the message's length spans, PayloadLength() bytes; null before Parse.
    const unsigned char* Payload() const { return m_payload.Data(); }
    /// Bytes at Payload().
    unsigned int PayloadLength() const { return m_payload.Length(); }

  protected:
    /// Reads the header, whose length is `bits` wide, and keeps the payload; `payload` is a cursor over it.
    /// `format` as for t_ParseHeader.
    bool t_ParsePayload(SItem* item, unsigned int bits, const char* format, SItem& payload);

  private:
    vyr::CBytes m_payload;
};
