#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "base/BoundedMap.h"
#include "base/Bytes.h"
#include "follow/Follower.h"

namespace vyr::inspect {

/// Follows the MMT signalling messages of one session: tells of each what is new about it.
class CMessageFollower : public CFollower {
  public:
    /// All references outlive the follower.
    CMessageFollower(const SFollowed& followed, CReport& report);

    /// Takes one whole message; `packetId` is none for a raw file.
    void Take(const std::optional<std::uint16_t>& packetId, SView message, const SSource& source);

  private:
    static constexpr std::size_t k_maxMessages = 256;
    static constexpr std::size_t k_maxServices = 64;

    /// Packet id, and what makes messages of one kind.
    using TKey = std::pair<std::uint16_t, std::vector<unsigned>>;
    struct SState {
        std::vector<unsigned> versions;
        std::size_t size = 0;
        std::uint64_t hash = 0;
    };

    EStatus m_Compare(const TKey& key, const SState& state, std::size_t& sizeBefore);

    CBoundedMap<TKey, SState> m_messages{k_maxMessages};
};

}  // namespace vyr::inspect
