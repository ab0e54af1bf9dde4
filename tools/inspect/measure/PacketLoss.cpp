#include "measure/PacketLoss.h"

namespace vyr::inspect {

namespace {

std::uint64_t Ones(std::uint64_t bits)
{
    std::uint64_t count = 0;
    for (; bits != 0; bits &= bits - 1) {
        ++count;
    }
    return count;
}

}  // namespace

void CPacketLoss::m_Begin(std::uint32_t number)
{
    m_counts.lost += Ones(~m_seen);
    m_highest = number;
    m_seen = ~std::uint64_t{0};
    m_elsewhere.reset();
}

void CPacketLoss::Take(std::uint32_t number)
{
    if (!m_begun) {
        m_begun = true;
        m_seen = ~std::uint64_t{0};
        m_Begin(number);
        return;
    }
    const std::uint32_t ahead = number - m_highest;
    const std::uint32_t behind = m_highest - number;
    if (behind < k_window) {
        const std::uint64_t bit = std::uint64_t{1} << behind;
        ++((m_seen & bit) != 0 ? m_counts.duplicates : m_counts.late);
        m_seen |= bit;
    } else if (ahead <= k_mostLost) {
        // Those that leave the window unseen are lost.
        const std::uint64_t left = ahead < k_window ? m_seen >> (k_window - ahead) : m_seen;
        const std::uint32_t leaving = ahead < k_window ? ahead : k_window;
        m_counts.lost += leaving - Ones(left) + (ahead > k_window ? ahead - k_window : 0);
        m_seen = (ahead < k_window ? m_seen << ahead : 0) | 1;
        m_inOrder += ahead == 1 ? 1 : 0;
        m_highest = number;
    } else if (m_elsewhere && number - *m_elsewhere - 1 < k_window) {
        m_Begin(number);
        ++m_counts.restarts;
        ++m_inOrder;
        return;
    } else {
        // One alone is a straggler, or damaged; two are a sender that began anew.
        m_elsewhere = number;
        return;
    }
    m_elsewhere.reset();
}

SPacketsDelivery CPacketLoss::Result() const
{
    SPacketsDelivery counts = m_counts;
    counts.lost += Ones(~m_seen);
    return counts;
}

}  // namespace vyr::inspect
