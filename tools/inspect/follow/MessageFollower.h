#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "model/Report.h"
#include "model/ServiceSession.h"

namespace vyr::inspect {

/// Follows the MMT signalling messages of one session: tells of each what is new about it.
class CMessageFollower {
  public:
    /// All references outlive the follower.
    CMessageFollower(const SFollowed& followed, CReport& report);

    /// Takes one whole message; `packetId` is none for a raw file.
    void Take(const std::optional<std::uint16_t>& packetId, SView message, const SSource& source);
    /// Whether any message has parsed.
    bool Signals() const { return m_parsed; }
    /// Why what has parsed does not signal the service; empty: it does.
    std::string Missing(unsigned serviceId) const;
    /// What was wrong last.
    const std::string& LastFault() const { return m_lastFault; }

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
    void m_Fault(EFault code, const std::string& message, const SSource& source);

    const SFollowed& m_followed;
    CReport& m_report;
    std::map<TKey, SState> m_messages;
    std::list<TKey> m_order;  ///< of m_messages, oldest first
    std::set<unsigned> m_services;
    std::string m_lastFault = "its messages are none that the library supports";
    bool m_parsed = false;
};

}  // namespace vyr::inspect
