#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "Options.h"
#include "common/ChannelMap.h"
#include "follow/GuideSessions.h"
#include "follow/LlsFollower.h"
#include "follow/SessionFollower.h"
#include "measure/Arrivals.h"
#include "measure/Traffic.h"
#include "model/Report.h"
#include "wire/Ipv4Decoder.h"

namespace vyr::inspect {

class CJudge;

/// One broadcast, as a capture or a network brings it: gives each stream it finds to that stream's follower, counts
/// what is on the air, and has it judged.
class CBroadcast {
  public:
    /// What was counted of all packets up to now.
    using TCounts = std::function<SPacketCounts()>;

    /// All but the name outlive it.
    CBroadcast(const SOptions& options, const std::string& name, CChannelMap& channelMap, CReport& report,
               CJudge& judge, TCounts counts);
    ~CBroadcast();
    CBroadcast(const CBroadcast&) = delete;
    CBroadcast& operator=(const CBroadcast&) = delete;

    /// The next packet begins, with its time if it has one. False: it is outside what is looked at, and is to be passed
    /// over.
    bool Next(const std::optional<STime>& time);
    /// It is so late, though no packet came: a report on the way may be due.
    void Now(const std::optional<STime>& time);
    /// A datagram that the packet, and those before it, made whole.
    void Take(const SDatagram& datagram);
    /// The end. Not `told`: nobody reads the report any more, only the summary counts.
    void Finish(bool told);

    std::uint64_t Packets() const { return m_source.packet; }

  private:
    using TEndpoint = std::pair<std::uint32_t, std::uint16_t>;

    static constexpr std::size_t k_maxDestinations = 4096;

    void m_Interim();
    void m_Result(bool told);
    void m_Listen(const TEndpoint& stream, CLlsFollower& follower);
    void m_Findings(const SPacketCounts& counts);

    const SOptions& m_options;
    const TCounts m_counts;
    CReport& m_report;
    CJudge& m_judge;
    std::map<TEndpoint, std::unique_ptr<CLlsFollower>> m_lls;
    CGuideFollower m_guide;
    CGuideSessions m_guideSessions;
    const std::unique_ptr<CSessionFollower> m_sessions[2];
    CTraffic m_traffic;
    const CArrivals m_arrivals;
    CWindow m_window;
    SSource m_source;  ///< of the packet under way
    SInputTimes m_times;
    std::map<TEndpoint, std::uint64_t> m_destinations;  ///< datagrams that nothing follows
    bool m_sessionsCaptured = false;                    ///< something came beside the LLS
    CCaptureClock m_clock;
    std::int64_t m_due = 0;  ///< when the next report on the way is, as of the clock
};

}  // namespace vyr::inspect
