#include "RouteFollower.h"

#include <algorithm>

#include "Text.h"

namespace vyr::inspect {

struct CRouteFollower::SSession {
    SSession(const SRouteSession& sessionKey, CRouteFollower& owner)
        : key(sessionKey),
          name(EndpointText(sessionKey.destination, sessionKey.port)),
          follower(name, sessionKey, owner.m_report),
          assembler(owner.m_memory,
                    [this, &owner](const TToi& toi, SBytes object) { owner.m_Object(*this, toi, object); })
    {
        counts.sessions = 1;
    }

    const SRouteSession key;
    const std::string name;
    CSlsFollower follower;
    CObjectAssembler assembler;
    bool pinned = false;
    SRouteCounts counts;
};

CRouteFollower::CRouteFollower(const std::set<TEndpoint>& endpoints, CReport& report) : m_report(report)
{
    for (const auto& [destination, port] : endpoints) {
        m_Add({destination, port, 0}).pinned = true;
    }
}

CRouteFollower::~CRouteFollower() = default;

void CRouteFollower::Announce(const TGroup& group, std::vector<SRouteService> services)
{
    // The new ones come first: a session of both lists goes on.
    for (const SRouteService& service : services) {
        if (service.session.destination != 0) {
            m_Add(service.session).follower.AddService(service.serviceId);
        }
    }
    services.swap(m_services[group]);
    for (const SRouteService& service : services) {
        if (service.session.destination == 0) {
            continue;
        }
        const auto session = m_sessions.find(service.session);
        session->second->follower.RemoveService(service.serviceId);
        if (session->second->follower.Services().empty() && !session->second->pinned) {
            m_Remove(session);
        }
    }
}

bool CRouteFollower::Take(const SDatagram& datagram, const SSource& source)
{
    const auto endpoint = m_endpoints.find({datagram.destination, datagram.destinationPort});
    if (endpoint == m_endpoints.end()) {
        return false;
    }
    m_source = &source;
    bool taken = false;
    // A service that names no source takes what comes from any.
    for (const std::uint32_t from : {datagram.source, std::uint32_t{0}}) {
        const auto session = m_sessions.find({datagram.destination, datagram.destinationPort, from});
        if (session != m_sessions.end()) {
            m_Take(*session->second, datagram.payload);
            taken = true;
        }
        if (from == 0) {
            break;
        }
    }
    endpoint->second.otherSources += taken ? 0 : 1;
    return taken;
}

void CRouteFollower::Finish(const std::string& file)
{
    const SSource source = {file, 0, {}};
    for (const auto& [key, session] : m_sessions) {
        m_Count(*session);
        if (session->counts.malformed != 0) {
            m_report.Fault({EFault::LCT_MALFORMED,
                            std::to_string(session->counts.malformed) + " of " +
                                Counted(session->counts.packets, "packet") + " to " + session->name +
                                " are no LCT packets of ROUTE",
                            source});
        }
        if (session->pinned && session->follower.Services().empty() && !session->follower.Signals()) {
            m_report.Fault(
                {EFault::NO_SIGNALLING, "no signalling on " + session->name + ": " + m_Missing(*session), source});
        }
    }
    for (const auto& [group, services] : m_services) {
        for (const SRouteService& service : services) {
            m_Judge(service, source);
        }
    }
}

/// Counts the service, or tells why it was not signalled.
void CRouteFollower::m_Judge(const SRouteService& service, const SSource& source)
{
    SSummary& summary = m_report.Summary();
    ++summary.routeServices;
    std::string reason = "the service list gives no address that can be followed";
    if (const auto entry = m_sessions.find(service.session); entry != m_sessions.end()) {
        const SSession& session = *entry->second;
        reason = session.follower.Signals() ? session.follower.Missing(service.serviceId) : m_Missing(session);
    }
    if (reason.empty()) {
        ++summary.servicesSignalled;
        return;
    }
    SFault fault = {EFault::NO_SIGNALLING,
                    "no signalling of service " + std::to_string(service.serviceId) + ": " + reason, source};
    fault.serviceId = service.serviceId;
    m_report.Fault(fault);
}

CRouteFollower::SSession& CRouteFollower::m_Add(const SRouteSession& key)
{
    std::unique_ptr<SSession>& entry = m_sessions[key];
    if (!entry) {
        entry = std::make_unique<SSession>(key, *this);
        ++m_endpoints[{key.destination, key.port}].sessions;
    }
    return *entry;
}

void CRouteFollower::m_Remove(TSessions::iterator session)
{
    m_Count(*session->second);
    const auto endpoint = m_endpoints.find({session->first.destination, session->first.port});
    if (--endpoint->second.sessions == 0) {
        m_endpoints.erase(endpoint);
    }
    m_recent.remove(session->second.get());
    m_sessions.erase(session);
}

void CRouteFollower::m_Take(SSession& session, SBytes payload)
{
    SLctPacket packet;
    ++session.counts.packets;
    if (!ReadLct(payload, packet)) {
        ++session.counts.malformed;
    } else if (packet.tsi == 0 && packet.source && packet.data.size != 0) {
        ++session.counts.signalling;
        session.assembler.Take(packet);
    }
}

void CRouteFollower::m_Object(SSession& session, const TToi& toi, SBytes object)
{
    session.follower.Take(toi, object, *m_source);
    m_recent.remove(&session);
    if (session.follower.Holds()) {
        m_recent.push_front(&session);
    }
    if (m_recent.size() > k_maxManagers) {
        m_recent.back()->follower.Release();
        m_recent.pop_back();
    }
}

void CRouteFollower::m_Count(const SSession& session)
{
    SRouteCounts counts = session.counts;
    counts.objects = session.assembler.Counts();
    for (const CObjectAssembler::SIncomplete& open : session.assembler.Open()) {
        counts.incomplete += session.follower.Has(open.toi, open.length) ? 0 : 1;
    }
    m_report.Summary().route += counts;
}

/// Why nothing of the session's signalling could be read.
std::string CRouteFollower::m_Missing(const SSession& session) const
{
    const SRouteCounts& counts = session.counts;
    if (counts.packets == 0) {
        const std::uint64_t others = m_endpoints.at({session.key.destination, session.key.port}).otherSources;
        return "no packets to " + session.name +
               (session.key.source != 0 ? " from " + Ipv4Text(session.key.source) : "") +
               (others != 0 ? "; " + Counted(others, "packet") + " from other sources" : "");
    }
    const std::string all = Counted(counts.packets, "packet") + " to " + session.name;
    if (counts.malformed == counts.packets) {
        return "none of " + all + " is an LCT packet of ROUTE";
    }
    if (counts.signalling == 0) {
        return "none of " + all + " carries source data of TSI 0";
    }
    if (session.assembler.Counts().complete != 0) {
        return session.follower.LastFault();
    }
    const std::vector<CObjectAssembler::SIncomplete> open = session.assembler.Open();
    if (open.empty()) {
        return "its objects are larger than the tool takes";
    }
    const CObjectAssembler::SIncomplete& last = open.back();
    return Counted(open.size(), "object") + " incomplete; of the last one, TOI " + ToiText(last.toi) + ", " +
           std::to_string(last.held) + " of " + (last.length ? std::to_string(*last.length) : "an unknown number of") +
           " bytes came";
}

}  // namespace vyr::inspect
