#pragma once

#include "../../common/Bytes.h"
#include "IdentifierUnitBase.h"

/// Identifier type 0x02: a regular expression.
class VYR_API CIdentifierUnit2 : public CIdentifierUnitBase {
  public:
    bool Parse(SItem* item) override;
    void Dump() const override;

    /// Number of bytes.
    unsigned short RegexLength() const { return static_cast<unsigned short>(m_regex.Length()); }
    /// regex, zero-terminated, the unit's own; null before Parse.
    const char* Regex() const { return m_regex.Text(); }

  private:
    vyr::CBytes m_regex;
};
