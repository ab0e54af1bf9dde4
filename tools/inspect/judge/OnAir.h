#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "judge/Evidence.h"
#include "judge/Names.h"

namespace vyr::inspect {

/// What came of something that signalling announces.
struct SPresence {
    enum EState {
        COMES,
        STOPPED,   ///< it came, and comes no more
        ABSENT,    ///< it is due, would be in the capture, and is not
        NOT_DUE,   ///< it is announced for another time, others took its place, or no list has its service any more
        TOO_SOON,  ///< it was announced too shortly before the end to tell
        UNKNOWN    ///< it may have been sent, and not captured
    };
    static constexpr std::size_t k_states = UNKNOWN + 1;

    EState state = UNKNOWN;
    double seconds = 0;  ///< ABSENT: since it was announced, STOPPED: since it came last
};

/// What is on the air of a capture, of all that signalling announces: rules and verdicts go by the same.
class COnAir {
  public:
    /// Both outlive it.
    COnAir(const SEvidence& evidence, const SDelivery& delivery);

    const TLctSessions& Announced() const { return m_lct; }
    /// Something that is no signalling came, where signalling names sessions or addresses.
    bool Media() const { return m_media; }
    /// "video" of a component, by the S-TSID, or else the MPD.
    std::string TypeOf(const SPackageFacts& package, const SLctFacts& lct) const;
    SPresence Of(const SPackageFacts& package, const SLctFacts& lct) const;
    /// Of an asset of an MP table that came on the session.
    SPresence Of(const std::string& session, const SMpTableFacts& table, const SAssetFacts& asset) const;

    /// Whether it is an asset of which packets come all the time: no subtitles or files.
    static bool IsSteady(const SAssetFacts& asset);
    /// Whether packets are sent that can repair others of the session.
    static bool HasRepair(const SSessionDelivery& session);

  private:
    static constexpr double k_never = -std::numeric_limits<double>::infinity();

    /// What is needed of a package more than once.
    struct SLook {
        double elsewhere = k_never;                ///< when media came last beside the session of its signalling
        std::map<std::string, std::string> types;  ///< of the MPD's representations
        std::map<std::string, double> begun;       ///< when the latest LCT session of a type began
    };
    /// What came to a destination, as far as one protocol is concerned.
    struct SCaptured {
        double last = k_never;
        bool allFlows = true;  ///< false: not all that came there is known
    };
    using TTimes = std::map<std::string, double>;  ///< by destination
    using TPlace = std::pair<std::string, std::uint64_t>;

    void m_Count(const SSessionDelivery& session, const std::set<std::string>& addresses);
    /// For how many seconds the lists have services at the session, if its signalling is that of services; none: they
    /// have none any more.
    std::optional<double> m_Listed(const std::string& session, const std::vector<unsigned>& announced) const;
    const SLook& m_LookAt(const SPackageFacts& package) const;
    bool m_Stopped(const STraffic& traffic) const;
    bool m_WouldBeCaptured(const SPackageFacts& package, const std::string& destination, double after) const;
    SPresence m_OfFlows(const SPackageFacts& package, const SLctFacts& lct, const SLctSession& session,
                        double since) const;

    const SEvidence& m_evidence;
    const SDelivery& m_delivery;
    const TLctSessions m_lct;
    bool m_media = false;
    bool m_mmtMedia = false;
    TTimes m_listed;  ///< sessions of the services of the lists that hold, and since how many seconds these do
    TTimes m_came;    ///< when media of which objects went by came last
    std::map<std::string, SCaptured> m_route;  ///< by destination
    std::map<std::string, SCaptured> m_mmt;
    std::map<TPlace, const SFlowDelivery*> m_packets;  ///< of packet_ids, those that came last
    mutable std::map<const SPackageFacts*, SLook> m_looks;
};

/// For how many seconds the capture goes on behind it.
double SecondsBehind(const SEvidence& evidence, const SSource& source);

}  // namespace vyr::inspect
