#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Ipv4.h"
#include "ObjectAssembler.h"
#include "Report.h"
#include "RouteService.h"
#include "SlsFollower.h"

namespace vyr::inspect {

/// Follows the signalling of every service that is carried by ROUTE: TSI 0 of the sessions that the
/// service lists announce, and of those that it is told of.
class CRouteFollower {
  public:
    using TEndpoint = std::pair<std::uint32_t, std::uint16_t>;
    using TGroup = std::pair<TEndpoint, unsigned char>;

    /// `endpoints` are followed whether they are announced or not; the report outlives the follower.
    CRouteFollower(const std::set<TEndpoint>& endpoints, CReport& report);
    ~CRouteFollower();
    CRouteFollower(const CRouteFollower&) = delete;
    CRouteFollower& operator=(const CRouteFollower&) = delete;

    /// The services that the list of an LLS group, known by its stream and id, announces from now on.
    /// Sessions that no list names any more are let go.
    void Announce(const TGroup& group, std::vector<SRouteService> services);
    /// Takes a datagram; false: it belongs to none of the sessions.
    bool Take(const SDatagram& datagram, const SSource& source);
    /// The end of the input: adds to the summary, and tells which services were not signalled.
    void Finish(const std::string& file);

  private:
    static constexpr std::size_t k_maxManagers = 64;

    struct SSession;
    using TSessions = std::map<SRouteSession, std::unique_ptr<SSession>>;
    struct SEndpoint {
        unsigned sessions = 0;
        std::uint64_t otherSources = 0;  ///< datagrams that belong to none of them
    };

    SSession& m_Add(const SRouteSession& key);
    void m_Remove(TSessions::iterator session);
    void m_Take(SSession& session, SBytes payload);
    void m_Object(SSession& session, const TToi& toi, SBytes object);
    void m_Count(const SSession& session);
    void m_Judge(const SRouteService& service, const SSource& source);
    std::string m_Missing(const SSession& session) const;

    CReport& m_report;
    CAssemblyMemory m_memory;
    TSessions m_sessions;
    std::map<TEndpoint, SEndpoint> m_endpoints;  ///< of m_sessions
    std::map<TGroup, std::vector<SRouteService>> m_services;
    std::list<SSession*> m_recent;  ///< sessions for which the library holds something, latest first
    const SSource* m_source = nullptr;
};

}  // namespace vyr::inspect
