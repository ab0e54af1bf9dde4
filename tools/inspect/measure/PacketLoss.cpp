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

void CPacketLoss::m_Restart(std::uint32_t number)
{
    m_counts.lost += m_before ? Ones(~m_before->seen) : 0;
    m_before = m_run;
    m_run = {number};
    m_elsewhere.reset();
    ++m_counts.restarts;
    ++m_inOrder;
}

/// False: the number is not among the last ones.
bool CPacketLoss::m_TakeBehind(SRun& run, std::uint32_t number)
{
    const std::uint32_t behind = run.highest - number;
    if (behind >= k_window) {
        return false;
    }
    const std::uint64_t bit = std::uint64_t{1} << behind;
    ++((run.seen & bit) != 0 ? m_counts.duplicates : m_counts.late);
    run.seen |= bit;
    return true;
}

void CPacketLoss::Take(std::uint32_t number)
{
    if (!m_begun) {
        m_begun = true;
        m_run = {number};
        return;
    }
    if (m_before && m_run.highest - number >= k_window && number - m_run.highest > k_window) {
        if (m_TakeBehind(*m_before, number)) {
            return;
        }
        if (number - m_before->highest <= k_window) {
            // The sender did not begin anew: some came late, or by another way.
            m_run = *m_before;
            m_before.reset();
            --m_counts.restarts;
        }
    }
    const std::uint32_t ahead = number - m_run.highest;
    if (m_TakeBehind(m_run, number)) {
        // came late, or again
    } else if (ahead <= k_mostLost) {
        // Those that leave the window unseen are lost.
        const std::uint64_t left = ahead < k_window ? m_run.seen >> (k_window - ahead) : m_run.seen;
        const std::uint32_t leaving = ahead < k_window ? ahead : k_window;
        m_counts.lost += leaving - Ones(left) + (ahead > k_window ? ahead - k_window : 0);
        m_run.seen = (ahead < k_window ? m_run.seen << ahead : 0) | 1;
        m_inOrder += ahead == 1 ? 1 : 0;
        m_run.highest = number;
    } else if (m_elsewhere && number - *m_elsewhere - 1 < k_window) {
        m_Restart(number);
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
    counts.lost += Ones(~m_run.seen) + (m_before ? Ones(~m_before->seen) : 0);
    return counts;
}

}  // namespace vyr::inspect
