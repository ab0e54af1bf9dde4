#include "measure/Meter.h"

#include <algorithm>

namespace vyr::inspect {

namespace {

std::uint64_t Second(std::int64_t at)
{
    return static_cast<std::uint64_t>(at / CCaptureClock::k_second);
}

constexpr double k_bitsOfKilobit = 1000.0 / 8;

}  // namespace

void CMeter::Count(std::size_t bytes, const SMoment& moment)
{
    ++m_traffic.packets;
    m_traffic.bytes += bytes;
    if (!moment.time) {
        return;
    }
    const std::int64_t at = moment.at;
    const std::uint64_t second = moment.second;
    m_timedBytes += bytes;
    if (!m_traffic.first) {
        m_traffic.first = moment.time;
        m_firstAt = m_lastAt = at;
        m_firstSecond = m_second = second;
    } else if (at - m_lastAt > m_gap) {
        m_gap = at - m_lastAt;
        m_traffic.gapSince = m_traffic.last;
    }
    if (at >= m_lastAt) {
        m_lastAt = at;
        m_traffic.last = moment.time;
    }
    m_CountSecond(second, bytes);
    m_CountBin(second, bytes);
}

void CMeter::m_CountSecond(std::uint64_t second, std::uint64_t bytes)
{
    if (second > m_second) {
        m_most = std::max({m_most, m_inSecond, m_inSecondBefore});
        m_inSecondBefore = second == m_second + 1 ? m_inSecond : 0;
        m_inSecond = 0;
        m_second = second;
    }
    if (second == m_second) {
        m_inSecond += bytes;
    } else if (second + 1 == m_second) {
        m_inSecondBefore += bytes;
    }
    m_firstSecond = std::min(m_firstSecond, second);
}

void CMeter::m_CountBin(std::uint64_t second, std::uint64_t bytes)
{
    if (second >> m_width >= k_bins) {
        unsigned by = 0;
        while (second >> (m_width + by) >= k_bins) {
            ++by;
        }
        m_Widen(m_traffic, by);
        m_width += by;
    }
    std::vector<std::uint64_t>& bins = m_traffic.bins;
    const std::uint64_t bin = second >> m_width;
    if (bins.empty()) {
        m_traffic.firstBin = bin;
    }
    if (bin < m_traffic.firstBin) {
        bins.insert(bins.begin(), static_cast<std::size_t>(m_traffic.firstBin - bin), 0);
        m_traffic.firstBin = bin;
    }
    const auto place = static_cast<std::size_t>(bin - m_traffic.firstBin);
    if (place >= bins.size()) {
        bins.resize(place + 1);
    }
    bins[place] += bytes;
}

void CMeter::m_Widen(STraffic& traffic, unsigned by)
{
    std::vector<std::uint64_t> bins;
    const std::uint64_t first = traffic.firstBin >> by;
    for (std::size_t i = 0; i < traffic.bins.size(); ++i) {
        const auto place = static_cast<std::size_t>(((traffic.firstBin + i) >> by) - first);
        if (place >= bins.size()) {
            bins.resize(place + 1);
        }
        bins[place] += traffic.bins[i];
    }
    traffic.firstBin = first;
    traffic.bins = std::move(bins);
}

unsigned CMeter::WidthAt(std::int64_t end)
{
    unsigned width = 0;
    while (Second(end) >> width >= k_bins) {
        ++width;
    }
    return width;
}

STraffic CMeter::Result(std::int64_t end) const
{
    STraffic traffic = m_traffic;
    m_Widen(traffic, WidthAt(end) - m_width);
    if (m_gap >= 0) {
        traffic.gap = static_cast<double>(m_gap) / CCaptureClock::k_second;
    }
    // The last second of the capture is not whole.
    const bool cut = m_second == Second(end);
    const std::uint64_t seconds = m_second - m_firstSecond + (cut ? 0 : 1);
    if (m_gap >= 0 && seconds != 0) {  // a packet alone has no rate
        const double mean =
            static_cast<double>(m_timedBytes - (cut ? m_inSecond : 0)) / k_bitsOfKilobit / static_cast<double>(seconds);
        const double peak = static_cast<double>(std::max({m_most, m_inSecond, m_inSecondBefore})) / k_bitsOfKilobit;
        traffic.meanRate = mean;
        // What comes later than a second after its own is in no second's sum; the largest is at least the mean.
        traffic.peakRate = std::max(mean, peak);
    }
    return traffic;
}

}  // namespace vyr::inspect
