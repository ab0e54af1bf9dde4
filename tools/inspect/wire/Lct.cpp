#include "wire/Lct.h"

namespace vyr::inspect {

namespace {

constexpr std::size_t k_fixed = 4;
constexpr unsigned k_version = 1;
constexpr unsigned k_extFti = 64;
constexpr unsigned k_extTol48 = 67;
constexpr unsigned k_extTol24 = 194;
constexpr unsigned k_firstShort = 128;

/// Up to 8 bytes, big-endian.
std::uint64_t Number(SView bytes)
{
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < bytes.size; ++i) {
        number = number << 8 | bytes[i];
    }
    return number;
}

/// Header extensions up to the end of the header; one that does not fit in what is left is malformed.
bool ReadExtensions(SView bytes, SLctPacket& packet)
{
    std::optional<std::uint64_t> fti;
    while (bytes.size != 0) {  // whole words are left
        const unsigned type = bytes[0];
        const std::size_t size = type >= k_firstShort ? 4 : std::size_t{bytes[1]} * 4;
        if (size == 0 || size > bytes.size) {
            return false;
        }
        const bool holds48 = size >= 8;
        if (type == k_extTol24) {
            packet.transferLength = Number(bytes.First(4).From(1));
        } else if (type == k_extTol48 && holds48) {
            packet.transferLength = Number(bytes.First(8).From(2));
        } else if (type == k_extFti && holds48) {
            fti = Number(bytes.First(8).From(2));
        }
        bytes = bytes.From(size);
    }
    if (!packet.transferLength) {
        packet.transferLength = fti;
    }
    return true;
}

}  // namespace

bool ReadLct(SView payload, SLctPacket& packet)
{
    packet = {};
    if (payload.size < k_fixed || payload[0] >> 4 != k_version) {
        return false;
    }
    const unsigned flags = payload.Be16(0);
    const std::size_t half = flags >> 4 & 1;  // H
    const std::size_t cci = 4 * ((flags >> 10 & 3) + 1);
    const std::size_t tsi = 4 * (flags >> 7 & 1) + 2 * half;
    const std::size_t toi = 4 * (flags >> 5 & 3) + 2 * half;
    const std::size_t header = std::size_t{payload[2]} * 4;
    // Without a TSI the source port stands for it: that is no ROUTE session.
    if (tsi == 0 || header > payload.size || header < k_fixed + cci + tsi + toi) {
        return false;
    }
    packet.source = (flags & 0x0200) != 0;
    packet.closeSession = (flags & 2) != 0;
    packet.closeObject = (flags & 1) != 0;
    packet.codePoint = payload[3];
    const SView ids = payload.First(header).From(k_fixed + cci);
    packet.tsi = Number(ids.First(tsi));
    const SView object = ids.First(tsi + toi).From(tsi);
    const std::size_t high = object.size > 8 ? object.size - 8 : 0;
    packet.toi = {Number(object.First(high)), Number(object.From(high))};
    if (!ReadExtensions(ids.From(tsi + toi), packet)) {
        return false;
    }
    const SView rest = payload.From(header);
    if (rest.size == 0) {
        return packet.closeSession || packet.closeObject;
    }
    if (!packet.source) {
        packet.data = rest;
        return true;
    }
    if (rest.size < 4 || toi == 0) {
        return false;
    }
    packet.startOffset = rest.Be32(0);
    packet.data = rest.From(4);
    return true;
}

}  // namespace vyr::inspect
