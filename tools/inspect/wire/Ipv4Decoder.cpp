#include "wire/Ipv4Decoder.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace vyr::inspect {

namespace {

constexpr unsigned k_udp = 17;
constexpr unsigned k_moreFragments = 0x2000;
constexpr unsigned k_offsetMask = 0x1FFF;
constexpr std::size_t k_block = 8;

}  // namespace

CIpv4Decoder::CIpv4Decoder(SPacketCounts& counts, std::function<void(const SDatagram&)> sink)
    : m_counts(counts), m_sink(std::move(sink))
{
}

void CIpv4Decoder::Now(const std::optional<STime>& time)
{
    m_now.seconds = time ? Seconds(*time) : m_now.seconds;
}

void CIpv4Decoder::Decode(SView packet, bool cut)
{
    ++m_now.packets;
    if (packet.size < 20) {
        m_counts.Short(cut);
        return;
    }
    if (packet[0] >> 4 != 4) {
        ++m_counts.otherProtocol;
        return;
    }
    const std::size_t header = (packet[0] & 0x0Fu) * 4u;
    const std::size_t total = packet.Be16(2);
    if (header < 20 || total < header) {
        ++m_counts.malformed;
        return;
    }
    if (packet[9] != k_udp) {
        ++m_counts.otherProtocol;
        return;
    }
    if (total > packet.size) {
        m_counts.Short(cut);
        return;
    }
    const SView data = packet.First(total).From(header);
    const unsigned flagsAndOffset = packet.Be16(6);
    if ((flagsAndOffset & (k_moreFragments | k_offsetMask)) != 0) {
        m_Fragment(packet, data, flagsAndOffset);
    } else if (m_IsCopy(packet, data)) {
        ++m_counts.copies;
    } else {
        m_Udp(packet.Be32(12), packet.Be32(16), data);
    }
}

void CIpv4Decoder::Finish()
{
    while (!m_open.empty()) {
        m_Drop(m_open.begin());
    }
}

bool CIpv4Decoder::m_Within(const SPlace& distance, const SPlace& since) const
{
    return m_now.packets - since.packets <= distance.packets &&
           std::abs(m_now.seconds - since.seconds) <= distance.seconds;
}

/// Whether a datagram came before: sent again, it would have another id. That is known of senders alone that count
/// them. The bytes guard against two senders behind one address; those behind the first are in the UDP checksum.
bool CIpv4Decoder::m_IsCopy(SView packet, SView data)
{
    constexpr std::size_t k_udpHeader = 8;
    const std::uint16_t id = packet.Be16(4);
    if (id == 0 || data.size < k_udpHeader) {
        return false;
    }
    const std::uint32_t source = packet.Be32(12);
    const std::uint32_t destination = packet.Be32(16);
    const std::size_t size = std::min(data.size, k_copyBytes);
    SCame& came = m_came[id % m_came.size()];
    const bool sameId = came.id == id && came.source == source;
    if (sameId && !came.idStays && came.destination == destination && m_Within(k_copyDistance, came.place) &&
        std::memcmp(came.begin.data(), data.data, size) == 0) {
        return true;
    }
    came.source = source;
    came.destination = destination;
    came.id = id;
    came.idStays = sameId;
    std::memcpy(came.begin.data(), data.data, size);
    came.place = m_now;
    return false;
}

void CIpv4Decoder::m_Fragment(SView packet, SView data, unsigned flagsAndOffset)
{
    ++m_counts.fragments;
    const bool more = (flagsAndOffset & k_moreFragments) != 0;
    const std::size_t offset = (flagsAndOffset & k_offsetMask) * k_block;
    if (data.size == 0 || (more && data.size % k_block != 0) || offset + data.size > k_maxDatagram) {
        ++m_counts.malformed;
        return;
    }
    const std::uint32_t source = packet.Be32(12);
    const std::uint32_t destination = packet.Be32(16);
    const std::uint16_t id = packet.Be16(4);
    auto assembly = std::find_if(m_open.begin(), m_open.end(), [&](const SAssembly& open) {
        return open.id == id && open.source == source && open.destination == destination;
    });
    if (assembly != m_open.end() && assembly->whole && m_Within(k_copyDistance, assembly->last) &&
        offset + data.size <= assembly->total &&
        std::memcmp(assembly->bytes.data() + offset, data.data, data.size) == 0) {
        m_counts.copies += assembly->copied ? 0 : 1;
        assembly->copied = true;
        return;
    }
    if (assembly != m_open.end() && (assembly->whole || !m_Within(k_lifetime, assembly->last))) {
        m_Drop(assembly);
        assembly = m_open.end();
    }
    if (assembly == m_open.end()) {
        if (m_open.size() == k_maxOpen) {
            const auto done =
                std::find_if(m_open.begin(), m_open.end(), [](const SAssembly& open) { return open.whole; });
            m_Drop(done != m_open.end() ? done : m_open.begin());
        }
        assembly = m_open.insert(m_open.end(), SAssembly{source, destination, id, {}, {}});
    }
    if (!m_Put(*assembly, data, offset, more)) {
        ++m_counts.malformed;
        m_Drop(assembly);
        return;
    }
    assembly->last = m_now;
    const std::size_t blocks = (assembly->total + k_block - 1) / k_block;
    if (assembly->total != 0 && assembly->blocks.size() == blocks &&
        std::find(assembly->blocks.begin(), assembly->blocks.end(), false) == assembly->blocks.end()) {
        assembly->whole = true;
        m_Udp(source, destination, {assembly->bytes.data(), assembly->total});
    }
}

/// What came first stays where fragments overlap. False: the fragments contradict each other.
bool CIpv4Decoder::m_Put(SAssembly& assembly, SView data, std::size_t offset, bool more)
{
    const std::size_t end = offset + data.size;
    if (!more) {
        if ((assembly.total != 0 && assembly.total != end) || assembly.bytes.size() > end) {
            return false;
        }
        assembly.total = end;
    } else if (assembly.total != 0 && end > assembly.total) {
        return false;
    }
    if (assembly.bytes.size() < end) {
        assembly.bytes.resize(end);
        assembly.blocks.resize((end + k_block - 1) / k_block);
    }
    for (std::size_t at = offset; at < end; at += k_block) {
        if (!assembly.blocks[at / k_block]) {
            assembly.blocks[at / k_block] = true;
            std::memcpy(assembly.bytes.data() + at, data.data + (at - offset), std::min(k_block, end - at));
        }
    }
    return true;
}

void CIpv4Decoder::m_Udp(std::uint32_t source, std::uint32_t destination, SView data)
{
    if (data.size < 8 || data.Be16(4) < 8 || data.Be16(4) > data.size) {
        ++m_counts.malformed;
        return;
    }
    ++m_counts.datagrams;
    m_sink({source, destination, data.Be16(0), data.Be16(2), data.First(data.Be16(4)).From(8)});
}

void CIpv4Decoder::m_Drop(std::list<SAssembly>::iterator assembly)
{
    m_counts.incompleteDatagrams += assembly->whole ? 0 : 1;
    m_open.erase(assembly);
}

}  // namespace vyr::inspect
