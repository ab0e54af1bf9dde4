#include <algorithm>
#include <cctype>
#include <set>
#include <tuple>

#include "base/Text.h"
#include "judge/Lists.h"
#include "judge/Rules.h"
#include "model/Guide.h"

namespace vyr::inspect {

namespace {

constexpr std::int64_t k_minute = 60;
constexpr std::int64_t k_day = 86400;

std::string Title(const SGuideService& service)
{
    const std::string name = service.names.empty() ? service.fragmentId : service.names[0].text;
    return service.serviceId ? "service " + std::to_string(*service.serviceId) + ' ' + Quoted(name)
                             : "service " + Quoted(name) + " of the guide";
}

/// "2026-11-21T22:30:00Z "Late news"", whatever of it is known.
std::string Title(const SProgramme& programme)
{
    const std::string name = !programme.titles.empty()     ? programme.titles[0].text
                             : programme.contentId.empty() ? programme.missingContent
                                                           : programme.contentId;
    return (programme.start ? EpochText(static_cast<double>(*programme.start)) + ' ' : "") + Quoted(name);
}

/// "en" of "en-US".
std::string Primary(const std::string& language)
{
    std::string primary = language.substr(0, language.find('-'));
    std::transform(primary.begin(), primary.end(), primary.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return primary;
}

/// No title that people who speak the language read; "en" and "eng" are not told apart.
bool LacksTitle(const SProgramme& programme, const std::string& language)
{
    const std::string primary = Primary(language);
    return std::all_of(programme.titles.begin(), programme.titles.end(), [&](const SGuideText& title) {
        const std::string own = Primary(title.lang);
        return !own.empty() && !primary.empty() && own.size() == primary.size() && own != primary;
    });
}

/// Whether both hold at some time, and neither says what the other does.
bool Compete(const SProgramme& a, const SProgramme& b)
{
    const auto before = [](const SProgramme& one, const SProgramme& other) {
        return one.validTo && other.validFrom && *one.validTo <= *other.validFrom;
    };
    return std::tie(a.contentId, a.missingContent, a.start, a.end) !=
               std::tie(b.contentId, b.missingContent, b.start, b.end) &&
           !before(a, b) && !before(b, a);
}

/// How often something is so, and the first that is.
struct SCases {
    std::size_t count = 0;
    std::string first;

    template <class TText>
    void Add(TText text)
    {
        first = count++ == 0 ? text() : first;
    }
};

/// What the guide says, as it stands at the end of the input, of itself, the service list and the time.
class CGuideRules : public CRules {
  public:
    using CRules::CRules;

    void GuideObject(const SGuideObject& object) override;
    void Guide(const SGuide& guide) override { m_guide = guide; }
    void Finish(const SDelivery* delivery) override;

  private:
    static constexpr std::size_t k_mostObjects = 4096;

    void m_Tell(ERule rule, const SGuideService& service, const SCases& cases, const char* noun,
                const std::string& which)
    {
        if (cases.count != 0) {
            t_findings.Tell(rule,
                            Title(service) + ": " + Counted(cases.count, noun) + which + ", the first " + cases.first,
                            service.serviceId);
        }
    }
    bool m_CameWhole(const SDelivery* delivery) const;
    const SSltService* m_Listed(const SGuideService& service) const;
    void m_Unknown(const SGuideService& service);
    void m_Programmes(const SGuideService& service);
    void m_Times(const SGuideService& service);

    SGuide m_guide;
    std::set<std::string> m_objects;  ///< by session and place
    std::set<std::string> m_again;    ///< those that came again since the last that was new
    bool m_changed = false;
    bool m_tooMany = false;
    bool m_whole = false;               ///< all of the guide came, as it is now
    std::optional<std::int64_t> m_now;  ///< when the capture began
    std::optional<std::int64_t> m_end;  ///< and ended
};

void CGuideRules::GuideObject(const SGuideObject& object)
{
    const std::string key = object.session + ' ' +
                            (!object.contentLocation.empty()
                                 ? object.contentLocation
                                 : std::to_string(object.tsi.value_or(0)) + ' ' + ToiText(object.toi.value_or(TToi())));
    if (m_objects.size() == k_mostObjects && m_objects.count(key) == 0) {
        m_tooMany = true;
        return;
    }
    const bool again = object.status == EStatus::REPEATED || object.status == EStatus::NEW_VERSION_SAME_CONTENT;
    m_changed = m_changed || (!again && object.status != EStatus::NEW);
    if (m_objects.insert(key).second || !again) {
        m_again.clear();
    } else {
        m_again.insert(key);
    }
}

/// Whether everything came once more since something was new: only then nothing is still to come.
bool CGuideRules::m_CameWhole(const SDelivery* delivery) const
{
    if (delivery == nullptr || !delivery->received || m_tooMany || !m_guide.whole ||
        m_again.size() != m_objects.size()) {
        return false;
    }
    for (const SSessionDelivery& session : delivery->sessions) {
        for (const SFlowDelivery& flow : session.flows) {
            if (flow.carries == "service guide" &&
                (!flow.objects || flow.objects->incomplete + flow.objects->cut + flow.objects->unknown != 0)) {
                return false;
            }
        }
    }
    return true;
}

const SSltService* CGuideRules::m_Listed(const SGuideService& service) const
{
    for (const auto& [key, list] : t_evidence.lists) {
        for (const SSltService& listed : list.services) {
            const bool numbered =
                service.majorChannelNo == listed.majorChannelNo && service.minorChannelNo == listed.minorChannelNo;
            if (service.globalServiceId.empty() ? numbered : listed.globalServiceId == service.globalServiceId) {
                return &listed;
            }
        }
    }
    return nullptr;
}

void CGuideRules::m_Unknown(const SGuideService& service)
{
    const bool came = !service.globalServiceId.empty() || !service.names.empty();
    if (came && m_Listed(service) == nullptr) {
        t_findings.Tell(ERule::GUIDE_SERVICE_UNKNOWN,
                        Title(service) + (service.globalServiceId.empty()
                                              ? " has no globalServiceID, and no channel of the service list"
                                              : " has the globalServiceID " + Quoted(service.globalServiceId) +
                                                    ", which no service of the service list has"));
    }
}

/// What programmes lack, one by one.
void CGuideRules::m_Programmes(const SGuideService& service)
{
    const std::string language = service.names.empty() ? std::string() : service.names[0].lang;
    SCases missing;
    SCases untitled;
    SCases expired;
    for (const SProgramme& programme : service.programmes) {
        const auto title = [&programme] { return Title(programme); };
        if (m_whole && !programme.missingContent.empty()) {
            missing.Add(title);
        }
        if (!programme.contentId.empty() && LacksTitle(programme, language)) {
            untitled.Add(title);
        }
        // What is over may have ended its validity.
        const bool ahead = programme.end.value_or(INT64_MAX) > m_now.value_or(INT64_MAX);
        if (m_now && ahead && programme.validTo.value_or(INT64_MAX) < *m_now) {
            expired.Add(title);
        }
    }
    m_Tell(ERule::GUIDE_WITHOUT_CONTENT, service, missing, "programme", " whose content did not come");
    m_Tell(ERule::GUIDE_TITLE_LANGUAGE, service, untitled, "programme",
           language.empty() ? " without a title" : " without a title in the service's first language");
    m_Tell(ERule::GUIDE_EXPIRED, service, expired, "programme", " to come, of fragments that are valid no longer");
    if (m_now && service.validTo.value_or(INT64_MAX) < *m_now) {
        t_findings.Tell(
            ERule::GUIDE_EXPIRED,
            Title(service) + ": its fragment was valid until " + EpochText(static_cast<double>(*service.validTo)),
            service.serviceId);
    }
}

/// What programmes are to each other. Of a channel alone: what is on demand has no place in time.
void CGuideRules::m_Times(const SGuideService& service)
{
    constexpr int k_linear = 1;
    constexpr int k_linearAudio = 2;
    const SSltService* listed = m_Listed(service);
    const bool channel = listed != nullptr
                             ? listed->serviceCategory == k_linear || listed->serviceCategory == k_linearAudio
                             : service.majorChannelNo.has_value();
    if (!channel) {
        return;
    }
    SCases overlaps;
    SCases holes;
    const SProgramme* last = nullptr;  // that with the latest end
    bool open = false;                 // one has no end
    for (const SProgramme& programme : service.programmes) {
        if (!programme.start) {
            break;
        }
        if (last != nullptr && *programme.start<*last->end&& * last->end> m_now.value_or(INT64_MIN) &&
            Compete(*last, programme)) {
            overlaps.Add([&] { return Title(programme) + " with " + Title(*last); });
        }
        if (last != nullptr && !open && *programme.start - *last->end > k_minute &&
            *programme.start > m_now.value_or(INT64_MIN)) {
            holes.Add([&] { return "from " + EpochText(static_cast<double>(*last->end)) + " to " + Title(programme); });
        }
        open = !programme.end;
        last = programme.end && (last == nullptr || *programme.end > *last->end) ? &programme : last;
    }
    if (m_whole || !m_changed) {
        m_Tell(ERule::GUIDE_OVERLAP, service, overlaps, "overlap", " of programmes");
    }
    if (!m_whole) {
        return;
    }
    m_Tell(ERule::GUIDE_HOLE, service, holes, "hole", " of more than a minute");
    if (m_end && last != nullptr && !open && service.leftOut == 0 && *last->end - *m_end < k_day) {
        t_findings.Tell(ERule::GUIDE_ENDS_SOON,
                        "the guide of " + Title(service) + " ends at " + EpochText(static_cast<double>(*last->end)) +
                            ", less than a day after the capture",
                        service.serviceId);
    }
}

void CGuideRules::Finish(const SDelivery* delivery)
{
    m_whole = m_CameWhole(delivery);
    if (delivery != nullptr && delivery->clockSet == 0 && t_evidence.first && t_evidence.last) {
        m_now = t_evidence.first->seconds;
        m_end = t_evidence.last->seconds;
    }
    if (m_whole && m_guide.missingServices != 0) {
        t_findings.Tell(ERule::GUIDE_INCOMPLETE,
                        "the guide names what did not come: " + Counted(m_guide.missingServices, "service"));
    }
    const bool lists = ListsWhole(t_evidence);
    for (const SGuideService& service : m_guide.services) {
        if (lists) {
            m_Unknown(service);
        }
        m_Programmes(service);
        m_Times(service);
    }
}

}  // namespace

std::unique_ptr<CRules> GuideRules(const SEvidence& evidence, CFindings& findings)
{
    return std::make_unique<CGuideRules>(evidence, findings);
}

}  // namespace vyr::inspect
