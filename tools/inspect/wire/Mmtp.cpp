#include "wire/Mmtp.h"

namespace vyr::inspect {

EMmtp ReadMmtp(SView bytes, SMmtpPacket& packet)
{
    constexpr std::size_t k_header = 12;
    if (bytes.size == 0) {
        return EMmtp::MALFORMED;
    }
    if (bytes[0] >> 6 != 0) {
        return EMmtp::OTHER_VERSION;
    }
    if (bytes.size < k_header) {
        return EMmtp::MALFORMED;
    }
    const bool counted = (bytes[0] & 0x20) != 0;
    const bool extended = (bytes[0] & 0x02) != 0;
    packet = {};
    packet.fec = bytes[0] >> 3 & 3u;
    packet.randomAccess = (bytes[0] & 0x01) != 0;
    packet.type = bytes[1] & 0x3Fu;
    packet.packetId = bytes.Be16(2);
    packet.timestamp = bytes.Be32(4);
    packet.sequenceNumber = bytes.Be32(8);
    std::size_t at = k_header;
    if (counted) {
        if (bytes.size < at + 4) {
            return EMmtp::MALFORMED;
        }
        packet.counter = bytes.Be32(at);
        at += 4;
    }
    if (extended) {
        const std::size_t length = bytes.size >= at + 4 ? bytes.Be16(at + 2) : bytes.size;
        if (bytes.size < at + 4 + length) {
            return EMmtp::MALFORMED;
        }
        packet.extension = bytes.Be16(at);
        packet.extensionData = bytes.From(at + 4).First(length);
        at += 4 + length;
    }
    packet.payload = bytes.From(at);
    if (packet.fec == SMmtpPacket::k_fecSource) {
        constexpr std::size_t k_fecPayloadId = 4;
        if (packet.payload.size < k_fecPayloadId) {
            return EMmtp::MALFORMED;
        }
        packet.payload = packet.payload.First(packet.payload.size - k_fecPayloadId);
    }
    return EMmtp::FINE;
}

}  // namespace vyr::inspect
