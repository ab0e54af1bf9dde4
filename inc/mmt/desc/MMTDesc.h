#pragma once

#include "../MMTParser.h"

/// Base of the MMT descriptors (ISO/IEC 23008-1 10.5): a 16-bit tag, a 16-bit length, and that many bytes.
class VYR_API CMMTDesc : public IMMTParser {
  public:
    CMMTDesc() = default;
    CMMTDesc(const CMMTDesc&) = delete;
    CMMTDesc& operator=(const CMMTDesc&) = delete;

    /// Reads the descriptor at the cursor, tag and length included. False: not one of this class, or cut.
    bool Parse(SItem* item) override = 0;
    /// Logs tag and length, at debug priority.
    virtual void Dump() const;

    /// Descriptor tag; 65,535 before Parse.
    unsigned int Tag() const { return t_tag; }
    /// Announced length in bytes; 0 before Parse.
    unsigned int Length() const { return t_length; }

  protected:
    unsigned int t_tag = 0xFFFF;  ///< see Tag
    unsigned int t_length = 0;    ///< see Length
};
