#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "model/Reception.h"
#include "model/Report.h"
#include "model/ServiceSession.h"
#include "wire/Ipv4Decoder.h"

namespace vyr::inspect {

/// One session of a protocol that carries signalling.
class CSession {
  public:
    explicit CSession(const SServiceSession& session);
    virtual ~CSession();
    CSession(const CSession&) = delete;
    CSession& operator=(const CSession&) = delete;

    virtual void Take(SView payload, const SSource& source) = 0;
    /// The services of `followed` may have changed.
    virtual void Announced() {}
    /// Whether anything of its signalling could be read.
    virtual bool Signals() const = 0;
    /// Why what was read does not signal the service; empty: it does.
    virtual std::string Missing(unsigned serviceId) const = 0;
    /// Why nothing could be read of packets that are not all malformed.
    virtual std::string Missing() const = 0;
    /// Why the signalling that came leads to no service guide; empty: it may.
    virtual std::string MissingGuide() const { return {}; }
    virtual const SSessionCounts& Counts() const = 0;
    /// Adds what came to the summary.
    virtual void Count(SSummary& summary) const = 0;

    SFollowed followed;
    bool pinned = false;  ///< followed whether it is announced or not
};

/// What sets the protocols apart that the sessions of services use.
struct SProtocol {
    int slsProtocol;
    ERule malformed;
    const char* packet;   ///< "an LCT packet of ROUTE"
    const char* packets;  ///< "LCT packets of ROUTE"
    std::uint64_t SSummary::*services;
};

/// Follows the signalling of every service that one protocol carries: the sessions that the service lists
/// announce, and those that it is told of.
class CSessionFollower {
  public:
    using TEndpoint = std::pair<std::uint32_t, std::uint16_t>;
    using TGroup = TListKey;
    using TMake = std::function<std::unique_ptr<CSession>(const SServiceSession&)>;

    /// `endpoints` are followed whether they are announced or not; `make` makes the sessions; the report
    /// outlives the follower.
    CSessionFollower(const SProtocol& protocol, const std::set<TEndpoint>& endpoints, TMake make, CReport& report);

    /// The services that the list of an LLS group, known by its stream and id, announces from now on; those of
    /// other protocols do not count. Sessions that no list names any more are let go.
    void Announce(const TGroup& group, std::vector<SListedService> services, const std::optional<STime>& now);
    /// Takes a datagram; false: it belongs to none of the sessions.
    bool Take(const SDatagram& datagram, const SSource& source);
    /// The sessions that are followed now.
    void Each(const std::function<void(const SFollowed&)>& visit) const;
    /// The end of the input, or of a part that is reported: adds to the summary, and tells which services were not
    /// signalled within so many seconds, unless the reception was at fault. Not `captured`: the input has no sessions
    /// at all, and says nothing of their signalling. Adds to `awaited`, by list and id, those that were not signalled
    /// and have not been listed for so long.
    void Finish(const SInputTimes& times, const SReception& reception, bool captured, double longest,
                std::set<TListedId>& awaited);

  private:
    using TSessions = std::map<SServiceSession, std::unique_ptr<CSession>>;
    struct SEndpoint {
        unsigned sessions = 0;
        std::uint64_t otherSources = 0;  ///< datagrams that belong to none of them
    };

    CSession& m_Add(const SServiceSession& key);
    void m_Remove(TSessions::iterator session);
    bool m_Judge(const TGroup& group, const SListedService& service, const SReception& reception, bool pending,
                 const SSource& source);
    std::string m_Missing(const CSession& session) const;

    const SProtocol m_protocol;
    const TMake m_make;
    CReport& m_report;
    TSessions m_sessions;
    std::map<TEndpoint, SEndpoint> m_endpoints;  ///< of m_sessions
    std::map<TGroup, std::vector<SListedService>> m_services;
};

}  // namespace vyr::inspect
