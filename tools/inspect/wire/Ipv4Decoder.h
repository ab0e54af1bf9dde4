#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <vector>

#include "base/Bytes.h"
#include "model/Counts.h"

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

    /// `cut`: the capture may hold less of the packet than its header announces.
    void Decode(SView packet, bool cut);
    /// No more packets come: what is still open counts as incomplete.
    void Finish();

  private:
    static constexpr std::size_t k_maxOpen = 64;
    static constexpr std::size_t k_maxDatagram = 65535;
    static constexpr std::uint64_t k_duplicateDistance = 64;

    struct SAssembly {
        std::uint32_t source;
        std::uint32_t destination;
        std::uint16_t id;
        std::vector<unsigned char> bytes;
        std::vector<bool> blocks;  ///< which 8-byte blocks are there
        std::size_t total = 0;     ///< 0 until the last fragment has come
        std::uint64_t completedAt = 0;
    };

    void m_Fragment(SView packet, SView data, unsigned flagsAndOffset);
    bool m_Put(SAssembly& assembly, SView data, std::size_t offset, bool more);
    void m_Udp(std::uint32_t source, std::uint32_t destination, SView data);
    void m_Drop(std::list<SAssembly>::iterator assembly);

    SPacketCounts& m_counts;
    std::function<void(const SDatagram&)> m_sink;
    std::list<SAssembly> m_open;
    std::uint64_t m_decoded = 0;
};

}  // namespace vyr::inspect
