#include "follow/GuideFollower.h"

#include <algorithm>

#include "base/Gunzip.h"
#include "base/Limits.h"
#include "base/Text.h"
#include "content/LibraryPort.h"

namespace vyr::inspect {

namespace {

std::string Title(const SGuidePlace& place)
{
    const std::string file = place.contentLocation.empty() ? "" : ' ' + Quoted(place.contentLocation);
    return "object " + ToiText(place.toi) + file + " of TSI " + std::to_string(place.tsi);
}

std::string Title(const SGuideFragment& fragment)
{
    return std::string(FragmentTypeName(fragment.type)) + " fragment " + Quoted(fragment.id);
}

std::size_t Cost(const std::vector<SGuideText>& texts)
{
    std::size_t cost = 0;
    for (const SGuideText& text : texts) {
        cost += sizeof text + text.lang.size() + text.text.size();
    }
    return cost;
}

std::size_t Cost(const std::vector<std::string>& texts)
{
    std::size_t cost = 0;
    for (const std::string& text : texts) {
        cost += sizeof text + text.size();
    }
    return cost;
}

std::size_t Cost(const SProgramme& programme)
{
    return sizeof programme + programme.contentId.size() + programme.missingContent.size() + Cost(programme.titles) +
           Cost(programme.descriptions) + Cost(programme.genres) + Cost(programme.ratings) +
           Cost(programme.audioLanguages) + Cost(programme.textLanguages);
}

std::size_t Cost(const SGuideService& service)
{
    return sizeof service + service.fragmentId.size() + service.globalServiceId.size() + Cost(service.names) +
           Cost(service.descriptions) + Cost(service.genres);
}

}  // namespace

bool IsGuideType(const std::string& contentType)
{
    return contentType.rfind("application/vnd.oma.bcast.sg", 0) == 0;
}

/// Joins fragments to a guide.
class CGuideFollower::CJoin {
  public:
    explicit CJoin(const CGuideFollower& follower) : m_limit(follower.m_limits.joined)
    {
        for (const auto& [group, services] : follower.m_services) {
            for (const SListedService& service : services) {
                if (!service.globalServiceId.empty()) {
                    m_listed.try_emplace(service.globalServiceId, &service);
                }
            }
        }
        for (const auto& [key, held] : follower.m_fragments) {
            if (key.first == 1) {
                m_Service(held.fragment);
            } else if (key.first == 2) {
                m_contents[key.second] = &held.fragment;
            } else {
                m_schedules.push_back(&held.fragment);
            }
        }
        m_Schedules();
        m_Unscheduled();
        m_Sort();
        m_Cut();
        guide.fragments = follower.m_fragments.size();
        guide.whole = !follower.m_toldFull && leftOut == 0;
        guide.missingContents = m_missingContents.size();
        guide.missingServices = m_missingServices.size();
    }

    /// Bytes of the services and programmes, about.
    std::size_t Cost() const { return std::min(m_cost, m_limit); }

    SGuide guide;
    std::size_t programmes = 0;
    std::size_t leftOut = 0;  ///< programmes that would be too much

  private:
    void m_Service(const SGuideFragment& fragment)
    {
        m_index[fragment.id] = guide.services.size();
        SGuideService& service = guide.services.emplace_back(fragment.service);
        service.validTo = fragment.validTo;
        m_cost += vyr::inspect::Cost(service);
        const auto entry = m_listed.find(service.globalServiceId);
        if (entry == m_listed.end()) {
            return;
        }
        const SListedService& listed = *entry->second;
        service.serviceId = listed.serviceId;
        if (!service.majorChannelNo && listed.majorChannelNo != 0) {
            service.majorChannelNo = listed.majorChannelNo;
            service.minorChannelNo = listed.minorChannelNo;
        }
    }

    /// The service of the fragment's reference, with nothing but its id when it did not come.
    SGuideService& m_ServiceOf(const SGuideFragment& fragment)
    {
        const auto [entry, isNew] = m_index.try_emplace(fragment.serviceId, guide.services.size());
        if (isNew) {
            SGuideService& service = guide.services.emplace_back();
            service.fragmentId = fragment.serviceId;
            m_cost += vyr::inspect::Cost(service);
            if (!fragment.serviceId.empty()) {
                m_missingServices.insert(fragment.serviceId);
            }
        }
        return guide.services[entry->second];
    }

    void m_Add(SGuideService& service, const SProgramme& programme, const SGuideWindow& window,
               const std::vector<const SGuideFragment*>& fragments)
    {
        m_cost += vyr::inspect::Cost(programme);
        if (m_cost > m_limit) {
            ++leftOut;
            return;
        }
        ++programmes;
        SProgramme& added = service.programmes.emplace_back(programme);
        added.start = window.start;
        added.end = window.end;
        for (const SGuideFragment* fragment : fragments) {
            const auto& [from, to] = std::tie(fragment->validFrom, fragment->validTo);
            added.validFrom = from && (!added.validFrom || *added.validFrom < *from) ? from : added.validFrom;
            added.validTo = to && (!added.validTo || *to < *added.validTo) ? to : added.validTo;
        }
    }

    void m_Schedules()
    {
        for (const SGuideFragment* schedule : m_schedules) {
            SGuideService& service = m_ServiceOf(*schedule);
            for (const SGuideReference& reference : schedule->references) {
                const auto content = m_contents.find(reference.contentId);
                const bool known = content != m_contents.end();
                SProgramme unknown;
                unknown.missingContent = reference.contentId;
                std::vector<const SGuideFragment*> fragments = {schedule};
                if (known) {
                    m_scheduled.insert(content->first);
                    fragments.push_back(content->second);
                } else if (!reference.contentId.empty()) {
                    m_missingContents.insert(reference.contentId);
                }
                for (const SGuideWindow& window : reference.windows) {
                    m_Add(service, known ? content->second->programme : unknown, window, fragments);
                }
            }
        }
    }

    void m_Unscheduled()
    {
        for (const auto& [id, content] : m_contents) {
            if (m_scheduled.count(id) == 0) {
                ++guide.unscheduledContents;
                m_Add(m_ServiceOf(*content), content->programme, {}, {content});
            }
        }
    }

    void m_Sort()
    {
        static constexpr std::int64_t k_last = INT64_MAX;
        for (SGuideService& service : guide.services) {
            std::stable_sort(service.programmes.begin(), service.programmes.end(),
                             [](const SProgramme& a, const SProgramme& b) {
                                 return a.start.value_or(k_last) < b.start.value_or(k_last);
                             });
        }
        const auto number = [](const SGuideService& service) {
            return std::pair(service.majorChannelNo.value_or(INT32_MAX), service.minorChannelNo.value_or(0));
        };
        std::stable_sort(guide.services.begin(), guide.services.end(),
                         [&](const SGuideService& a, const SGuideService& b) { return number(a) < number(b); });
    }

    /// Leaves as many entries of each list as a report shows.
    void m_Cut()
    {
        const auto cut = [](auto& list, std::size_t& gone) {
            gone = list.size() - std::min(list.size(), MostEntries());
            list.resize(list.size() - gone);
        };
        cut(guide.services, guide.leftOut);
        for (SGuideService& service : guide.services) {
            cut(service.programmes, service.leftOut);
        }
    }

    const std::size_t m_limit;
    std::map<std::string, const SListedService*> m_listed;  ///< by globalServiceID
    std::map<std::string, std::size_t> m_index;             ///< of the services, by the ids of their fragments
    std::map<std::string, const SGuideFragment*> m_contents;
    std::vector<const SGuideFragment*> m_schedules;
    std::set<std::string> m_scheduled;
    std::set<std::string> m_missingContents;
    std::set<std::string> m_missingServices;
    std::size_t m_cost = 0;
};

bool CGuideFollower::Take(const std::optional<SGuidePlace>& place, SView object, const SSource& source)
{
    SGuideObject report;
    report.source = source;
    report.size = object.size;
    const SView body = EntityBody(object);
    report.gzip = IsGzip(body);
    SObject now = {object.size, ContentHash(object), 0, 0, false, place ? place->contentLocation : ""};
    SObject before;
    if (place) {
        report.session = place->session;
        report.tsi = place->tsi;
        report.toi = place->toi;
        report.contentLocation = place->contentLocation;
        if (const SObject* known = m_objects.Find({place->session, place->tsi, place->toi})) {
            before = *known;
        }
        if (before.size == now.size && before.hash == now.hash) {
            m_objects.Hold({place->session, place->tsi, place->toi});
            return m_Repeated(before, report);
        }
    }
    std::vector<unsigned char> inflated;
    const bool whole = !report.gzip || Gunzip(body, k_maxGuideObject, inflated);
    const SView text = report.gzip ? SView{inflated.data(), inflated.size()} : body;
    std::optional<EGuideObject> kind;
    if (whole) {
        kind = GuideKind(text);
    }
    now.textSize = text.size;
    now.textHash = whole ? ContentHash(text) : now.hash;
    now.guide = kind.has_value();
    report.status = place ? m_Remember(*place, now) : EStatus::NEW;
    if (before.textSize == now.textSize && before.textHash == now.textHash && before.size != 0) {
        return m_Repeated(now, report);
    }
    if (!kind) {
        if (place && IsGuideType(place->contentType)) {
            ++m_report.Summary().guide.notParsed;
            m_Finding(ERule::GUIDE_NOT_PARSED,
                      Title(*place) + (whole ? " is neither a delivery unit nor a document of the guide"
                                             : " does not inflate, or is larger than 8 MiB"),
                      place, source);
        }
        return false;
    }
    TakeAssertions();
    SGuideRead read = ReadGuideObject(*kind, body, text);
    report.kind = *kind;
    report.content = std::move(read.content);
    report.sent = object;
    report.text = text;
    report.parts = std::move(read.parts);
    m_report.GuideObject(report);
    const std::string title = place ? Title(*place) + ": " : "";
    if (report.status == EStatus::CHANGED_WITHOUT_VERSION) {
        m_Finding(ERule::CHANGED_WITHOUT_VERSION, Title(*place) + " changed without a new TOI", place, source);
    }
    for (const std::string& fault : read.faults) {
        ++m_report.Summary().guide.notParsed;
        m_Finding(ERule::GUIDE_NOT_PARSED,
                  title + (report.content ? "" : std::string(GuideObjectName(*kind)) + " did not parse: ") + fault,
                  place, source);
    }
    for (SGuideFragment& fragment : read.fragments) {
        m_Hold(std::move(fragment), place, source);
    }
    m_MakeRoom(source);
    for (const SAssertion& assertion : TakeAssertions()) {
        m_Finding(ERule::ASSERTION, AssertionText(assertion), place, source);
    }
    m_CountSent(now);
    return true;
}

void CGuideFollower::m_CountSent(const SObject& object)
{
    m_sinceShown += object.textSize;
    m_allowance.Received(object.size);
}

/// An object that comes again tells that the guide was sent through: it is shown then, when it has changed
/// and so much came since that the report does not outgrow the broadcast.
bool CGuideFollower::m_Repeated(const SObject& known, SGuideObject& object)
{
    if (!known.guide) {
        return false;
    }
    object.status = EStatus::REPEATED;
    m_report.GuideObject(object);
    m_CountSent(known);
    if (m_changed && m_sinceShown >= m_held && m_allowance.Room() != 0) {
        m_Show(object.source);
    }
    return true;
}

/// Notes the object, and tells what is new about it: a file is known by its place, too.
EStatus CGuideFollower::m_Remember(const SGuidePlace& place, const SObject& now)
{
    const TObject key = {place.session, place.tsi, place.toi};
    const SObject* known = m_objects.Find(key);
    EStatus status = known == nullptr ? EStatus::NEW : EStatus::CHANGED_WITHOUT_VERSION;
    if (known != nullptr && known->contentLocation != now.contentLocation) {
        m_ForgetFile(key, *known);
    }
    if (!place.contentLocation.empty()) {
        const auto [file, isFirst] = m_files.try_emplace({place.session, place.contentLocation}, key);
        if (known == nullptr && !isFirst) {
            const SObject& last = *m_objects.Find(file->second);
            status = StatusOf(false, false, last.textSize == now.textSize && last.textHash == now.textHash);
        }
        file->second = key;
    }
    m_objects.Hold(key, [this](const TObject& oldest, const SObject& object) { m_ForgetFile(oldest, object); }) = now;
    return status;
}

/// The object is the latest of its file no longer.
void CGuideFollower::m_ForgetFile(const TObject& key, const SObject& object)
{
    const auto file = m_files.find({std::get<0>(key), object.contentLocation});
    if (file != m_files.end() && file->second == key) {
        m_files.erase(file);
    }
}

void CGuideFollower::m_Hold(SGuideFragment&& fragment, const std::optional<SGuidePlace>& place, const SSource& source)
{
    const TFragment key = {fragment.type, fragment.id};
    const auto [entry, isNew] = m_fragments.try_emplace(key);
    SHeld& held = entry->second;
    if (isNew) {
        held.order = m_order.insert(m_order.end(), key);
    } else {
        const SGuideFragment& before = held.fragment;
        const bool same = before.size == fragment.size && before.hash == fragment.hash;
        if (fragment.version < before.version || (fragment.version == before.version && same)) {
            return;
        }
        if (fragment.version == before.version) {
            m_Finding(ERule::CHANGED_WITHOUT_VERSION,
                      Title(fragment) + " changed without a new version (" + std::to_string(fragment.version) + ')',
                      place, source);
        }
        m_held -= before.size;
        m_order.splice(m_order.end(), m_order, held.order);
    }
    m_held += fragment.size;
    held.fragment = std::move(fragment);
    m_changed = true;
}

void CGuideFollower::m_MakeRoom(const SSource& source)
{
    while (m_fragments.size() > m_limits.fragments || m_held > m_limits.bytes) {
        const auto oldest = m_fragments.find(m_order.front());
        m_held -= oldest->second.fragment.size;
        m_fragments.erase(oldest);
        m_order.pop_front();
        if (!m_toldFull) {
            m_toldFull = true;
            m_Finding(ERule::GUIDE_TOO_LARGE,
                      "the guide has more than " + Counted(m_limits.fragments, "fragment") + " or " +
                          Counted(m_limits.bytes, "byte") + ": the oldest are let go",
                      {}, source);
        }
    }
}

void CGuideFollower::Announce(const TGroup& group, const std::vector<SListedService>& services)
{
    std::vector<SListedService>& held = m_services[group];
    const auto same = [](const SListedService& a, const SListedService& b) {
        return std::tie(a.serviceId, a.globalServiceId, a.majorChannelNo, a.minorChannelNo) ==
               std::tie(b.serviceId, b.globalServiceId, b.majorChannelNo, b.minorChannelNo);
    };
    m_changed = m_changed || (Holds() && !std::equal(held.begin(), held.end(), services.begin(), services.end(), same));
    held = services;
}

void CGuideFollower::m_Show(const SSource& source)
{
    CJoin join(*this);
    join.guide.source = source;
    m_report.Guide(join.guide);
    m_changed = false;
    m_sinceShown = 0;
    m_allowance = CAllowance(0, k_growth);
    m_allowance.Spend(join.Cost());
    m_shownServices = join.guide.services.size() + join.guide.leftOut;
    m_shownProgrammes = join.programmes;
    if (join.leftOut != 0 && !m_toldCut) {
        m_toldCut = true;
        m_Finding(ERule::GUIDE_TOO_LARGE,
                  "the programmes take more than " + Counted(m_limits.joined, "byte") + ": " +
                      std::to_string(join.leftOut) + " are left out",
                  {}, source);
    }
}

void CGuideFollower::Show(const SSource& source)
{
    if (m_changed) {
        m_Show(source);
    }
}

void CGuideFollower::Finish(const std::string& file)
{
    Show({file, 0, {}});
    SGuideCounts& counts = m_report.Summary().guide;
    counts.fragments += m_fragments.size();
    counts.services += m_shownServices;
    counts.programmes += m_shownProgrammes;
}

void CGuideFollower::m_Finding(ERule rule, const std::string& message, const std::optional<SGuidePlace>& place,
                               const SSource& source)
{
    SFinding finding = {rule, message + (place ? " (" + place->session + ')' : ""), source};
    if (place) {
        finding.about = place->session;
    }
    if (place && place->services.size() == 1) {
        finding.serviceId = *place->services.begin();
    }
    m_report.Finding(finding);
}

}  // namespace vyr::inspect
