#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/BoundedMap.h"
#include "follow/LlsFollower.h"
#include "model/Report.h"
#include "wire/Ipv4Decoder.h"

namespace vyr::inspect {

/// What is sent to one address of LLS: that of one broadcast, or of several, which a capture of more than one frequency
/// has side by side. Each has a follower of its own. Service lists name their broadcast; of other tables the sender
/// tells.
class CLlsStream {
  public:
    using TMake = std::function<std::unique_ptr<CLlsFollower>(const std::string& stream, std::size_t mostServices)>;

    /// `name` is that of the address, and of the stream of the first broadcast; the report outlives the stream.
    CLlsStream(std::string name, TMake make, CReport& report);

    /// Takes a datagram that was sent to the address. Tables of a sender of which no list came yet wait for it, if
    /// another sender's came.
    void Take(const SDatagram& datagram, const SSource& source);
    /// The end of the input, or of a part that is reported: nothing waits any longer.
    void Finish();

    std::uint64_t Tables() const { return m_taken; }
    bool SawSlt() const;
    /// Services in the lists that hold now.
    std::size_t Services() const;

  private:
    using TSender = std::pair<std::uint32_t, std::uint16_t>;
    struct SBroadcast {
        std::unique_ptr<CLlsFollower> follower;
        std::optional<unsigned> bsid;             ///< none: no list came
        std::optional<unsigned> bsidBefore = {};  ///< what it was, if its sender gave it another one
        TSender sender = {};                      ///< of the last list; before there is one, of the first table
        std::optional<STime> lastListed = {};
        std::optional<STime> lastBefore = {};  ///< when a list of bsidBefore came last
        bool told = false;                     ///< that it is one of several
    };
    using TBroadcast = std::list<SBroadcast>::iterator;
    struct SSends {
        TBroadcast broadcast;
        bool lists = false;  ///< its lists; else tables that waited for one
    };
    /// A table that waits for its sender's list.
    struct SWaiting {
        TSender sender;
        std::vector<unsigned char> table;
        SSource source;
    };

    static constexpr std::size_t k_mostBroadcasts = 8;
    static constexpr std::size_t k_mostSenders = 64;
    static constexpr std::size_t k_mostTables = 64;
    static constexpr std::size_t k_mostWaiting = 16;

    std::optional<unsigned> m_Bsid(SView table);
    TBroadcast m_Listed(unsigned bsid, const TSender& sender, const SSource& source);
    void m_Rename(SBroadcast& broadcast, unsigned bsid, const SSource& source);
    std::optional<TBroadcast> m_Of(const TSender& sender);
    void m_TakeList(TBroadcast listed, const SDatagram& datagram, const SSource& source);
    void m_EndWaiting(const std::optional<STime>& now);
    TBroadcast m_End(TBroadcast broadcast, std::vector<TListKey>& gone);
    void m_Sends(const TSender& sender, const SSends& what);
    std::vector<TListKey> m_EndOthers(TBroadcast listed, const SSource& source);
    void m_TellOf(SBroadcast& listed, const SSource& source);
    void m_Tell(const std::string& one, const std::string& other, const SSource& source);

    const std::string m_name;
    const TMake m_make;
    CReport& m_report;
    std::list<SBroadcast> m_broadcasts;  ///< one at least
    std::map<TSender, SSends> m_senders;
    CBoundedMap<std::uint64_t, std::optional<unsigned>> m_bsids;  ///< of tables, by their hash
    std::list<SWaiting> m_waiting;
    SBroadcast* m_lastListed = nullptr;  ///< whose list came last
    std::uint64_t m_taken = 0;
    bool m_sawSlt = false;  ///< of a broadcast that ended
};

}  // namespace vyr::inspect
