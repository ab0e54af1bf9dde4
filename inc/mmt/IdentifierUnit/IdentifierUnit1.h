#pragma once

#include "../../common/Owned.h"
#include "IdentifierUnitBase.h"

/// Identifier type 0x01: a list of URLs.
class VYR_API CIdentifierUnit1 : public CIdentifierUnitBase {
  public:
    /// Required: data that ends before the announced number of URLs is accepted; one that ends inside a
    /// URL is not.
    bool Parse(SItem* item) override;
    void Dump() const override;

    /// Number of URLs held, which may be less than announced.
    unsigned short UrlCount() const { return static_cast<unsigned short>(m_arrayUrl.Size()); }
    /// The index-th URL, zero-terminated, the unit's own; null for an index outside the range (asserted).
    const char* Url(unsigned short index) const;

  private:
    TPtrArray<unsigned char, std::default_delete<unsigned char[]>> m_arrayUrl;
};
