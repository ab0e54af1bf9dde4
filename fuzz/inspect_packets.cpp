// The inspector's way from captured packets to UDP datagrams: the first byte picks the link type,
// then packets follow, each behind its 16-bit length.
// Sources: tools/inspect/wire/LinkLayer.cpp tools/inspect/wire/Ipv4Decoder.cpp
#include <pcap/dlt.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "wire/LinkLayer.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr int k_linkTypes[] = {DLT_EN10MB, DLT_LINUX_SLL, DLT_LINUX_SLL2, DLT_RAW,
                                   DLT_IPV4,   DLT_NULL,      DLT_LOOP,       DLT_ATSC_ALP};
    if (size == 0) {
        return 0;
    }
    volatile unsigned sum = 0;
    std::uint64_t datagrams = 0;
    vyr::inspect::CPacketDecoder decoder(k_linkTypes[data[0] % 8], [&](const vyr::inspect::SDatagram& datagram) {
        ++datagrams;
        for (std::size_t i = 0; i < datagram.payload.size; ++i) {
            sum = sum + datagram.payload[i];
        }
    });
    const bool cut = (data[0] & 0x80) != 0;
    for (std::size_t at = 1; at + 2 <= size;) {
        std::size_t length = static_cast<std::size_t>(data[at] << 8 | data[at + 1]);
        at += 2;
        length = length < size - at ? length : size - at;
        const std::unique_ptr<std::uint8_t[]> packet(new std::uint8_t[length]);
        if (length != 0) {
            std::memcpy(packet.get(), data + at, length);
        }
        decoder.Decode({packet.get(), length}, cut);
        at += length;
    }
    decoder.Finish();
    if (decoder.Counts().datagrams != datagrams) {
        std::abort();
    }
    return 0;
}
