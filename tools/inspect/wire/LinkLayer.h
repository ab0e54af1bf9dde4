#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "base/Bytes.h"
#include "wire/Ipv4Decoder.h"

namespace vyr::inspect {

/// Takes captured packets of one link type apart, down to the UDP datagrams. Used for one capture.
class CPacketDecoder {
  public:
    /// `linkType` is a DLT number of libpcap; the sink's datagram is good during the call only.
    CPacketDecoder(int linkType, std::function<void(const SDatagram&)> sink);
    CPacketDecoder(const CPacketDecoder&) = delete;
    CPacketDecoder& operator=(const CPacketDecoder&) = delete;

    static bool Knows(int linkType);

    /// `time`: when it came.
    void Decode(SView packet, bool cut, const std::optional<STime>& time = {});
    /// No more packets come.
    void Finish();
    const SPacketCounts& Counts() const { return m_counts; }

  private:
    void m_EtherType(unsigned type, SView rest, bool cut);
    void m_Family(SView packet, bool cut);
    void m_Alp(SView packet, bool cut);
    void m_AlpSegment(SView packet, bool cut, std::size_t length);
    void m_AlpConcatenation(SView packet, bool cut, std::size_t length);
    bool m_AlpOptions(SView& rest, bool subStream, bool extension);
    void m_DropSegments();

    const int m_linkType;
    SPacketCounts m_counts;
    CIpv4Decoder m_ipv4;
    std::vector<unsigned char> m_segments;
    unsigned m_nextSegment = 0;  ///< 0: none open
};

}  // namespace vyr::inspect
