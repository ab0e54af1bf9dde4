#include <algorithm>
#include <set>

#include "base/Text.h"
#include "judge/Names.h"
#include "judge/Read.h"
#include "judge/Rules.h"
#include "model/Content.h"

namespace vyr::inspect {

namespace {

constexpr int k_route = 1;
constexpr int k_linear = 1;
constexpr int k_linearAudio = 2;
constexpr double k_clocksApart = 10;  ///< seconds by which a capture's clock may differ from the broadcast's

bool Contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

bool IsAbsolute(const std::string& url)
{
    return Contains(url, "://");
}

/// The part of a template before what is filled in.
std::string Fixed(const std::string& text)
{
    return text.substr(0, text.find('$'));
}

/// Whether files of the name, or of names that a template makes, may match the pattern, which can be any part of their
/// URL: of a longer one, the folders are not known.
bool MayMatch(const std::string& pattern, const std::string& name)
{
    const std::string part = pattern.substr(pattern.rfind('/') + 1);
    const std::string file = name.substr(name.rfind('/') + 1);
    const std::string fixed = Fixed(file);
    return Contains(name, pattern) || part.empty() ||
           (fixed.size() < file.size() ? Contains(file, part) || Contains(part, fixed)
                                       : Contains(file, part) && part.size() < pattern.size());
}

/// Languages that are not the same one; different forms of a code are not compared.
bool AreOthers(const std::string& first, const std::string& second)
{
    // Of the two codes of three letters that these languages have, both are right.
    static const std::string k_twice =
        "sqi alb eus baq bod tib ces cze cym wel deu ger ell gre fas per fra fre hye arm isl ice kat geo mkd mac mri "
        "mao msa may mya bur nld dut ron rum slk slo zho chi";
    const auto primary = [](const std::string& lang) {
        std::string code = lang.substr(0, lang.find('-'));
        for (char& letter : code) {
            letter = static_cast<char>(letter >= 'A' && letter <= 'Z' ? letter - 'A' + 'a' : letter);
        }
        return code;
    };
    const std::string a = primary(first);
    const std::string b = primary(second);
    const auto says = [](const std::string& code) {
        return (code.size() == 2 || code.size() == 3) && code != "und" && code != "mul" && code != "zxx" &&
               code != "mis";
    };
    return says(a) && says(b) && a.size() == b.size() && a != b && !(Contains(k_twice, a) && Contains(k_twice, b));
}

/// "text" may be an application's, too.
bool AreOtherTypes(const std::string& info, const std::string& mpd)
{
    const auto isAv = [](const std::string& type) { return type == "audio" || type == "video"; };
    const bool known = isAv(mpd) || mpd == "text";
    return known && (isAv(info) || info == "subtitles") && info != mpd && (isAv(info) || isAv(mpd));
}

/// What the documents of a service's signalling say against the service list and each other.
class CSignallingRules : public CRules {
  public:
    CSignallingRules(const SEvidence& evidence, CFindings& findings, const SRuleSettings& settings)
        : CRules(evidence, findings), m_settings(settings)
    {
    }

    void Signalling(const SSignalling& signalling) override;
    void Finish(const SDelivery* delivery) override;

  private:
    static constexpr std::size_t k_most = 4096;  ///< sessions, and MPDs

    struct SRounds {
        SArrivals arrivals;
        bool otherManifest = false;  ///< a playlist, or what is no XML, came
    };
    struct SPublished {
        std::optional<double> time;
        bool told = false;
    };

    void m_Tell(ERule rule, const SPackageFacts& package, ESlsDocument kind, const std::string& message,
                std::optional<unsigned> service = {});
    void m_Published(const SSignalling& signalling, const SSlsDocument& mpd);
    bool m_Settled(const SPackageFacts& package) const;
    double m_Lasted(const SPackageFacts& package) const;
    void m_Service(const SSltService& service, const SPackageFacts& package);
    void m_Sessions(const SPackageFacts& package);
    void m_Representations(const SPackageFacts& package);
    using TRepresentations = std::multimap<std::string, const SRepresentationFacts*>;  ///< by id
    void m_MediaInfo(const SPackageFacts& package, const SLctFacts& lct, const TRepresentations& representations);
    void m_Patterns(const SPackageFacts& package);
    void m_Mpd(const SPackageFacts& package);

    const SRuleSettings m_settings;
    std::map<std::string, SRounds> m_rounds;        ///< by session
    std::map<std::string, SPublished> m_published;  ///< by document
};

void CSignallingRules::m_Tell(ERule rule, const SPackageFacts& package, ESlsDocument kind, const std::string& message,
                              std::optional<unsigned> service)
{
    const std::vector<unsigned> services = ServicesOf(package);
    const auto source = package.documentSource.find(kind);
    t_findings.Tell(rule, message, source != package.documentSource.end() ? source->second : package.source,
                    service || services.empty() ? service : services.front(), package.session);
}

void CSignallingRules::Signalling(const SSignalling& signalling)
{
    if (m_rounds.size() < k_most || m_rounds.count(signalling.session) != 0) {
        SRounds& rounds = m_rounds[signalling.session];
        rounds.arrivals.Add(signalling.source);
        for (const SPackagePart& part : signalling.parts) {
            rounds.otherManifest = rounds.otherManifest || Contains(part.contentType, "mpegurl") ||
                                   (part.readAs.empty() && part.root.empty());
        }
    }
    for (const SSlsDocument& document : signalling.documents) {
        if (document.kind == ESlsDocument::MPD && document.content && document.status != EDocumentStatus::UNCHANGED) {
            m_Published(signalling, document);
        }
    }
}

void CSignallingRules::m_Published(const SSignalling& signalling, const SSlsDocument& mpd)
{
    if (m_published.size() >= k_most && m_published.count(mpd.key) == 0) {
        return;
    }
    SPublished& last = m_published[mpd.key];
    const std::string text = Text(mpd.content->json, "publishTime");
    const std::optional<double> time = Instant(text);
    if (time && last.time && *time < *last.time && !last.told) {
        last.told = true;
        t_findings.Tell(
            ERule::PUBLISH_TIME_BACK,
            "publishTime of the MPD goes back from " + EpochText(*last.time) + " to " + EpochText(*time),
            signalling.source,
            signalling.services.empty() ? std::nullopt : std::optional<unsigned>(signalling.services.front()),
            signalling.session);
    }
    last.time = time;
}

/// Whether the documents belong together: they came at once, or for long nothing of them has changed.
bool CSignallingRules::m_Settled(const SPackageFacts& package) const
{
    const SSource* latest = nullptr;
    bool together = true;
    for (const auto& [kind, source] : package.documentSource) {
        together = together && (latest == nullptr || latest->packet == source.packet);
        latest = latest == nullptr || latest->packet < source.packet ? &source : latest;
    }
    const bool broken =
        std::any_of(package.broken.begin(), package.broken.end(), [](const auto& one) { return one.second; });
    return !broken && latest != nullptr &&
           (together || (latest->time && t_evidence.last &&
                         Seconds(*t_evidence.last) - Seconds(*latest->time) >= m_settings.longestInterval));
}

/// For how many seconds signalling came on the package's session.
double CSignallingRules::m_Lasted(const SPackageFacts& package) const
{
    const auto rounds = m_rounds.find(package.session);
    if (rounds == m_rounds.end() || !rounds->second.arrivals.first.time || !rounds->second.arrivals.last.time) {
        return 0;
    }
    return Seconds(*rounds->second.arrivals.last.time) - Seconds(*rounds->second.arrivals.first.time);
}

void CSignallingRules::m_Service(const SSltService& service, const SPackageFacts& package)
{
    const unsigned id = service.serviceId;
    const std::string name = "service " + std::to_string(id);
    const auto broken = [&package](ESlsDocument kind) {
        const auto found = package.broken.find(kind);
        return found != package.broken.end() && found->second;
    };
    if (!package.usbd || package.usbd->serviceId.value_or(id) != id) {
        return;  // why it has no signalling is told elsewhere
    }
    const SUsbdFacts& usbd = *package.usbd;
    const std::string listed = service.globalServiceId.value_or("");
    if (!listed.empty() && !usbd.globalServiceId.empty() && usbd.globalServiceId != listed) {
        m_Tell(ERule::GLOBAL_SERVICE_ID, package, ESlsDocument::USBD,
               name + " has the globalServiceID " + Quoted(listed) + " in the service list, and " +
                   Quoted(usbd.globalServiceId) + " in its USBD",
               id);
    }
    const bool lasted = m_Lasted(package) >= m_settings.longestInterval;
    if (!package.stsid && !broken(ESlsDocument::STSID) && lasted) {
        m_Tell(ERule::NO_STSID, package, ESlsDocument::USBD, name + " has a USBD and no S-TSID", id);
    }
    const bool linear = service.serviceCategory == k_linear || service.serviceCategory == k_linearAudio;
    if (linear && package.stsid && !package.mpd && !broken(ESlsDocument::MPD) && lasted && usbd.unicast.empty() &&
        usbd.whole && !m_rounds[package.session].otherManifest) {
        m_Tell(ERule::NO_MPD, package, ESlsDocument::STSID, name + " has a USBD and an S-TSID, and no MPD", id);
    }
    if (!package.mpd || !package.mpd->whole || !m_Settled(package)) {
        return;
    }
    const bool isProtected = service.givenProtected.value_or(service.isProtected);
    if (isProtected && !package.mpd->isProtected) {
        m_Tell(ERule::PROTECTION_MISSING, package, ESlsDocument::MPD,
               name + " is protected by the service list, and its MPD names no protection", id);
    } else if (!isProtected && package.mpd->isProtected) {
        m_Tell(ERule::PROTECTION_UNANNOUNCED, package, ESlsDocument::MPD,
               name + " is not protected by the service list, and its MPD names protection", id);
    }
}

void CSignallingRules::m_Sessions(const SPackageFacts& package)
{
    std::set<TLctKey> known;
    std::set<TLctKey> twice;
    for (const SLctFacts& lct : package.stsid->sessions) {
        if (lct.sourceFlow && !known.insert(KeyOf(package, lct)).second) {
            twice.insert(KeyOf(package, lct));
        }
    }
    for (const TLctKey& key : twice) {
        m_Tell(ERule::TSI_TWICE, package, ESlsDocument::STSID,
               "the S-TSID describes TSI " + std::to_string(std::get<2>(key)) + " of " + std::get<0>(key) +
                   " more than once");
    }
}

/// What may carry representations beside the LCT sessions with their repId.
struct SElsewhere {
    explicit SElsewhere(const SPackageFacts& package) : unicast(package.usbd->unicast)
    {
        for (const SLctFacts& lct : package.stsid->sessions) {
            anything = anything || (lct.sourceFlow && lct.repId.empty() && lct.realTime);
            if (lct.sourceFlow && lct.repId.empty()) {
                names.insert(Fixed(lct.fileTemplate));
                for (const SFileFacts& file : lct.files) {
                    names.insert(file.name);
                }
            }
        }
        names.erase("");
    }
    bool MayHave(const SRepresentationFacts& representation) const
    {
        const std::string media = OfRepresentation(representation.media, representation.id);
        const auto fits = [&media](const std::string& name) { return MayMatch(name, media); };
        return anything || IsAbsolute(media) || (media.empty() && !(unicast.empty() && names.empty())) ||
               std::any_of(unicast.begin(), unicast.end(), fits) || std::any_of(names.begin(), names.end(), fits);
    }

    const std::vector<std::string>& unicast;
    std::set<std::string> names;  ///< of files and templates of LCT sessions that say no repId
    bool anything = false;
};

/// Which periods may be on air at that time: one that is over can be kept for those who go back, and one to come be
/// announced ahead. Without a start, and of an MPD of another time, any may be.
std::vector<bool> OnAir(const SMpdFacts& mpd, const std::optional<STime>& now)
{
    std::vector<bool> onAir(mpd.periods.size(), true);
    const std::optional<double> begin = Instant(mpd.availabilityStartTime);
    if (!mpd.dynamic || !begin || !now) {
        return onAir;
    }
    const double at = Seconds(*now) - *begin;
    std::optional<double> start;
    std::optional<double> end;  // of the one before, by its duration
    for (std::size_t i = 0; i < mpd.periods.size(); ++i) {
        const SPeriodFacts& period = mpd.periods[i];
        start = period.start ? period.start : end;
        end = start && period.duration ? std::optional<double>(*start + *period.duration) : std::nullopt;
        if (i != 0 && start && *start < at - k_clocksApart) {
            onAir[i - 1] = false;
        }
        onAir[i] = !(start && *start > at + k_clocksApart) && !(end && *end < at - k_clocksApart);
    }
    const bool any = std::find(onAir.begin(), onAir.end(), true) != onAir.end();
    return any ? onAir : std::vector<bool>(onAir.size(), true);
}

void CSignallingRules::m_Representations(const SPackageFacts& package)
{
    constexpr std::size_t k_mostPairs = 65536;  // to be held against each other
    TRepresentations representations;
    for (const SRepresentationFacts& representation : package.mpd->representations) {
        representations.emplace(representation.id, &representation);
    }
    std::set<std::string> carried;
    for (const SLctFacts& lct : package.stsid->sessions) {
        if (!lct.repId.empty() && carried.insert(lct.repId).second && representations.count(lct.repId) == 0) {
            m_Tell(ERule::REP_ID_UNKNOWN, package, ESlsDocument::STSID,
                   "TSI " + std::to_string(lct.tsi) + " has repId " + Quoted(lct.repId) +
                       ", and no Representation of the MPD has this id");
        }
        m_MediaInfo(package, lct, representations);
    }
    if (carried.empty() || !package.usbd || !package.usbd->whole) {
        return;
    }
    const SElsewhere elsewhere(package);
    if ((elsewhere.unicast.size() + elsewhere.names.size()) * representations.size() > k_mostPairs) {
        return;
    }
    // Whichever of the periods is on air: it is missing where it is of all that may be.
    const std::vector<bool> onAir = OnAir(*package.mpd, t_evidence.last);
    const auto least = static_cast<std::size_t>(package.mpd->dynamic ? std::count(onAir.begin(), onAir.end(), true)
                                                                     : std::ptrdiff_t{1});
    for (auto one = representations.begin(), next = one; one != representations.end(); one = next) {
        const auto& [id, representation] = *one;
        next = representations.upper_bound(id);
        std::set<std::size_t> periods;
        bool mayCome = id.empty() || carried.count(id) != 0;
        for (auto each = one; each != next && !mayCome; ++each) {
            if (onAir[each->second->period]) {
                periods.insert(each->second->period);
                mayCome = elsewhere.MayHave(*each->second);
            }
        }
        if (!mayCome && periods.size() >= least) {
            const std::string& type = representation->contentType;
            m_Tell(ERule::REPRESENTATION_NOT_CARRIED, package, ESlsDocument::MPD,
                   "Representation " + Quoted(id) + (type.empty() ? "" : " (" + Printable(type) + ')') +
                       " of the MPD: no LCT session of the S-TSID has its id, and no unicast pattern fits it");
        }
    }
}

/// Of several periods, one that agrees is enough.
void CSignallingRules::m_MediaInfo(const SPackageFacts& package, const SLctFacts& lct,
                                   const TRepresentations& representations)
{
    std::string type;
    std::string lang;
    bool typeAgrees = false;
    bool langAgrees = false;
    constexpr unsigned k_mostPeriods = 16;
    unsigned count = 0;
    const auto [begin, end] = representations.equal_range(lct.repId);
    for (auto one = begin; one != end && !lct.repId.empty(); ++one) {
        type = one->second->contentType;
        lang = one->second->lang;
        ++count;
        typeAgrees = typeAgrees || count > k_mostPeriods || !AreOtherTypes(lct.contentType, type);
        langAgrees = langAgrees || count > k_mostPeriods || !AreOthers(lct.lang, lang);
    }
    const std::string what = "TSI " + std::to_string(lct.tsi) + " carries representation " + Quoted(lct.repId) + ", ";
    if (!type.empty() && !typeAgrees) {
        m_Tell(ERule::MEDIA_INFO_CONTRADICTS, package, ESlsDocument::STSID,
               what + Printable(lct.contentType) + " by the S-TSID, and " + Printable(type) + " by the MPD");
    }
    if (!lang.empty() && !langAgrees) {
        m_Tell(ERule::MEDIA_INFO_CONTRADICTS, package, ESlsDocument::STSID,
               what + "of language " + Quoted(lct.lang) + " by the S-TSID, and " + Quoted(lang) + " by the MPD");
    }
}

void CSignallingRules::m_Patterns(const SPackageFacts& package)
{
    std::set<std::string> names;
    for (const SLctFacts& lct : package.stsid->sessions) {
        names.insert(OfRepresentation(lct.fileTemplate, lct.repId));
        for (const SFileFacts& file : lct.files) {
            names.insert(file.name);
        }
    }
    for (const SRepresentationFacts& representation :
         package.mpd ? package.mpd->representations : std::vector<SRepresentationFacts>()) {
        names.insert(OfRepresentation(representation.media, representation.id));
        names.insert(OfRepresentation(representation.initialization, representation.id));
    }
    names.erase("");
    constexpr std::size_t k_mostPairs = 65536;  // to be held against each other
    if (names.empty() || names.size() * package.usbd->broadcast.size() > k_mostPairs) {
        return;
    }
    for (const std::string& pattern : package.usbd->broadcast) {
        if (std::none_of(names.begin(), names.end(),
                         [&](const std::string& name) { return MayMatch(pattern, name); })) {
            m_Tell(ERule::BASE_PATTERN_UNMATCHED, package, ESlsDocument::USBD,
                   "no file of the S-TSID or the MPD has the BasePattern " + Quoted(pattern) + " in its name");
        }
    }
}

void CSignallingRules::m_Mpd(const SPackageFacts& package)
{
    const SMpdFacts& mpd = *package.mpd;
    const auto source = package.documentSource.find(ESlsDocument::MPD);
    const auto rounds = m_rounds.find(package.session);
    if (!mpd.dynamic || !t_evidence.last || source == package.documentSource.end() || rounds == m_rounds.end()) {
        return;
    }
    const std::optional<double> start = Instant(mpd.availabilityStartTime);
    if (start && *start > Seconds(*t_evidence.last) + k_clocksApart) {
        m_Tell(ERule::MPD_IN_FUTURE, package, ESlsDocument::MPD,
               "the MPD is available from " + Printable(mpd.availabilityStartTime) + ", and the capture ends at " +
                   EpochText(static_cast<double>(t_evidence.last->seconds)));
    }
    const double period = mpd.updatePeriod.value_or(0);
    const std::optional<STime>& last = rounds->second.arrivals.last.time;
    if (period > 0 && source->second.time && last) {
        const double since = Seconds(*last) - Seconds(*source->second.time);
        if (since > 3 * period + 2) {
            m_Tell(ERule::MPD_NOT_UPDATED, package, ESlsDocument::MPD,
                   "the MPD has a minimumUpdatePeriod of " + NumberText(period) + " s, and has not changed for " +
                       NumberText(since) + " s");
        }
    }
}

void CSignallingRules::Finish(const SDelivery* delivery)
{
    if (delivery != nullptr && (delivery->clockSet != 0 || !delivery->Whole())) {
        return;
    }
    for (const auto& [key, list] : t_evidence.lists) {
        for (const SSltService& service : list.services) {
            if (!service.notListed.empty() || service.slsProtocol != k_route) {
                continue;
            }
            for (const SPackageFacts* package : t_evidence.Of(service)) {
                m_Service(service, *package);
            }
        }
    }
    for (const auto& [key, package] : t_evidence.packages) {
        const bool settled = m_Settled(package);
        const bool stsid = package.stsid && package.stsid->whole && settled;
        if (stsid) {
            m_Sessions(package);
        }
        if (stsid && package.mpd && package.mpd->whole) {
            m_Representations(package);
        }
        if (stsid && package.usbd && (!package.mpd || package.mpd->whole)) {
            m_Patterns(package);
        }
        if (package.mpd) {
            m_Mpd(package);
        }
    }
}

}  // namespace

std::unique_ptr<CRules> SignallingRules(const SEvidence& evidence, CFindings& findings, const SRuleSettings& settings)
{
    return std::make_unique<CSignallingRules>(evidence, findings, settings);
}

}  // namespace vyr::inspect
