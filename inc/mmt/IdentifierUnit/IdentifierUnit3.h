#pragma once

#include "../../common/Bytes.h"
#include "IdentifierUnitBase.h"

/// Identifier type 0x03: the id of a DASH representation.
class VYR_API CIdentifierUnit3 : public CIdentifierUnitBase {
  public:
    bool Parse(SItem* item) override;
    void Dump() const override;

    /// Number of bytes.
    unsigned short RepresentationIdLength() const { return static_cast<unsigned short>(m_representationID.Length()); }
    /// representation_id, zero-terminated, the unit's own; null before Parse.
    const char* RepresentationId() const { return m_representationID.Text(); }

  private:
    vyr::CBytes m_representationID;
};
