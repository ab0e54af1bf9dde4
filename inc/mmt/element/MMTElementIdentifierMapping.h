#pragma once

#include <memory>

#include "../IdentifierUnit/IdentifierUnitBase.h"

/// Asset id of an identifier of type 0.
struct UInternalIdentifier {
    unsigned char assetIdScheme[4];  ///< four-character code in wire order
    char* assetId;                   ///< zero-terminated; the receiver frees it with delete[]
};

/// What callers are told about an identifier: its type, 0, and the asset id.
struct SIdentifier {
    unsigned int identifierType;     ///< identifier_type
    UInternalIdentifier identifier;  ///< as the type says
};

/// What names an asset: identifier_mapping of ISO/IEC 23008-1.
class VYR_API CMMTElementIdentifierMapping : public IMMTParser {
  public:
    /// False: the data ended; there is no unit then.
    bool Parse(SItem* item) override;
    /// Logs type and unit, at debug priority.
    virtual void Dump() const;

    /// identifier_type; 0 before Parse.
    unsigned char IdentifierType() const { return m_identifierType; }
    /// The unit, the element's own: a CIdentifierUnit0 to CIdentifierUnit3 for the types 0 to 3, else a
    /// CIdentifierUnitPriv. Null when there is none.
    CIdentifierUnitBase* Identifier() const { return m_identifier.get(); }

  private:
    unsigned char m_identifierType = 0;
    std::unique_ptr<CIdentifierUnitBase> m_identifier;
};
