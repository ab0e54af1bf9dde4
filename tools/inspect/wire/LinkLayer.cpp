#include "wire/LinkLayer.h"

#include <pcap/dlt.h>

#include <utility>

namespace vyr::inspect {

namespace {

constexpr unsigned k_etherIpv4 = 0x0800;
constexpr int k_maxVlanTags = 8;
constexpr unsigned k_alpIpv4 = 0;        // packet_type
constexpr unsigned k_alpCompressed = 2;  // IP packets whose headers are compressed
constexpr int k_linkTypeRaw = 101;       // the number in files; libpcap's own differs by platform

bool IsVlanTag(unsigned etherType)
{
    return etherType == 0x8100 || etherType == 0x88A8 || etherType == 0x9100;
}

}  // namespace

CPacketDecoder::CPacketDecoder(int linkType, std::function<void(const SDatagram&)> sink)
    : m_linkType(linkType), m_ipv4(m_counts, std::move(sink))
{
}

bool CPacketDecoder::Knows(int linkType)
{
    switch (linkType) {
        case DLT_EN10MB:
        case DLT_LINUX_SLL:
        case DLT_LINUX_SLL2:
        case DLT_RAW:
        case k_linkTypeRaw:
        case DLT_IPV4:
        case DLT_NULL:
        case DLT_LOOP:
        case DLT_ATSC_ALP:
            return true;
        default:
            return false;
    }
}

void CPacketDecoder::Decode(SView packet, bool cut, const std::optional<STime>& time)
{
    ++m_counts.packets;
    m_ipv4.Now(time);
    std::size_t header = 0;
    std::size_t typeAt = 0;
    switch (m_linkType) {
        case DLT_EN10MB:
            header = 14;
            typeAt = 12;
            break;
        case DLT_LINUX_SLL:
            header = 16;
            typeAt = 14;
            break;
        case DLT_LINUX_SLL2:
            header = 20;
            typeAt = 0;
            break;
        case DLT_NULL:
        case DLT_LOOP:
            m_Family(packet, cut);
            return;
        case DLT_ATSC_ALP:
            m_Alp(packet, cut);
            return;
        default:
            m_ipv4.Decode(packet, cut);
            return;
    }
    if (packet.size < header) {
        m_counts.Short(cut);
        return;
    }
    m_EtherType(packet.Be16(typeAt), packet.From(header), cut);
}

void CPacketDecoder::Finish()
{
    m_DropSegments();
    m_ipv4.Finish();
}

void CPacketDecoder::m_EtherType(unsigned type, SView rest, bool cut)
{
    for (int tags = 0; IsVlanTag(type) && tags < k_maxVlanTags; ++tags) {
        if (rest.size < 4) {
            m_counts.Short(cut);
            return;
        }
        type = rest.Be16(2);
        rest = rest.From(4);
    }
    if (type == k_etherIpv4) {
        m_ipv4.Decode(rest, cut);
    } else {
        ++m_counts.otherProtocol;
    }
}

/// The address family is written in the byte order of the machine that captured; IPv4 is 2 on all.
void CPacketDecoder::m_Family(SView packet, bool cut)
{
    if (packet.size < 4) {
        m_counts.Short(cut);
        return;
    }
    const std::uint32_t family = packet.Be32(0);
    if (family == 2 || family == 0x02000000) {
        m_ipv4.Decode(packet.From(4), cut);
    } else {
        ++m_counts.otherProtocol;
    }
}

/// ATSC link-layer protocol, ATSC A/330 5.1.
void CPacketDecoder::m_Alp(SView packet, bool cut)
{
    if (packet.size < 2) {
        m_counts.Short(cut);
        return;
    }
    if (const unsigned type = packet[0] >> 5; type != k_alpIpv4) {
        ++(type == k_alpCompressed ? m_counts.compressed : m_counts.otherLinkPackets);
        return;
    }
    const bool severalOrPart = (packet[0] & 0x10) != 0;
    const bool secondFlag = (packet[0] & 0x08) != 0;
    std::size_t length = packet.Be16(0) & 0x07FFu;
    SView rest = packet.From(2);
    if (severalOrPart) {
        secondFlag ? m_AlpConcatenation(rest, cut, length) : m_AlpSegment(rest, cut, length);
        return;
    }
    if (secondFlag) {
        if (rest.size < 1) {
            m_counts.Short(cut);
            return;
        }
        const unsigned flags = rest[0];
        length |= std::size_t{flags >> 3} << 11;
        rest = rest.From(1);
        if (!m_AlpOptions(rest, (flags & 2) != 0, (flags & 1) != 0)) {
            m_counts.Short(cut);
            return;
        }
    }
    if (length > rest.size && !cut) {
        ++m_counts.malformed;
        return;
    }
    m_ipv4.Decode(rest.First(length), cut);
}

/// Segments of one packet follow each other; the link carries one packet at a time.
void CPacketDecoder::m_AlpSegment(SView rest, bool cut, std::size_t length)
{
    ++m_counts.fragments;
    if (rest.size < 1) {
        m_DropSegments();
        m_counts.Short(cut);
        return;
    }
    const unsigned flags = rest[0];
    const unsigned sequence = flags >> 3;
    const bool last = (flags & 4) != 0;
    rest = rest.From(1);
    if (!m_AlpOptions(rest, (flags & 2) != 0, (flags & 1) != 0) || length > rest.size) {
        m_DropSegments();
        m_counts.Short(cut);
        return;
    }
    if (sequence != m_nextSegment) {
        m_DropSegments();  // the expected one is the first now
    }
    if (sequence != m_nextSegment) {
        return;
    }
    m_segments.insert(m_segments.end(), rest.data, rest.data + length);
    m_nextSegment = sequence + 1;
    if (last) {
        m_ipv4.Decode({m_segments.data(), m_segments.size()}, false);
        m_segments.clear();
        m_nextSegment = 0;
    }
}

void CPacketDecoder::m_AlpConcatenation(SView rest, bool cut, std::size_t length)
{
    if (rest.size < 1) {
        m_counts.Short(cut);
        return;
    }
    length |= (rest[0] & 0xF0u) << 7;
    const std::size_t lengths = (rest[0] >> 1 & 7u) + 1;  // of all components but the last
    const bool extension = (rest[0] & 1) != 0;
    const SView table = rest.From(1);
    const std::size_t tableSize = (lengths * 12 + 7) / 8;
    if (table.size < tableSize) {
        m_counts.Short(cut);
        return;
    }
    rest = table.From(tableSize);
    if (!m_AlpOptions(rest, false, extension) || (length > rest.size && !cut)) {
        m_counts.Short(cut);
        return;
    }
    rest = rest.First(length);
    for (std::size_t i = 0; i < lengths; ++i) {
        const std::size_t at = i * 12 / 8;
        const std::size_t component = i % 2 == 0 ? table.Be16(at) >> 4 : table.Be16(at) & 0x0FFFu;
        if (component > rest.size) {
            m_counts.Short(cut);
            return;
        }
        m_ipv4.Decode(rest.First(component), false);
        rest = rest.From(component);
    }
    m_ipv4.Decode(rest, cut);
}

/// Steps over the sub-stream id and the header extension.
bool CPacketDecoder::m_AlpOptions(SView& rest, bool subStream, bool extension)
{
    std::size_t size = subStream ? 1 : 0;
    if (extension) {
        if (rest.size < size + 2) {
            return false;
        }
        size += 2u + rest[size + 1] + 1u;
    }
    if (rest.size < size) {
        return false;
    }
    rest = rest.From(size);
    return true;
}

void CPacketDecoder::m_DropSegments()
{
    m_counts.incompleteDatagrams += m_nextSegment != 0 ? 1 : 0;
    m_segments.clear();
    m_nextSegment = 0;
}

}  // namespace vyr::inspect
