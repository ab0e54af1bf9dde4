#pragma once

#include "../../common/Bytes.h"
#include "../MMTParser.h"

/// A MIME type behind an 8-bit length, as the device capability information names assets' types.
class VYR_API CMMTElementMime : public IMMTParser {
  public:
    /// False: the data ended.
    bool Parse(SItem* item) override;
    /// Logs the type, at debug priority.
    virtual void Dump() const;

    /// Length on the wire, in bytes.
    unsigned char MimeTypeLength() const { return m_length; }
    /// The type, zero-terminated; null before Parse.
    const char* MimeType() const { return m_mimeType.Text(); }
    /// Whether the type begins with "audio". Required: what follows does not matter.
    bool IsAudio() const;
    /// Whether the type begins with "video". Required: what follows does not matter.
    bool IsVideo() const;

  private:
    unsigned char m_length = 0;
    vyr::CBytes m_mimeType;
};
