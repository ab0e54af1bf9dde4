#pragma once

#include <optional>

#include "MMTMsgPayload.h"

/// Asset delivery characteristics message (ADC message, message_id 0x0209; ISO/IEC 23008-1): what the delivery of
/// an asset needs of a network.
class VYR_API CMMTMsgAdc : public CMMTMsgPayload {
  public:
    static constexpr unsigned short k_messageId = 0x0209;  ///< message_id

    /// A field that its flag leaves out, or that does not fit in the message, is absent.
    struct SAdc {
        std::optional<unsigned int> validityStartTime;   ///< validity_start_time
        std::optional<unsigned int> validityDuration;    ///< validity_duration
        std::optional<bool> adcLevelFlag;                ///< ADC_level_flag
        std::optional<bool> flowLabelFlag;               ///< flow_label_flag
        std::optional<unsigned int> mpuSequenceNumber;   ///< MPU_sequence_number, with adcLevelFlag
        std::optional<unsigned short> packetId;          ///< packet_id
        std::optional<unsigned char> lossTolerance;      ///< loss_tolerance
        std::optional<unsigned char> jitterSensitivity;  ///< jitter_sensitivity
        std::optional<bool> classOfService;              ///< class_of_service
        std::optional<bool> bidirectionIndicator;        ///< bidirection_indicator
        std::optional<unsigned short> sustainableRate;   ///< sustainable_rate, with classOfService
        std::optional<unsigned short> bufferSize;        ///< buffer_size, with classOfService
        std::optional<unsigned short> peakRate;          ///< peak_rate
        std::optional<unsigned char> maxMfuSize;         ///< max_MFU_size
        std::optional<unsigned char> mfuPeriod;          ///< MFU_period
        std::optional<unsigned char> flowLabel;          ///< flow_label, 7 bits, with flowLabelFlag
    };

    CMMTMsgAdc() : CMMTMsgPayload(CLASS_TYPE_ADC) {}

    bool Parse(SItem* item) override;
    void Dump() const override;

    /// What the message said, zeros before Parse; the message's own.
    const SAdc& Fields() const { return m_fields; }

  private:
    SAdc m_fields;
};
