#include "Broadcast.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <set>
#include <vector>

#include "base/Text.h"
#include "follow/MmtFollower.h"
#include "follow/RouteFollower.h"
#include "judge/Judge.h"

namespace vyr::inspect {

namespace {

constexpr std::size_t k_busiest = 3;

std::string Busiest(const std::map<std::pair<std::uint32_t, std::uint16_t>, std::uint64_t>& destinations)
{
    std::vector<std::pair<std::uint64_t, std::string>> sorted;
    for (const auto& [endpoint, count] : destinations) {
        sorted.emplace_back(count, EndpointText(endpoint.first, endpoint.second));
    }
    std::stable_sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
    std::string text;
    for (std::size_t i = 0; i < sorted.size() && i < k_busiest; ++i) {
        text += (i == 0 ? "" : ", ") + sorted[i].second + " (" + std::to_string(sorted[i].first) + ')';
    }
    return text;
}

std::string DroppedText(const SPacketCounts& counts)
{
    return Joined({counts.dropped != 0 ? Counted(counts.dropped, "packet") + " dropped besides the " +
                                             std::to_string(counts.packets) + " that were read"
                                       : std::string(),
                   counts.lostByInterface != 0
                       ? Counted(counts.lostByInterface, "packet") + " of whatever kind lost by the interface"
                       : std::string()});
}

/// What the user of the tool says of the sessions of a capture.
void AnnounceOptions(const SOptions& options, CTraffic& traffic)
{
    const auto announce = [&traffic](const auto& endpoints, EDeliveryProtocol protocol) {
        for (const auto& [destination, port] : endpoints) {
            traffic.Announce({destination, port, 0}, protocol);
        }
    };
    announce(options.llsStreams, EDeliveryProtocol::LLS);
    announce(options.routeSessions, EDeliveryProtocol::ROUTE);
    announce(options.mmtpSessions, EDeliveryProtocol::MMTP);
}

void AnnounceServices(const std::vector<SListedService>& services, CTraffic& traffic)
{
    for (const SListedService& service : services) {
        const EDeliveryProtocol protocol = service.slsProtocol == 1   ? EDeliveryProtocol::ROUTE
                                           : service.slsProtocol == 2 ? EDeliveryProtocol::MMTP
                                                                      : EDeliveryProtocol::UNKNOWN;
        traffic.Announce(service.session, protocol, service.serviceId);
    }
}

/// Whether anything came of the sessions of services: to an address that is announced, or what looks like it to another
/// one. Other traffic of the network that the capture was made in is none.
bool SessionsCaptured(const SDelivery& delivery)
{
    constexpr std::uint32_t k_localMulticast = 0xE00000;  // 224.0.0.x
    std::set<std::pair<std::uint32_t, std::uint16_t>> announced;
    for (const SSessionDelivery& session : delivery.sessions) {
        if (session.Named()) {
            announced.emplace(session.destination, session.port);
        }
    }
    return std::any_of(delivery.sessions.begin(), delivery.sessions.end(), [&](const SSessionDelivery& session) {
        const bool multicast = session.destination >> 28 == 0xE && session.destination >> 8 != k_localMulticast;
        return session.traffic.packets != 0 && session.protocol != EDeliveryProtocol::LLS &&
               (announced.count({session.destination, session.port}) != 0 ||
                (multicast && session.protocol != EDeliveryProtocol::UNKNOWN));
    });
}

}  // namespace

CBroadcast::CBroadcast(const SOptions& options, const std::string& name, CChannelMap& channelMap, CReport& report,
                       CJudge& judge, TReception reception)
    : m_options(options),
      m_reception(std::move(reception)),
      m_report(report),
      m_judge(judge),
      m_guide(report),
      m_guideSessions(m_guide, report, options.files),
      m_sessions{FollowRoute(options.routeSessions, m_guideSessions, report), FollowMmtp(options.mmtpSessions, report)},
      m_traffic([&judge](const SServiceSession& session, std::uint64_t tsi, const TToi& toi) {
          return judge.FileLength(session, tsi, toi);
      }),
      m_arrivals(report, m_traffic),
      m_window(options.from, options.until),
      m_source{name, 0, {}},
      m_times{name, {}, {}}
{
    AnnounceOptions(options, m_traffic);
    const auto make = [this, &channelMap](const std::string& stream, std::size_t mostServices) {
        auto follower = std::make_unique<CLlsFollower>(stream, !m_options.strict, channelMap, m_report, mostServices);
        m_Listen(*follower);
        return follower;
    };
    for (const TEndpoint& stream : options.llsStreams) {
        m_lls.try_emplace(stream, EndpointText(stream.first, stream.second), make, report);
    }
}

CBroadcast::~CBroadcast() = default;

void CBroadcast::m_Listen(CLlsFollower& follower)
{
    follower.SetServiceListener(
        [this, stream = follower.Stream()](unsigned char groupId, const std::vector<SListedService>& services) {
            AnnounceServices(services, m_traffic);
            for (const auto& protocol : m_sessions) {
                protocol->Announce({stream, groupId}, services, m_source.time);
            }
            m_guide.Announce({stream, groupId}, services);
        });
}

bool CBroadcast::Next(const std::optional<STime>& time)
{
    const bool taken = m_window.Takes(time);
    if (taken && m_options.every != 0) {
        m_Tick(time);
    }
    ++m_source.packet;
    if (!taken) {
        return false;
    }
    m_source.time = time;
    m_times.Add(time);
    return true;
}

/// A report on the way may be due.
void CBroadcast::m_Tick(const std::optional<STime>& time)
{
    const auto every = static_cast<std::int64_t>(m_options.every * CCaptureClock::k_second);
    m_clock.Now(time);
    if (every == 0 || !time || m_clock.End() < m_due) {
        return;
    }
    if (m_due != 0) {
        m_Interim();
    }
    // Of what is live, nothing but a tenth of the time goes into reports, however much there is to say.
    m_due = std::max(m_clock.End() / every * every + every, m_clock.End() + m_costs);
}

/// What there would be to say if this were the end.
void CBroadcast::m_Interim()
{
    const auto begin = std::chrono::steady_clock::now();
    m_guide.Show(m_source);
    m_judge.BeginInterim();
    m_report.BeginInterim();
    m_Result(true);
    m_report.EndInterim(m_source, static_cast<double>(m_clock.End()) / CCaptureClock::k_second);
    m_judge.EndInterim();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    m_costs =
        m_options.live.interface.empty() ? 0 : static_cast<std::int64_t>(took.count() * 9 * CCaptureClock::k_second);
}

void CBroadcast::Take(const SDatagram& datagram)
{
    const TEndpoint endpoint = {datagram.destination, datagram.destinationPort};
    m_traffic.Take(datagram, m_source.time);
    if (const auto stream = m_lls.find(endpoint); stream != m_lls.end()) {
        stream->second.Take(datagram, m_source);
        return;
    }
    bool taken = m_guideSessions.Take(datagram, m_source);
    for (const auto& protocol : m_sessions) {
        taken = protocol->Take(datagram, m_source) || taken;
    }
    m_sessionsCaptured = m_sessionsCaptured || taken;
    if (!taken && (m_destinations.size() < k_maxDestinations || m_destinations.count(endpoint) != 0)) {
        ++m_destinations[endpoint];
    }
}

void CBroadcast::Finish(bool told)
{
    m_Result(told);
    m_guideSessions.Close();
}

const std::vector<SServiceSession>& CBroadcast::Now(const STime& time)
{
    m_Tick(time);
    constexpr double k_often = 0.1;  // seconds: signalling may change with every packet
    const bool late = std::abs(Seconds(time) - m_wantedAt) >= k_often;
    if (!m_wantedFor || (late && *m_wantedFor != m_judge.Changes())) {
        m_wantedFor = m_judge.Changes();
        m_wantedAt = Seconds(time);
        m_wanted = m_Sessions();
    }
    return m_wanted;
}

/// Those that signalling names, or the user of the tool.
std::vector<SServiceSession> CBroadcast::m_Sessions() const
{
    std::vector<SServiceSession> sessions;
    for (const auto* asked : {&m_options.llsStreams, &m_options.routeSessions, &m_options.mmtpSessions}) {
        for (const auto& [destination, port] : *asked) {
            sessions.push_back({destination, port, 0});
        }
    }
    std::set<std::string> names;
    for (const auto& protocol : m_sessions) {
        protocol->Each([&](const SFollowed& followed) {
            sessions.push_back(followed.session);
            names.insert(followed.name);
        });
    }
    m_guideSessions.Each([&](const SServiceSession& session, std::uint64_t) { sessions.push_back(session); });
    m_judge.EachSession(names, [&](const std::string& destination, const std::string& source) {
        if (const auto endpoint = ReadEndpoint(destination)) {
            sessions.push_back({endpoint->first, endpoint->second, ReadIpv4(source).value_or(0)});
        }
    });
    return sessions;
}

/// What there is to say of all that came, at the end or on the way.
void CBroadcast::m_Result(bool told)
{
    const SReception reception = m_reception();
    const SPacketCounts& counts = reception.counts;
    const std::string& name = m_source.file;
    SSummary& summary = m_report.Summary();
    if (m_times.first) {
        summary.times.push_back(m_times);
    }
    AddCounts(summary.packets, counts);
    for (auto& [endpoint, stream] : m_lls) {
        stream.Finish();
        summary.llsDatagrams += stream.Tables();
        summary.services += stream.Services();
    }
    if (!told) {
        return;
    }
    m_guideSessions.Each(
        [this](const SServiceSession& session, std::uint64_t tsi) { m_traffic.Name(session, tsi, "service guide"); });
    SDelivery delivery = m_traffic.Result({name, 0, {}});
    delivery.packetsCut = counts.cut;
    delivery.unread = reception.Unread();
    delivery.received = reception.Whole();
    delivery.arrivals = m_arrivals.Result();
    // Of packets that could not be read, nobody knows the session.
    const bool captured = m_sessionsCaptured || reception.Unread() || SessionsCaptured(delivery);
    const std::uint64_t before = summary.routeServices + summary.mmtpServices;
    for (const auto& protocol : m_sessions) {
        protocol->Finish(m_times, reception, captured, m_options.rules.longestInterval, delivery.awaited);
    }
    const std::uint64_t services = summary.routeServices + summary.mmtpServices - before;
    if (!captured && services != 0) {
        m_report.Finding({ERule::NO_SESSIONS,
                          "no session was captured beside the LLS: nothing can be said of the signalling of " +
                              Counted(services, "service"),
                          {name, 0, {}}});
    }
    m_guideSessions.Finish(m_times, reception.Whole());
    m_guide.Finish(name);
    m_Findings(reception);
    m_judge.Finish(m_times, captured, &delivery);
}

/// What is wrong with a capture as a whole, and why what was expected is missing.
void CBroadcast::m_Findings(const SReception& reception)
{
    const SPacketCounts& counts = reception.counts;
    const SSource source = {m_source.file, 0, {}};
    if (counts.cut != 0) {
        m_report.Finding({ERule::PACKETS_CUT,
                          std::to_string(counts.cut) + " of " + Counted(counts.packets, "packet") +
                              " cut by the capture: their datagrams are lost",
                          source});
    }
    if (reception.Lossy()) {
        m_report.Finding(
            {ERule::PACKETS_DROPPED, DroppedText(counts) + ": what is missing may be missing here only", source});
    }
    if (counts.compressed != 0) {
        m_report.Finding({ERule::PACKETS_COMPRESSED,
                          std::to_string(counts.compressed) + " of " + Counted(counts.packets, "link-layer packet") +
                              " with compressed headers, which are not read",
                          source});
    }
    if (counts.malformed != 0) {
        m_report.Finding({ERule::PACKETS_MALFORMED,
                          std::to_string(counts.malformed) + " of " + Counted(counts.packets, "packet") + " malformed",
                          source});
    }
    for (const auto& [endpoint, stream] : m_lls) {
        const std::string streamText = EndpointText(endpoint.first, endpoint.second);
        if (reception.Excuses({endpoint.first, endpoint.second, 0}, stream.Tables())) {
            continue;
        }
        if (stream.Tables() == 0 && m_options.routeSessions.empty() && m_options.mmtpSessions.empty()) {
            const std::string busiest = Busiest(m_destinations);
            m_report.Finding({ERule::NO_LLS,
                              "no LLS: none of " + Counted(counts.datagrams, "UDP datagram") + " goes to " +
                                  streamText + (busiest.empty() ? "" : "; the busiest destinations are " + busiest),
                              source});
        } else if (stream.Tables() != 0 && !stream.SawSlt()) {
            m_report.Finding(
                {ERule::NO_SLT, "no SLT among " + Counted(stream.Tables(), "LLS table") + " on " + streamText, source});
        }
    }
}

}  // namespace vyr::inspect
