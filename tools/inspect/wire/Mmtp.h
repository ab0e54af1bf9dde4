#pragma once

#include <cstdint>
#include <optional>

#include "base/Bytes.h"

namespace vyr::inspect {

/// One MMTP packet of version 0 (ISO/IEC 23008-1 9.2).
struct SMmtpPacket {
    static constexpr unsigned k_signalling = 2;

    static constexpr unsigned k_fecSource = 1;  ///< FEC_type of source packets; those above it are of repair

    unsigned fec = 0;                        ///< FEC_type: 0 for packets without AL-FEC
    bool randomAccess = false;               ///< RAP_flag
    unsigned type = 0;                       ///< payload type
    std::uint16_t packetId = 0;              ///< packet_id
    std::uint32_t timestamp = 0;             ///< NTP short format: 16 bits of seconds, 16 of fraction
    std::uint32_t sequenceNumber = 0;        ///< packet_sequence_number, of this packet id
    std::optional<std::uint32_t> counter;    ///< packet_counter
    std::optional<std::uint16_t> extension;  ///< type of the header extension
    SView extensionData;
    SView payload;  ///< without the source FEC payload id
};

enum class EMmtp { FINE, OTHER_VERSION, MALFORMED };

/// Reads one UDP payload. Packets of other versions are not looked into.
EMmtp ReadMmtp(SView bytes, SMmtpPacket& packet);

}  // namespace vyr::inspect
