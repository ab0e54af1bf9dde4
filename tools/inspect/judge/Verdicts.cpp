#include "judge/Verdicts.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <map>
#include <tuple>

#include "base/Limits.h"
#include "base/Text.h"

namespace vyr::inspect {

namespace {

constexpr int k_linear = 1;
constexpr int k_linearAudio = 2;
constexpr int k_route = 1;
constexpr int k_mmtp = 2;
constexpr unsigned k_mmtSignalling = 2;  // payload type

/// Rules that end a service where they are found, in the order of what has to work first.
constexpr ERule k_stops[] = {ERule::SERVICE_DROPPED, ERule::BAD_ADDRESS, ERule::PROTOCOL_UNKNOWN, ERule::NO_SIGNALLING,
                             ERule::NO_STSID,        ERule::NO_MPD,      ERule::NO_MP_TABLE};
/// Rules that are against the standard where viewers see nothing of it.
constexpr ERule k_unseen[] = {ERule::RATE_ABOVE_BANDWIDTH, ERule::SESSION_NOT_ANNOUNCED, ERule::GLOBAL_SERVICE_ID,
                              ERule::SEQUENCE_UNCHANGED, ERule::TSI_TWICE};

SJudgement But(const std::string& cause, const std::string& rule = {})
{
    return {EVerdict::PLAYS_BUT, cause, rule};
}

SJudgement Not(const std::string& cause, const std::string& rule = {})
{
    return {EVerdict::DOES_NOT_PLAY, cause, rule};
}

SJudgement Unknown(const std::string& cause)
{
    return {EVerdict::CANNOT_TELL, cause};
}

/// What the finding means for viewers, and what it is.
std::string Words(const SFinding& finding)
{
    std::string means = RuleOf(finding.rule).means;
    means.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(means.front())));
    means.erase(means.find_last_not_of('.') + 1);
    return means + " (" + finding.message + ')';
}

/// The heavier of two; of two alike, the first.
SJudgement Worse(const SJudgement& one, const SJudgement& other)
{
    constexpr int k_weights[] = {0, 1, 3, 2};
    const auto weight = [&](const SJudgement& each) { return k_weights[static_cast<std::size_t>(each.verdict)]; };
    return weight(other) > weight(one) ? other : one;
}

/// What came of one kind of component.
struct SComponentDelivery {
    unsigned announced = 0;
    unsigned came = 0;  ///< of which something could be used
    std::uint64_t whole = 0;
    std::uint64_t broken = 0;
};

/// What a viewer misses without a component of the type.
std::string Missing(const std::string& type)
{
    return type == "video" ? "there is no picture" : type == "audio" ? "there is no sound" : "there are no subtitles";
}

std::string Broken(const std::string& type)
{
    return type == "video"   ? "the picture breaks up"
           : type == "audio" ? "the sound breaks up"
                             : "subtitles are missing in places";
}

class CServiceJudge {
  public:
    CServiceJudge(const SEvidence& evidence, const SDelivery& delivery, const std::vector<SFinding>& findings)
        : m_evidence(evidence), m_delivery(delivery), m_findings(findings)
    {
        for (const SSessionDelivery& session : delivery.sessions) {
            const std::string address = EndpointText(session.destination, session.port);
            m_sessions.emplace(address, &session);
            for (const SFlowDelivery& flow : session.flows) {
                const bool signalling = session.protocol == EDeliveryProtocol::ROUTE
                                            ? flow.id == 0
                                            : flow.payloadType && *flow.payloadType == k_mmtSignalling;
                m_mediaCaptured = m_mediaCaptured || !signalling;
                m_flows.emplace(std::tuple(address, flow.id, std::string()), &flow);
                m_flows.emplace(std::tuple(address, flow.id, Ipv4Text(session.source)), &flow);
            }
        }
    }

    SVerdict Judge(const std::string& list, const SSltService& service);

  private:
    SJudgement m_Judge(const std::string& list, const SSltService& service) const;
    bool m_Concerns(const SFinding& finding, const SSltService& service) const;
    SJudgement m_Stopped(const SSltService& service) const;
    SJudgement m_Media(const SSltService& service) const;
    static bool m_HasMedia(const SSessionDelivery& session);
    SJudgement m_Mmt() const;
    SJudgement m_Spoiled(const SSltService& service) const;
    const SEvidence& m_evidence;
    const SDelivery& m_delivery;
    const std::vector<SFinding>& m_findings;
    std::map<std::string, const SSessionDelivery*> m_sessions;  ///< by address
    std::map<std::tuple<std::string, std::uint64_t, std::string>, const SFlowDelivery*>
        m_flows;                   ///< by address, TSI, and source or none
    bool m_mediaCaptured = false;  ///< of whatever service
    std::string m_address;         ///< of the signalling of the service that is judged
};

bool CServiceJudge::m_Concerns(const SFinding& finding, const SSltService& service) const
{
    return finding.serviceId ? *finding.serviceId == service.serviceId
                             : !finding.session.empty() && finding.session == m_address;
}

/// The first cause that ends the service.
SJudgement CServiceJudge::m_Stopped(const SSltService& service) const
{
    for (const ERule rule : k_stops) {
        for (const SFinding& finding : m_findings) {
            if (finding.rule != rule || !m_Concerns(finding, service)) {
                continue;
            }
            return Not(Words(finding), RuleName(rule));
        }
    }
    return {};
}

/// What came of the components that the S-TSID announces.
SJudgement CServiceJudge::m_Media(const SSltService& service) const
{
    constexpr double k_leastSeconds = 2;  // of the capture behind the S-TSID
    constexpr std::uint64_t k_half = 2;
    std::map<std::string, SComponentDelivery> components;
    for (const SPackageFacts* package : m_evidence.Of(service)) {
        if (!package->stsid || !package->stsid->whole) {
            continue;
        }
        const auto since = package->documentSource.find(ESlsDocument::STSID);
        const bool timed = since != package->documentSource.end() && since->second.time && m_delivery.traffic.last;
        if (timed && Seconds(*m_delivery.traffic.last) - Seconds(*since->second.time) < k_leastSeconds) {
            return Unknown("it ends too soon behind the service's signalling");
        }
        for (const SLctFacts& lct : package->stsid->sessions) {
            if (!lct.realTime || lct.contentType.empty()) {
                continue;
            }
            SComponentDelivery& component = components[lct.contentType];
            const auto found = m_flows.find({lct.destination, lct.tsi, lct.source});
            const SFlowDelivery* flow = found != m_flows.end() ? found->second : nullptr;
            ++component.announced;
            const bool told = flow != nullptr && flow->objects;
            const bool useless = told && flow->objects->whole == 0 && flow->objects->incomplete != 0;
            component.came += flow != nullptr && !useless ? 1 : 0;
            component.whole += told ? flow->objects->whole : 0;
            component.broken += told ? flow->objects->incomplete : 0;
        }
    }
    SJudgement judgement;
    bool anything = false;
    for (const auto& [type, component] : components) {
        anything = anything || (component.came != 0 && (type == "video" || type == "audio"));
        if (component.came == 0) {
            judgement = Worse(judgement, But(Missing(type)));
        } else if (component.broken != 0) {
            const std::uint64_t all = component.broken + component.whole;
            const std::string share = std::to_string(component.broken) + " of " + std::to_string(all) +
                                      " pieces of its " + type + " arrive broken";
            judgement =
                Worse(judgement, component.broken * k_half >= all ? Not(share) : But(Broken(type) + ": " + share));
        }
    }
    const bool media = components.count("video") + components.count("audio") != 0;
    return media && !anything ? Not("neither picture nor sound is sent") : judgement;
}

/// Whether packets came of a session of MMTP that are not of its signalling.
bool CServiceJudge::m_HasMedia(const SSessionDelivery& session)
{
    return std::any_of(session.flows.begin(), session.flows.end(), [](const SFlowDelivery& flow) {
        return !flow.payloadType || *flow.payloadType != k_mmtSignalling;
    });
}

/// What came besides the signalling of a service that MMTP carries.
SJudgement CServiceJudge::m_Mmt() const
{
    const auto found = m_sessions.find(m_address);
    if (found == m_sessions.end() || found->second->packetsNoFlow != 0 || found->second->guessed) {
        return {};
    }
    // Assets may be on sessions of their own, which nothing here knows.
    return m_HasMedia(*found->second) || m_delivery.sessions.size() > 2
               ? SJudgement()
               : But("nothing but signalling is on its session");
}

/// The first of what spoils it, errors first.
SJudgement CServiceJudge::m_Spoiled(const SSltService& service) const
{
    const SFinding* first = nullptr;
    std::size_t count = 0;
    for (const SFinding& finding : m_findings) {
        const bool seen = std::find(std::begin(k_unseen), std::end(k_unseen), finding.rule) == std::end(k_unseen);
        if (seen && m_Concerns(finding, service)) {
            first = first == nullptr || finding.severity > first->severity ? &finding : first;
            ++count;
        }
    }
    if (first == nullptr) {
        return {};
    }
    return But(Words(*first) + (count > 1 ? ", and " + std::to_string(count - 1) + " more" : ""),
               RuleName(first->rule));
}

SJudgement CServiceJudge::m_Judge(const std::string& list, const SSltService& service) const
{
    if (!service.notListed.empty()) {
        return Not("receivers do not list it: " + service.notListed);
    }
    if (!service.hasBroadcastSvcSignaling) {
        return Unknown("its signalling is not broadcast");
    }
    if (!m_evidence.sessionsCaptured) {
        return Unknown("it has the LLS alone, and no session of a service");
    }
    SJudgement judgement = m_Stopped(service);
    if (judgement.verdict != EVerdict::PLAYS) {
        return judgement;
    }
    if (m_delivery.awaited.count({list, service.serviceId}) != 0) {
        return Unknown("it ends too soon behind the service list, and the signalling may come later");
    }
    if (m_delivery.packetsCut != 0) {
        return Unknown("packets of it were cut, and what they carried is missing");
    }
    if (!m_delivery.received && m_evidence.Of(service).empty() && m_evidence.mmt.count(m_address) == 0) {
        return Unknown("not all of it was received, and none of its signalling");
    }
    if (const auto found = m_sessions.find(m_address);
        found != m_sessions.end() && found->second->otherVersions != 0 && !m_HasMedia(*found->second)) {
        return Unknown("its packets are of a version of MMTP that the tool does not read");
    }
    if (!m_mediaCaptured) {
        return Unknown("it has signalling alone, and no media of any service");
    }
    const bool linear = service.serviceCategory == k_linear || service.serviceCategory == k_linearAudio;
    if (linear && service.slsProtocol == k_route) {
        judgement = m_Media(service);
    } else if (linear && service.slsProtocol == k_mmtp) {
        judgement = m_Mmt();
    }
    if (!m_delivery.received && judgement.verdict != EVerdict::PLAYS) {
        return Unknown("not all of it was received");
    }
    judgement = Worse(judgement, m_Spoiled(service));
    if (service.isProtected && judgement.verdict <= EVerdict::PLAYS_BUT) {
        const std::string locked = "only where it can be unlocked: it is protected";
        judgement = But(judgement.cause.empty() ? locked : locked + "; and " + judgement.cause, judgement.rule);
    }
    return judgement;
}

SVerdict CServiceJudge::Judge(const std::string& list, const SSltService& service)
{
    SVerdict verdict;
    m_address = SessionOf(service);
    verdict.serviceId = service.serviceId;
    verdict.serviceList = list;
    verdict.channel = service.majorChannelNo > 0 && service.minorChannelNo > 0
                          ? std::to_string(service.majorChannelNo) + '.' + std::to_string(service.minorChannelNo)
                          : std::string();
    verdict.name = service.shortServiceName.value_or("");
    verdict.judgement = m_Judge(list, service);
    verdict.withoutBroadband =
        service.broadbandAccessRequired || (!service.hasBroadcastSvcSignaling && service.notListed.empty())
            ? Worse(Not("it needs the internet"), verdict.judgement)
            : verdict.judgement;
    return verdict;
}

}  // namespace

SVerdicts Verdicts(const SEvidence& evidence, const SDelivery& delivery, const std::vector<SFinding>& findings)
{
    SVerdicts verdicts;
    verdicts.source = {evidence.file, 0, {}};
    CServiceJudge judge(evidence, delivery, findings);
    for (const auto& [key, list] : evidence.lists) {
        for (const SSltService& service : list.services) {
            if (verdicts.verdicts.size() < MostEntries()) {
                verdicts.verdicts.push_back(judge.Judge(ServiceListName(key.first, key.second), service));
            } else {
                ++verdicts.leftOut;
            }
        }
    }
    return verdicts;
}

}  // namespace vyr::inspect
