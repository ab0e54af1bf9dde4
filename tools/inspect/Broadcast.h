#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Options.h"
#include "common/ChannelMap.h"
#include "follow/GuideSessions.h"
#include "follow/LlsStream.h"
#include "follow/SessionFollower.h"
#include "measure/Arrivals.h"
#include "measure/Traffic.h"
#include "model/Reception.h"
#include "model/Report.h"
#include "wire/Ipv4Decoder.h"

namespace vyr::inspect {

class CJudge;

/// What is broadcast, as a capture or a network brings it: gives each stream it finds to that stream's follower, counts
/// what is on the air, and has it judged.
class CBroadcast {
  public:
    /// What came in up to now, and what did not.
    using TReception = std::function<SReception()>;

    /// All but the name outlive it.
    CBroadcast(const SOptions& options, const std::string& name, CChannelMap& channelMap, CReport& report,
               CJudge& judge, TReception reception);
    ~CBroadcast();
    CBroadcast(const CBroadcast&) = delete;
    CBroadcast& operator=(const CBroadcast&) = delete;

    /// The next packet begins, with its time if it has one. False: it is outside what is looked at, and is to be passed
    /// over.
    bool Next(const std::optional<STime>& time);
    /// A datagram that the packet, and those before it, made whole.
    void Take(const SDatagram& datagram);
    /// Time goes on, with packets or without: to be called at least once a second of what is live. Gives the sessions
    /// that are to be received from now on, those that the user of the tool named first.
    const std::vector<SServiceSession>& Now(const STime& time);
    /// The end. Not `told`: nobody reads the report any more, only the summary counts.
    void Finish(bool told);

    std::uint64_t Packets() const { return m_source.packet; }

  private:
    using TEndpoint = std::pair<std::uint32_t, std::uint16_t>;

    static constexpr std::size_t k_maxDestinations = 4096;

    void m_Tick(const std::optional<STime>& time);
    void m_Interim();
    void m_Result(bool told);
    void m_Listen(CLlsFollower& follower);
    std::vector<SServiceSession> m_Sessions() const;
    void m_Findings(const SReception& reception);

    const SOptions& m_options;
    const TReception m_reception;
    CReport& m_report;
    CJudge& m_judge;
    std::map<TEndpoint, CLlsStream> m_lls;
    CGuideFollower m_guide;
    CGuideSessions m_guideSessions;
    const std::unique_ptr<CSessionFollower> m_sessions[2];
    CTraffic m_traffic;
    const CArrivals m_arrivals;
    CWindow m_window;
    SSource m_source;  ///< of the packet under way
    SInputTimes m_times;
    std::map<TEndpoint, std::uint64_t> m_destinations;  ///< datagrams that nothing follows
    bool m_sessionsCaptured = false;                    ///< something of the sessions that are followed came
    CCaptureClock m_clock;
    std::int64_t m_costs = 0;                  ///< time to the next report on the way at least, as of the clock
    std::int64_t m_due = 0;                    ///< when the next report on the way is, as of the clock
    std::vector<SServiceSession> m_wanted;     ///< sessions to be received
    std::optional<std::uint64_t> m_wantedFor;  ///< what the judge's changes were then
    double m_wantedAt = 0;
};

}  // namespace vyr::inspect
