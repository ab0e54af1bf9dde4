#include <algorithm>
#include <cmath>
#include <set>

#include "base/Text.h"
#include "judge/Names.h"
#include "judge/OnAir.h"
#include "judge/Read.h"
#include "judge/Rules.h"

namespace vyr::inspect {

namespace {

constexpr double k_clocksApart = 10;  ///< seconds by which a capture's clock may differ from the broadcast's
constexpr double k_many = 0.1;        ///< of which share on a loss is not for a moment only

std::string Title(const TLctKey& key, const SLctFacts* lct)
{
    const std::string carries = lct != nullptr ? CarriesText(*lct) : std::string();
    return "TSI " + std::to_string(std::get<2>(key)) + " of " + std::get<0>(key) +
           (carries.empty() ? "" : " (" + Printable(carries) + ')');
}

std::string RateText(double rate)
{
    return NumberText(std::round(rate * 10) / 10) + " kbit/s";
}

std::string Percent(double share)
{
    return NumberText(std::round(share * 1000) / 10) + " %";
}

bool IsMedia(const SSessionDelivery& session, const SFlowDelivery& flow)
{
    return session.protocol == EDeliveryProtocol::ROUTE && !session.guessed && flow.id != 0 && flow.objects;
}

std::optional<STime> Later(const std::optional<STime>& one, const std::optional<STime>& other)
{
    return !one || (other && Seconds(*other) > Seconds(*one)) ? other : one;
}

/// kbit/s, and of how many seconds they are.
struct SRates {
    double mean = 0;
    double peak = 0;
    double seconds = 0;
};

/// What came of the flow since something else was announced of its rate: `grace` seconds later it has that.
SRates RatesSince(const SDelivery& delivery, const STraffic& traffic, const std::optional<STime>& since, double grace)
{
    constexpr double k_bitsOfKilobit = 1000.0 / 8;
    if (!traffic.meanRate || !traffic.peakRate || !traffic.first || !traffic.last || !delivery.traffic.first) {
        return {};
    }
    if (!since) {
        return {*traffic.meanRate, *traffic.peakRate, Seconds(*traffic.last) - Seconds(*traffic.first)};
    }
    const double from = (Seconds(*since) + grace - Seconds(*delivery.traffic.first)) / delivery.binSeconds;
    SRates rates;
    for (std::size_t i = 0; i + 1 < traffic.bins.size(); ++i) {  // the last is not whole
        if (static_cast<double>(traffic.firstBin + i) >= from) {
            const double rate = static_cast<double>(traffic.bins[i]) / k_bitsOfKilobit / delivery.binSeconds;
            rates.mean += rate * delivery.binSeconds;
            rates.peak = std::max(rates.peak, rate);
            rates.seconds += delivery.binSeconds;
        }
    }
    rates.mean /= std::max(rates.seconds, 1.0);
    return rates;
}

/// What signalling announces against what is on the air.
class CDeliveryRules : public CRules {
  public:
    CDeliveryRules(const SEvidence& evidence, CFindings& findings, const SRuleSettings& settings)
        : CRules(evidence, findings), m_settings(settings)
    {
    }

    void Signalling(const SSignalling& signalling) override { m_Arrived(signalling.session, signalling); }
    void Message(const SMessage& message) override { m_Arrived(message.session, message); }
    void Finish(const SDelivery* delivery) override;

  private:
    struct SRounds {
        SArrivals arrivals;
        std::vector<unsigned> services;
    };
    /// An LCT session, and all that is needed to judge it.
    struct SCase {
        const SDelivery& delivery;
        const TLctKey& key;
        const SLctSession& lct;
        const SLctSession::SAnnouncement& first;  ///< the first to announce a source flow

        std::string Title() const { return inspect::Title(key, first.facts); }
    };

    template <class TItem>
    void m_Arrived(const std::string& session, const TItem& item);
    void m_Tell(ERule rule, const SCase& one, const std::string& message) const;
    double m_Since(const SPackageFacts& package) const;
    void m_NotSent(const SCase& one) const;
    void m_Rate(const SCase& one, const SFlowDelivery& flow);
    void m_Bandwidth(const SCase& one, const SFlowDelivery& flow);
    void m_Times(const SCase& one, const SFlowDelivery& flow);
    std::map<std::uint64_t, std::string> m_InitializationFiles(const SCase& one) const;
    void m_Initialization(const SCase& one, const SFlowDelivery& flow,
                          const std::map<std::uint64_t, std::string>& files);
    void m_Objects(const SSessionDelivery& session, const SFlowDelivery& flow);
    void m_NotAnnounced(const SDelivery& delivery);
    void m_Unsignalled(const SDelivery& delivery);
    void m_Intervals();

    const SRuleSettings m_settings;
    std::map<std::string, SRounds> m_rounds;  ///< of signalling, by session
};

template <class TItem>
void CDeliveryRules::m_Arrived(const std::string& session, const TItem& item)
{
    constexpr std::size_t k_mostSessions = 4096;
    if (session.empty() || (m_rounds.size() == k_mostSessions && m_rounds.count(session) == 0)) {
        return;
    }
    SRounds& rounds = m_rounds[session];
    const std::optional<STime>& last = rounds.arrivals.last.time;
    const auto listed = t_evidence.listed.find(session);
    rounds.arrivals.ended = listed != t_evidence.listed.end() && listed->second.since && last &&
                            Seconds(*listed->second.since) > Seconds(*last);
    rounds.arrivals.Add(item.source);
    rounds.services = item.services;
}

void CDeliveryRules::m_Tell(ERule rule, const SCase& one, const std::string& message) const
{
    const std::vector<unsigned> services = ServicesOf(*one.first.package);
    t_findings.Tell(rule, message, services.empty() ? std::nullopt : std::optional<unsigned>(services.front()),
                    std::get<0>(one.key));
}

/// For how many seconds the capture goes on behind the S-TSID.
double CDeliveryRules::m_Since(const SPackageFacts& package) const
{
    const auto source = package.documentSource.find(ESlsDocument::STSID);
    return source != package.documentSource.end() ? SecondsBehind(t_evidence, source->second) : 0;
}

/// Nothing came of it, though it would have, or nothing comes any more.
void CDeliveryRules::m_NotSent(const SCase& one) const
{
    for (const SLctSession::SAnnouncement& each : one.lct.by) {
        const SPresence presence = t_evidence.onAir->Of(*each.package, *each.facts);
        const bool stopped = presence.state == SPresence::STOPPED;
        if (each.facts->sourceFlow && (stopped || presence.state == SPresence::ABSENT)) {
            const SCase its = {one.delivery, one.key, one.lct, each};
            m_Tell(each.facts->realTime ? ERule::SESSION_NOT_SENT : ERule::FILES_NOT_SENT, its,
                   its.Title() + " is announced, and no packet of it came in " + (stopped ? "the last " : "") +
                       NumberText(std::floor(presence.seconds)) + " s");
            return;
        }
    }
}

/// Several entries of one S-TSID have together what they say, and services that share the session say the same.
void CDeliveryRules::m_Rate(const SCase& one, const SFlowDelivery& flow)
{
    constexpr double k_margin = 1.05;
    std::map<const SPackageFacts*, std::uint64_t> sums;
    std::uint64_t bandwidth = 0;
    std::optional<STime> since;
    for (const SLctSession::SAnnouncement& each : one.lct.by) {
        if (!each.facts->bandwidth) {
            return;
        }
        std::uint64_t& sum = sums[each.package];
        sum += *each.facts->bandwidth;
        bandwidth = std::max(bandwidth, sum);
        since = Later(since, each.facts->rateSince);
    }
    const SRates rates = RatesSince(one.delivery, flow.traffic, since, m_settings.longestInterval);
    if (bandwidth != 0 && rates.peak > static_cast<double>(bandwidth) * k_margin) {
        m_Tell(ERule::RATE_ABOVE_BANDWIDTH, one,
               one.Title() + ": " + RateText(rates.peak) + " in a second, " + RateText(rates.mean) +
                   " on average, and the S-TSID has " + std::to_string(bandwidth) + " kbit/s");
    }
}

/// Of small streams the packets' own bytes are most.
void CDeliveryRules::m_Bandwidth(const SCase& one, const SFlowDelivery& flow)
{
    constexpr double k_enough = 10;
    constexpr double k_small = 32;
    const SPackageFacts& package = *one.first.package;
    for (std::size_t i = 0; package.mpd && i < package.mpd->representations.size(); ++i) {
        const SRepresentationFacts& each = package.mpd->representations[i];
        const double bandwidth = static_cast<double>(each.bandwidth) / 1000;
        if (each.id.empty() || each.id != one.first.facts->repId || bandwidth == 0) {
            continue;
        }
        const std::optional<STime> since = Later(one.first.facts->rateSince, each.bandwidthSince);
        const SRates rates = RatesSince(one.delivery, flow.traffic, since, m_settings.longestInterval);
        const double rate = rates.mean;
        if (std::max(rate, bandwidth) < k_small) {
            continue;
        }
        if (rates.seconds >= k_enough && (rate > 2 * bandwidth || rate < bandwidth / 5)) {
            m_Tell(ERule::RATE_UNLIKE_MPD, one,
                   one.Title() + " has " + RateText(rate) + " on average, and the MPD gives it " + RateText(bandwidth));
        }
        return;  // of several periods, the first
    }
}

void CDeliveryRules::m_Times(const SCase& one, const SFlowDelivery& flow)
{
    if (!flow.traffic.first || !flow.traffic.last) {
        return;
    }
    const double first = Seconds(*flow.traffic.first);
    const double last = Seconds(*flow.traffic.last);
    bool outside = true;
    std::optional<double> expires;
    bool expiry = true;
    for (const SLctSession::SAnnouncement& each : one.lct.by) {
        const std::optional<double> start = Instant(each.facts->startTime);
        const std::optional<double> end = Instant(each.facts->endTime);
        // What was sent while another window was announced may be right by that.
        const std::optional<STime>& since = each.facts->windowSince;
        const bool early = start && first < *start - k_clocksApart && (!since || first >= Seconds(*since));
        const bool late = end && last > *end + k_clocksApart && (!since || last > Seconds(*since) + k_clocksApart);
        outside = outside && (early || late);
        expiry = expiry && each.facts->expires.value_or(k_neverExpires) < k_neverExpires;
        if (expiry) {
            const double at = static_cast<double>(NtpSeconds(static_cast<std::uint32_t>(*each.facts->expires)));
            expires = std::max(expires.value_or(at), at);
        }
    }
    const SLctFacts& facts = *one.first.facts;
    if (outside) {
        m_Tell(ERule::SESSION_OUTSIDE_TIME, one,
               one.Title() + " is sent from " + EpochText(std::floor(first)) + " to " + EpochText(std::floor(last)) +
                   ", and announced" + (facts.startTime.empty() ? "" : " from " + Printable(facts.startTime)) +
                   (facts.endTime.empty() ? "" : " until " + Printable(facts.endTime)));
    }
    if (expiry && expires && last > *expires + k_clocksApart) {
        m_Tell(ERule::EFDT_EXPIRED, one,
               one.Title() + ": its EFDT expired at " + EpochText(*expires) + ", and it was sent until " +
                   EpochText(std::floor(last)));
    }
}

/// Of the files of the EFDT those that the MPD names as the representation's initialization segments, by TOI.
std::map<std::uint64_t, std::string> CDeliveryRules::m_InitializationFiles(const SCase& one) const
{
    constexpr std::size_t k_mostNames = 4;  // of several periods
    const auto endsWith = [](const std::string& text, const std::string& end) {
        return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0 &&
               (text.size() == end.size() || text[text.size() - end.size() - 1] == '/');
    };
    std::map<std::uint64_t, std::string> files;
    const SPackageFacts& package = *one.first.package;
    const std::string& id = one.first.facts->repId;
    std::set<std::string> names;
    for (std::size_t i = 0; package.mpd && !id.empty() && i < package.mpd->representations.size(); ++i) {
        const SRepresentationFacts& representation = package.mpd->representations[i];
        if (representation.id == id && !representation.initialization.empty() && names.size() < k_mostNames) {
            names.insert(OfRepresentation(representation.initialization, id));
        }
    }
    for (const SFileFacts& file : one.first.facts->files) {
        for (const std::string& name : names) {
            if (!file.name.empty() && (endsWith(name, file.name) || endsWith(file.name, name))) {
                files.emplace(file.toi.second, file.name);
            }
        }
    }
    return files;
}

void CDeliveryRules::m_Initialization(const SCase& one, const SFlowDelivery& flow,
                                      const std::map<std::uint64_t, std::string>& files)
{
    const SObjectsDelivery& objects = *flow.objects;
    if (files.empty() || objects.unknown != 0 || !objects.allWholeTois || objects.whole < 2 || !flow.traffic.last ||
        std::min(m_Since(*one.first.package), Seconds(*flow.traffic.last) - Seconds(*flow.traffic.first)) <
            m_settings.longestInterval) {
        return;
    }
    for (const auto& [begin, end] : objects.wholeTois) {
        const auto file = files.lower_bound(begin);
        if (file != files.end() && file->first < end) {
            return;
        }
    }
    const auto begun =
        std::find_if(objects.firstIncomplete.begin(), objects.firstIncomplete.end(),
                     [&](const SIncompleteObject& object) { return files.count(object.toi.second) != 0; });
    m_Tell(ERule::NO_INITIALIZATION, one,
           one.Title() + ": its initialization segment, " + Quoted(files.begin()->second) + ", was never whole" +
               (begun != objects.firstIncomplete.end() && begun->length
                    ? " (" + std::to_string(begun->bytes) + " of " + std::to_string(*begun->length) + " bytes came)"
                    : "") +
               ", while " + Counted(objects.whole, "other object") + " came");
}

/// What is lost of the objects may be repaired where there are repair packets.
void CDeliveryRules::m_Objects(const SSessionDelivery& session, const SFlowDelivery& flow)
{
    const SObjectsDelivery& objects = *flow.objects;
    if (objects.incomplete == 0) {
        return;
    }
    const bool repair = COnAir::HasRepair(session);
    const double share =
        static_cast<double>(objects.incomplete) / static_cast<double>(objects.incomplete + objects.whole);
    std::string names;
    if (!objects.firstIncomplete.empty()) {
        const SIncompleteObject& first = objects.firstIncomplete.front();
        names = "; the first is " + (first.name.empty() ? "TOI " + ToiText(first.toi) : Quoted(first.name)) +
                (first.length ? ", of which " + std::to_string(first.bytes) + " of " + std::to_string(*first.length) +
                                    " bytes came"
                              : "");
    }
    t_findings.Tell(share >= k_many && objects.incomplete > 1 && !repair ? ERule::MANY_OBJECTS_INCOMPLETE
                                                                         : ERule::OBJECTS_INCOMPLETE,
                    "TSI " + std::to_string(flow.id) + " of " + SessionText(session) +
                        (flow.carries.empty() ? "" : " (" + Printable(flow.carries) + ')') + ": " + Percent(share) +
                        ", " + std::to_string(objects.incomplete) + " of " +
                        Counted(objects.incomplete + objects.whole, "object") + ", incomplete" +
                        (repair ? ", before repair" : "") + names,
                    FirstService(session, flow), SessionText(session));
}

/// TSIs without name on addresses that S-TSIDs have, while these hold and so long that a new one was due.
void CDeliveryRules::m_NotAnnounced(const SDelivery& delivery)
{
    std::map<std::string, double> announced;  ///< destinations, and when the last S-TSID of them came
    for (const auto& [name, package] : t_evidence.packages) {
        const auto source = package.documentSource.find(ESlsDocument::STSID);
        if (!package.stsid || source == package.documentSource.end() || !source->second.time) {
            continue;
        }
        const double at = Seconds(*source->second.time);
        announced.emplace(package.session, at).first->second = std::max(announced[package.session], at);
        for (const SLctFacts& lct : package.stsid->sessions) {
            double& known = announced.emplace(std::get<0>(KeyOf(package, lct)), at).first->second;
            known = std::max(known, at);
        }
    }
    for (const SSessionDelivery& session : delivery.sessions) {
        const auto known = announced.find(SessionText(session));
        for (const SFlowDelivery& flow : session.flows) {
            if (known != announced.end() && IsMedia(session, flow) && flow.carries.empty() && flow.services.empty() &&
                flow.traffic.packets > 1 && flow.traffic.last && Seconds(*flow.traffic.last) > known->second &&
                Seconds(*flow.traffic.last) - Seconds(*flow.traffic.first) > m_settings.longestInterval) {
                t_findings.Tell(
                    ERule::SESSION_NOT_ANNOUNCED,
                    "TSI " + std::to_string(flow.id) + " of " + known->first + ": " +
                        Counted(flow.traffic.packets, "packet") + ", and no S-TSID announces it",
                    session.services.empty() ? std::nullopt : std::optional<unsigned>(session.services.front()),
                    known->first);
            }
        }
    }
}

/// Multicast of the network that the capture was made in is no broadcast.
void CDeliveryRules::m_Unsignalled(const SDelivery& delivery)
{
    constexpr std::size_t k_mostTold = 16;
    constexpr std::uint32_t k_localMulticast = 0xE00000;  // 224.0.0.x
    std::size_t count = 0;
    STraffic rest;
    for (const SSessionDelivery& session : delivery.sessions) {
        if (session.Named() || session.traffic.packets == 0 || session.destination >> 28 != 0xE ||
            session.destination >> 8 == k_localMulticast) {
            continue;
        }
        if (++count > k_mostTold) {
            rest.packets += session.traffic.packets;
            rest.bytes += session.traffic.bytes;
            continue;
        }
        t_findings.Tell(ERule::UNSIGNALLED_TRAFFIC,
                        "nothing names the " + Counted(session.traffic.packets, "packet") + " to " +
                            SessionText(session) + " from " + Ipv4Text(session.source) +
                            (session.traffic.meanRate ? ", " + RateText(*session.traffic.meanRate) : ""),
                        {}, SessionText(session));
    }
    if (count > k_mostTold) {
        t_findings.Tell(ERule::UNSIGNALLED_TRAFFIC, "nothing names " + Counted(count - k_mostTold, "more session") +
                                                        " either, of " + Counted(rest.packets, "packet") + " and " +
                                                        Counted(rest.bytes, "byte"));
    }
}

/// A session that lists had and have no more is over.
void CDeliveryRules::m_Intervals()
{
    const double limit = m_settings.longestInterval;
    for (const auto& [session, rounds] : m_rounds) {
        const SArrivals& arrivals = rounds.arrivals;
        const std::optional<unsigned> service =
            rounds.services.empty() ? std::nullopt : std::optional<unsigned>(rounds.services.front());
        const auto listed = t_evidence.listed.find(session);
        const bool over = service && listed == t_evidence.listed.end();
        const std::optional<STime> since =
            listed != t_evidence.listed.end() ? Later(arrivals.last.time, listed->second.since) : arrivals.last.time;
        const double after = since ? Seconds(*t_evidence.last) - Seconds(*since) : 0;
        if (arrivals.longest > limit) {
            t_findings.Tell(ERule::SIGNALLING_INTERVAL,
                            NumberText(arrivals.longest) + " s without signalling on " + session, arrivals.longestEnd,
                            service, session);
        } else if (after > limit && !over) {
            t_findings.Tell(ERule::SIGNALLING_INTERVAL,
                            "no signalling on " + session + " in the last " + NumberText(after) + " s of the capture",
                            arrivals.last, service, session);
        }
    }
}

void CDeliveryRules::Finish(const SDelivery* delivery)
{
    if (delivery == nullptr || !t_evidence.first || !t_evidence.last || delivery->clockSet != 0 || !delivery->Whole()) {
        return;
    }
    m_Intervals();
    for (const auto& [key, lct] : t_evidence.onAir->Announced()) {
        const auto first = std::find_if(lct.by.begin(), lct.by.end(),
                                        [](const SLctSession::SAnnouncement& each) { return each.facts->sourceFlow; });
        if (first == lct.by.end() || std::get<2>(key) == 0) {
            continue;
        }
        const SCase one = {*delivery, key, lct, *first};
        m_NotSent(one);
        const std::map<std::uint64_t, std::string> initialization = m_InitializationFiles(one);
        for (const auto& [session, place] : lct.flows) {
            const SFlowDelivery& flow = delivery->sessions[session].flows[place];
            m_Rate(one, flow);
            m_Bandwidth(one, flow);
            m_Times(one, flow);
            m_Initialization(one, flow, initialization);
        }
    }
    for (const SSessionDelivery& session : delivery->sessions) {
        for (const SFlowDelivery& flow : session.flows) {
            if (session.protocol == EDeliveryProtocol::ROUTE && !session.guessed && flow.objects) {
                m_Objects(session, flow);
            }
        }
    }
    if (delivery->namesKnown) {
        m_NotAnnounced(*delivery);
        m_Unsignalled(*delivery);
    }
}

}  // namespace

std::unique_ptr<CRules> DeliveryRules(const SEvidence& evidence, CFindings& findings, const SRuleSettings& settings)
{
    return std::make_unique<CDeliveryRules>(evidence, findings, settings);
}

}  // namespace vyr::inspect
