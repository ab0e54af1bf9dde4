#include "HtmlReport.h"

#include <algorithm>

#include "Html.h"
#include "HtmlGuide.h"
#include "HtmlStyle.h"
#include "JsonReport.h"
#include "MmtReader.h"
#include "TextReport.h"

namespace vyr::inspect {

namespace {

// Parts of a session, behind the kinds of documents.
constexpr unsigned k_envelope = k_slsDocuments;
constexpr unsigned k_messages = k_slsDocuments + 1;
constexpr std::size_t k_mostGuide = 8388608;
constexpr std::size_t k_fewServices = 4;
constexpr std::size_t k_fewFiles = 3;
constexpr std::size_t k_longKey = 256;
constexpr std::size_t k_longTitle = 96;
constexpr std::size_t k_longLine = 512;

double Seconds(const STime& time)
{
    return static_cast<double>(time.seconds) + time.nanoseconds / 1e9;
}

std::string Badge(const char* kind, const std::string& text)
{
    return std::string("<span class=\"badge ") + kind + "\">" + HtmlText(text) + "</span>";
}

std::string Section(const char* id, const char* title, const std::string& html, const char* none)
{
    return std::string("<section id=\"") + id + "\"><h2>" + title + "</h2>" +
           (html.empty() ? std::string("<p class=\"muted\">") + none + "</p>" : html) + "</section>\n";
}

std::string More(std::uint64_t count, const char* what)
{
    return count != 0 ? "<p class=\"muted\">and " + Counted(count, what) + " more</p>" : std::string();
}

std::string Cut(const std::string& text)
{
    return text.substr(0, k_longKey);
}

/// The texts of a list of texts with languages, each in a paragraph.
std::string Paragraphs(const TJson& texts)
{
    std::string html;
    for (const TJson& text : texts) {
        html += "<p>" + HtmlIsolated(text.value("text", ""), text.value("lang", "")) + "</p>";
    }
    return html;
}

/// Whether a certificate holds at the time; its own are of the same form and length.
std::string Validity(const TJson& certificate, const std::optional<STime>& time)
{
    if (!time || !certificate.contains("notAfter")) {
        return {};
    }
    const std::string now = EpochText(static_cast<double>(time->seconds));
    return now > certificate.value("notAfter", "")    ? Badge("bad", "expired")
           : now < certificate.value("notBefore", "") ? Badge("bad", "not yet valid")
                                                      : Badge("good", "valid");
}

std::string CertificateRows(const TJson& certificates, const std::optional<STime>& time)
{
    std::string rows;
    for (const TJson& certificate : certificates) {
        if (certificate.contains("error")) {
            rows += "<tr><td colspan=\"5\">" + Badge("bad", certificate.value("error", "")) + "</td></tr>";
            continue;
        }
        rows += "<tr>";
        for (const char* key : {"subject", "issuer", "notBefore", "notAfter"}) {
            rows +=
                (key[0] == 'n' ? "<td class=\"time\">" : "<td>") + HtmlIsolated(certificate.value(key, "")) + "</td>";
        }
        rows += "<td>" + Validity(certificate, time) + "</td></tr>";
    }
    return rows;
}

/// The JSON without what the page says elsewhere.
TJson Without(TJson json, std::initializer_list<const char*> keys)
{
    for (const char* key : keys) {
        json.erase(key);
    }
    return json;
}

std::string GroupText(const STable& table)
{
    return ServiceListName(table.stream, table.header.groupId) + (table.insideMultiTable ? " signed" : "");
}

}  // namespace

template <class TMap>
typename TMap::mapped_type* CHtmlReport::m_Find(TMap& map, const typename TMap::key_type& key)
{
    const auto found = map.find(key);
    if (found == map.end() && map.size() >= k_mostParts) {
        ++m_left;
        return nullptr;
    }
    return found != map.end() ? &found->second : &map[key];
}

void CHtmlReport::m_Hold(std::string& slot, std::string html)
{
    m_bytes -= slot.size();
    if (m_bytes + html.size() > k_mostBytes) {
        ++m_left;
        html = "<p class=\"muted\">Left out: the page would be too large.</p>";
    }
    m_bytes += html.size();
    slot = std::move(html);
}

void CHtmlReport::m_Hold(SPart& part, const std::string& title, const SSource& source, std::string html)
{
    part.title = title;
    part.source = source;
    ++part.versions;
    m_Hold(part.html, std::move(html));
}

void CHtmlReport::m_Add(SList<SLine>& list, const SSource& source, const std::string& html)
{
    if (list.items.size() < k_mostLines) {
        list.items.push_back({source, html});
    } else {
        ++list.more;
    }
}

std::size_t CHtmlReport::m_See(const SSource& source)
{
    if (source.time) {
        m_first = m_first && Seconds(*m_first) <= Seconds(*source.time) ? m_first : source.time;
        m_last = m_last && Seconds(*m_last) >= Seconds(*source.time) ? m_last : source.time;
    }
    if (m_files.empty() || m_files.back() != source.file) {
        const auto known = std::find(m_files.begin(), m_files.end(), source.file);
        if (known != m_files.end()) {
            return static_cast<std::size_t>(known - m_files.begin());
        }
        m_files.push_back(source.file);
    }
    return m_files.size() - 1;
}

void CHtmlReport::Table(const STable& table)
{
    const std::size_t file = m_See(table.source);
    if (table.status == EStatus::REPEATED) {
        return;
    }
    m_Add(m_changes, table.source, "<td>" + HtmlText(HtmlClipped(Headline(table), k_longLine)) + "</td>");
    const TKey key = {file, GroupText(table), std::to_string(table.header.tableId)};
    if (SPart* part = m_Find(m_tables, key)) {
        std::string title = Headline(table);
        title = title.substr(0, title.find(':'));
        const TJson json = Without(TableJson(table), {"schema_version", "type", "source", "AEA", "Certificates"});
        m_Hold(*part, HtmlText(title), table.source, HtmlTree(json));
    }
    if (table.slt) {
        m_Slt(table, key);
    }
    if (table.content && table.content->json.contains("AEA")) {
        m_Alerts(table, key);
    }
    m_Certificates(table, key);
}

void CHtmlReport::m_Slt(const STable& table, const TKey& key)
{
    SServiceList* list = m_Find(m_lists, key);
    if (list == nullptr) {
        return;
    }
    m_bytes -= list->bytes;
    *list = {};
    list->name = ServiceListName(table.stream, table.header.groupId);
    list->title = HtmlText("bsid " + std::to_string(table.slt->bsid) + ", " + GroupText(table));
    list->source = table.source;
    const std::vector<TRow> rows = ServiceRows(table.slt->services);
    for (std::size_t i = 0; i < table.slt->services.size(); ++i) {
        const TRow& row = rows[i + 1];
        SListed listed;
        const SParseSLT::SService& service = table.slt->services[i];
        listed.id = static_cast<unsigned>(service.serviceId);
        if (service.hasBroadcastSvcSignaling) {
            listed.session =
                EndpointText(service.slsDestinationIpAddress, static_cast<unsigned>(service.slsDestinationUdpPort));
        }
        listed.title = "<b>" + HtmlText(row[0]) + "</b> " + (row[1] != "-" ? HtmlText(row[1]) + ' ' : "") +
                       HtmlIsolated(HtmlClipped(row[2], k_longTitle));
        for (std::size_t cell = 1; cell < row.size(); ++cell) {
            listed.cells += "<td>" + (cell == 2 ? HtmlIsolated(row[cell]) : HtmlText(row[cell])) + "</td>";
        }
        listed.html =
            HtmlTree(Without(ServiceJson(table, service),
                             {"schema_version", "type", "source", "stream", "LLS_table_id", "LLS_table_idName",
                              "LLS_group_id", "group_count_minus1", "LLS_table_version", "bsid"}));
        const std::size_t bytes = listed.title.size() + listed.cells.size() + listed.html.size();
        if (m_bytes + list->bytes + bytes > k_mostBytes) {
            m_left += table.slt->services.size() - i;
            break;
        }
        list->bytes += bytes;
        list->services.push_back(std::move(listed));
    }
    m_bytes += list->bytes;
}

void CHtmlReport::m_Alerts(const STable& table, const TKey& key)
{
    for (auto& [id, alert] : m_alerts) {
        alert.current = alert.current && alert.table != key;
    }
    for (const TJson& json : table.content->json["AEA"]) {
        const std::string id = json.value("aeaId", "");
        const std::string name = Cut(json.value("issuer", "")) + '\n' + Cut(id);
        SAlert* alert = m_Find(m_alerts, {std::get<0>(key), std::get<1>(key), name});
        if (alert == nullptr) {
            continue;
        }
        const TJson& events = json["EventDesc"];
        const bool named = !events.empty() && !events[0].value("text", "").empty();
        const std::string title =
            named ? HtmlIsolated(HtmlClipped(events[0].value("text", ""), k_longTitle), events[0].value("lang", ""))
                  : "alert " + HtmlIsolated(HtmlClipped(id, k_longTitle));
        alert->current = true;
        alert->table = key;
        m_Hold(alert->part, "<b>" + title + "</b>", table.source,
               Paragraphs(json["AEAText"]) + HtmlTree(Without(json, {"AEAText"})));
    }
}

void CHtmlReport::m_Certificates(const STable& table, const TKey& key)
{
    const TJson* json = table.content ? &table.content->json : nullptr;
    const bool certificates = json != nullptr && json->contains("Certificates");
    const bool multiTable = json != nullptr && json->contains("signature");
    if (!certificates && !multiTable && !(table.slt && table.slt->cmsSignedData)) {
        return;
    }
    SPart* part = m_Find(m_certificates, key);
    if (part == nullptr) {
        return;
    }
    std::string html;
    if (certificates) {
        html = HtmlTable("", {"subject", "issuer", "valid from", "until", "at the capture"},
                         CertificateRows((*json)["Certificates"], table.source.time)) +
               HtmlTree(Without(*json, {"Certificates"}));
    } else if (multiTable) {
        html = HtmlTree({{"signedSize", (*json)["signedSize"]}, {"signature", (*json)["signature"]}});
    } else {
        html = "<p>The service list has a CMSSignedData element.</p>";
    }
    std::string title = Headline(table);
    m_Hold(*part, HtmlText(title.substr(0, title.find(':'))), table.source, std::move(html));
}

void CHtmlReport::Signalling(const SSignalling& signalling)
{
    const std::size_t file = m_See(signalling.source);
    std::string names;
    for (const SSlsDocument& document : signalling.documents) {
        names += std::string(names.empty() ? " <small>" : ", ") + DocumentName(document.kind) +
                 (document.content ? std::string(" ") + DocumentStatusName(document.status) : " did not parse");
    }
    m_Add(m_changes, signalling.source,
          "<td>" + HtmlText(HtmlClipped(Headline(signalling), k_longLine)) + names +
              (names.empty() ? "</td>" : "</small></td>"));
    SSession* session = m_Find(m_sessions, {file, signalling.session, {}});
    if (session == nullptr) {
        return;
    }
    for (const SSlsDocument& document : signalling.documents) {
        SPart* part = m_Part(*session, {static_cast<unsigned>(document.kind)});
        const std::string name = std::string("<b>") + DocumentName(document.kind) + "</b> ";
        if (part != nullptr && !document.content) {
            m_Hold(*part, name + Badge("bad", "did not parse"), signalling.source,
                   "<p>" + HtmlText(document.reason) + "</p>");
        } else if (part != nullptr && (document.status != EDocumentStatus::UNCHANGED || part->versions == 0)) {
            m_Hold(*part, name + "<small>" + HtmlText(HtmlClipped(document.content->headline, k_longLine)) + "</small>",
                   signalling.source, HtmlTree(document.content->json));
        }
    }
    SPart* envelope = signalling.items.empty() ? nullptr : m_Part(*session, {k_envelope});
    if (envelope != nullptr) {
        m_Hold(*envelope, "<b>metadataEnvelope</b>", signalling.source,
               HtmlTree({{"item", EnvelopeJson(signalling.items)}}));
    }
}

CHtmlReport::SPart* CHtmlReport::m_Part(SSession& session, const std::vector<unsigned>& key)
{
    const auto known = session.parts.find(key);
    if (known == session.parts.end() && m_sessionParts >= 4 * k_mostParts) {
        ++m_left;
        return nullptr;
    }
    m_sessionParts += known == session.parts.end() ? 1 : 0;
    return &session.parts[key];
}

void CHtmlReport::Message(const SMessage& message)
{
    const std::size_t file = m_See(message.source);
    const std::string headline = HtmlClipped(Headline(message), k_longLine);
    m_Add(m_changes, message.source, "<td>" + HtmlText(headline) + "</td>");
    SSession* session = m_Find(m_sessions, {file, message.session, {}});
    std::vector<unsigned> key = {k_messages, message.packetId.value_or(0)};
    key.insert(key.end(), message.kind.begin(), message.kind.end());
    SPart* part = session != nullptr ? m_Part(*session, key) : nullptr;
    if (part == nullptr) {
        return;
    }
    const std::string title = MessageTitle(message.id);
    if (message.content && message.content->json.contains("signature")) {
        const std::string place = message.session + ' ' + std::to_string(message.packetId.value_or(0));
        if (SPart* signature = m_Find(m_certificates, {file, place, title})) {
            m_Hold(*signature, HtmlText(title + (message.session.empty() ? "" : " of " + message.session)),
                   message.source, HtmlTree({{"signature", message.content->json["signature"]}}));
        }
    }
    const std::size_t at = headline.find(title);
    m_Hold(*part,
           "<b>" + HtmlText(title) + "</b> <small>" +
               HtmlText(at != std::string::npos ? headline.substr(at + title.size()) : "") + "</small>",
           message.source,
           message.content     ? HtmlTree(message.content->json)
           : message.supported ? "<p>" + Badge("bad", "did not parse") + "</p>"
                               : std::string("<p class=\"muted\">not supported</p>"));
}

void CHtmlReport::GuideObject(const SGuideObject& object)
{
    const std::size_t file = m_See(object.source);
    const std::string headline = HtmlClipped(Headline(object), k_longLine);
    m_Add(m_changes, object.source, "<td>" + HtmlText(headline) + "</td>");
    std::string what =
        std::string(GuideObjectName(object.kind)) + ' ' + (object.tsi ? std::to_string(*object.tsi) : "") + ' ';
    what += object.toi ? ToiText(*object.toi) : Cut(object.contentLocation);
    if (SPart* part = m_Find(m_guideObjects, {file, object.session, what})) {
        m_Hold(*part, HtmlText(headline), object.source,
               object.content ? HtmlTree(object.content->json) : std::string("<p>did not parse</p>"));
    }
}

void CHtmlReport::Guide(const SGuide& guide)
{
    const std::size_t file = m_See(guide.source);
    if (std::string* last = m_Find(m_guides, file)) {
        m_Hold(*last, HtmlGuide(guide, "g" + std::to_string(file), m_localTime, k_mostGuide));
    }
}

void CHtmlReport::Fault(const SFault& fault)
{
    const std::size_t file = m_See(fault.source);
    m_Add(m_faults, fault.source,
          "<td>" + Badge("bad", FaultName(fault.code)) + "</td><td>" +
              HtmlText(HtmlClipped(fault.message, k_longLine)) + "</td>");
    if (fault.code == EFault::NO_SIGNALLING && fault.serviceId) {
        if (std::string* why = m_Find(m_missing, {file, fault.serviceList, std::to_string(*fault.serviceId)})) {
            *why = HtmlClipped(fault.message, k_longLine);
        }
    }
}

std::string CHtmlReport::m_Where(const SSource& source) const
{
    std::string html = m_files.size() > 1 ? HtmlIsolated(source.file) + ' ' : std::string();
    html += source.packet != 0 ? "packet " + std::to_string(source.packet) : "";
    if (source.time) {
        const std::string time = InstantText(source.time->seconds, source.time->nanoseconds);
        const bool oneDay = m_first && m_last && m_first->seconds / 86400 == m_last->seconds / 86400;
        const std::string shown = oneDay && time.size() > 11 ? time.substr(11, time.size() - 12) : time;
        html += ", <time datetime=\"" + HtmlText(time) + "\">" + HtmlText(shown) + "</time>";
    }
    return html;
}

std::string CHtmlReport::m_Fold(const SPart& part, const char* attributes) const
{
    const std::string where = m_Where(part.source);
    std::string note = part.versions > 1 ? Counted(part.versions, "version") + ", the last: " : std::string();
    note += where;
    return std::string("<details ") + attributes + "><summary>" + part.title +
           (note.empty() ? "" : " <small>\u00b7 " + note + "</small>") + "</summary>" + part.html + "</details>";
}

std::string CHtmlReport::m_Lines(const SList<SLine>& list, const std::vector<std::string>& titles) const
{
    std::string rows;
    for (const SLine& line : list.items) {
        rows += "<tr><td>" + m_Where(line.source) + "</td>" + line.html + "</tr>";
    }
    return rows.empty() ? rows : HtmlTable("lines", titles, rows) + More(list.more, "line");
}

std::string CHtmlReport::m_Head() const
{
    std::string files;
    for (const std::string& file : m_files) {
        files += (files.empty() ? "" : ", ") + HtmlIsolated(file == "-" ? "standard input" : file);
    }
    const std::string title = m_files.size() == 1 ? HtmlText(m_files[0]) : Counted(m_files.size(), "input");
    if (m_files.size() > k_fewFiles) {
        files = "<details><summary>" + title + "</summary>" + files + "</details>";
    }
    std::string html =
        "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
        "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
        "style-src 'unsafe-inline'\">"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">"
        "<meta name=\"referrer\" content=\"no-referrer\">"
        "<meta name=\"color-scheme\" content=\"light dark\"><title>ATSC 3.0 signalling";
    html += ": " + title + "</title><style>" + k_htmlStyle + "</style></head>\n<body>\n" +
            "<header><h1>ATSC 3.0 signalling</h1><div>" + files + "</div>";
    if (m_first && m_last) {
        html += "<p class=\"muted\">" + InstantText(m_first->seconds, m_first->nanoseconds) + " to " +
                InstantText(m_last->seconds, m_last->nanoseconds) + "</p>";
    }
    return html + "</header>\n";
}

std::string CHtmlReport::m_Overview(const SSummary& summary) const
{
    std::string html = summary.faults == 0 ? std::string("<p class=\"verdict good\">No problems found</p>")
                                           : "<p class=\"verdict bad\"><a href=\"#problems\">" +
                                                 Counted(summary.faults, "problem") + " found</a></p>";
    html += "<dl>";
    for (const TRow& row : SummaryRows(summary)) {
        html += "<div><dt>" + HtmlText(row[0]) + "</dt><dd>" + HtmlText(row[1]) + "</dd></div>";
    }
    return html + "</dl>" +
           (m_left != 0 ? "<p>" + Counted(m_left, "part") + " left out: this page holds no more.</p>" : std::string());
}

std::string CHtmlReport::m_Missing(const TKey& key, const SServiceList& list, const SListed& service) const
{
    const auto why = m_missing.find({std::get<0>(key), list.name, std::to_string(service.id)});
    return why != m_missing.end() ? why->second : std::string();
}

std::string CHtmlReport::m_Services() const
{
    std::string html;
    std::size_t number = 0;
    for (const auto& [key, list] : m_lists) {
        const std::string where = m_Where(list.source);
        html += "<h3>" + list.title + (where.empty() ? "" : " <small>" + where + "</small>") + "</h3>";
        std::string rows;
        for (std::size_t i = 0; i < list.services.size(); ++i) {
            const SListed& service = list.services[i];
            const bool missing = !m_Missing(key, list, service).empty();
            const bool signalled = !missing && m_sessions.count({std::get<0>(key), service.session, {}}) != 0;
            const std::string link = "<a href=\"#s" + std::to_string(number) + '-' + std::to_string(i) + "\">";
            rows += "<tr>" + HtmlHeader("row", link + std::to_string(service.id) + "</a>") + service.cells + "<td>" +
                    (signalled ? Badge("good", "received")
                     : missing ? Badge("bad", "missing")
                               : std::string("\u2013")) +
                    "</td></tr>";
        }
        std::vector<std::string> titles = ServiceRows({})[0];
        titles.push_back("signalling");
        html += rows.empty() ? "<p class=\"muted\">No services.</p>" : HtmlTable("keep", titles, rows);
        ++number;
    }
    return html;
}

std::string CHtmlReport::m_Guide() const
{
    std::string html;
    for (const auto& [file, guide] : m_guides) {
        html += m_files.size() > 1 ? "<h3>" + HtmlIsolated(m_files[file]) + "</h3>" : "";
        html += guide;
    }
    if (!m_guideObjects.empty()) {
        html += "<h3>Objects of the guide</h3>";
        for (const auto& [key, part] : m_guideObjects) {
            html += m_Fold(part, "class=\"doc\"");
        }
    }
    return html;
}

std::string CHtmlReport::m_AlertList() const
{
    std::string html;
    for (const bool current : {true, false}) {
        for (const auto& [key, alert] : m_alerts) {
            if (alert.current == current) {
                SPart part = alert.part;
                part.title += ' ' + (current ? Badge("bad", "in the last table") : Badge("", "no longer sent"));
                html += m_Fold(part, current ? "class=\"item\" open" : "class=\"item\"");
            }
        }
    }
    return html;
}

std::string CHtmlReport::m_Documents(const SSession& session) const
{
    std::string html;
    for (const auto& [kind, part] : session.parts) {
        html += m_Fold(part, "class=\"doc\"");
    }
    return html;
}

std::string CHtmlReport::m_Signalling() const
{
    std::string html;
    std::map<TKey, std::string> shown;  // the anchors of the sessions
    std::size_t services = 0;
    for (const auto& [key, list] : m_lists) {
        services += list.services.size();
    }
    const std::string open = services <= k_fewServices ? " open" : "";
    std::size_t number = 0;
    for (const auto& [key, list] : m_lists) {
        for (std::size_t i = 0; i < list.services.size(); ++i) {
            const SListed& service = list.services[i];
            const std::string anchor = 's' + std::to_string(number) + '-' + std::to_string(i);
            html += "<details class=\"item\"" + open + "><summary>" + service.title +
                    "</summary><div class=\"target\" id=\"" + anchor +
                    "\"><details class=\"doc\"><summary><b>SLT entry</b></summary>" + service.html + "</details>";
            if (const std::string why = m_Missing(key, list, service); !why.empty()) {
                html += "<p>" + Badge("bad", "missing") + ' ' + HtmlText(why) + "</p>";
            }
            const auto session = m_sessions.find({std::get<0>(key), service.session, {}});
            if (session != m_sessions.end()) {
                const auto [known, first] = shown.emplace(session->first, anchor);
                html += "<p class=\"muted\">Session " + HtmlText(service.session) +
                        (first ? "" : ": <a href=\"#" + known->second + "\">shown before</a>") + "</p>" +
                        (first ? m_Documents(session->second) : std::string());
            }
            html += "</div></details>";
        }
        ++number;
    }
    for (const auto& [key, session] : m_sessions) {
        if (shown.count(key) == 0) {
            html += "<details class=\"item\" open><summary><b>" +
                    (std::get<1>(key).empty() ? HtmlIsolated(m_files[std::get<0>(key)])
                                              : "Session " + HtmlText(std::get<1>(key))) +
                    "</b></summary>" + m_Documents(session) + "</details>";
        }
    }
    return html;
}

std::string CHtmlReport::m_Tables() const
{
    std::string html;
    for (const auto& [key, part] : m_tables) {
        html += m_Fold(part, "class=\"doc\"");
    }
    return html;
}

std::string CHtmlReport::m_CertificateList() const
{
    std::string html;
    for (const auto& [key, part] : m_certificates) {
        html += m_Fold(part, "class=\"item\" open");
    }
    return html.empty() ? html : "<p class=\"muted\">Signatures are looked at for their form, not verified.</p>" + html;
}

std::string CHtmlReport::m_Problems(const SSummary& summary) const
{
    std::string html;
    for (const auto& [code, count] : summary.faultsByCode) {
        html += (html.empty() ? "<p>" : ", ") + std::to_string(count) + ' ' + FaultName(code);
    }
    return html + (html.empty() ? "" : "</p>") + m_Lines(m_faults, {"where", "problem", "what is wrong"});
}

void CHtmlReport::Summary(const SSummary& summary)
{
    const struct {
        const char* id;
        const char* title;
        std::string html;
        const char* none;
    } sections[] = {
        {"overview", "Overview", m_Overview(summary), ""},
        {"services", "Services", m_Services(), "No service list came."},
        {"guide", "Service guide", m_Guide(), "No service guide came."},
        {"alerts", "Alerts", m_AlertList(), "No alerts came."},
        {"signalling", "Signalling of services", m_Signalling(), "No signalling came."},
        {"tables", "LLS tables", m_Tables(), "No LLS tables came."},
        {"certificates", "Certificates and signatures", m_CertificateList(), "No certificates came."},
        {"problems", "Problems found", m_Problems(summary), "None."},
        {"changes", "What changed", m_Lines(m_changes, {"where", "what came"}), "Nothing came."},
    };
    std::string contents;
    std::string html;
    for (const auto& section : sections) {
        contents += std::string("<li><a href=\"#") + section.id + "\">" + section.title + "</a></li>";
        html += Section(section.id, section.title, section.html, section.none);
    }
    m_page = m_Head() + "<nav aria-label=\"Contents\"><ul>" + contents + "</ul></nav>\n<main>\n" + html +
             "</main>\n<footer class=\"muted\">vyr-atsc30-inspect " VYR_INSPECT_VERSION "</footer>\n</body></html>\n";
}

}  // namespace vyr::inspect
