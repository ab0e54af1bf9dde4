#include "report/PageModel.h"

#include <algorithm>

#include "base/Limits.h"
#include "base/Names.h"
#include "model/Content.h"
#include "model/Verdict.h"
#include "report/DeliveryText.h"
#include "report/Html.h"
#include "report/HtmlArrivals.h"
#include "report/HtmlGuide.h"
#include "report/HtmlRates.h"
#include "report/JsonReport.h"
#include "report/TextReport.h"

namespace vyr::inspect {

namespace {

// Parts of a session, behind the kinds of documents.
constexpr unsigned k_envelope = k_slsDocuments;
constexpr unsigned k_partsOf = k_slsDocuments + 1;
constexpr unsigned k_messages = k_slsDocuments + 2;
constexpr unsigned char k_sltId = 1;
constexpr std::size_t k_mostGuide = 8388608;
constexpr std::size_t k_longKey = 256;
constexpr std::size_t k_longTitle = 96;
constexpr std::size_t k_longCell = 96;
constexpr std::size_t k_longLine = 512;

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
    return now > certificate.value("notAfter", "")    ? HtmlBadge("bad", "expired")
           : now < certificate.value("notBefore", "") ? HtmlBadge("bad", "not yet valid")
                                                      : HtmlBadge("good", "valid");
}

std::string CertificateRows(const TJson& certificates, const std::optional<STime>& time)
{
    std::string rows;
    for (const TJson& certificate : certificates) {
        if (certificate.contains("error")) {
            rows += "<tr><td colspan=\"5\">" + HtmlBadge("bad", certificate.value("error", "")) + "</td></tr>";
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

/// A member for people, cut; empty: it is not given.
std::string CellText(const TJson& object, const char* key)
{
    const auto value = object.find(key);
    if (value == object.end() || value->is_structured()) {
        return {};
    }
    return HtmlClipped(value->is_string() ? value->get<std::string>() : value->dump(), k_longCell);
}

/// The elements of a member that is a list; none otherwise.
const TJson& Elements(const TJson& object, const char* key)
{
    static const TJson k_none = TJson::array();
    const auto value = object.find(key);
    return value != object.end() && value->is_array() ? *value : k_none;
}

constexpr const char* k_signed = " signed";

std::string GroupText(const STable& table)
{
    return ServiceListName(table.stream, table.header.groupId) + (table.insideMultiTable ? k_signed : "");
}

}  // namespace

template <class TMap>
typename TMap::mapped_type* CPageModel::m_Find(TMap& map, const typename TMap::key_type& key)
{
    const auto found = map.find(key);
    if (found == map.end() && (map.size() >= Limit(k_mostParts) || !m_Take(k_around))) {
        ++t_left;
        return nullptr;
    }
    return found != map.end() ? &found->second : &map[key];
}

std::size_t CPageModel::m_Bytes(const SLine& line)
{
    return k_around + line.html.size() + line.source.file.size();
}

bool CPageModel::m_Fits(std::size_t bytes, std::size_t most) const
{
    return m_bytes + bytes <= std::min(Limit(most), m_allowance.Room());
}

bool CPageModel::m_Take(std::size_t bytes, std::size_t most)
{
    const bool fits = m_Fits(bytes, most);
    m_bytes += fits ? bytes : 0;
    return fits;
}

void CPageModel::m_Hold(SPart& part, const std::string& title, const SSource& source, std::string html)
{
    m_bytes -= part.bytes;
    part.bytes = title.size() + html.size();
    part.source = source;
    ++part.versions;
    if (m_Take(part.bytes, k_mostBytes)) {
        part.title = title;
        part.html = std::move(html);
        return;
    }
    ++t_left;
    part.bytes = 0;  // what stands in its place was counted with the part
    part.title = "left out";
    part.html = "<p class=\"muted\">Left out: the page would be too large.</p>";
}

void CPageModel::m_Add(SList<SLine>& list, const SSource& source, const std::string& html)
{
    SLine line = {source, html};
    // Of what goes on for weeks, the latest, and room for what a report on the way finds.
    const bool latest = m_watched && !m_interim;
    while (latest && !list.items.empty() && (list.items.size() >= Limit(k_mostLines / 2) || !m_Fits(m_Bytes(line)))) {
        m_bytes -= m_Bytes(list.items.front());
        list.items.pop_front();
        ++list.more;
    }
    if (list.items.size() < Limit(k_mostLines) && m_Take(m_Bytes(line))) {
        list.items.push_back(std::move(line));
    } else {
        ++list.more;
    }
}

void CPageModel::BeginInterim()
{
    m_interim = true;
    m_before = {t_findings.items.size(), t_findings.more, t_missing};
}

void CPageModel::t_EndInterim()
{
    m_interim = false;
    for (; t_findings.items.size() > m_before.findings; t_findings.items.pop_back()) {
        m_bytes -= m_Bytes(t_findings.items.back());
    }
    t_findings.more = m_before.more;
    t_missing = std::move(m_before.missing);
}

/// What changed of a document against what came last of it, as a list; that is what it stands at from now on.
std::string CPageModel::m_Changes(const std::string& key, bool isNew, std::shared_ptr<const TJson> now,
                                  const SSource& source)
{
    std::string html;
    if (!isNew && now && (m_watched || t_changes.items.size() < Limit(k_mostLines))) {
        for (const std::string& line : ChangeLines(m_last.Find(key), now.get())) {
            html += "<li>" + HtmlText(HtmlClipped(line, k_longLine)) + "</li>";
        }
    }
    m_last.Keep(key, std::move(now), source);
    return html.empty() ? html : "<ul class=\"changes\">" + html + "</ul>";
}

std::size_t CPageModel::m_See(const SSource& source)
{
    if (source.time) {
        t_first = t_first && Seconds(*t_first) <= Seconds(*source.time) ? t_first : source.time;
        t_last = t_last && Seconds(*t_last) >= Seconds(*source.time) ? t_last : source.time;
    }
    if (t_files.empty() || t_files.back() != source.file) {
        const auto known = std::find(t_files.begin(), t_files.end(), source.file);
        if (known != t_files.end()) {
            return static_cast<std::size_t>(known - t_files.begin());
        }
        t_files.push_back(source.file);
    }
    return t_files.size() - 1;
}

void CPageModel::Table(const STable& table)
{
    const std::size_t file = m_See(table.source);
    for (const auto& [stream, group] : table.listsGone) {
        m_Drop(file, ServiceListName(stream, group));
        m_Drop(file, ServiceListName(stream, group) + k_signed);
    }
    if (table.status == EStatus::REPEATED) {
        return;
    }
    m_Add(t_changes, table.source,
          "<td>" + HtmlText(HtmlClipped(Headline(table), k_longLine)) +
              m_Changes(DocumentKey(table), table.status == EStatus::NEW, DocumentJson(table), table.source) + "</td>");
    const TKey key = {file, GroupText(table), std::to_string(table.header.tableId)};
    if (SPart* part = m_Find(t_tables, key)) {
        std::string title = Headline(table);
        title = title.substr(0, title.find(':'));
        const TJson json = Without(TableJson(table), {"schema_version", "type", "source", "AEA", "Certificates"});
        m_Hold(*part, HtmlText(title), table.source, HtmlTree(json));
    }
    if (table.slt) {
        m_Slt(table, key);
    }
    t_refusedLists += table.header.tableId == k_sltId && !table.slt ? 1 : 0;
    if (table.content && table.content->json.contains("AEA")) {
        m_Alerts(table, key);
    }
    m_Certificates(table, key);
}

void CPageModel::m_Slt(const STable& table, const TKey& key)
{
    SServiceList* list = m_Find(t_lists, key);
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
        const SSltService& service = table.slt->services[i];
        listed.id = static_cast<unsigned>(service.serviceId);
        if (service.hasBroadcastSvcSignaling) {
            listed.session =
                EndpointText(service.slsDestinationIpAddress, static_cast<unsigned>(service.slsDestinationUdpPort));
        }
        listed.title = "<b>" + HtmlText(row[0]) + "</b> " + (row[1] != "-" ? HtmlText(row[1]) + ' ' : "") +
                       HtmlIsolated(HtmlClipped(row[2], k_longTitle));
        listed.notListed = service.notListed;
        for (std::size_t cell = 1; cell + 1 < row.size(); ++cell) {
            listed.cells += "<td>" + (cell == 2 ? HtmlIsolated(row[cell]) : HtmlText(row[cell])) + "</td>";
        }
        listed.html = HtmlTree(ServiceJson(service));
        const std::size_t bytes = 2 * k_around + listed.title.size() + listed.cells.size() + listed.html.size();
        if (!m_Take(bytes, k_mostBytes)) {
            t_left += table.slt->services.size() - i;
            break;
        }
        list->bytes += bytes;
        list->services.push_back(std::move(listed));
    }
    t_left += table.slt->leftOut;
}

/// What holds no more with its group.
void CPageModel::m_Drop(std::size_t file, const std::string& group)
{
    const auto list = t_lists.find({file, group, std::to_string(k_sltId)});
    if (list != t_lists.end()) {
        m_bytes -= list->second.bytes;
        t_lists.erase(list);
    }
    for (auto& [id, alert] : t_alerts) {
        alert.current = alert.current && (std::get<0>(alert.table) != file || std::get<1>(alert.table) != group);
    }
}

void CPageModel::m_Alerts(const STable& table, const TKey& key)
{
    for (auto& [id, alert] : t_alerts) {
        alert.current = alert.current && alert.table != key;
    }
    for (const TJson& json : table.content->json["AEA"]) {
        const std::string id = json.value("aeaId", "");
        const std::string name = Cut(json.value("issuer", "")) + '\n' + Cut(id);
        SAlert* alert = m_Find(t_alerts, {std::get<0>(key), std::get<1>(key), name});
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

void CPageModel::m_Certificates(const STable& table, const TKey& key)
{
    const TJson* json = table.content ? &table.content->json : nullptr;
    const bool certificates = json != nullptr && json->contains("Certificates");
    const bool multiTable = json != nullptr && json->contains("signature");
    if (!certificates && !multiTable && !(table.slt && table.slt->cmsSignedData)) {
        return;
    }
    SPart* part = m_Find(t_certificates, key);
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

void CPageModel::Signalling(const SSignalling& signalling)
{
    const std::size_t file = m_See(signalling.source);
    std::string names;
    std::string changes;
    for (const SSlsDocument& document : signalling.documents) {
        if (document.status != EDocumentStatus::UNCHANGED) {
            const std::string html = m_Changes(document.key, document.status == EDocumentStatus::NEW,
                                               document.content.Whole(), signalling.source);
            changes += html.empty() ? html : std::string("<small>") + DocumentName(document.kind) + "</small>" + html;
        }
        names += std::string(names.empty() ? " <small>" : ", ") + DocumentName(document.kind) +
                 (document.parsed ? std::string(" ") + DocumentStatusName(document.status) : " did not parse");
    }
    m_Add(t_changes, signalling.source,
          "<td>" + HtmlText(HtmlClipped(Headline(signalling), k_longLine)) + names + (names.empty() ? "" : "</small>") +
              changes + "</td>");
    SSession* session = m_Find(t_sessions, {file, signalling.session, {}});
    if (session == nullptr) {
        return;
    }
    for (const SSlsDocument& document : signalling.documents) {
        SPart* part = m_Part(*session, {static_cast<unsigned>(document.kind)});
        const std::string name = std::string("<b>") + DocumentName(document.kind) + "</b> ";
        if (document.parsed && !document.content) {
            continue;  // as it was
        }
        m_Components(*session, document);
        if (part != nullptr && !document.content) {
            m_Hold(*part, name + HtmlBadge("bad", "did not parse"), signalling.source,
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
    SPart* parts = signalling.parts.empty() ? nullptr : m_Part(*session, {k_partsOf});
    if (parts != nullptr) {
        const std::string more =
            signalling.moreParts != 0 ? ", and " + Counted(signalling.moreParts, "part") + " more" : std::string();
        m_Hold(*parts,
               "<b>Parts of the package</b>" + more +
                   (signalling.partsEnded ? std::string() : ' ' + HtmlBadge("bad", "the last boundary is missing")),
               signalling.source, HtmlTree({{"part", PartsJson(signalling.parts)}}));
    }
    SPart* signature = signalling.signature ? m_Find(t_certificates, {file, signalling.session, "package"}) : nullptr;
    if (signature != nullptr) {
        m_Hold(*signature,
               "signature of the package" + (signalling.session.empty() ? "" : HtmlText(" on " + signalling.session)),
               signalling.source, HtmlTree({{"signature", signalling.signature->json}}));
    }
}

void CPageModel::m_HoldComponent(std::vector<SComponent>& components, SComponent component)
{
    const std::size_t bytes = component.Bytes();
    if (components.size() == k_mostComponents || m_bytes + bytes > k_mostBytes) {
        ++t_left;
        return;
    }
    m_bytes += bytes;
    components.push_back(std::move(component));
}

/// Notes what a new document says of the session's components.
void CPageModel::m_Components(SSession& session, const SSlsDocument& document)
{
    const bool stsid = document.kind == ESlsDocument::STSID;
    if (!stsid && document.kind != ESlsDocument::MPD) {
        return;
    }
    std::vector<SComponent>& components = stsid ? session.lctSessions : session.representations;
    for (const SComponent& component : components) {
        m_bytes -= component.Bytes();
    }
    components.clear();
    const TJson none = TJson::object();
    const TJson& json = document.content ? document.content->json : none;
    for (const TJson& route : Elements(json, "RS")) {
        const std::string port = CellText(route, "dPort");
        const std::string address = CellText(route, "dIpAddr") + (port.empty() ? "" : ':' + port);
        for (const TJson& lct : Elements(route, "LS")) {
            // As in the text report, the last flow counts.
            const TJson& flows = Elements(lct, "SrcFlow");
            const TJson flow = flows.empty() ? none : flows.back();
            const TJson content = flow.value("ContentInfo", none);
            const TJson media = content.value("MediaInfo", none);
            const std::string rep = CellText(media, "repId");
            m_HoldComponent(components, {rep.empty() ? CellText(content, "contentId") : rep,
                                         {CellText(lct, "tsi"), address, CellText(lct, "bw"),
                                          CellText(media, "contentType"), CellText(media, "lang")}});
        }
    }
    for (const TJson& period : Elements(json, "Period")) {
        for (const TJson& set : Elements(period, "AdaptationSet")) {
            for (const TJson& representation : Elements(set, "Representation")) {
                const auto either = [&](const char* key) {
                    const std::string own = CellText(representation, key);
                    return own.empty() ? CellText(set, key) : own;
                };
                const std::string type = either("contentType");
                SComponent component = {CellText(representation, "id"),
                                        {either("codecs"), CellText(representation, "bandwidth"),
                                         type.empty() ? either("mimeType") : type, either("lang")}};
                // The periods of a presentation tend to have the same ones.
                const auto same = [&component](const SComponent& other) {
                    return other.id == component.id && other.cells == component.cells;
                };
                if (std::none_of(components.begin(), components.end(), same)) {
                    m_HoldComponent(components, std::move(component));
                }
            }
        }
    }
}

CPageModel::SPart* CPageModel::m_Part(SSession& session, const std::vector<unsigned>& key)
{
    const auto known = session.parts.find(key);
    if (known == session.parts.end() && (m_sessionParts >= Limit(4 * k_mostParts) || !m_Take(k_around))) {
        ++t_left;
        return nullptr;
    }
    m_sessionParts += known == session.parts.end() ? 1 : 0;
    return &session.parts[key];
}

void CPageModel::Message(const SMessage& message)
{
    const std::size_t file = m_See(message.source);
    const std::string headline = HtmlClipped(Headline(message), k_longLine);
    m_Add(t_changes, message.source,
          "<td>" + HtmlText(headline) +
              m_Changes(message.key, message.status == EStatus::NEW, message.content.Whole(), message.source) +
              "</td>");
    SSession* session = m_Find(t_sessions, {file, message.session, {}});
    std::vector<unsigned> key = {k_messages, message.packetId.value_or(0)};
    key.insert(key.end(), message.kind.begin(), message.kind.end());
    SPart* part = session != nullptr ? m_Part(*session, key) : nullptr;
    if (part == nullptr) {
        return;
    }
    const std::string title = MessageTitle(message.id);
    if (message.content && message.content->json.contains("signature")) {
        const std::string place = message.session + ' ' + std::to_string(message.packetId.value_or(0));
        if (SPart* signature = m_Find(t_certificates, {file, place, title})) {
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
           : message.supported ? "<p>" + HtmlBadge("bad", "did not parse") + "</p>"
                               : std::string("<p class=\"muted\">not supported</p>"));
}

void CPageModel::GuideObject(const SGuideObject& object)
{
    const std::size_t file = m_See(object.source);
    const std::string headline = HtmlClipped(Headline(object), k_longLine);
    m_Add(t_changes, object.source,
          "<td>" + HtmlText(headline) +
              m_Changes(DocumentKey(object), object.status == EStatus::NEW, object.content.Whole(), object.source) +
              "</td>");
    std::string what =
        std::string(GuideObjectName(object.kind)) + ' ' + (object.tsi ? std::to_string(*object.tsi) : "") + ' ';
    what += object.toi ? ToiText(*object.toi) : Cut(object.contentLocation);
    if (SPart* part = m_Find(t_guideObjects, {file, object.session, what})) {
        m_Hold(*part, HtmlText(headline), object.source,
               object.content ? HtmlTree(object.content->json) : std::string("<p>did not parse</p>"));
    }
}

void CPageModel::Guide(const SGuide& guide)
{
    const std::size_t file = m_See(guide.source);
    if (SPart* last = m_Find(t_guides, file)) {
        const std::size_t room = m_allowance.Room() - std::min(m_allowance.Room(), m_bytes - last->bytes);
        const std::size_t most = std::min(Limit(k_mostGuide), room / 2);
        m_Hold(*last, {}, guide.source, HtmlGuide(guide, "g" + std::to_string(file), m_localTime, most));
    }
}

void CPageModel::Delivery(const SDelivery& delivery)
{
    const std::size_t file = m_See(delivery.source);
    SPart* part = m_Find(t_deliveries, file);
    if (part == nullptr) {
        return;
    }
    const SDeliveryRows rows = DeliveryRows(delivery, Limit(k_mostLines));
    std::string html;
    for (const SDeliveryRows::SRow& row : rows.rows) {
        html += row.flow ? "<tr class=\"flow\">" : "<tr>";
        for (std::size_t i = 0; i < row.cells.size(); ++i) {
            const std::string cell = HtmlText(row.cells[i]);
            html += i == 0 ? HtmlHeader("row", cell) : "<td>" + cell + "</td>";
        }
        html += "</tr>";
    }
    m_Hold(*part, {}, delivery.source,
           "<p class=\"muted\">" + HtmlText(DeliveryHeadline(delivery)) + "</p>" +
               HtmlTable("delivery", rows.titles, html) +
               (rows.more != 0 ? "<p class=\"muted\">and " + Counted(rows.more, "row") + " more</p>" : ""));
    if (SPart* rates = m_Find(t_rates, file)) {
        const auto title = [&](unsigned serviceId) { return m_ServiceTitle(file, serviceId); };
        m_Hold(*rates, {}, delivery.source, HtmlRates(delivery, "r" + std::to_string(file), title));
    }
    SPart* arrivals = delivery.arrivals.lines.empty() ? nullptr : m_Find(t_arrivals, file);
    if (arrivals != nullptr) {
        m_Hold(*arrivals, {}, delivery.source, HtmlArrivals(delivery, "a" + std::to_string(file)));
    }
}

/// As the first of the input's service lists has it; markup.
std::string CPageModel::m_ServiceTitle(std::size_t file, unsigned serviceId) const
{
    for (const auto& [key, list] : t_lists) {
        for (const SListed& service : list.services) {
            if (std::get<0>(key) == file && service.id == serviceId) {
                return service.title;
            }
        }
    }
    return "<b>" + std::to_string(serviceId) + "</b>";
}

void CPageModel::Verdicts(const SVerdicts& verdicts)
{
    constexpr const char* k_badges[] = {"good", "warn", "bad", ""};
    constexpr const char* k_words[] = {"plays", "plays, but", "does not play", "cannot be told"};
    const std::size_t file = m_See(verdicts.source);
    SPart* part = m_Find(t_verdicts, file);
    if (part == nullptr) {
        return;
    }
    const auto words = [&](const SJudgement& judgement) {
        const std::size_t kind = static_cast<std::size_t>(judgement.verdict);
        return HtmlBadge(k_badges[kind], k_words[kind]) + ' ' + HtmlText(HtmlClipped(judgement.cause, k_longLine));
    };
    std::string html;
    for (const SVerdict& verdict : verdicts.verdicts) {
        html +=
            "<tr>" + HtmlHeader("row", std::to_string(verdict.serviceId)) + "<td>" + HtmlText(verdict.channel) +
            "</td><td>" + HtmlText(verdict.name) + "</td><td>" + words(verdict.judgement) +
            (verdict.withoutBroadband != verdict.judgement ? "<br>without broadband: " + words(verdict.withoutBroadband)
                                                           : std::string()) +
            "</td></tr>";
    }
    m_Hold(*part, {}, verdicts.source,
           HtmlTable("verdicts", {"id", "channel", "name", "does it play?"}, html) +
               (verdicts.leftOut != 0 ? "<p class=\"muted\">and " + Counted(verdicts.leftOut, "service") + " more</p>"
                                      : ""));
}

void CPageModel::Finding(const SFinding& finding)
{
    constexpr const char* k_badges[] = {"", "warn", "bad"};
    const std::size_t file = m_See(finding.source);
    m_Add(t_findings, finding.source,
          "<td>" + HtmlBadge(k_badges[static_cast<std::size_t>(finding.severity)], RuleName(finding.rule)) +
              "</td><td>" + HtmlText(HtmlClipped(finding.message, k_longLine)) +
              (finding.times > 1 ? " (and " + std::to_string(finding.times - 1) + " more like it)" : "") +
              "<br><small>" + HtmlText(RuleOf(finding.rule).means) + ' ' + HtmlText(RuleOf(finding.rule).remedy) +
              "</small></td>");
    if (finding.rule == ERule::NO_SIGNALLING && finding.serviceId) {
        if (std::string* why = m_Find(t_missing, {file, finding.serviceList, std::to_string(*finding.serviceId)})) {
            m_bytes -= 3 * why->size();
            *why = HtmlClipped(finding.message, k_longLine);
            if (!m_Take(3 * why->size())) {
                why->clear();
            }
        }
    }
}

}  // namespace vyr::inspect
