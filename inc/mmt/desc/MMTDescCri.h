#pragma once

#include "MMTDesc.h"

/// Clock relation information (ISO/IEC 23008-1 10.5.2), tag 0: one sample of the sender's clock on two
/// time bases.
class VYR_API CMMTDescCri : public CMMTDesc {
  public:
    static constexpr unsigned int k_tag = 0;  ///< descriptor_tag

    /// Length of the one record that is read, in bytes.
    static constexpr unsigned int k_unitSize = 15;

    /// False: another tag, or a length that is 0 or no multiple of 15; such a length also makes the item
    /// invalid. Required: of a length of 30, 45 and so on nothing is read, and the cursor stays behind the
    /// length field.
    bool Parse(SItem* item) override;
    void Dump() const override;

    /// Id of the clock relation; 0 when not read.
    unsigned char ClockRelationId() const { return m_clockRelationId; }
    /// The six reserved bits.
    unsigned char Reserved() const { return m_reserved; }
    /// Low 32 bits of the 42-bit sample of the system time clock.
    unsigned int STCSample() const { return m_stcSample; }
    /// Low 32 bits of the 64-bit NTP timestamp: its fraction.
    unsigned int NTPTimestampSample() const { return m_ntpTimestampSample; }

  private:
    unsigned char m_clockRelationId = 0;
    unsigned char m_reserved = 0;
    unsigned int m_stcSample = 0;
    unsigned int m_ntpTimestampSample = 0;
};
