#pragma once

#include "../../common/Bytes.h"
#include "IdentifierUnitBase.h"

/// Identifier types 0x04 and above: private bytes.
class VYR_API CIdentifierUnitPriv : public CIdentifierUnitBase {
  public:
    bool Parse(SItem* item) override;
    void Dump() const override;

    /// Number of bytes.
    unsigned short PrivateLength() const { return static_cast<unsigned short>(m_priv.Length()); }
    /// private_byte, zero-terminated, the unit's own; null before Parse.
    const char* Private() const { return m_priv.Text(); }

  private:
    vyr::CBytes m_priv;
};
