#pragma once

#include "../MMTParser.h"

/// What follows identifier_type in identifier_mapping (ISO/IEC 23008-1): one class per type.
class VYR_API CIdentifierUnitBase : public IMMTParser {
  public:
    CIdentifierUnitBase() = default;
    ~CIdentifierUnitBase() override;
    CIdentifierUnitBase(const CIdentifierUnitBase&) = delete;
    CIdentifierUnitBase& operator=(const CIdentifierUnitBase&) = delete;

    /// False: the data ended.
    bool Parse(SItem* item) override = 0;
    /// Logs the fields, at debug priority.
    virtual void Dump() const = 0;
};
