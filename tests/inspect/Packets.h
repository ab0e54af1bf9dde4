#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Builders of packets; all numbers big-endian.
namespace packets {

inline std::string Number(std::uint64_t value, int bytes)
{
    std::string text;
    for (int i = bytes - 1; i >= 0; --i) {
        text += i < 8 ? static_cast<char>(value >> (8 * i) & 0xFF) : '\0';
    }
    return text;
}

constexpr std::uint32_t k_lls = 0xE000173C;
constexpr std::uint32_t k_session = 0xEFFF0701;  // 239.255.7.1

inline std::string Udp(const std::string& payload, unsigned port = 4937, unsigned sourcePort = 40000)
{
    return Number(sourcePort, 2) + Number(port, 2) + Number(payload.size() + 8, 2) + Number(0, 2) + payload;
}

/// LCT packet of a ROUTE session.
struct SLct {
    unsigned toi = 1;
    std::uint32_t start = 0;
    int length = -1;  ///< in EXT_TOL; -1: without
    bool close = false;
    unsigned tsi = 0;
    unsigned flags = 0x12A0;  ///< version 1, source packet, TSI and TOI of 32 bits
    unsigned codePoint = 0;
};

inline std::string Lct(const SLct& fields, const std::string& data)
{
    const std::string extension =
        fields.length >= 0 ? Number(0xC2000000u | static_cast<unsigned>(fields.length), 4) : "";
    return Number(fields.flags | (fields.close ? 1 : 0), 2) + Number(4 + extension.size() / 4, 1) +
           Number(fields.codePoint, 1) + Number(0, 4) + Number(fields.tsi, 4) + Number(fields.toi, 4) + extension +
           Number(fields.start, 4) + data;
}

/// MMTP packet of version 0.
struct SMmtp {
    unsigned sequence = 1;
    unsigned payload = 0;  ///< signalling header: 0x4000 first, 0x8000 middle, 0xC000 last, 0x0100 several
    unsigned packetId = 0;
    unsigned flags = 0;  ///< first two bytes, without the type
    unsigned type = 2;
};

/// `options`: packet counter and extension.
inline std::string Mmtp(const SMmtp& fields, const std::string& data, const std::string& options = {})
{
    return Number(fields.flags | fields.type, 2) + Number(fields.packetId, 2) + Number(0x12345678, 4) +
           Number(fields.sequence, 4) + options + Number(fields.payload, 2) + data;
}

struct SIpv4 {
    unsigned id = 7;
    unsigned flagsAndOffset = 0;
    unsigned protocol = 17;
    std::string options = {};
    std::uint32_t destination = k_lls;
    std::uint32_t source = 0xC000020A;
};

inline std::string Ipv4(const std::string& data, const SIpv4& fields = {})
{
    const std::size_t header = 20 + fields.options.size();
    return Number(0x40 | header / 4, 1) + Number(0, 1) + Number(header + data.size(), 2) + Number(fields.id, 2) +
           Number(fields.flagsAndOffset, 2) + Number(64, 1) + Number(fields.protocol, 1) + Number(0, 2) +
           Number(fields.source, 4) + Number(fields.destination, 4) + fields.options + data;
}

/// Ethernet frame with the types of its VLAN tags and of what it carries.
inline std::string Ethernet(const std::string& data, std::initializer_list<unsigned> types = {0x0800})
{
    std::string frame(12, '\x02');
    bool tagged = false;
    for (const unsigned type : types) {
        frame += (tagged ? Number(100, 2) : std::string()) + Number(type, 2);
        tagged = true;
    }
    return frame + data;
}

/// Capture in pcap form; `cutTo` shortens what is captured of every packet.
class CCapture {
  public:
    explicit CCapture(unsigned linkType, std::size_t cutTo = 65535, bool nanoseconds = false, bool littleEndian = false)
        : m_cutTo(cutTo),
          m_unit(nanoseconds ? 1000 : 1),
          m_littleEndian(littleEndian),
          m_bytes(m_Field(nanoseconds ? 0xA1B23C4D : 0xA1B2C3D4, 4) + m_Field(2, 2) + m_Field(4, 2) + m_Field(0, 8) +
                  m_Field(65535, 4) + m_Field(linkType, 4))
    {
    }
    /// The capture begins at the time, in seconds since 1970, in place of 2027-01-15T08:00:00Z.
    CCapture& Begin(std::uint64_t time)
    {
        m_begin = time;
        return *this;
    }
    /// The packet comes a quarter of a second after the one before, unless another time is set.
    CCapture& Add(const std::string& packet)
    {
        const std::string captured = packet.substr(0, m_cutTo);
        m_bytes += m_Field(m_begin + m_time / 1000000, 4) + m_Field(m_time % 1000000 * m_unit, 4) +
                   m_Field(captured.size(), 4) + m_Field(packet.size(), 4) + captured;
        m_time += m_step;
        return *this;
    }
    /// The next packet comes as many microseconds behind the capture's begin.
    CCapture& At(std::uint64_t microseconds)
    {
        m_time = microseconds;
        return *this;
    }
    /// The next packet comes as many seconds after the beginning, and those behind it in steps of microseconds.
    CCapture& At(unsigned second, unsigned step)
    {
        m_step = step;
        return At(second * std::uint64_t{1000000});
    }
    CCapture& AddSession(const std::string& packet, unsigned port)
    {
        SIpv4 fields;
        fields.destination = k_session;
        return Add(Ethernet(Ipv4(Udp(packet, port), fields)));
    }
    CCapture& AddLls(const std::string& table) { return Add(Ethernet(Ipv4(Udp(table)))); }
    const std::string& Bytes() const { return m_bytes; }

  private:
    std::string m_Field(std::uint64_t value, int bytes) const
    {
        const std::string text = Number(value, bytes);
        return m_littleEndian ? std::string(text.rbegin(), text.rend()) : text;
    }

    std::size_t m_cutTo;
    std::uint64_t m_unit;
    bool m_littleEndian;
    std::string m_bytes;
    std::uint64_t m_begin = 1800000000;
    std::uint64_t m_time = 0;  ///< of the next packet, microseconds
    std::uint64_t m_step = 250000;
};

/// Capture in pcapng form of one packet, two seconds after 1970 in microseconds, on the first of some interfaces.
inline std::string PcapNg(const std::string& packet, const std::vector<unsigned>& linkTypes = {1})
{
    const auto block = [](unsigned type, const std::string& body) {
        const std::string padded = body + std::string((4 - body.size() % 4) % 4, '\0');
        return Number(type, 4) + Number(padded.size() + 12, 4) + padded + Number(padded.size() + 12, 4);
    };
    std::string interfaces;
    for (const unsigned linkType : linkTypes) {
        interfaces += block(1, Number(linkType, 2) + Number(0, 2) + Number(65535, 4));
    }
    return block(0x0A0D0D0A, Number(0x1A2B3C4D, 4) + Number(1, 2) + Number(0, 2) + Number(~0ull, 8)) + interfaces +
           block(6, Number(0, 4) + Number(2000000, 8) + Number(packet.size(), 4) + Number(packet.size(), 4) + packet);
}

}  // namespace packets
