#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <list>
#include <optional>
#include <vector>

#include "base/Bytes.h"
#include "model/Counts.h"
#include "model/Source.h"

namespace vyr::inspect {

struct SDatagram {
    std::uint32_t source = 0;
    std::uint32_t destination = 0;
    std::uint16_t sourcePort = 0;
    std::uint16_t destinationPort = 0;
    SView payload;
};

/// Finds the UDP datagrams in IPv4 packets and puts fragmented ones together in bounded memory.
/// Checksums are not verified: captures of a sender with checksum offload have none.
class CIpv4Decoder {
  public:
    /// The sink's datagram is good during the call only.
    CIpv4Decoder(SPacketCounts& counts, std::function<void(const SDatagram&)> sink);

    /// When the packets came that are decoded next, if that is known.
    void Now(const std::optional<STime>& time);
    /// `cut`: the capture may hold less of the packet than its header announces.
    void Decode(SView packet, bool cut);
    /// No more packets come: what is still open counts as incomplete.
    void Finish();

  private:
    static constexpr std::size_t k_maxOpen = 64;
    static constexpr std::size_t k_maxDatagram = 65535;
    static constexpr std::size_t k_copyBytes = 64;

    /// A place in the capture, or a distance in it.
    struct SPlace {
        std::uint64_t packets = 0;
        double seconds = 0;
    };
    /// Ids come again: fragments further apart are of two datagrams. The time is that of RFC 791 3.2.
    static constexpr SPlace k_lifetime = {4096, 15};
    /// A capture point that sees both directions, or two that stand in one file, have every packet twice.
    static constexpr SPlace k_copyDistance = {64, 0.1};

    struct SAssembly {
        std::uint32_t source;
        std::uint32_t destination;
        std::uint16_t id;
        std::vector<unsigned char> bytes;
        std::vector<bool> blocks;  ///< which 8-byte blocks are there
        std::size_t total = 0;     ///< 0 until the last fragment has come
        SPlace last = {};          ///< of the last fragment; of the last one that was missing, once it is whole
        bool whole = false;
        bool copied = false;
    };
    /// What is needed of a datagram that came in one packet to know its copy.
    struct SCame {
        std::uint32_t source = 0;
        std::uint32_t destination = 0;
        std::uint16_t id = 0;
        bool idStays = false;  ///< the sender does not count its ids
        std::array<unsigned char, k_copyBytes> begin{};
        SPlace place;
    };

    bool m_Within(const SPlace& distance, const SPlace& since) const;
    bool m_IsCopy(SView packet, SView data);
    void m_Fragment(SView packet, SView data, unsigned flagsAndOffset);
    bool m_Put(SAssembly& assembly, SView data, std::size_t offset, bool more);
    void m_Udp(std::uint32_t source, std::uint32_t destination, SView data);
    void m_Drop(std::list<SAssembly>::iterator assembly);

    SPacketCounts& m_counts;
    std::function<void(const SDatagram&)> m_sink;
    std::list<SAssembly> m_open;
    std::array<SCame, 64> m_came;  ///< by the last bits of the id
    SPlace m_now;
};

}  // namespace vyr::inspect
