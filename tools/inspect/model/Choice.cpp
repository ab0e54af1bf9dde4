#include "model/Choice.h"

#include <algorithm>
#include <charconv>
#include <tuple>

#include "base/Names.h"
#include "base/Text.h"
#include "model/Delivery.h"
#include "model/Finding.h"
#include "model/Guide.h"
#include "model/Items.h"
#include "model/Verdict.h"

namespace vyr::inspect {

namespace {

constexpr unsigned k_slt = 1;
constexpr int k_guide = 4;
constexpr std::int32_t k_second = 1000000000;

/// In small letters; bytes beyond ASCII as they are.
std::string Folded(const std::string& text)
{
    std::string folded = text;
    std::transform(folded.begin(), folded.end(), folded.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return folded;
}

/// A whole number, decimal or with 0x.
std::optional<unsigned> Number(const std::string& text)
{
    const bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    unsigned number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data() + (hex ? 2 : 0), end, number, hex ? 16 : 10);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

/// The numbers of a channel, "7.1" or "7-1".
std::optional<std::pair<unsigned, unsigned>> Channel(const std::string& text)
{
    const std::size_t middle = text.find_first_of(".-");
    if (middle == std::string::npos) {
        return std::nullopt;
    }
    const std::optional<unsigned> major = Number(text.substr(0, middle));
    const std::optional<unsigned> minor = Number(text.substr(middle + 1));
    return major && minor ? std::optional(std::pair(*major, *minor)) : std::nullopt;
}

bool Is(const SSltService& service, const std::string& given)
{
    if (const std::optional<unsigned> id = Number(given)) {
        return *id == unsigned{service.serviceId};
    }
    if (const auto channel = Channel(given)) {
        return std::pair(static_cast<int>(channel->first), static_cast<int>(channel->second)) ==
               std::pair<int, int>(service.majorChannelNo, service.minorChannelNo);
    }
    return service.shortServiceName && Folded(*service.shortServiceName) == Folded(given);
}

/// The table that a finding without a place is of, by its rule; 0: none.
unsigned TableOf(ERule rule)
{
    const auto within = [rule](ERule first, ERule last) { return rule >= first && rule <= last; };
    return within(ERule::SYSTEM_TIME, ERule::DAYLIGHT_SAVING)                      ? 3
           : within(ERule::ALERT_EXPIRED, ERule::ALERT_REFERENCE_UNKNOWN)          ? 4
           : within(ERule::RATING_DIMENSION_UNKNOWN, ERule::RATING_REGION_UNKNOWN) ? 2
           : within(ERule::BAD_CERTIFICATE, ERule::UNSIGNED_SIBLING)               ? 6
                                                                                   : 0;
}

template <class TList, class TKeep>
void Keep(TList& list, TKeep keep)
{
    list.erase(std::remove_if(list.begin(), list.end(), [&](const auto& each) { return !keep(each); }), list.end());
}

/// The digits behind a '.', in nanoseconds.
std::optional<std::int32_t> Fraction(const std::string& digits)
{
    std::int32_t nanoseconds = 0;
    std::int32_t unit = k_second;
    for (const char digit : digits) {
        if (digit < '0' || digit > '9') {
            return std::nullopt;
        }
        unit /= 10;
        nanoseconds += (digit - '0') * unit;
    }
    return digits.empty() ? std::nullopt : std::optional(nanoseconds);
}

}  // namespace

std::optional<unsigned> FindTable(const std::string& text)
{
    constexpr unsigned k_ids = 256;
    constexpr std::size_t k_shortest = 3;
    const std::optional<unsigned> number = Number(text);
    if (number) {
        return *number < k_ids ? number : std::nullopt;
    }
    std::string part = Folded(text);
    part.erase(std::remove(part.begin(), part.end(), '-'), part.end());
    std::optional<unsigned> found;
    unsigned names = 0;
    for (unsigned id = 0; id < k_ids; ++id) {
        const char* name = TableName(id);
        if (name != nullptr && part.size() >= k_shortest && Folded(name).find(part) != std::string::npos) {
            found = id;
            ++names;
        }
    }
    return names == 1 ? found : std::nullopt;
}

std::vector<std::string> SChoices::Options() const
{
    const std::set<std::string> sorted(services.begin(), services.end());
    std::vector<std::string> options;
    for (const std::string& given : sorted) {
        options.push_back("--service " + given);
    }
    for (const auto& [id, given] : tables) {
        options.push_back("--table " + given);
    }
    for (const std::string& session : sessions) {
        options.push_back("--session " + session);
    }
    return options;
}

CChoice::CChoice(SChoices choices)
    : m_choices(std::move(choices)),
      m_all(m_choices.services.empty() && m_choices.tables.empty() && m_choices.sessions.empty())
{
    Begin();
}

void CChoice::Begin()
{
    m_ids.clear();
    m_there.clear();
    m_sessions.clear();
    m_guide = false;
    m_lists.clear();
    for (const std::string& given : m_choices.services) {
        if (const std::optional<unsigned> id = Number(given)) {
            m_ids.insert(*id);
        }
    }
}

bool CChoice::m_Matches(const SSltService& service)
{
    bool matches = m_ids.count(unsigned{service.serviceId}) != 0;
    for (const std::string& given : m_choices.services) {
        if (Is(service, given)) {
            matches = true;
            m_matched.insert("--service " + given);
        }
    }
    return matches;
}

/// Finds the services that are chosen; whether the list has one of them, or had.
bool CChoice::m_Learn(const STable& table)
{
    const std::pair<std::string, unsigned> list = {table.stream, table.header.groupId};
    if (table.slt) {
        for (const SSltService& service : table.slt->services) {
            const std::string session = SessionOf(service);
            if (m_choices.sessions.count(session) != 0) {
                m_there.insert(service.serviceId);
            }
            if (m_Matches(service)) {
                m_ids.insert(service.serviceId);
                m_lists.insert(list);
                m_guide = m_guide || service.serviceCategory == k_guide;
                if (!session.empty()) {
                    m_sessions.insert(session);
                }
            }
        }
    }
    return m_lists.count(list) != 0;
}

bool CChoice::m_AnyService(const std::vector<unsigned>& ids) const
{
    return std::any_of(ids.begin(), ids.end(), [this](unsigned id) { return m_ids.count(id) != 0; });
}

bool CChoice::m_Session(const std::string& session)
{
    if (m_choices.sessions.count(session) != 0) {
        m_matched.insert("--session " + session);
        return true;
    }
    return m_sessions.count(session) != 0;
}

const STable* CChoice::Of(const STable& table, std::optional<STable>& part)
{
    if (m_all) {
        return &table;
    }
    const unsigned id = table.header.tableId;
    const bool listed = id == k_slt && m_Learn(table);
    if (m_Table(id)) {
        m_matched.insert("--table " + m_choices.tables.at(id));
    }
    if (m_Table(id) || m_Session(table.stream.substr(0, table.stream.find(' ')))) {
        return &table;
    }
    if (!listed || !table.slt) {
        return listed ? &table : nullptr;
    }
    SSlt& slt = *part.emplace(table).slt;
    Keep(slt.services, [this](const SSltService& service) { return m_ids.count(unsigned{service.serviceId}) != 0; });
    slt.dropped = static_cast<unsigned>(std::count_if(slt.services.begin(), slt.services.end(),
                                                      [](const auto& service) { return !service.notListed.empty(); }));
    slt.leftOut = 0;
    return &*part;
}

const SSignalling* CChoice::Of(const SSignalling& signalling, std::optional<SSignalling>&)
{
    return m_all || m_Session(signalling.session) || m_AnyService(signalling.services) ? &signalling : nullptr;
}

const SMessage* CChoice::Of(const SMessage& message, std::optional<SMessage>&)
{
    return m_all || m_Session(message.session) || m_AnyService(message.services) ? &message : nullptr;
}

const SGuideObject* CChoice::Of(const SGuideObject& object, std::optional<SGuideObject>&)
{
    return m_all || m_guide || m_Session(object.session) ? &object : nullptr;
}

const SFile* CChoice::Of(const SFile& file, std::optional<SFile>&)
{
    return m_all || m_Session(file.session) || m_AnyService(file.services) ? &file : nullptr;
}

/// All of it for a service that is a guide; else the services that are chosen, where they are linked.
const SGuide* CChoice::Of(const SGuide& guide, std::optional<SGuide>& part)
{
    if (m_all || m_guide) {
        return &guide;
    }
    part.emplace(guide);
    Keep(part->services, [this](const SGuideService& service) { return m_Service(service.serviceId); });
    part->leftOut = 0;
    return part->services.empty() ? nullptr : &*part;
}

bool CChoice::m_Arrives(const SArrivalLine& line) const
{
    return (line.kind == EArrivals::TABLE && m_Table(line.id)) || m_choices.sessions.count(line.place) != 0 ||
           m_sessions.count(line.place) != 0 || m_AnyService(line.services);
}

/// Its totals stay those of the capture.
const SDelivery* CChoice::Of(const SDelivery& delivery, std::optional<SDelivery>& part)
{
    if (m_all) {
        return &delivery;
    }
    part.emplace(delivery);
    part->others = {};
    Keep(part->arrivals.lines, [this](const SArrivalLine& line) { return m_Arrives(line); });
    part->arrivals.more = 0;
    std::vector<SSessionDelivery> chosen;
    for (SSessionDelivery& session : part->sessions) {
        const std::string name = EndpointText(session.destination, session.port);
        bool whole = m_choices.sessions.count(name) != 0;
        if (whole && session.traffic.packets != 0) {
            m_matched.insert("--session " + name);
        }
        const bool ofService = m_sessions.count(name) != 0 || m_AnyService(session.services);
        const auto its = [this](const SFlowDelivery& flow) { return m_AnyService(flow.services); };
        if (!whole && !ofService && std::none_of(session.flows.begin(), session.flows.end(), its)) {
            continue;
        }
        if (!whole) {
            Keep(session.flows,
                 [&](const SFlowDelivery& flow) { return its(flow) || (ofService && flow.services.empty()); });
        }
        chosen.push_back(std::move(session));
    }
    part->sessions = std::move(chosen);
    return part->sessions.empty() ? nullptr : &*part;
}

const SVerdicts* CChoice::Of(const SVerdicts& verdicts, std::optional<SVerdicts>& part)
{
    if (m_all) {
        return &verdicts;
    }
    part.emplace(verdicts);
    part->leftOut = 0;
    Keep(part->verdicts, [this](const SVerdict& verdict) {
        return m_ids.count(verdict.serviceId) != 0 || m_there.count(verdict.serviceId) != 0;
    });
    return part->verdicts.empty() ? nullptr : &*part;
}

bool CChoice::Takes(const SFinding& finding) const
{
    const std::string& session = finding.session.empty() ? finding.about : finding.session;
    if (m_all) {
        return true;
    }
    // What a list says of one service is nothing of others on its session.
    const bool ofOne = finding.header && finding.serviceId;
    if (m_Service(finding.serviceId) || m_choices.sessions.count(session) != 0 ||
        (m_sessions.count(session) != 0 && !ofOne)) {
        return true;
    }
    if (finding.header) {
        // A list that is broken as a whole concerns the services that are looked for in it.
        const bool list = finding.header->tableId == k_slt && !finding.serviceId && !m_choices.services.empty();
        return m_Table(finding.header->tableId) || list;
    }
    if (!session.empty()) {
        return false;
    }
    if (finding.serviceId) {
        return m_there.count(*finding.serviceId) != 0;
    }
    if (const unsigned table = TableOf(finding.rule)) {
        return m_Table(table);
    }
    return finding.rule >= ERule::GUIDE_NOT_PARSED ? m_guide : finding.rule != ERule::UNSIGNALLED_TRAFFIC;
}

std::vector<std::string> CChoice::Unmatched() const
{
    std::vector<std::string> unmatched = m_choices.Options();
    Keep(unmatched, [this](const std::string& choice) { return m_matched.count(choice) == 0; });
    return unmatched;
}

std::optional<CWindow::SBound> CWindow::Read(const std::string& text)
{
    const bool relative = !text.empty() && text[0] == '+';
    const std::size_t point = text.find('.');
    const std::size_t behind =
        std::min(text.find_first_not_of("0123456789", point == std::string::npos ? 0 : point + 1), text.size());
    std::optional<std::int32_t> fraction = 0;
    if (point != std::string::npos) {
        fraction = Fraction(text.substr(point + 1, behind - point - 1));
    }
    if (!relative) {
        const std::optional<std::int64_t> seconds = ReadInstant(text);
        return seconds && fraction ? std::optional(SBound{{*seconds, *fraction}, false}) : std::nullopt;
    }
    const std::optional<unsigned> seconds = Number(text.substr(1, point == std::string::npos ? point : point - 1));
    const bool ends = point == std::string::npos || behind == text.size();
    return seconds && fraction && ends ? std::optional(SBound{{*seconds, *fraction}, true}) : std::nullopt;
}

bool CWindow::Takes(const std::optional<STime>& time)
{
    if (!time || (!m_from && !m_until)) {
        return true;
    }
    m_begin = m_begin ? m_begin : time;
    return !(m_from && m_Before(*time, *m_from)) && !(m_until && !m_Before(*time, *m_until));
}

bool CWindow::m_Before(const STime& time, const SBound& bound) const
{
    STime at = bound.time;
    if (bound.relative) {
        const std::int64_t nanoseconds = std::int64_t{at.nanoseconds} + m_begin->nanoseconds;
        at = {at.seconds + m_begin->seconds + nanoseconds / k_second,
              static_cast<std::int32_t>(nanoseconds % k_second)};
    }
    return std::tie(time.seconds, time.nanoseconds) < std::tie(at.seconds, at.nanoseconds);
}

}  // namespace vyr::inspect
