#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "measure/CaptureClock.h"
#include "model/Delivery.h"

namespace vyr::inspect {

/// Measures how much comes of something, and when, in memory of a fixed size.
class CMeter {
  public:
    static constexpr std::uint64_t k_bins = 600;

    void Count(std::size_t bytes, const SMoment& moment);
    std::uint64_t Packets() const { return m_traffic.packets; }
    /// When the first packet came, and the last one: of no meaning before one with a time.
    std::int64_t FirstAt() const { return m_firstAt; }
    /// What came until the capture's `end`, in bins of as many seconds as WidthAt says of that.
    STraffic Result(std::int64_t end) const;
    /// Seconds that a bin has, as a power of two, so that there are enough for that time.
    static unsigned WidthAt(std::int64_t end);

  private:
    void m_CountSecond(std::uint64_t second, std::uint64_t bytes);
    void m_CountBin(std::uint64_t second, std::uint64_t bytes);
    static void m_Widen(STraffic& traffic, unsigned by);

    STraffic m_traffic;
    std::int64_t m_firstAt = 0;
    std::int64_t m_lastAt = 0;
    std::int64_t m_gap = -1;
    std::uint64_t m_timedBytes = 0;
    // Of one second each: the latest one and that before it, since packets can be out of order.
    std::uint64_t m_firstSecond = 0;
    std::uint64_t m_second = 0;
    std::uint64_t m_inSecond = 0;
    std::uint64_t m_inSecondBefore = 0;
    std::uint64_t m_most = 0;
    unsigned m_width = 0;
};

}  // namespace vyr::inspect
