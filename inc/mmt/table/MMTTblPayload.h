#pragma once

#include "../../common/Bytes.h"
#include "MMTTbl.h"

/// Base of the tables that keep the bytes of their body beside what they read of it. The cursor ends where
/// the table's length says, and only a length that runs past the data fails the table; a field that does
/// not fit is absent.
class VYR_API CMMTTblPayload : public CMMTTbl {
  public:
    /// As CMMTTbl.
    using CMMTTbl::CMMTTbl;

    bool Parse(SItem* item) override = 0;
    /// True: there is nothing to report.
    bool Process() override;

    /// The table's body, PayloadLength() bytes; null before Parse.
    const unsigned char* Payload() const { return m_payload.Data(); }
    /// Bytes at Payload().
    unsigned int PayloadLength() const { return m_payload.Length(); }

  protected:
    /// Reads the header and keeps the body; `payload` is a cursor over it.
    bool t_ParsePayload(SItem* item, const char* error, SItem& payload);

  private:
    vyr::CBytes m_payload;
};
