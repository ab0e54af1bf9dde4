#pragma once

#include <pcap/pcap.h>

#include <string>

// A capture file in place of a tuner: its UDP datagrams over Ethernet and IPv4. A product takes them from its
// demodulator, which hands over IP packets as well.

/// One datagram; the payload is good until the next one.
struct SDatagram {
    unsigned int address;  ///< destination; a.b.c.d is a x 2^24 + b x 2^16 + c x 2^8 + d, as everywhere in the library
    unsigned short port;   ///< destination
    std::string payload;
};

/// Calls `fn` with each datagram; false: there is no such capture.
template <class TFn>
bool EachDatagram(const char* name, TFn fn)
{
    char error[PCAP_ERRBUF_SIZE];
    pcap_t* capture = pcap_open_offline(name, error);
    if (capture == nullptr || pcap_datalink(capture) != DLT_EN10MB) {
        return false;
    }
    pcap_pkthdr* header = nullptr;
    const u_char* bytes = nullptr;
    while (pcap_next_ex(capture, &header, &bytes) == 1) {
        constexpr unsigned int k_ethernet = 14, k_ip = 20, k_udp = 8;
        const auto number = [&bytes](unsigned int at) {
            return static_cast<unsigned int>(bytes[at] << 8 | bytes[at + 1]);
        };
        const unsigned int ip = k_ethernet;
        if (header->caplen < k_ethernet + k_ip + k_udp || number(12) != 0x0800 || bytes[ip + 9] != 17) {
            continue;
        }
        const unsigned int udp = ip + (bytes[ip] & 0xFu) * 4;
        const bool fragment = (number(ip + 6) & 0x3FFF) != 0;
        if (fragment || udp + k_udp > header->caplen) {
            continue;
        }
        const unsigned int length = number(udp + 4);
        if (length >= k_udp && udp + length <= header->caplen) {
            fn(SDatagram{number(ip + 16) << 16 | number(ip + 18), static_cast<unsigned short>(number(udp + 2)),
                         std::string(reinterpret_cast<const char*>(bytes) + udp + k_udp, length - k_udp)});
        }
    }
    pcap_close(capture);
    return true;
}
