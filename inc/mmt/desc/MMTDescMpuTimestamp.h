#pragma once

#include "MMTDescPayload.h"

/// MPU timestamps (ISO/IEC 23008-1), tag 1: when MPUs of an asset are presented.
class VYR_API CMMTDescMpuTimestamp : public CMMTDescPayload {
  public:
    static constexpr unsigned int k_tag = 1;  ///< descriptor_tag

    /// One MPU and its time.
    struct STimestamp {
        unsigned int mpuSequenceNumber;       ///< mpu_sequence_number
        unsigned long long presentationTime;  ///< mpu_presentation_time: NTP timestamp, all 64 bits
    };

    CMMTDescMpuTimestamp() : CMMTDescPayload("CMMTDescMpuTimestamp", k_tag) {}
    void Dump() const override;

    /// In order, as many as fit.
    const std::vector<STimestamp>& Timestamps() const { return m_timestamps; }

  private:
    void t_ParsePayload(vyr::CBitReader& reader) override;

    std::vector<STimestamp> m_timestamps;
};
