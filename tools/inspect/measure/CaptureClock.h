#pragma once

#include <cstdint>
#include <optional>

#include "model/Source.h"

namespace vyr::inspect {

/// When a packet came.
struct SMoment {
    std::optional<STime> time;  ///< as the capture has it
    std::int64_t at = 0;        ///< microseconds since the capture's first packet, from 0; of no meaning without `time`
    std::uint64_t second = 0;   ///< whole ones of these
};

/// Makes the times of a capture run on: where its clock was set, no time goes by.
class CCaptureClock {
  public:
    SMoment Now(const std::optional<STime>& time)
    {
        const std::int64_t at = time ? m_At(time->seconds * k_second + time->nanoseconds / 1000) : 0;
        return {time, at, static_cast<std::uint64_t>(at / k_second)};
    }
    /// The latest moment.
    std::int64_t End() const { return m_end; }
    std::uint64_t TimesSet() const { return m_timesSet; }

    static constexpr std::int64_t k_second = 1000000;

  private:
    static constexpr std::int64_t k_mostBack = k_second;  ///< packets that are out of order
    static constexpr std::int64_t k_mostOn = 3600 * k_second;
    static constexpr std::int64_t k_mostEnd = std::int64_t{1} << 60;

    std::int64_t m_At(std::int64_t time)
    {
        if (!m_begun) {
            m_begun = true;
            m_zero = m_last = time;
        }
        const std::int64_t step = time - m_last;
        if (step > k_mostOn || step < -k_mostBack || m_end > k_mostEnd) {
            m_zero += step;
            ++m_timesSet;
        }
        m_last = time;
        const std::int64_t at = time > m_zero ? time - m_zero : 0;
        m_end = at > m_end ? at : m_end;
        return at;
    }

    bool m_begun = false;
    std::int64_t m_zero = 0;
    std::int64_t m_last = 0;
    std::int64_t m_end = 0;
    std::uint64_t m_timesSet = 0;
};

}  // namespace vyr::inspect
