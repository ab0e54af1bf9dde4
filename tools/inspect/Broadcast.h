#pragma once

#include <cstdint>
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
    /// All but the name outlive it.
    CBroadcast(const SOptions& options, const std::string& name, CChannelMap& channelMap, CReport& report,
               CJudge& judge);
    ~CBroadcast();
    CBroadcast(const CBroadcast&) = delete;
    CBroadcast& operator=(const CBroadcast&) = delete;

    /// The next packet begins, with its time if it has one. False: it is outside what is looked at, and is to be passed
    /// over.
    bool Next(const std::optional<STime>& time);
    /// A datagram that the packet, and those before it, made whole.
    void Take(const SDatagram& datagram);
    /// The end; `counts` are of all packets. Not `told`: nobody reads the report any more, only the summary counts.
    void Finish(const SPacketCounts& counts, bool told);

    std::uint64_t Packets() const { return m_source.packet; }

  private:
    using TEndpoint = std::pair<std::uint32_t, std::uint16_t>;

    static constexpr std::size_t k_maxDestinations = 4096;

    void m_Listen(const TEndpoint& stream, CLlsFollower& follower);
    void m_Findings(const SPacketCounts& counts);

    const SOptions& m_options;
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
};

}  // namespace vyr::inspect
