#include "follow/SessionFollower.h"

#include <algorithm>

#include "base/Text.h"

namespace vyr::inspect {

CSession::CSession(const SServiceSession& session)
    : followed({session, EndpointText(session.destination, session.port), {}, {}})
{
}

CSession::~CSession() = default;

CSessionFollower::CSessionFollower(const SProtocol& protocol, const std::set<TEndpoint>& endpoints, TMake make,
                                   CReport& report)
    : m_protocol(protocol), m_make(std::move(make)), m_report(report)
{
    for (const auto& [destination, port] : endpoints) {
        m_Add({destination, port, 0}).pinned = true;
    }
}

void CSessionFollower::Announce(const TGroup& group, std::vector<SListedService> services,
                                const std::optional<STime>& now)
{
    const auto foreign = [this](const SListedService& service) {
        return service.slsProtocol != m_protocol.slsProtocol;
    };
    services.erase(std::remove_if(services.begin(), services.end(), foreign), services.end());
    std::map<std::pair<unsigned, SServiceSession>, std::optional<STime>> since;
    for (const SListedService& service : m_services[group]) {
        since.emplace(std::pair(service.serviceId, service.session), service.since);
    }
    // The new ones come first: a session of both lists goes on.
    for (SListedService& service : services) {
        const auto before = since.find({service.serviceId, service.session});
        service.since = before != since.end() ? before->second : now;
        if (service.session.destination != 0) {
            SFollowed& followed = m_Add(service.session).followed;
            followed.services.insert(service.serviceId);
            if (service.IsGuide()) {
                followed.guides.insert(service.serviceId);
            }
        }
    }
    services.swap(m_services[group]);
    for (const SListedService& service : services) {
        if (service.session.destination == 0) {
            continue;
        }
        const auto session = m_sessions.find(service.session);
        SFollowed& followed = session->second->followed;
        followed.services.erase(followed.services.find(service.serviceId));
        if (service.IsGuide()) {
            followed.guides.erase(followed.guides.find(service.serviceId));
        }
        if (followed.services.empty() && !session->second->pinned) {
            m_Remove(session);
        }
    }
    for (const std::vector<SListedService>* list : {&m_services[group], &services}) {
        for (const SListedService& service : *list) {
            if (const auto session = m_sessions.find(service.session); session != m_sessions.end()) {
                session->second->Announced();
            }
        }
    }
}

bool CSessionFollower::Take(const SDatagram& datagram, const SSource& source)
{
    const auto endpoint = m_endpoints.find({datagram.destination, datagram.destinationPort});
    if (endpoint == m_endpoints.end()) {
        return false;
    }
    bool taken = false;
    // A service that names no source takes what comes from any.
    for (const std::uint32_t from : {datagram.source, std::uint32_t{0}}) {
        const auto session = m_sessions.find({datagram.destination, datagram.destinationPort, from});
        if (session != m_sessions.end()) {
            session->second->Take(datagram.payload, source);
            taken = true;
        }
        if (from == 0) {
            break;
        }
    }
    endpoint->second.otherSources += taken ? 0 : 1;
    return taken;
}

void CSessionFollower::Each(const std::function<void(const SFollowed&)>& visit) const
{
    for (const auto& [key, session] : m_sessions) {
        visit(session->followed);
    }
}

void CSessionFollower::Finish(const SInputTimes& times, const SReception& reception, bool captured, double longest,
                              std::set<TListedId>& awaited)
{
    const SSource source = {times.file, 0, {}};
    const auto pending = [&](const std::optional<STime>& since) {
        return since && times.last && Seconds(*times.last) - Seconds(*since) < longest;
    };
    for (const auto& [key, session] : m_sessions) {
        session->Count(m_report.Summary());
        const SSessionCounts& counts = session->Counts();
        const std::string& name = session->followed.name;
        if (counts.malformed != 0) {
            SFinding finding = {m_protocol.malformed,
                                std::to_string(counts.malformed) + " of " + Counted(counts.packets, "packet") + " to " +
                                    name + " are no " + m_protocol.packets,
                                source};
            finding.about = name;
            m_report.Finding(finding);
        }
        if (counts.otherVersions != 0) {
            SFinding finding = {ERule::MMTP_VERSION,
                                std::to_string(counts.otherVersions) + " of " + Counted(counts.packets, "packet") +
                                    " to " + name + " are of a version of MMTP that is not read",
                                source};
            finding.about = name;
            m_report.Finding(finding);
        }
        if (session->pinned && session->followed.services.empty() && !session->Signals() && !counts.Unread() &&
            !reception.Excuses(key, counts.packets)) {
            SFinding finding = {ERule::NO_SIGNALLING, "no signalling on " + name + ": " + m_Missing(*session), source};
            finding.about = name;
            m_report.Finding(finding);
        }
    }
    for (const auto& [group, services] : m_services) {
        for (const SListedService& service : services) {
            ++(m_report.Summary().*m_protocol.services);
            if (captured && !m_Judge(group, service, reception, pending(service.since), source)) {
                awaited.emplace(ServiceListName(group.first, group.second), service.serviceId);
            }
        }
    }
}

/// Counts the service, or tells why it was not signalled. False: that is still `pending`.
bool CSessionFollower::m_Judge(const TGroup& group, const SListedService& service, const SReception& reception,
                               bool pending, const SSource& source)
{
    std::string reason = "the service list gives no address that can be followed";
    SFinding finding = {ERule::NO_SIGNALLING, {}, source};
    finding.serviceId = service.serviceId;
    if (const auto entry = m_sessions.find(service.session); entry != m_sessions.end()) {
        const CSession& session = *entry->second;
        reason = session.Signals() ? session.Missing(service.serviceId) : m_Missing(session);
        if (reason.empty()) {
            ++m_report.Summary().servicesSignalled;
            const std::string missing = service.IsGuide() ? session.MissingGuide() : std::string();
            if (!missing.empty() && reception.Whole() && !pending) {
                finding.rule = ERule::GUIDE_INCOMPLETE;
                finding.message = "no guide on " + session.followed.name + ": " + missing;
                m_report.Finding(finding);
            }
            return true;
        }
        if (pending) {
            return false;
        }
        if (session.Counts().Unread() || reception.Excuses(service.session, session.Counts().packets)) {
            return true;
        }
    }
    finding.message = "no signalling of service " + std::to_string(service.serviceId) + ": " + reason;
    finding.serviceList = ServiceListName(group.first, group.second);
    m_report.Finding(finding);
    return true;
}

CSession& CSessionFollower::m_Add(const SServiceSession& key)
{
    std::unique_ptr<CSession>& entry = m_sessions[key];
    if (!entry) {
        entry = m_make(key);
        ++m_endpoints[{key.destination, key.port}].sessions;
    }
    return *entry;
}

void CSessionFollower::m_Remove(TSessions::iterator session)
{
    session->second->Count(m_report.Summary());
    const auto endpoint = m_endpoints.find({session->first.destination, session->first.port});
    if (--endpoint->second.sessions == 0) {
        m_endpoints.erase(endpoint);
    }
    m_sessions.erase(session);
}

/// Why nothing of the session's signalling could be read.
std::string CSessionFollower::m_Missing(const CSession& session) const
{
    const SSessionCounts& counts = session.Counts();
    const SServiceSession& key = session.followed.session;
    const std::string& name = session.followed.name;
    if (counts.packets == 0) {
        const std::uint64_t others = m_endpoints.at({key.destination, key.port}).otherSources;
        return "no packets to " + name + (key.source != 0 ? " from " + Ipv4Text(key.source) : "") +
               (others != 0 ? "; " + Counted(others, "packet") + " from other sources" : "");
    }
    if (counts.malformed == counts.packets) {
        return "none of " + Counted(counts.packets, "packet") + " to " + name + " is " + m_protocol.packet;
    }
    return session.Missing();
}

}  // namespace vyr::inspect
