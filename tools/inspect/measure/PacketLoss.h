#pragma once

#include <cstdint>
#include <optional>

#include "model/Delivery.h"

namespace vyr::inspect {

/// Finds out by their sequence numbers which packets are missing.
class CPacketLoss {
  public:
    static constexpr std::uint32_t k_window = 64;       ///< by how much packets may be out of order
    static constexpr std::uint32_t k_mostLost = 65536;  ///< in one go; beyond, the numbers began anew

    void Take(std::uint32_t number);
    SPacketsDelivery Result() const;
    /// Those lost that can come no more.
    std::uint64_t Gone() const { return m_counts.lost; }
    /// Packets whose number followed the one before.
    std::uint64_t InOrder() const { return m_inOrder; }

  private:
    /// Numbers that follow each other.
    struct SRun {
        std::uint32_t highest = 0;
        std::uint64_t seen = ~std::uint64_t{0};  ///< bit n: the one n before the highest came, or nobody waits for it
    };

    bool m_TakeBehind(SRun& run, std::uint32_t number);
    void m_Restart(std::uint32_t number);

    bool m_begun = false;
    SRun m_run;
    std::optional<SRun> m_before;              ///< before the sender seemed to begin anew
    std::optional<std::uint32_t> m_elsewhere;  ///< a number far off, which the next one may follow
    std::uint64_t m_inOrder = 0;
    SPacketsDelivery m_counts;
};

}  // namespace vyr::inspect
