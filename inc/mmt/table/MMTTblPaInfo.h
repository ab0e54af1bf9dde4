#pragma once

#include "../element/MMTElementLocation.h"

/// Where one signalling table is delivered: an entry of the PA table (ISO/IEC 23008-1).
class VYR_API CMMTTblPaInfo : public IMMTParser {
  public:
    /// False: a location does not parse, or the data ended.
    bool Parse(SItem* item) override;
    /// Logs the fields, at debug priority.
    virtual void Dump() const;

    /// signalling_information_table_id.
    unsigned char SignallingInformationTableId() const { return m_tableId; }
    /// signalling_information_table_version.
    unsigned char SignallingInformationTableVersion() const { return m_tableVersion; }
    /// alternative_location_flag, 0 or 1.
    unsigned char Flag() const { return m_flag; }
    /// The entry's own, never null.
    CMMTElementLocation* Location() { return &m_location; }
    /// The entry's own, never null; without a unit when the flag is 0.
    CMMTElementLocation* AlternativeLocation() { return &m_alternativeLocation; }

  private:
    unsigned char m_tableId = 0;
    unsigned char m_tableVersion = 0;
    unsigned char m_reserved = 0;
    unsigned char m_flag = 0;
    CMMTElementLocation m_location;
    CMMTElementLocation m_alternativeLocation;
};
