#include "judge/Verdicts.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <iterator>
#include <map>
#include <set>
#include <utility>

#include "base/Limits.h"
#include "base/Text.h"
#include "judge/OnAir.h"

namespace vyr::inspect {

namespace {

constexpr int k_linear = 1;
constexpr int k_linearAudio = 2;
constexpr int k_route = 1;
constexpr int k_mmtp = 2;
constexpr unsigned k_mmtSignalling = 2;  // payload type

/// Rules that end a service where they are found, in the order of what has to work first.
constexpr ERule k_stops[] = {ERule::BAD_ADDRESS, ERule::PROTOCOL_UNKNOWN, ERule::NO_SIGNALLING,
                             ERule::NO_STSID,    ERule::NO_MPD,           ERule::NO_MP_TABLE};
/// Rules that are against the standard where viewers see nothing of it.
constexpr ERule k_unseen[] = {ERule::RATE_ABOVE_BANDWIDTH, ERule::SESSION_NOT_ANNOUNCED, ERule::GLOBAL_SERVICE_ID,
                              ERule::SEQUENCE_UNCHANGED, ERule::TSI_TWICE};

/// Types of components that viewers miss.
constexpr const char* k_types[] = {"audio", "subtitles", "video"};

constexpr const char* k_tooSoon = "it ends too soon behind the service's signalling";

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

/// What came of the components of one type, or of several.
struct SComponents {
    std::array<unsigned, SPresence::k_states> states = {};  ///< how many there are of each
    std::uint64_t whole = 0;
    std::uint64_t broken = 0;
    bool repair = false;  ///< which may mend what is broken

    bool Has(SPresence::EState state) const { return states[state] != 0; }
    bool Comes() const { return Has(SPresence::COMES); }
    bool Missing() const { return Has(SPresence::ABSENT) || Has(SPresence::STOPPED); }
    bool Unsure() const { return Has(SPresence::UNKNOWN) || Has(SPresence::TOO_SOON); }
    void Add(const SComponents& other)
    {
        for (std::size_t i = 0; i < states.size(); ++i) {
            states[i] += other.states[i];
        }
        whole += other.whole;
        broken += other.broken;
        repair = repair || other.repair;
    }
};

/// "any more" of what came before.
std::string AnyMore(const SComponents& components)
{
    return components.Has(SPresence::STOPPED) ? " any more" : "";
}

/// Of picture and sound, of which nothing came.
SJudgement Neither(const SComponents& media)
{
    return media.Missing() ? Not("neither picture nor sound is sent" + AnyMore(media))
                           : Unknown("picture and sound are announced for another time");
}

/// What a viewer misses without a component of the type.
std::string Missing(const std::string& type)
{
    return type == "video" ? "there is no picture" : type == "audio" ? "there is no sound" : "there are no subtitles";
}

std::string Name(const std::string& type)
{
    return type == "video" ? "picture" : "sound";
}

std::string Broken(const std::string& type)
{
    return type == "video"   ? "the picture breaks up"
           : type == "audio" ? "the sound breaks up"
                             : "subtitles are missing in places";
}

/// Whether representations are all to come in LCT sessions, and none is announced.
bool CarriesNothing(const SStsidFacts& stsid, const SMpdFacts& mpd)
{
    const auto carries = [](const SLctFacts& lct) { return lct.sourceFlow; };
    const auto away = [](const SRepresentationFacts& one) { return one.media.find("://") != std::string::npos; };
    return stsid.whole && mpd.whole && !mpd.representations.empty() &&
           std::none_of(stsid.sessions.begin(), stsid.sessions.end(), carries) &&
           std::none_of(mpd.representations.begin(), mpd.representations.end(), away);
}

/// Whether packets came of a session of MMTP that are not of its signalling.
bool HasMedia(const SSessionDelivery& session)
{
    return std::any_of(session.flows.begin(), session.flows.end(), [](const SFlowDelivery& flow) {
        return !flow.payloadType || *flow.payloadType != k_mmtSignalling;
    });
}

class CServiceJudge {
  public:
    CServiceJudge(const SEvidence& evidence, const SDelivery& delivery, const std::vector<SFinding>& findings)
        : m_evidence(evidence), m_delivery(delivery), m_findings(findings)
    {
        for (const SSessionDelivery& session : delivery.sessions) {
            m_sessions.emplace(EndpointText(session.destination, session.port), &session);
        }
        for (const auto& [key, list] : evidence.lists) {
            for (const SSltService& service : list.services) {
                if (const std::string address = SessionOf(service); !address.empty()) {
                    m_addresses.emplace(service.serviceId, address);
                }
            }
        }
    }

    SVerdict Judge(const std::string& list, const SSltService& service);

  private:
    SJudgement m_Judge(const std::string& list, const SSltService& service);
    bool m_Concerns(const SFinding& finding, const SSltService& service) const;
    SJudgement m_Stopped(const SSltService& service) const;
    SJudgement m_Undescribed(const SSltService& service) const;
    using TTypes = std::map<std::string, SComponents>;
    const TTypes& m_TypesOf(const SPackageFacts& package);
    SJudgement m_Media(const SSltService& service);
    SJudgement m_Unsure(const std::string& what, const SComponents& of) const;
    SJudgement m_Missing(const TTypes& types) const;
    bool m_SignalsAlone() const;
    SJudgement m_Mmt(const SSltService& service) const;
    SJudgement m_Spoiled(const SSltService& service) const;
    const SEvidence& m_evidence;
    const SDelivery& m_delivery;
    const std::vector<SFinding>& m_findings;
    std::map<std::string, const SSessionDelivery*> m_sessions;  ///< by address
    std::map<const SPackageFacts*, TTypes> m_types;             ///< of those that were asked for
    std::set<std::pair<unsigned, std::string>> m_addresses;     ///< of signalling, behind the ids of the services
    std::string m_list;                                         ///< of the service that is judged
    std::string m_address;                                      ///< of its signalling
};

/// Services of several broadcasts can have one id: then a finding is of the one whose list or address it names.
bool CServiceJudge::m_Concerns(const SFinding& finding, const SSltService& service) const
{
    if (!finding.serviceId) {
        return !finding.session.empty() && finding.session == m_address;
    }
    return *finding.serviceId == service.serviceId && (finding.serviceList.empty() || finding.serviceList == m_list) &&
           (finding.session == m_address || m_addresses.count({service.serviceId, finding.session}) == 0);
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

/// That the documents which a linear service cannot do without lead to nothing: they never parsed, or the S-TSID
/// announces nothing at all.
SJudgement CServiceJudge::m_Undescribed(const SSltService& service) const
{
    SJudgement judgement;
    for (const SPackageFacts* package : m_evidence.Of(service)) {
        const auto never = [package](ESlsDocument kind, bool held) {
            const auto broken = package->broken.find(kind);
            return !held && broken != package->broken.end() && broken->second;
        };
        const bool alone = package->usbd && package->usbd->whole && package->usbd->unicast.empty();
        const bool stsid = never(ESlsDocument::STSID, package->stsid.has_value());
        const bool mpd = never(ESlsDocument::MPD, package->mpd.has_value()) && alone;
        if (stsid || mpd) {
            judgement =
                Not(std::string("receivers go on without its ") + (stsid ? "S-TSID" : "MPD") + ", which does not parse",
                    RuleName(ERule::DOCUMENT_NOT_PARSED));
        } else if (alone && package->stsid && package->mpd && CarriesNothing(*package->stsid, *package->mpd)) {
            judgement = Not("its S-TSID announces no LCT session, and its MPD has nothing by broadband",
                            RuleName(ERule::REPRESENTATION_NOT_CARRIED));
        } else {
            return {};
        }
    }
    return judgement;
}

/// What came of the components that the S-TSID announces, by their type.
const CServiceJudge::TTypes& CServiceJudge::m_TypesOf(const SPackageFacts& package)
{
    const auto [known, isNew] = m_types.try_emplace(&package);
    TTypes& types = known->second;
    for (std::size_t i = 0; isNew && package.stsid && i < package.stsid->sessions.size(); ++i) {
        const SLctFacts& lct = package.stsid->sessions[i];
        const std::string type = m_evidence.onAir->TypeOf(package, lct);
        if (!lct.realTime || std::find(std::begin(k_types), std::end(k_types), type) == std::end(k_types)) {
            continue;
        }
        SComponents component;
        bool useless = false;
        for (const auto& [place, number] : m_evidence.onAir->Announced().at(KeyOf(package, lct)).flows) {
            const SSessionDelivery& session = m_delivery.sessions[place];
            const std::optional<SObjectsDelivery>& objects = session.flows[number].objects;
            component.whole += objects ? objects->whole : 0;
            component.broken += objects ? objects->incomplete : 0;
            component.repair = component.repair || COnAir::HasRepair(session);
            useless = component.whole == 0 && component.broken != 0 && !component.repair;
        }
        ++component.states[useless ? SPresence::ABSENT : m_evidence.onAir->Of(package, lct).state];
        types[type].Add(component);
    }
    return types;
}

/// What came of the picture, the sound and the subtitles of the service.
SJudgement CServiceJudge::m_Media(const SSltService& service)
{
    constexpr double k_leastSeconds = 2;  // of the capture behind the S-TSID
    TTypes types;
    for (const SPackageFacts* package : m_evidence.Of(service)) {
        if (!package->stsid || !package->stsid->whole) {
            continue;
        }
        const auto since = package->documentSource.find(ESlsDocument::STSID);
        const bool timed = since != package->documentSource.end() && since->second.time && package->earlier.empty();
        if (timed && SecondsBehind(m_evidence, since->second) < k_leastSeconds) {
            return Unknown(k_tooSoon);
        }
        for (const auto& [type, components] : m_TypesOf(*package)) {
            types[type].Add(components);
        }
    }
    SJudgement judgement = m_Missing(types);
    for (const auto& [type, component] : types) {
        constexpr std::uint64_t k_half = 2;
        if (!component.Comes() || component.broken == 0) {
            continue;
        }
        const std::uint64_t all = component.broken + component.whole;
        const std::string share = std::to_string(component.broken) + " of " + std::to_string(all) + " pieces of its " +
                                  type + " arrive broken";
        const bool most = component.broken * k_half >= all;
        if (component.repair && most) {
            judgement = Worse(judgement, Unknown(share + ", before repair"));
        } else if (!component.repair) {
            judgement = Worse(judgement, most ? Not(share) : But(Broken(type) + ": " + share));
        }
    }
    return judgement;
}

/// That nothing is known of picture or sound, which may be sent all the same.
SJudgement CServiceJudge::m_Unsure(const std::string& what, const SComponents& of) const
{
    return Unknown(m_delivery.clockSet != 0 ? "its clock was set"
                   : of.Has(SPresence::TOO_SOON)
                       ? k_tooSoon
                       : "the service's " + what + " may be among what was not captured or kept");
}

/// What a viewer misses of it, if that can be told.
SJudgement CServiceJudge::m_Missing(const TTypes& types) const
{
    SComponents media;
    SComponents unsure;
    std::string names;
    SJudgement judgement;
    for (const auto& [type, component] : types) {
        const bool subtitles = type == "subtitles";
        media.Add(subtitles ? SComponents() : component);
        if (component.Comes()) {
            continue;
        }
        if (component.Unsure() && !subtitles) {
            names = Name(type) + (names.empty() ? "" : " and " + names);
            unsure.Add(component);
        } else if (component.Missing() && !component.Unsure()) {
            judgement = Worse(judgement, But(Missing(type) + AnyMore(component)));
        }
    }
    if (!names.empty()) {
        return m_Unsure(names, unsure);
    }
    const bool any = types.count("video") + types.count("audio") != 0;
    return any && !media.Comes() ? Neither(media) : judgement;
}

/// Whether nothing but signalling came on the session of a service that MMTP carries.
bool CServiceJudge::m_SignalsAlone() const
{
    const auto found = m_sessions.find(m_address);
    return found != m_sessions.end() && found->second->packetsNoFlow == 0 && !found->second->guessed &&
           !HasMedia(*found->second);
}

/// What came of the assets of a service that MMTP carries.
SJudgement CServiceJudge::m_Mmt(const SSltService& service) const
{
    const auto found = m_evidence.mmt.find(m_address);
    if (found == m_evidence.mmt.end()) {
        return {};
    }
    const SMmtFacts& facts = found->second;
    std::string package;
    bool elsewhere = !facts.whole;
    for (const auto& [key, usbd] : facts.usbds) {
        if (usbd.serviceId == unsigned{service.serviceId}) {
            package = usbd.package;
            elsewhere = elsewhere || usbd.route || usbd.broadband;
        }
    }
    SComponents media;
    bool any = false;
    facts.EachTable([&](const SMpTableFacts& table) {
        const bool its = package.empty() || table.package.empty() || table.package == package;
        for (std::size_t i = 0; its && i < table.assets.size(); ++i) {
            if (COnAir::IsSteady(table.assets[i])) {
                ++media.states[m_evidence.onAir->Of(m_address, table, table.assets[i]).state];
                any = true;
            }
        }
    });
    if (!any) {
        return m_SignalsAlone() ? Unknown("it has signalling alone of the service, and no MP table that names more")
                                : SJudgement();
    }
    return media.Comes()                 ? SJudgement()
           : elsewhere || media.Unsure() ? m_Unsure("picture and sound", media)
                                         : Neither(media);
}

/// The first of what spoils it, errors first.
SJudgement CServiceJudge::m_Spoiled(const SSltService& service) const
{
    const SFinding* first = nullptr;
    std::size_t count = 0;
    for (const SFinding& finding : m_findings) {
        const bool seen = std::find(std::begin(k_unseen), std::end(k_unseen), finding.rule) == std::end(k_unseen);
        if (seen && finding.severity != ESeverity::NOTE && m_Concerns(finding, service)) {
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

SJudgement CServiceJudge::m_Judge(const std::string& list, const SSltService& service)
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
        found != m_sessions.end() && found->second->otherVersions != 0 && !HasMedia(*found->second)) {
        return Unknown("its packets are of a version of MMTP that the tool does not read");
    }
    const bool linear = service.serviceCategory == k_linear || service.serviceCategory == k_linearAudio;
    if (linear && service.slsProtocol == k_route) {
        judgement = m_Undescribed(service);
    }
    if (judgement.verdict == EVerdict::PLAYS && !m_evidence.onAir->Media()) {
        return Unknown("it has signalling alone, and no media of any service");
    }
    if (linear && service.slsProtocol == k_route) {
        judgement = Worse(judgement, m_Media(service));
    } else if (linear && service.slsProtocol == k_mmtp) {
        judgement = m_Mmt(service);
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
    m_list = list;
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

bool Stops(ERule rule)
{
    return std::find(std::begin(k_stops), std::end(k_stops), rule) != std::end(k_stops);
}

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
