#include "follow/LlsFollower.h"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <string_view>
#include <utility>

#include "base/Gunzip.h"
#include "base/Limits.h"
#include "base/Names.h"
#include "base/Text.h"
#include "content/LibraryPort.h"
#include "content/LlsTables.h"
#include "lls/ParseSLT.h"

namespace vyr::inspect {

namespace {

constexpr std::size_t k_header = 4;
constexpr unsigned k_slt = 1;
constexpr unsigned k_signedMultiTable = 0xFE;
constexpr std::uint32_t k_noAddress = 0xFFFFFFFF;

const char* Encoding(SView payload)
{
    if (payload.size == 0) {
        return "empty";
    }
    if (IsGzip(payload)) {
        return "gzip";
    }
    if (payload.size >= 2 && (payload[0] & 0x0F) == 8 && payload[0] <= 0x78 && payload.Be16(0) % 31 == 0) {
        return "zlib";
    }
    std::size_t at = payload.size >= 3 && payload.Be16(0) == 0xEFBB && payload[2] == 0xBF ? 3 : 0;
    while (at < payload.size && (payload[at] == ' ' || (payload[at] >= '\t' && payload[at] <= '\r'))) {
        ++at;
    }
    return at < payload.size && payload[at] == '<' ? "XML" : "binary";
}

/// Seconds from one instant to another, the double that is nearest to them.
double Between(const STime& from, const STime& to)
{
    constexpr std::int64_t k_nanoseconds = 1000000000;
    const std::int64_t seconds = to.seconds - from.seconds;
    return std::llabs(seconds) < k_nanoseconds
               ? static_cast<double>(seconds * k_nanoseconds + to.nanoseconds - from.nanoseconds) / 1e9
               : static_cast<double>(seconds);
}

unsigned Key(const SLlsHeader& header)
{
    return unsigned{header.groupId} << 8 | header.tableId;
}

std::string Title(const SLlsHeader& header)
{
    const char* name = TableName(header.tableId);
    return (name != nullptr ? std::string(name) : "table " + std::to_string(header.tableId)) + " version " +
           std::to_string(header.version) + " group " + std::to_string(header.groupId);
}

/// The attribute on whose account a service was dropped; null: none alone.
const char* DropAttribute(CParseSLT::EDropReason reason)
{
    switch (reason) {
        case CParseSLT::DROP_NO_PROTECTED:
            return "protected";
        case CParseSLT::DROP_NO_HIDDEN:
            return "hidden";
        case CParseSLT::DROP_NO_BROADBAND:
        case CParseSLT::DROP_BROADBAND_UNSUPPORTED:
            return "broadbandAccessRequired";
        case CParseSLT::DROP_MAJOR_CHANNEL:
            return "majorChannelNo";
        case CParseSLT::DROP_MINOR_CHANNEL:
            return "minorChannelNo";
        case CParseSLT::DROP_DUPLICATE:
        case CParseSLT::DROP_LIMIT:
        case CParseSLT::DROP_GONE:
            break;
    }
    return nullptr;
}

std::string DropText(const SParseSLT::SService& service, CParseSLT::EDropReason reason)
{
    const auto range = [](int value) {
        return value == 0 ? std::string(" is missing or 0") : ' ' + std::to_string(value) + " is outside 1 to 999";
    };
    switch (reason) {
        case CParseSLT::DROP_NO_PROTECTED:
        case CParseSLT::DROP_NO_HIDDEN:
        case CParseSLT::DROP_NO_BROADBAND:
            return std::string("the attribute ") + DropAttribute(reason) + " is missing";
        case CParseSLT::DROP_MAJOR_CHANNEL:
            return "majorChannelNo" + range(service.majorChannelNo);
        case CParseSLT::DROP_MINOR_CHANNEL:
            return "minorChannelNo" + range(service.minorChannelNo);
        case CParseSLT::DROP_BROADBAND_UNSUPPORTED:
            return "broadbandAccessRequired is true, and the setting db/menu/broadcasting/atsc3_bb_option is off";
        case CParseSLT::DROP_DUPLICATE:
            return "it equals another service of the table";
        case CParseSLT::DROP_LIMIT:
        case CParseSLT::DROP_GONE:
            break;  // SetReplace is off here
    }
    return "unknown reason";
}

SListedService ListedService(const SParseSLT::SService& service)
{
    SListedService listed;
    listed.serviceId = static_cast<unsigned>(service.serviceId);
    listed.category = service.serviceCategory;
    listed.globalServiceId = service.globalServiceId.value_or("");
    listed.majorChannelNo = service.majorChannelNo;
    listed.minorChannelNo = service.minorChannelNo;
    if (!service.hasBroadcastSvcSignaling) {
        return listed;
    }
    listed.slsProtocol = service.slsProtocol;
    const bool usable = service.slsDestinationIpAddress != 0 && service.slsDestinationIpAddress != k_noAddress &&
                        service.slsDestinationUdpPort > 0 && service.slsDestinationUdpPort <= 0xFFFF;
    if (usable) {
        listed.session.destination = service.slsDestinationIpAddress;
        listed.session.port = static_cast<std::uint16_t>(service.slsDestinationUdpPort);
        listed.session.source = service.slsSourceIpAddress != k_noAddress ? service.slsSourceIpAddress : 0;
    }
    return listed;
}

/// Whether only a setting or a rule of receivers drops the service, which may be as it should be.
bool IsReceiversRule(const SParseSLT::SService& service, CParseSLT::EDropReason reason)
{
    constexpr int k_application = 3;  // needs no channel number
    const bool unnumbered = service.serviceCategory == k_application;
    switch (reason) {
        case CParseSLT::DROP_NO_PROTECTED:
        case CParseSLT::DROP_NO_HIDDEN:
        case CParseSLT::DROP_NO_BROADBAND:
        case CParseSLT::DROP_BROADBAND_UNSUPPORTED:
            return true;
        case CParseSLT::DROP_MAJOR_CHANNEL:
            return unnumbered && service.majorChannelNo == 0;
        case CParseSLT::DROP_MINOR_CHANNEL:
            return unnumbered && service.minorChannelNo == 0;
        default:
            return false;
    }
}

/// What the drop callback works on.
struct SDrops {
    const STable& table;
    std::vector<SSltService> services;  ///< the first of them
    unsigned count = 0;
    std::vector<SFinding> findings;
    std::vector<SAssertion> assertions;
};

void HearDrop(void* userData, const SParseSLT::SService* service, CParseSLT::EDropReason reason)
{
    SDrops& drops = *static_cast<SDrops*>(userData);
    std::vector<SAssertion> assertions = TakeAssertions();
    if (reason <= CParseSLT::DROP_NO_BROADBAND && !assertions.empty()) {
        assertions.pop_back();  // the library asserts what this drop says
    }
    drops.assertions.insert(drops.assertions.end(), assertions.begin(), assertions.end());
    const std::string name = service->shortServiceName ? " \"" + *service->shortServiceName + '"' : std::string();
    const char* attribute = DropAttribute(reason);
    const std::string why = DropText(*service, reason);
    if (drops.count++ < MostEntries()) {
        drops.services.push_back({*service, why});
    }
    drops.findings.push_back(
        {IsReceiversRule(*service, reason) ? ERule::SERVICE_LEFT_OUT : ERule::SERVICE_DROPPED,
         "service " + std::to_string(service->serviceId) + name + " is not listed by receivers: " + why,
         drops.table.source, drops.table.header, service->serviceId, attribute ? attribute : ""});
}

/// Takes an attribute out of the text of an element; its value.
std::string TakeAttribute(std::string& element, const std::string& name)
{
    const std::size_t at = element.find(name);
    const std::size_t quote = at != std::string::npos ? element.find_first_of("\"'", at) : at;
    const std::size_t end = quote != std::string::npos ? element.find(element[quote], quote + 1) : quote;
    if (end == std::string::npos) {
        return {};
    }
    const std::string value = element.substr(quote + 1, end - quote - 1);
    element.erase(at, end + 1 - at);
    return value;
}

/// Notes of each service what tells its element from another, also by what nothing here reads.
void ReadTexts(SView payload, std::vector<SSltService>& services)
{
    constexpr std::size_t k_longestList = 8388608;
    constexpr const char* k_begin = "<Service";
    std::vector<unsigned char> inflated;
    if (IsGzip(payload) && Gunzip(payload, k_longestList, inflated)) {
        payload = {inflated.data(), inflated.size()};
    }
    const std::string_view list(reinterpret_cast<const char*>(payload.data), payload.size);
    std::map<unsigned, std::uint64_t> texts;
    for (std::size_t at = list.find(k_begin); at != std::string_view::npos;) {
        const std::size_t next = list.find(k_begin, at + 1);
        std::string element(list.substr(at, next - at));
        element.resize(std::min(element.find("</Service>"), element.size()));
        TakeAttribute(element, "sltSvcSeqNum");
        const std::string id = TakeAttribute(element, "serviceId");
        std::uint64_t& text = texts[std::strtoul(id.c_str(), nullptr, 10) & 0xFFFF];
        text = text * 31 + ContentHash({reinterpret_cast<const unsigned char*>(element.data()), element.size()});
        at = next;
    }
    for (SSltService& service : services) {
        const auto text = texts.find(service.serviceId);
        service.text = text != texts.end() ? text->second : 0;
    }
}

void HearParsed(void* userData, int)
{
    *static_cast<bool*>(userData) = true;
}

}  // namespace

CLlsFollower::CLlsFollower(std::string stream, bool lenient, CChannelMap& channelMap, CReport& report,
                           std::size_t mostServices)
    : m_stream(std::move(stream)),
      m_lenient(lenient),
      m_mostServices(mostServices),
      m_channelMap(channelMap),
      m_report(report)
{
}

CLlsFollower::~CLlsFollower()
{
    while (!m_groups.empty()) {
        m_Release(m_groups.front());
    }
}

std::size_t CLlsFollower::Services() const
{
    std::size_t count = 0;
    for (const auto& [groupId, current] : m_current) {
        count += current->services.size();
    }
    return count;
}

void CLlsFollower::m_Take(SView bytes, const SSource& source, bool insideMultiTable)
{
    m_taken += insideMultiTable ? 0 : 1;
    if (bytes.size < k_header) {
        m_report.Finding({ERule::TABLE_TOO_SHORT,
                          "LLS table of " + Counted(bytes.size, "byte") + ", shorter than its header", source});
        return;
    }
    STable table;
    table.source = source;
    table.stream = m_stream;
    table.header = {bytes[0], bytes[1], bytes[2], bytes[3]};
    table.payload = bytes.From(k_header);
    table.encoding = Encoding(table.payload);
    table.insideMultiTable = insideMultiTable;
    table.parserExists = table.header.tableId == k_slt || HasParser(table.header.tableId);
    m_sawSlt = m_sawSlt || table.header.tableId == k_slt;

    const auto known = m_states.find(Key(table.header));
    const std::size_t sizeBefore = known != m_states.end() ? known->second.size : 0;
    table.status = m_Compare(table.header, table.payload, table, source);
    m_heard[table.header.groupId] = source.time;

    SOutcome outcome;
    if (table.parserExists && table.status != EStatus::REPEATED) {
        outcome = table.header.tableId == k_slt ? m_ParseSlt(bytes, table) : m_ParseOther(bytes, table);
        table.slt = std::move(outcome.slt);
        table.cmsSignedData = table.cmsSignedData || (table.slt && table.slt->cmsSignedData);
    } else if (table.header.tableId == k_signedMultiTable) {  // the tables in it come again as well
        STable again = table;
        outcome.inner = m_ParseOther(bytes, again).inner;
    }
    if (table.header.tableId == k_slt) {
        m_DropGroups(table.header, source.time);
    }
    table.listsGone.swap(m_gone);
    m_report.Table(table);
    if (table.status == EStatus::CHANGED_WITHOUT_VERSION) {
        m_report.Finding({ERule::CHANGED_WITHOUT_VERSION,
                          Title(table.header) + " changed without a new version (payload of " +
                              Counted(table.payload.size, "byte") + ", before " + std::to_string(sizeBefore) + ')',
                          source, table.header});
    }
    if (!outcome.reason.empty()) {
        m_report.Finding(
            {ERule::TABLE_NOT_PARSED, Title(table.header) + " did not parse: " + outcome.reason, source, table.header});
    }
    for (const SFinding& finding : outcome.findings) {
        m_report.Finding(finding);
    }
    for (const std::vector<unsigned char>& inner : outcome.inner) {
        const SView inside = {inner.data(), inner.size()};
        if (!insideMultiTable) {
            m_Take(inside, source, true);
        } else {
            m_report.Finding(
                {ERule::TABLE_NOT_PARSED, "a signed multi-table in another is not followed", source, table.header});
        }
    }
}

CLlsFollower::SOutcome CLlsFollower::m_ParseOther(SView bytes, STable& table)
{
    SOutcome outcome;
    TakeAssertions();
    STableOutcome parsed = ParseTable(table.header, bytes);
    table.content = std::move(parsed.content);
    table.cmsSignedData = parsed.cmsSignedData;
    table.signedBytes = std::move(parsed.signedBytes);
    table.certificates = std::move(parsed.certificates);
    table.certificateBytes = std::move(parsed.certificateBytes);
    outcome.reason = std::move(parsed.reason);
    outcome.inner = std::move(parsed.inner);
    for (const auto& [code, message] : parsed.faults) {
        outcome.findings.push_back({code, Title(table.header) + ": " + message, table.source, table.header});
    }
    if (!table.content) {
        m_Explain(table, outcome);
    }
    m_AddAssertions(TakeAssertions(), table, outcome);
    return outcome;
}

/// Why a table did not parse, where the library's words alone do not say it.
void CLlsFollower::m_Explain(const STable& table, SOutcome& outcome)
{
    if (std::string(table.encoding) == "zlib") {
        outcome.reason = "compressed with zlib, not gzip";
    } else if (table.payload.size < 2) {
        outcome.reason = "its payload is " + Counted(table.payload.size, "byte");
    } else if (outcome.reason.empty()) {
        outcome.reason = "the library gave no reason";
    } else if (std::string(table.encoding) == "gzip" &&
               outcome.reason.find("Start tag expected") != std::string::npos) {
        outcome.reason += " (or the gzip data does not inflate)";
    }
}

void CLlsFollower::m_AddAssertions(const std::vector<SAssertion>& assertions, const STable& table, SOutcome& outcome)
{
    for (const SAssertion& assertion : assertions) {
        outcome.findings.push_back({ERule::ASSERTION, AssertionText(assertion), table.source, table.header});
    }
}

/// Of what it says, however it was compressed; as sent, if it does not inflate.
std::uint64_t CLlsFollower::m_TextHash(SView payload, std::uint64_t hash)
{
    std::vector<unsigned char> inflated;
    return IsGzip(payload) && Gunzip(payload, k_maxTable, inflated) ? ContentHash({inflated.data(), inflated.size()})
                                                                    : hash;
}

EStatus CLlsFollower::m_Compare(const SLlsHeader& header, SView payload, STable& table, const SSource& source)
{
    const std::uint64_t hash = ContentHash(payload);
    const auto [entry, isNew] = m_states.try_emplace(Key(header));
    SState& state = entry->second;
    if (source.time && state.lastSeen && Between(*state.lastSeen, *source.time) >= 0) {
        table.interval = Between(*state.lastSeen, *source.time);
    }
    const bool asSent = state.size == payload.size && state.hash == hash;
    const std::uint64_t textHash = asSent ? state.textHash : m_TextHash(payload, hash);
    const bool sameContent = asSent || (!isNew && state.textHash == textHash);
    const bool sameVersion = state.header.version == header.version;
    const bool sameCount = state.header.groupCountMinus1 == header.groupCountMinus1;
    state = {header, payload.size, hash, textHash, source.time};
    // A table in another number of parts is another one.
    return StatusOf(isNew, sameVersion && sameCount, sameContent && (sameCount || !sameVersion));
}

/// A parser object piles up the services of all its tables: each table has one of its own. Its
/// services get a channel of their own too, so that nothing of the previous list is left in them.
CLlsFollower::SOutcome CLlsFollower::m_ParseSlt(SView bytes, const STable& table)
{
    SOutcome outcome;
    auto current = std::make_unique<SCurrentSlt>();
    bool parsed = false;
    const CParseSLT::SCallback callback = {&parsed, HearParsed};
    SDrops drops = {table, {}, 0, {}, {}};
    const CParseSLT::SDropCallback dropCallback = {&drops, HearDrop};
    TakeAssertions();
    CParseSLT parser;
    if (!parser.Create(&m_channelMap, &callback)) {
        outcome.reason = "the library made no parser";
        return outcome;
    }
    parser.SetLenient(m_lenient);
    parser.SetDropCallback(&dropCallback);
    parser.Start(current.get());
    parser.AddLLSGroupId(table.header.groupId);
    IParse::SItem item = {bytes.data, static_cast<unsigned>(bytes.size), static_cast<unsigned>(bytes.size) * 8, 0,
                          true};
    parser.Parse(&item);
    outcome.reason = parsed ? std::string() : Reason();
    outcome.findings = std::move(drops.findings);
    if (parsed) {
        SSlt& slt = outcome.slt.emplace();
        slt.dropped = drops.count;
        m_Read(parser, bytes, table, outcome);
        std::vector<SListedService> services;
        for (int i = 0; i < parser.ServiceCount(); ++i) {
            const SParseSLT::SService& service = *parser.GetServiceInfo(i);
            current->services.push_back(service.service);
            services.push_back(ListedService(service));
        }
        const std::size_t all = services.size() + slt.dropped;
        slt.services.insert(slt.services.end(), drops.services.begin(), drops.services.end());
        slt.services.resize(std::min(slt.services.size(), MostEntries()));
        slt.leftOut = all - slt.services.size();
        ReadTexts(table.payload, slt.services);
        m_Hold(table.header.groupId, std::move(current), table, outcome);
        m_serviceListener(table.header.groupId, std::move(services));
    } else {
        m_Explain(table, outcome);
    }
    parser.Stop();
    parser.Destroy();
    m_AddAssertions(drops.assertions, table, outcome);
    m_AddAssertions(TakeAssertions(), table, outcome);
    return outcome;
}

void CLlsFollower::m_Read(CParseSLT& parser, SView bytes, const STable& table, SOutcome& outcome)
{
    SSlt& slt = *outcome.slt;
    slt.bsid = parser.Bsid();
    parser.GetSltCapability(slt.capabilities);
    for (int i = 0; i < parser.SltInetUrlCount(); ++i) {
        std::string url;
        EATSC3UrlType type = ATSC3_URL_NONE;
        parser.GetSltInetUrl(i, url, type);
        slt.inetUrls.push_back({url, type});
    }
    std::string xml;
    std::string cms;
    slt.cmsSignedData = parser.CheckCMS(bytes.data, static_cast<int>(bytes.size), xml, cms);
    for (int i = 0; i < parser.ServiceCount(); ++i) {
        const SParseSLT::SService& service = *parser.GetServiceInfo(i);
        if (slt.services.size() < MostEntries()) {
            slt.services.push_back({service, {}});
        }
        for (const auto& [name, address] : {std::pair("slsDestinationIpAddress", service.slsDestinationIpAddress),
                                            std::pair("slsSourceIpAddress", service.slsSourceIpAddress)}) {
            if (address == k_noAddress) {
                outcome.findings.push_back(
                    {ERule::BAD_ADDRESS,
                     "service " + std::to_string(service.serviceId) + ": " + name + " is not an IPv4 address",
                     table.source, table.header, service.serviceId, name});
            }
        }
    }
}

void CLlsFollower::m_Hold(unsigned char groupId, std::unique_ptr<SCurrentSlt> current, const STable& table,
                          SOutcome& outcome)
{
    m_Release(groupId);
    m_current[groupId] = std::move(current);
    m_groups.push_back(groupId);
    while (m_groups.size() > 1 && Services() > m_mostServices) {
        outcome.findings.push_back({ERule::TOO_MANY_SERVICES,
                                    "more than " + std::to_string(m_mostServices) +
                                        " services are announced: those of LLS group " +
                                        std::to_string(m_groups.front()) + " are let go",
                                    table.source, table.header});
        m_serviceListener(m_groups.front(), {});
        m_Release(m_groups.front());
    }
}

void CLlsFollower::m_Release(unsigned char groupId)
{
    const auto current = m_current.find(groupId);
    if (current == m_current.end()) {
        return;
    }
    std::set<void*> removed;  // two services of a list can share one entry of the map
    for (void* service : current->second->services) {
        if (removed.insert(service).second) {
            m_channelMap.RemoveService(service);
        }
    }
    m_current.erase(current);
    m_groups.remove(groupId);
}

/// Lets go of what groups held that are no more: as many as there are came lately, and these did not.
void CLlsFollower::m_DropGroups(const SLlsHeader& header, const std::optional<STime>& now)
{
    constexpr double k_lately = 5;  // seconds in which each group's service list is due
    std::vector<unsigned char> silent;
    for (const auto& [groupId, last] : m_heard) {
        if (now && last && Between(*last, *now) > k_lately) {
            silent.push_back(groupId);
        }
    }
    if (m_heard.size() - silent.size() <= header.groupCountMinus1) {
        return;
    }
    for (const unsigned char groupId : silent) {
        if (m_current.count(groupId) != 0) {
            m_serviceListener(groupId, {});
            m_Release(groupId);
        }
        const unsigned begin = Key({0, groupId, 0, 0});
        m_states.erase(m_states.lower_bound(begin), m_states.lower_bound(begin + 0x100));
        m_heard.erase(groupId);
        m_gone.emplace_back(m_stream, groupId);
    }
}

std::vector<TListKey> CLlsFollower::End()
{
    while (!m_groups.empty()) {
        m_serviceListener(m_groups.front(), {});
        m_Release(m_groups.front());
    }
    std::vector<TListKey> gone;
    for (const auto& [groupId, last] : m_heard) {
        gone.emplace_back(m_stream, groupId);
    }
    m_heard.clear();
    m_states.clear();
    return gone;
}

}  // namespace vyr::inspect
