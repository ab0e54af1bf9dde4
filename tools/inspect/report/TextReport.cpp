#include "report/TextReport.h"

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <vector>

#include "base/Names.h"
#include "base/Text.h"
#include "model/Content.h"
#include "model/Guide.h"
#include "model/Interim.h"
#include "report/DeliveryText.h"
#include "report/GuideText.h"
#include "report/JsonReport.h"
#include "report/VerdictText.h"

namespace vyr::inspect {

namespace {

constexpr std::size_t k_shownBytes = 16;

std::string Place(const SSource& source)
{
    std::string text = Printable(source.file) + ':';
    if (source.packet != 0) {
        text += " packet " + std::to_string(source.packet);
        text += source.time ? ", " + InstantText(source.time->seconds, source.time->nanoseconds) + ' ' : " ";
    }
    return text + ' ';
}

std::string Named(int number, const char* name)
{
    return std::to_string(number) + (name != nullptr ? std::string(" ") + name : std::string());
}

std::string TableTitle(unsigned tableId)
{
    const char* name = TableName(tableId);
    const std::string number = std::to_string(tableId);
    return name != nullptr ? std::string(name) + " (" + number + ')' : "table " + number;
}

const char* StatusText(EStatus status)
{
    switch (status) {
        case EStatus::CHANGED_WITHOUT_VERSION:
            return "changed without a new version";
        case EStatus::NEW_VERSION_SAME_CONTENT:
            return "new version, same content";
        default:
            return StatusName(status);
    }
}

/// The same of an object of a session, whose version is its TOI.
const char* ObjectStatusText(EStatus status)
{
    return status == EStatus::CHANGED_WITHOUT_VERSION ? "changed without a new TOI" : StatusText(status);
}

/// "of service 2001 on 239.255.7.1:30100", what a session's signalling is of.
std::string SessionText(const std::vector<unsigned>& serviceIds, const std::string& session)
{
    std::vector<std::string> services;
    for (const unsigned serviceId : serviceIds) {
        services.push_back(std::to_string(serviceId));
    }
    const std::string text =
        services.empty() ? "" : (services.size() == 1 ? " of service " : " of services ") + Joined(services);
    return text + (session.empty() ? "" : " on " + session);
}

/// Items of the envelope, with their types where they are first met.
std::string ItemsText(const SSignalling& signalling)
{
    std::vector<std::string> items;
    for (const SEnvelopeItem& item : signalling.items) {
        items.push_back(
            Printable(item.metadataURI.value_or("-")) + (item.version ? " version " + Printable(*item.version) : "") +
            (item.contentType && signalling.status == EStatus::NEW ? " (" + Printable(*item.contentType) + ')' : ""));
    }
    return items.empty() ? std::string() : "  envelope: " + Joined(items) + '\n';
}

/// The parts of which nothing is read, and what else there is to say of the package.
std::string PartsText(const SSignalling& signalling)
{
    std::vector<std::string> parts;
    for (const SPackagePart& part : signalling.parts) {
        if (part.readAs.empty()) {
            const std::string about =
                Joined({Short(Printable(part.root)), Short(Printable(part.contentType)), Counted(part.size, "byte")});
            parts.push_back(Short(Printable(part.contentLocation.empty() ? "-" : part.contentLocation)) + " (" + about +
                            ')');
        }
    }
    if (signalling.moreParts != 0) {
        parts.push_back(Counted(signalling.moreParts, "part") + " more, which are not looked at");
    }
    std::string text = parts.empty() ? std::string() : "  not read: " + Joined(parts) + '\n';
    text += signalling.parts.empty() || signalling.partsEnded ? "" : "  the last boundary of the package is missing\n";
    return text + (signalling.signature ? "  signature: " + signalling.signature->headline + '\n' : "");
}

/// What changed, each on a line of its own.
std::string ChangesText(const CLastShown::SShown* last, const TJson* now, const char* indent)
{
    std::string text;
    for (const std::string& line : ChangeLines(last, now)) {
        text += indent + line + '\n';
    }
    return text;
}

std::string FlagsText(const SParseSLT::SService& service)
{
    std::string flags;
    const auto add = [&flags](bool set, const std::string& name) {
        if (set) {
            flags += (flags.empty() ? "" : ", ") + name;
        }
    };
    add(service.givenProtected.value_or(false), "protected");
    add(service.givenHidden.value_or(false), "hidden");
    add(service.hideInGuide.value_or(false), "hideInGuide");
    add(service.givenBroadband.value_or(false), "broadband");
    add(!service.drmSystemID.empty(), "DRM");
    add(service.svcInetUrl.present, "URL");
    add(service.simulcastTsid != 0, "simulcast");
    add(service.configuration.has_value(), "configuration " + Printable(service.configuration.value_or("")));
    return flags;
}

TRow ServiceRow(const SSltService& service)
{
    using SService = SParseSLT::SService;
    const auto given = [&service](SService::EGiven attribute, const std::string& text) {
        return (service.given & attribute) != 0 ? text : "-";
    };
    // Two values with a mark between them; "-" for a missing one, or for both.
    const auto pair = [](const std::string& first, char mark, const std::string& second) {
        return first == "-" && second == "-" ? first : first + mark + second;
    };
    TRow row = {
        std::to_string(service.serviceId),
        pair(given(SService::GIVEN_MAJOR_CHANNEL, std::to_string(service.majorChannelNo)), '.',
             given(SService::GIVEN_MINOR_CHANNEL, std::to_string(service.minorChannelNo))),
        Printable(service.shortServiceName.value_or("-")),
        given(SService::GIVEN_CATEGORY, Named(service.serviceCategory, ServiceCategoryName(service.serviceCategory))),
        "-",
        "-",
        "-",
        FlagsText(service),
        service.notListed};
    if (service.hasBroadcastSvcSignaling) {
        row[4] = given(SService::GIVEN_SLS_PROTOCOL, Named(service.slsProtocol, ProtocolName(service.slsProtocol)));
        row[5] =
            pair(given(SService::GIVEN_SLS_ADDRESS, Ipv4Text(service.slsDestinationIpAddress)), ':',
                 given(SService::GIVEN_SLS_PORT, std::to_string(static_cast<unsigned>(service.slsDestinationUdpPort))));
        row[6] = service.slsSourceIpAddress != 0 ? Ipv4Text(service.slsSourceIpAddress) : "-";
    }
    return row;
}

std::string SltText(const SSlt& slt)
{
    std::string text;
    if (!slt.capabilities.empty()) {
        text += "  capabilities: " + Printable(slt.capabilities) + '\n';
    }
    for (const SParseSLT::SSltInetUrl& url : slt.inetUrls) {
        text += "  URL" + (url.urlType >= 0 ? " of type " + Named(url.urlType, UrlTypeName(url.urlType)) : "") + ": " +
                Printable(url.url) + '\n';
    }
    return text + (slt.services.empty() ? std::string() : TableText(ServiceRows(slt.services))) +
           MoreText("  ", slt.leftOut, 0);
}

std::string FindingText(const SFinding& finding)
{
    const std::string kind = IsInputRule(finding.rule) ? "" : std::string(SeverityName(finding.severity)) + ": ";
    const std::string more = finding.times > 1 ? " (and " + std::to_string(finding.times - 1) + " more like it)" : "";
    return Place(finding.source) + kind + Printable(finding.message) + " [" + RuleName(finding.rule) + ']' + more +
           '\n';
}

/// "412 finding records, 3 table records": records by their kinds.
std::string LeftOutText(const TLeftOut& leftOut)
{
    std::vector<std::string> kinds;
    for (const auto& [kind, count] : leftOut) {
        kinds.push_back(std::to_string(count) + ' ' + kind + (count == 1 ? " record" : " records"));
    }
    return Joined(kinds) + ", which would be too much for what was received (--no-limit shows all)";
}

/// Appends "; 3 of this kind"; nothing for none.
class CAdder {
  public:
    explicit CAdder(std::string& text) : m_text(text) {}

    void operator()(std::uint64_t count, const std::string& what) const
    {
        if (count != 0) {
            m_text += (m_text.empty() ? "" : "; ") + std::to_string(count) + ' ' + what;
        }
    }

    void operator()(const SStatusCounts& counts) const
    {
        for (std::size_t i = 0; i < k_statuses; ++i) {
            (*this)(counts[i], StatusText(static_cast<EStatus>(i)));
        }
    }

  private:
    std::string& m_text;
};

std::string CountsText(const STableCounts& counts)
{
    std::string text;
    const CAdder add(text);
    add(counts.byStatus);
    const std::uint64_t all = std::accumulate(counts.byStatus.begin(), counts.byStatus.end(), std::uint64_t{0});
    if (counts.notParsed + counts.byStatus[static_cast<std::size_t>(EStatus::REPEATED)] == all) {
        text = counts.notParsed != 0 ? "none parsed: " + text : text;
    } else {
        add(counts.notParsed, "of them did not parse");
    }
    if (counts.intervals != 0) {
        char mean[48];
        std::snprintf(mean, sizeof mean, "; every %.3f s on average",
                      counts.intervalSum / static_cast<double>(counts.intervals));
        text += mean;
    }
    return text;
}

std::string RouteText(const SRouteCounts& counts)
{
    std::string text = Counted(counts.packets, "packet") + " on " + Counted(counts.sessions, "session") + "; " +
                       std::to_string(counts.signalling) + " of TSI 0";
    const CAdder add(text);
    add(counts.malformed, "malformed");
    add(counts.objects.complete, counts.objects.complete == 1 ? "object complete" : "objects complete");
    add(counts.incomplete, "incomplete");
    add(counts.objects.dropped, "dropped");
    add(counts.objects.tooLarge, "not taken");
    return text;
}

std::string MmtpText(const SMmtpCounts& counts)
{
    std::string text = Counted(counts.packets, "packet") + " on " + Counted(counts.sessions, "session") + "; " +
                       std::to_string(counts.signalling) + " of signalling";
    const CAdder add(text);
    add(counts.otherTypes, "of other types");
    add(counts.otherVersions, "of other versions");
    add(counts.malformed, "malformed");
    add(counts.messages.repeated, "sent again");
    add(counts.messages.complete, counts.messages.complete == 1 ? "message complete" : "messages complete");
    add(counts.messages.lost, "incomplete");
    add(counts.messages.dropped, "dropped");
    return text;
}

std::string MessagesText(const SMmtMessageCounts& counts)
{
    std::string text;
    const CAdder add(text);
    add(counts.byStatus);
    add(counts.notParsed, "did not parse");
    add(counts.notSupported, "not supported");
    return text.empty() ? "none" : text;
}

std::string SignallingText(const SSummary& summary)
{
    std::string text;
    const CAdder add(text);
    if (const std::uint64_t services = summary.routeServices + summary.mmtpServices; services != 0) {
        text = std::to_string(summary.servicesSignalled) + " of " + Counted(services, "service");
    }
    add(summary.signalling.byStatus);
    const std::uint64_t documents = summary.signalling.documentsNotParsed;
    add(documents, documents == 1 ? "document did not parse" : "documents did not parse");
    return text.empty() ? "none" : text;
}

std::string GuideCountsText(const SGuideCounts& counts)
{
    std::string text = Counted(counts.services, "service") + ", " + Counted(counts.programmes, "programme") + " of " +
                       Counted(counts.fragments, "fragment");
    const CAdder add(text);
    add(counts.byStatus);
    add(counts.notParsed, "did not parse");
    add(counts.packets, counts.packets == 1 ? "packet" : "packets");
    add(counts.objects.dropped, "dropped");
    add(counts.objects.tooLarge, "not taken");
    return text;
}

std::string PacketsText(const SPacketCounts& packets)
{
    std::string text = std::to_string(packets.packets);
    const CAdder add(text);
    add(packets.cut, "cut by the capture");
    add(packets.dropped, "more dropped before they were read");
    add(packets.lostByInterface, "lost by the interface");
    add(packets.malformed, "malformed");
    add(packets.otherProtocol, "not IPv4 and UDP");
    add(packets.compressed, "with compressed headers, not read");
    add(packets.otherLinkPackets, "link-layer packets of other kinds");
    add(packets.fragments, "fragments");
    add(packets.incompleteDatagrams, "of them never whole");
    add(packets.copies, "captured again, and not counted");
    return text;
}

}  // namespace

std::vector<TRow> ServiceRows(const std::vector<SSltService>& services)
{
    std::vector<TRow> rows = {
        {"id", "channel", "name", "category", "protocol", "destination", "source", "flags", "not listed"}};
    std::transform(services.begin(), services.end(), std::back_inserter(rows), ServiceRow);
    return rows;
}

std::string Headline(const STable& table)
{
    std::string text = TableTitle(table.header.tableId) + " version " + std::to_string(table.header.version) +
                       " group " + std::to_string(table.header.groupId);
    if (table.header.groupCountMinus1 != 0) {
        // Group ids are names, not places in a row.
        text += " (" + Counted(table.header.groupCountMinus1 + 1u, "group") + " in all)";
    }
    const std::size_t endpoint = table.stream.find(' ');
    text += endpoint != std::string::npos ? " of" + table.stream.substr(endpoint) : "";
    text += table.insideMultiTable ? ", in a signed multi-table" : "";
    text += std::string(": ") + StatusText(table.status);
    if (table.slt) {
        text += ", bsid " + std::to_string(table.slt->bsid) + ", " +
                Counted(table.slt->services.size() + table.slt->leftOut, "service");
        text += table.slt->dropped != 0 ? ", " + std::to_string(table.slt->dropped) + " of them not listed" : "";
        return text + (table.slt->cmsSignedData ? ", with CMSSignedData" : "");
    }
    if (table.content) {
        return text + ", " + table.content->headline;
    }
    text += ", " + Counted(table.payload.size, "byte") + " (" + table.encoding + ')';
    text += table.parserExists ? "" : ": " + Hex(table.payload.First(k_shownBytes));
    return text + (!table.parserExists && table.payload.size > k_shownBytes ? "..." : "");
}

std::string Headline(const SSignalling& signalling)
{
    std::string text = "signalling" + SessionText(signalling.services, signalling.session);
    text += signalling.toi ? " TOI " + ToiText(*signalling.toi) : "";
    return text + ": " + ObjectStatusText(signalling.status) + ", " + Counted(signalling.documents.size(), "document") +
           ", " + Counted(signalling.size, "byte") + (signalling.gzip ? " (gzip)" : "");
}

std::string Headline(const SMessage& message)
{
    std::string text = "message" + SessionText(message.services, message.session);
    text += message.packetId ? " packet id " + std::to_string(*message.packetId) : "";
    text += ": " + MessageTitle(message.id) + " version " + std::to_string(message.version) + ": " +
            StatusText(message.status);
    if (message.content) {
        return text + (message.content->headline.empty() ? "" : ", " + message.content->headline);
    }
    text += ", " + Counted(message.payload.size, "byte");
    text += message.supported ? "" : ", not supported: " + Hex(message.payload.First(k_shownBytes));
    return text + (!message.supported && message.payload.size > k_shownBytes ? "..." : "");
}

std::string Headline(const SGuideObject& object)
{
    std::string text = std::string("guide ") + GuideObjectName(object.kind);
    text += object.session.empty() ? "" : " on " + object.session;
    text += object.tsi ? " TSI " + std::to_string(*object.tsi) : "";
    text += object.toi ? " TOI " + ToiText(*object.toi) : "";
    text += object.contentLocation.empty() ? "" : ' ' + Printable(object.contentLocation);
    text += std::string(": ") + ObjectStatusText(object.status) + ", " + Counted(object.size, "byte");
    text += object.gzip ? " (gzip)" : "";
    return text + (object.content ? ", " + object.content->headline : ", did not parse");
}

std::vector<TRow> SummaryRows(const SSummary& summary)
{
    std::vector<TRow> rows = {{"inputs", std::to_string(summary.inputs) + ": " + Counted(summary.captures, "capture") +
                                             ", " + Counted(summary.rawTables, "raw table")}};
    if (summary.interfaces != 0) {
        rows.back().back() = std::to_string(summary.inputs) + ": " + Counted(summary.interfaces, "interface");
    }
    if (summary.slsFiles != 0) {
        rows.back().back() += ", " + Counted(summary.slsFiles, "signalling file");
    }
    if (summary.rawMessages != 0) {
        rows.back().back() += ", " + Counted(summary.rawMessages, "raw message");
    }
    if (summary.guideFiles != 0) {
        rows.back().back() += ", " + Counted(summary.guideFiles, "guide file");
    }
    for (const SInputTimes& times : summary.times) {
        rows.push_back({"time", (summary.inputs > 1 ? Printable(times.file) + ": " : "") +
                                    InstantText(times.first->seconds, times.first->nanoseconds) + " to " +
                                    InstantText(times.last->seconds, times.last->nanoseconds)});
    }
    if (summary.captures + summary.interfaces != 0) {
        rows.push_back({"packets", PacketsText(summary.packets)});
        rows.push_back({"UDP", Counted(summary.packets.datagrams, "datagram") + ", " +
                                   std::to_string(summary.llsDatagrams) + " of them LLS"});
    }
    for (const auto& [tableId, counts] : summary.tables) {
        rows.push_back({TableTitle(tableId), CountsText(counts)});
    }
    rows.push_back(
        {"services",
         std::to_string(summary.services) + " announced" +
             (summary.servicesDropped != 0 ? "; " + std::to_string(summary.servicesDropped) + " not listed" : "")});
    if (summary.route.sessions != 0) {
        rows.push_back({"ROUTE", RouteText(summary.route)});
    }
    if (summary.mmtp.sessions != 0) {
        rows.push_back({"MMTP", MmtpText(summary.mmtp)});
    }
    if (summary.mmtp.sessions + summary.rawMessages != 0) {
        rows.push_back({"messages", MessagesText(summary.messages)});
    }
    if (summary.routeServices + summary.mmtpServices + summary.route.sessions + summary.slsFiles != 0) {
        rows.push_back({"signalling", SignallingText(summary)});
    }
    if (summary.guide.sessions + summary.guideFiles != 0) {
        rows.push_back({"guide", GuideCountsText(summary.guide)});
    }
    rows.push_back({"findings", Counted(summary.errors, "error") + ", " + Counted(summary.warnings, "warning") + ", " +
                                    Counted(summary.notes, "note")});
    return rows;
}

CTextReport::CTextReport(COutput& output, bool localTime, bool full)
    : m_output(output, [](const TLeftOut& leftOut) { return "left out: " + LeftOutText(leftOut) + '\n'; }),
      m_localTime(localTime),
      m_full(full)
{
}

/// Of a record that is too long, the first lines. False: the reader has not got all of it.
bool CTextReport::m_Write(const char* kind, const SSource& source, const std::string& text)
{
    const std::string whole = Place(source) + text;
    const std::string shown = FirstLines(whole, m_output.Room());
    m_output.Write(kind, shown.empty() ? whole : shown);
    return shown.size() == whole.size();
}

/// The lines below a headline: `whole()`, or of what changed the changes.
template <class TWhole>
std::string CTextReport::m_Body(const std::string& key, EStatus status, const std::shared_ptr<const TJson>& now,
                                TWhole whole) const
{
    if (status == EStatus::NEW_VERSION_SAME_CONTENT) {
        return {};
    }
    const CLastShown::SShown* last = status != EStatus::NEW && now ? m_last.Find(key) : nullptr;
    const std::string text = last == nullptr || m_full ? whole() : std::string();
    const bool changed = status != EStatus::NEW && (now || !text.empty());
    return (changed ? ChangesText(last, now.get(), "  ") : std::string()) + text;
}

std::string CTextReport::m_DocumentText(const SSlsDocument& document) const
{
    std::string text = std::string("  ") + DocumentName(document.kind);
    text += document.status != EDocumentStatus::NEW ? std::string(" ") + DocumentStatusName(document.status) : "";
    if (!document.parsed) {
        return text + ": did not parse\n";
    }
    if (document.status == EDocumentStatus::UNCHANGED) {
        return text + '\n';
    }
    const bool changed = document.status == EDocumentStatus::CHANGED;
    const CLastShown::SShown* last = changed ? m_last.Find(document.key) : nullptr;
    const std::string changes = changed ? ChangesText(last, &document.content->json, "    ") : std::string();
    return text + (last == nullptr || m_full
                       ? ": " + document.content->headline + '\n' + changes + document.content->text
                       : '\n' + changes);
}

/// What was not shown whole is shown whole the next time.
void CTextReport::m_Remember(const std::string& key, bool told, std::shared_ptr<const TJson> json,
                             const SSource& source)
{
    m_last.Keep(key, told ? std::move(json) : nullptr, source);
}

void CTextReport::Table(const STable& table)
{
    if (table.status == EStatus::REPEATED) {
        return;
    }
    const std::string key = DocumentKey(table);
    const std::shared_ptr<const TJson> now = DocumentJson(table);
    bool told = false;
    if (m_output.Begin("table")) {
        const auto whole = [&table] {
            return table.slt ? SltText(*table.slt) : table.content ? table.content->text : std::string();
        };
        told = m_Write("table", table.source, Headline(table) + '\n' + m_Body(key, table.status, now, whole));
    }
    m_Remember(key, told, now, table.source);
}

void CTextReport::Signalling(const SSignalling& signalling)
{
    bool told = false;
    if (m_output.Begin("signalling")) {
        std::string text = Headline(signalling) + '\n';
        if (signalling.status != EStatus::NEW_VERSION_SAME_CONTENT) {
            text += ItemsText(signalling) + PartsText(signalling);
            for (const SSlsDocument& document : signalling.documents) {
                text += m_DocumentText(document);
            }
        }
        told = m_Write("signalling", signalling.source, text);
    }
    for (const SSlsDocument& document : signalling.documents) {
        if (document.status != EDocumentStatus::UNCHANGED) {
            m_Remember(document.key, told, document.content.Whole(), signalling.source);
        }
    }
}

void CTextReport::Message(const SMessage& message)
{
    bool told = false;
    if (m_output.Begin("message")) {
        const auto whole = [&message] { return message.content ? message.content->text : std::string(); };
        told = m_Write("message", message.source,
                       Headline(message) + '\n' + m_Body(message.key, message.status, message.content.Whole(), whole));
    }
    m_Remember(message.key, told, message.content.Whole(), message.source);
}

void CTextReport::GuideObject(const SGuideObject& object)
{
    const std::string key = DocumentKey(object);
    bool told = false;
    if (m_output.Begin("guideObject")) {
        const auto whole = [&object] { return object.content ? object.content->text : std::string(); };
        told = m_Write("guideObject", object.source,
                       Headline(object) + '\n' + m_Body(key, object.status, object.content.Whole(), whole));
    }
    m_Remember(key, told, object.content.Whole(), object.source);
}

void CTextReport::Guide(const SGuide& guide)
{
    if (m_output.Begin("guide")) {
        m_Write("guide", guide.source, GuideText(guide, m_localTime));
    }
}

void CTextReport::Delivery(const SDelivery& delivery)
{
    if (m_output.Begin("delivery")) {
        m_Write("delivery", delivery.source, DeliveryText(delivery));
    }
}

/// They are the end of the report.
void CTextReport::Verdicts(const SVerdicts& verdicts)
{
    constexpr std::size_t k_most = 65536;  // bytes, of the room that the summary has
    const std::string text =
        Place(verdicts.source) + "services\n" + TableText(VerdictRows(verdicts)) + MoreText("  ", verdicts.leftOut, 0);
    m_verdicts += '\n' + FirstLines(text, Limit(k_most - std::min(k_most, m_verdicts.size())));
}

void CTextReport::Finding(const SFinding& finding)
{
    // Of an input that is none, stderr tells.
    if (!IsInputRule(finding.rule) && m_output.Begin("finding")) {
        m_output.Write("finding", FindingText(finding));
    }
}

std::string CTextReport::m_SummaryText(const SSummary& summary) const
{
    std::vector<TRow> rows = SummaryRows(summary);
    if (!m_output.LeftOut().empty()) {
        rows.push_back({"left out", LeftOutText(m_output.LeftOut())});
    }
    std::string text = "\nsummary\n" + Aligned(rows);
    for (const SFinding& finding : summary.firstFindings) {
        text += "    " + FindingText(finding);
    }
    if (summary.errors + summary.warnings > summary.firstFindings.size()) {
        text +=
            "    and " + std::to_string(summary.errors + summary.warnings - summary.firstFindings.size()) + " more\n";
    }
    return text + m_verdicts;
}

void CTextReport::Summary(const SSummary& summary)
{
    if (summary.captures + summary.interfaces + summary.rawTables + summary.slsFiles + summary.rawMessages +
            summary.guideFiles !=
        0) {
        m_output.Always(m_SummaryText(summary));
    }
}

void CTextReport::BeginInterim()
{
    m_verdictsBefore = m_verdicts;
}

void CTextReport::Interim(const SInterim& interim, const SSummary& summary)
{
    constexpr std::size_t k_most = 65536;  // bytes of findings
    std::string text = '\n' + Place(interim.source) + "report " + std::to_string(interim.number) + '\n';
    const auto list = [&](const char* title, const std::vector<SFinding>& findings) {
        std::string lines;
        for (const SFinding& finding : findings) {
            lines += "    " + FindingText(finding);
        }
        text += findings.empty() ? std::string() : std::string("  ") + title + '\n' + FirstLines(lines, Limit(k_most));
    };
    list("found since the last report", interim.begun);
    list("holds no more", interim.over);
    std::vector<TRow> changed;
    for (const SVerdictChange& change : interim.verdicts) {
        changed.push_back({"service " + std::to_string(change.now.serviceId) + ' ' + Quoted(change.now.name),
                           JudgementText(change.now.judgement) + "; before: " + JudgementText(change.before)});
    }
    text += changed.empty() ? std::string() : "  another verdict\n" + FirstLines(Aligned(changed), Limit(k_most));
    m_output.Always(text + m_SummaryText(summary));
    m_verdicts = std::move(m_verdictsBefore);
}

}  // namespace vyr::inspect
