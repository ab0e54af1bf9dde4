#include <algorithm>
#include <tuple>

#include "base/Names.h"
#include "base/Text.h"
#include "judge/Rules.h"

namespace vyr::inspect {

namespace {

constexpr unsigned k_slt = 1;
constexpr int k_linear = 1;
constexpr int k_linearAudio = 2;
constexpr int k_route = 1;

std::string Title(const SSltService& service)
{
    return "service " + std::to_string(service.serviceId) +
           (service.shortServiceName ? ' ' + Quoted(*service.shortServiceName) : std::string());
}

/// Services of the list that are judged, however many the report shows.
std::size_t Count(const STable& table)
{
    return std::min(table.slt->services.size(), k_mostJudged);
}

std::string ChannelText(const SSltService& service)
{
    return std::to_string(service.majorChannelNo) + '.' + std::to_string(service.minorChannelNo);
}

std::size_t Characters(const std::string& utf8)
{
    return static_cast<std::size_t>(std::count_if(
        utf8.begin(), utf8.end(), [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
}

/// Everything that a list says of a service but its sltSvcSeqNum.
auto Entry(const SSltService& one)
{
    return std::make_tuple(
        std::tie(one.globalServiceId, one.isProtected, one.majorChannelNo, one.minorChannelNo, one.simulcastTsid,
                 one.simulcastMajorChannelNo, one.simulcastMinorChannelNo, one.serviceCategory, one.shortServiceName,
                 one.hidden, one.broadbandAccessRequired, one.svcCapabilities),
        std::tie(one.hasBroadcastSvcSignaling, one.drmSystemID, one.slsProtocol, one.slsMajorProtocolVersion,
                 one.slsMinorProtocolVersion, one.slsDestinationIpAddress, one.slsDestinationUdpPort,
                 one.slsSourceIpAddress, one.svcInetUrl.url, one.svcInetUrl.urlType, one.hideInGuide,
                 one.configuration));
}

/// What service lists say against themselves, each other and their last versions, and when they come.
class CListRules : public CRules {
  public:
    CListRules(const SEvidence& evidence, CFindings& findings, const SRuleSettings& settings)
        : CRules(evidence, findings), m_settings(settings)
    {
    }

    void Table(const STable& table) override;
    void Finish(const SDelivery* delivery) override;

  private:
    /// A service of a list that holds.
    struct SEntry {
        std::string title;
        TListKey list;
        int protocol = 0;
    };
    /// The first of each key is the bsid: what two broadcasts have in common is no contradiction.
    template <class TKey>
    using TIndex = std::multimap<TKey, SEntry>;
    using TId = std::pair<int, unsigned>;
    using TChannel = std::tuple<int, int, int>;
    using TSession = std::tuple<int, std::string, std::uint32_t>;  ///< address and source; 0: any
    /// What a list says against another one, which may be about to change as well.
    struct SDoubt {
        TListKey list;
        unsigned number = 0;  ///< of the list's lists
        SFinding finding;
    };
    /// Where the services of one list are in the indexes.
    struct SHeld {
        unsigned number = 0;         ///< counts the group's lists
        std::vector<SDoubt> doubts;  ///< that other lists have raised since this one came last
        std::vector<TIndex<TId>::iterator> ids;
        std::vector<TIndex<TChannel>::iterator> channels;
        std::vector<TIndex<TSession>::iterator> sessions;
    };

    /// The LLS groups of a stream.
    struct SGroups {
        unsigned count = 0;                              ///< that there are, by the last table
        std::optional<STime> since;                      ///< when there came to be as many; none: when it began
        std::map<unsigned, std::optional<STime>> dueAt;  ///< since when each that came was due; none: from the begin
    };

    static constexpr std::size_t k_mostLists = 256;

    template <class TKey>
    static const SEntry* m_Enter(TIndex<TKey>& index, const TKey& key, const SEntry& entry, SHeld& held,
                                 std::vector<typename TIndex<TKey>::iterator> SHeld::*places);
    void m_Forget(SHeld& held);
    void m_Drop(const TListKey& list);
    void m_Settle(SHeld& held);
    bool m_Holds(const SDoubt& doubt) const
    {
        const auto held = m_held.find(doubt.list);
        return held != m_held.end() && held->second.number == doubt.number;
    }
    static SFinding m_Finding(ERule rule, const STable& table, const SSltService* service, const std::string& message);
    void m_Tell(ERule rule, const STable& table, const SSltService* service, const std::string& message)
    {
        t_findings.Tell(m_Finding(rule, table, service, message));
    }
    void m_Contradict(ERule rule, const STable& table, const SSltService& service, const std::string& begin,
                      const SEntry& other, const std::string& end = {});
    void m_Service(const STable& table, const SSltService& service);
    void m_Together(const STable& table, SHeld& held);
    void m_Session(const STable& table, const SSltService& service, const SEntry& entry, SHeld& held, bool another);
    void m_Changes(const STable& table);
    void m_Intervals(const SDelivery& delivery);

    const SRuleSettings m_settings;
    TIndex<TId> m_ids;
    TIndex<TChannel> m_channels;
    TIndex<TSession> m_sessions;
    std::map<TListKey, SHeld> m_held;
    std::map<std::tuple<std::string, unsigned, unsigned>, SArrivals> m_arrivals;  ///< by stream, group and table
    std::map<std::string, SGroups> m_groups;                                      ///< by stream
};

SFinding CListRules::m_Finding(ERule rule, const STable& table, const SSltService* service, const std::string& message)
{
    SFinding finding = {rule, message, table.source, table.header};
    if (service != nullptr) {
        finding.serviceId = service->serviceId;
        finding.session = SessionOf(*service);
    }
    return finding;
}

/// Between two lists, it is a contradiction only where it stays when the older one comes again, or the next of its
/// group.
void CListRules::m_Contradict(ERule rule, const STable& table, const SSltService& service, const std::string& begin,
                              const SEntry& other, const std::string& end)
{
    constexpr std::size_t k_mostDoubts = 64;
    const TListKey key = {table.stream, table.header.groupId};
    const SHeld& own = m_held[key];
    const std::string title = other.title + (other.list == key ? "" : " (of another list)");
    const SFinding finding = m_Finding(rule, table, &service, begin + title + end);
    const auto stays = [&](const SDoubt& doubt) {
        const SFinding& before = doubt.finding;
        const bool same =
            before.serviceId == finding.serviceId || (!finding.session.empty() && before.session == finding.session);
        return doubt.list == other.list && before.rule == rule && same && m_Holds(doubt);
    };
    if (other.list == key || std::any_of(own.doubts.begin(), own.doubts.end(), stays)) {
        t_findings.Tell(finding);
        return;
    }
    std::vector<SDoubt>& doubts = m_held[other.list].doubts;
    if (doubts.size() == k_mostDoubts) {
        const auto over = [this](const SDoubt& doubt) { return !m_Holds(doubt); };
        doubts.erase(std::remove_if(doubts.begin(), doubts.end(), over), doubts.end());
    }
    if (doubts.size() < k_mostDoubts) {
        doubts.push_back({key, own.number, finding});
    }
}

/// The list comes again as it is.
void CListRules::m_Settle(SHeld& held)
{
    for (const SDoubt& doubt : held.doubts) {
        if (m_Holds(doubt)) {
            t_findings.Tell(doubt.finding);
        }
    }
    held.doubts.clear();
}

void CListRules::m_Drop(const TListKey& list)
{
    const auto& [stream, group] = list;
    if (const auto held = m_held.find(list); held != m_held.end()) {
        m_Forget(held->second);
        ++held->second.number;
        held->second.doubts.clear();
    }
    const auto end = m_arrivals.lower_bound({stream, group + 1, 0});
    for (auto arrivals = m_arrivals.lower_bound({stream, group, 0}); arrivals != end; ++arrivals) {
        arrivals->second.ended = true;
    }
}

void CListRules::Table(const STable& table)
{
    constexpr std::size_t k_mostTables = 4096;
    for (const TListKey& gone : table.listsGone) {
        m_Drop(gone);
    }
    const std::tuple key(table.stream, unsigned{table.header.groupId}, unsigned{table.header.tableId});
    if (m_arrivals.size() < k_mostTables || m_arrivals.count(key) != 0) {
        m_arrivals[key].Add(table.source);
        SGroups& groups = m_groups[table.stream];
        const unsigned count = table.header.groupCountMinus1 + 1u;
        groups.since = groups.count != 0 && groups.count != count ? table.source.time : groups.since;
        groups.count = count;
        const auto [due, isNew] = groups.dueAt.try_emplace(table.header.groupId, groups.since);
        if (isNew && groups.dueAt.size() > count) {
            due->second = table.source.time;
        }
    }
    const TListKey list = {table.stream, table.header.groupId};
    const auto held = m_held.find(list);
    if (table.header.tableId == k_slt && table.status == EStatus::REPEATED && held != m_held.end()) {
        m_Settle(held->second);
    }
    if (!table.slt) {
        return;
    }
    for (std::size_t i = 0; i < Count(table); ++i) {
        m_Service(table, table.slt->services[i]);
    }
    if (m_held.size() < k_mostLists || held != m_held.end()) {
        m_Together(table, m_held[list]);
    }
    m_Changes(table);
}

/// What is wrong with one service, whatever else is there.
void CListRules::m_Service(const STable& table, const SSltService& service)
{
    using SService = SParseSLT::SService;
    constexpr std::size_t k_longestName = 7;
    const std::string title = Title(service);
    if ((service.given & SService::GIVEN_CATEGORY) != 0 && ServiceCategoryName(service.serviceCategory) == nullptr) {
        m_Tell(ERule::CATEGORY_UNKNOWN, table, &service,
               title + " is of category " + std::to_string(service.serviceCategory) + ", which is none");
    }
    const bool linear = service.serviceCategory == k_linear || service.serviceCategory == k_linearAudio;
    if (linear && service.hidden) {
        m_Tell(ERule::HIDDEN_LINEAR, table, &service, title + " is a linear service, and hidden");
    }
    if (service.shortServiceName && Characters(*service.shortServiceName) > k_longestName) {
        m_Tell(ERule::NAME_TOO_LONG, table, &service,
               "the name of " + title + " has " + std::to_string(Characters(*service.shortServiceName)) +
                   " characters, more than " + std::to_string(k_longestName));
    }
    // What is not listed was not read to its end.
    if (service.notListed.empty() && service.broadbandAccessRequired && service.svcInetUrl.url.empty() &&
        table.slt->inetUrls.empty()) {
        m_Tell(ERule::BROADBAND_WITHOUT_URL, table, &service, title + " needs broadband, and the list has no URL");
    }
    if (service.svcInetUrl.present && service.svcInetUrl.urlType >= 0 &&
        UrlTypeName(service.svcInetUrl.urlType) == nullptr) {
        m_Tell(ERule::URL_TYPE_UNKNOWN, table, &service,
               title + " has a URL of type " + std::to_string(service.svcInetUrl.urlType) + ", which is none");
    }
    if (!service.hasBroadcastSvcSignaling) {
        return;
    }
    if (ProtocolName(service.slsProtocol) == nullptr) {
        m_Tell(ERule::PROTOCOL_UNKNOWN, table, &service,
               title + " is signalled by protocol " + std::to_string(service.slsProtocol) + ", which is none");
    }
    if ((service.given & SService::GIVEN_SLS_MAJOR_VERSION) != 0 && service.slsMajorProtocolVersion != 1) {
        m_Tell(ERule::PROTOCOL_VERSION_UNKNOWN, table, &service,
               title + " is signalled by version " + std::to_string(service.slsMajorProtocolVersion) + '.' +
                   std::to_string(service.slsMinorProtocolVersion) + " of its protocol: receivers know version 1");
    }
    constexpr std::uint32_t k_multicast = 0xE;
    if (!SessionOf(service).empty() && service.slsDestinationIpAddress >> 28 != k_multicast) {
        m_Tell(ERule::NOT_MULTICAST, table, &service,
               "the signalling of " + title + " is sent to " + SessionOf(service) + ", which is no multicast address");
    }
}

template <class TKey>
const CListRules::SEntry* CListRules::m_Enter(TIndex<TKey>& index, const TKey& key, const SEntry& entry, SHeld& held,
                                              std::vector<typename TIndex<TKey>::iterator> SHeld::*places)
{
    const auto first = index.find(key);
    const SEntry* const other = first != index.end() ? &first->second : nullptr;
    (held.*places).push_back(index.emplace(key, entry));
    return other;
}

/// Takes the services of the group's last list out of the indexes.
void CListRules::m_Forget(SHeld& held)
{
    const auto forget = [](auto& index, auto& places) {
        for (const auto& place : places) {
            index.erase(place);
        }
        places.clear();
    };
    forget(m_ids, held.ids);
    forget(m_channels, held.channels);
    forget(m_sessions, held.sessions);
}

/// Services that contradict each other: of this list, and of the other lists that hold.
void CListRules::m_Together(const STable& table, SHeld& held)
{
    m_Forget(held);
    ++held.number;
    const int bsid = table.slt->bsid;
    const TListKey key = {table.stream, table.header.groupId};
    for (std::size_t i = 0; i < Count(table); ++i) {
        const SSltService& service = table.slt->services[i];
        if (!service.notListed.empty()) {
            continue;  // it was told why, which may be just this
        }
        const std::string title = Title(service);
        const SEntry entry = {title, key, service.slsProtocol};
        const SEntry* sameId = m_Enter(m_ids, {bsid, service.serviceId}, entry, held, &SHeld::ids);
        if (sameId != nullptr) {
            m_Contradict(ERule::SERVICE_ID_TWICE, table, service, title + " has the serviceId of ", *sameId);
        }
        if (service.majorChannelNo > 0 && service.minorChannelNo > 0) {
            const SEntry* same = m_Enter(m_channels, {bsid, service.majorChannelNo, service.minorChannelNo}, entry,
                                         held, &SHeld::channels);
            if (same != nullptr && sameId == nullptr) {
                m_Contradict(ERule::CHANNEL_TWICE, table, service,
                             title + " has channel " + ChannelText(service) + ", as ", *same);
            }
        }
        m_Session(table, service, entry, held, sameId == nullptr);
    }
    held.doubts.clear();
}

/// Sessions from two sources are two.
void CListRules::m_Session(const STable& table, const SSltService& service, const SEntry& entry, SHeld& held,
                           bool another)
{
    const std::string address = SessionOf(service);
    if (address.empty()) {
        return;
    }
    const int bsid = table.slt->bsid;
    const std::uint32_t source = service.slsSourceIpAddress;
    auto same = m_sessions.lower_bound({bsid, address, source});
    if (source != 0 && (same == m_sessions.end() || same->first != TSession(bsid, address, source))) {
        same = m_sessions.find({bsid, address, 0});
    }
    if (another && same != m_sessions.end() &&
        std::tie(bsid, address) == std::tie(std::get<0>(same->first), std::get<1>(same->first))) {
        const SEntry& other = same->second;
        if (entry.protocol != other.protocol) {
            m_Contradict(ERule::SESSION_TWO_PROTOCOLS, table, service, entry.title + " and ", other,
                         " are signalled on " + address + " by different protocols");
        } else if (entry.protocol == k_route) {
            m_Contradict(ERule::SESSION_SHARED, table, service, entry.title + " and ", other,
                         " are signalled on the same session, " + address);
        }
    }
    m_Enter(m_sessions, {bsid, address, source}, entry, held, &SHeld::sessions);
}

/// Holds the list against the last one of its group.
void CListRules::m_Changes(const STable& table)
{
    using SService = SParseSLT::SService;
    const auto last = t_evidence.lists.find({table.stream, table.header.groupId});
    if (last == t_evidence.lists.end() || last->second.bsid != table.slt->bsid) {
        return;
    }
    std::map<unsigned, const SSltService*> before;
    for (const SSltService& service : last->second.services) {
        before.emplace(service.serviceId, &service);
    }
    for (std::size_t i = 0; i < Count(table); ++i) {
        const SSltService& service = table.slt->services[i];
        const auto known = before.find(service.serviceId);
        if (known == before.end() || (service.given & known->second->given & SService::GIVEN_SEQ_NUM) == 0 ||
            !service.notListed.empty() || !known->second->notListed.empty()) {
            continue;
        }
        const bool sameNumber = service.sltSvcSeqNum == known->second->sltSvcSeqNum;
        const bool same = Entry(service) == Entry(*known->second);
        if (sameNumber && !same) {
            m_Tell(ERule::SEQUENCE_UNCHANGED, table, &service,
                   Title(service) + " changed, and its sltSvcSeqNum is still " + std::to_string(service.sltSvcSeqNum));
        } else if (!sameNumber && same && service.text != 0 && service.text == known->second->text) {
            m_Tell(ERule::SEQUENCE_CHANGED, table, &service,
                   "the sltSvcSeqNum of " + Title(service) + " went from " +
                       std::to_string(known->second->sltSvcSeqNum) + " to " + std::to_string(service.sltSvcSeqNum) +
                       ", and nothing else changed");
        }
    }
}

/// A list that is changed is told of as one; a table that cannot be expected to come again is not judged.
void CListRules::m_Intervals(const SDelivery& delivery)
{
    const double limit = m_settings.longestInterval;
    std::map<std::string, std::map<unsigned, double>> lasts;  // of all tables of a group, by stream
    for (const auto& [key, arrivals] : m_arrivals) {
        double& last = lasts[std::get<0>(key)][std::get<1>(key)];
        last = std::max(last, arrivals.last.time ? Seconds(*arrivals.last.time) : 0);
    }
    for (const auto& [key, arrivals] : m_arrivals) {
        const auto& [stream, group, tableId] = key;
        const std::map<unsigned, double>& all = lasts[stream];
        const double last = all.at(group);
        const SGroups& groups = m_groups.at(stream);
        // Where as many groups as there are came behind it, it is none of them.
        const auto later = std::count_if(all.begin(), all.end(), [last](const auto& one) { return one.second > last; });
        const bool over = arrivals.ended || static_cast<std::size_t>(later) >= groups.count;
        const char* name = TableName(tableId);
        const std::string title =
            (name != nullptr ? name : "table " + std::to_string(tableId)) + " of group " + std::to_string(group);
        const std::optional<STime>& due = groups.dueAt.at(group);
        const double before =
            arrivals.first.time ? Seconds(*arrivals.first.time) - Seconds(due ? *due : *delivery.traffic.first) : 0;
        const double after =
            arrivals.last.time && !over ? Seconds(*delivery.traffic.last) - Seconds(*arrivals.last.time) : 0;
        if (tableId == k_slt && arrivals.longest > limit) {
            t_findings.Tell(ERule::TABLE_INTERVAL,
                            title + ": " + NumberText(arrivals.longest) + " s between two of them",
                            arrivals.longestEnd);
        } else if (tableId == k_slt && std::max(before, after) > limit) {
            t_findings.Tell(ERule::TABLE_INTERVAL,
                            title + ": none in the " + (after > limit ? "last " : "first ") +
                                NumberText(after > limit ? after : before) + " s " +
                                (after > limit || !due ? "of the capture" : "of as many groups"),
                            after > limit ? arrivals.last : arrivals.first);
        } else if (arrivals.count < 2 && after > limit) {
            t_findings.Tell(ERule::TABLE_ONCE, title + " came once, and not again for " + NumberText(after) + " s",
                            arrivals.last);
        }
    }
}

void CListRules::Finish(const SDelivery* delivery)
{
    if (delivery != nullptr && delivery->clockSet == 0 && delivery->received && delivery->traffic.first &&
        delivery->traffic.last) {
        m_Intervals(*delivery);
    }
}

}  // namespace

std::unique_ptr<CRules> ListRules(const SEvidence& evidence, CFindings& findings, const SRuleSettings& settings)
{
    return std::make_unique<CListRules>(evidence, findings, settings);
}

}  // namespace vyr::inspect
