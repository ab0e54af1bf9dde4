#include "report/JsonReport.h"

#include <algorithm>
#include <set>
#include <utility>

#include "base/Json.h"
#include "base/Limits.h"
#include "base/Names.h"
#include "base/Text.h"
#include "model/Content.h"
#include "model/Guide.h"
#include "model/Interim.h"
#include "model/Verdict.h"
#include "report/DeliveryJson.h"

namespace vyr::inspect {

namespace {

constexpr const char* k_services = "service";  // of a service list, among its members

TJson Object(const char* type)
{
    TJson json = TJson::object();
    json["schema_version"] = k_schemaVersion;
    json["type"] = type;
    return json;
}

void PutHeader(TJson& json, const SLlsHeader& header)
{
    PutNamed(json, "LLS_table_id", header.tableId, TableName(header.tableId));
    json["LLS_group_id"] = header.groupId;
    json["group_count_minus1"] = header.groupCountMinus1;
    json["LLS_table_version"] = header.version;
}

/// Where and when a table came.
void PutPlace(TJson& json, const STable& table)
{
    json["source"] = SourceJson(table.source);
    PutText(json, "stream", table.stream);
    PutHeader(json, table.header);
}

TJson UrlJson(int urlType, const std::string& url)
{
    TJson json = TJson::object();
    if (urlType >= 0) {
        PutNamed(json, "urlType", urlType, UrlTypeName(urlType));
    }
    json["url"] = url;
    return json;
}

TJson TextsJson(const std::vector<SGuideText>& texts)
{
    TJson json = TJson::array();
    for (const SGuideText& text : texts) {
        TJson& entry = json.emplace_back(TJson::object());
        PutText(entry, "lang", text.lang);
        entry["text"] = text.text;
    }
    return json;
}

TJson ProgrammeJson(const SProgramme& programme)
{
    TJson json = TJson::object();
    PutText(json, "contentId", programme.contentId);
    if (programme.start) {
        json["start"] = EpochText(static_cast<double>(*programme.start));
    }
    if (programme.end) {
        json["end"] = EpochText(static_cast<double>(*programme.end));
    }
    PutList(json, "Name", TextsJson(programme.titles));
    PutList(json, "Description", TextsJson(programme.descriptions));
    PutList(json, "Genre", programme.genres);
    PutList(json, "ContentAdvisoryRatings", programme.ratings);
    PutList(json, "AudioLanguage", programme.audioLanguages);
    PutList(json, "TextLanguage", programme.textLanguages);
    return json;
}

TJson GuideServiceJson(const SGuideService& service)
{
    TJson json = TJson::object();
    PutText(json, "id", service.fragmentId);
    PutText(json, "globalServiceID", service.globalServiceId);
    PutValue(json, "serviceId", service.serviceId);
    PutValue(json, "majorChannelNo", service.majorChannelNo);
    PutValue(json, "minorChannelNo", service.minorChannelNo);
    PutList(json, "Name", TextsJson(service.names));
    PutList(json, "Description", TextsJson(service.descriptions));
    PutList(json, "Genre", service.genres);
    json["programmes"] = TJson::array();
    for (const SProgramme& programme : service.programmes) {
        json["programmes"].push_back(ProgrammeJson(programme));
    }
    if (service.leftOut != 0) {
        json["leftOut"] = {{"programmes", service.leftOut}};
    }
    return json;
}

/// Writes each count that it is told of.
struct SPutCount {
    TJson& json;

    void operator()(const char* name, std::uint64_t count) const { json[name] = count; }
    void operator()(const char* name, double count) const { json[name] = count; }

    template <class TCounts>
    void operator()(const char* name, const TCounts& counts) const
    {
        TJson& object = json[name] = TJson::object();
        TCounts::Each(counts, SPutCount{object});
    }

    void operator()(const char* name, const std::map<unsigned, STableCounts>& tables) const
    {
        TJson& array = json[name] = TJson::array();
        for (const auto& [tableId, counts] : tables) {
            TJson& table = array.emplace_back(TJson::object());
            PutNamed(table, "LLS_table_id", tableId, TableName(tableId));
            STableCounts::Each(counts, SPutCount{table});
        }
    }

    void operator()(const char* name, const std::vector<SInputTimes>& times) const
    {
        TJson& array = json[name] = TJson::array();
        for (const SInputTimes& input : times) {
            array.push_back({{"file", input.file}, {"first", TimeJson(*input.first)}, {"last", TimeJson(*input.last)}});
        }
    }

    void operator()(const char* name, const std::map<ERule, std::uint64_t>& findings) const
    {
        TJson& object = json[name] = TJson::object();
        for (const auto& [rule, count] : findings) {
            object[RuleName(rule)] = count;
        }
    }
};

/// Whether an id tells which of the services is meant.
bool IdsDiffer(const TJson& services)
{
    std::set<int> ids;
    return std::all_of(services.begin(), services.end(),
                       [&ids](const TJson& service) { return ids.insert(service["serviceId"].get<int>()).second; });
}

}  // namespace

TJson VerdictJson(const SSource& source, const SVerdict& verdict)
{
    const auto put = [](TJson& json, const SJudgement& judgement) {
        json["verdict"] = VerdictName(judgement.verdict);
        PutText(json, "cause", judgement.cause);
        PutText(json, "rule", judgement.rule);
    };
    TJson json = Object("verdict");
    json["source"] = SourceJson(source);
    json["serviceList"] = verdict.serviceList;
    json["service"] = verdict.serviceId;
    PutText(json, "channel", verdict.channel);
    PutText(json, "shortServiceName", verdict.name);
    put(json, verdict.judgement);
    if (verdict.withoutBroadband != verdict.judgement) {
        put(json["withoutBroadband"], verdict.withoutBroadband);
    }
    json["text"] = verdict.judgement.Text();
    return json;
}

void PutChange(TJson& json, const SJudgement& before, const SJudgement& now)
{
    json["before"] = VerdictName(before.verdict);
    PutText(json, "causeBefore", before.cause);
    json["now"] = VerdictName(now.verdict);
    PutText(json, "causeNow", now.cause);
}

TJson FindingJson(const SFinding& finding)
{
    TJson json = Object("finding");
    json["source"] = SourceJson(finding.source);
    json["rule"] = RuleName(finding.rule);
    json["severity"] = SeverityName(finding.severity);
    json["message"] = finding.message;
    PutNumber(json, "count", finding.times, std::uint64_t{1});
    if (finding.header) {
        PutHeader(json, *finding.header);
    }
    if (finding.serviceId) {
        json["service"] = *finding.serviceId;
    }
    PutText(json, "session", finding.session);
    PutText(json, "see", RuleOf(finding.rule).see);
    if (!finding.attribute.empty()) {
        json["attribute"] = finding.attribute;
    }
    return json;
}

TJson ServiceJson(const SSltService& service)
{
    using SService = SParseSLT::SService;
    TJson json = TJson::object();
    json["serviceId"] = service.serviceId;
    json["listed"] = service.notListed.empty();
    PutText(json, "notListedBecause", service.notListed);
    PutValue(json, "globalServiceID", service.globalServiceId);
    const auto given = [&service](SService::EGiven attribute) { return (service.given & attribute) != 0; };
    const auto put = [&](const char* key, int value, SService::EGiven attribute) {
        if (given(attribute)) {
            json[key] = value;
        }
    };
    put("sltSvcSeqNum", service.sltSvcSeqNum, SService::GIVEN_SEQ_NUM);
    PutValue(json, "protected", service.givenProtected);
    put("majorChannelNo", service.majorChannelNo, SService::GIVEN_MAJOR_CHANNEL);
    put("minorChannelNo", service.minorChannelNo, SService::GIVEN_MINOR_CHANNEL);
    if (given(SService::GIVEN_CATEGORY)) {
        PutNamed(json, "serviceCategory", service.serviceCategory, ServiceCategoryName(service.serviceCategory));
    }
    PutValue(json, "shortServiceName", service.shortServiceName);
    PutValue(json, "hidden", service.givenHidden);
    PutValue(json, "hideInGuide", service.hideInGuide);
    PutValue(json, "broadbandAccessRequired", service.givenBroadband);
    PutValue(json, "configuration", service.configuration);
    PutValue(json, "svcCapabilities", service.svcCapabilities);
    if (!service.drmSystemID.empty()) {
        json["drmSystemID"] = service.drmSystemID;
    }
    if (service.simulcastTsid != 0) {
        json["simulcastTSID"] = service.simulcastTsid;
        json["simulcastMajorChannelNo"] = service.simulcastMajorChannelNo;
        json["simulcastMinorChannelNo"] = service.simulcastMinorChannelNo;
    }
    if (service.hasBroadcastSvcSignaling) {
        if (given(SService::GIVEN_SLS_PROTOCOL)) {
            PutNamed(json, "slsProtocol", service.slsProtocol, ProtocolName(service.slsProtocol));
        }
        put("slsMajorProtocolVersion", service.slsMajorProtocolVersion, SService::GIVEN_SLS_MAJOR_VERSION);
        put("slsMinorProtocolVersion", service.slsMinorProtocolVersion, SService::GIVEN_SLS_MINOR_VERSION);
        if (given(SService::GIVEN_SLS_ADDRESS)) {
            json["slsDestinationIpAddress"] = Ipv4Text(service.slsDestinationIpAddress);
        }
        put("slsDestinationUdpPort", service.slsDestinationUdpPort, SService::GIVEN_SLS_PORT);
        if (service.slsSourceIpAddress != 0) {
            json["slsSourceIpAddress"] = Ipv4Text(service.slsSourceIpAddress);
        }
    }
    if (service.svcInetUrl.present) {
        json["svcInetUrl"] = UrlJson(service.svcInetUrl.urlType, service.svcInetUrl.url);
    }
    return json;
}

TJson SltJson(const SSlt& slt)
{
    TJson json = {{"bsid", slt.bsid}};
    PutText(json, "sltCapabilities", slt.capabilities);
    for (const SParseSLT::SSltInetUrl& url : slt.inetUrls) {
        json["sltInetUrl"].push_back(UrlJson(url.urlType, url.url));
    }
    json["cmsSignedData"] = slt.cmsSignedData;
    return json;
}

std::shared_ptr<const TJson> DocumentJson(const STable& table)
{
    if (!table.slt || table.slt->leftOut != 0) {
        return table.slt ? nullptr : table.content.Whole();
    }
    auto json = std::make_shared<TJson>(SltJson(*table.slt));
    TJson& services = (*json)[k_services] = TJson::array();
    for (const SSltService& service : table.slt->services) {
        services.push_back(ServiceJson(service));
    }
    return json;
}

std::string DocumentKey(const STable& table)
{
    return "table " + table.stream + ' ' + std::to_string(table.header.tableId) + ' ' +
           std::to_string(table.header.groupId);
}

std::string DocumentKey(const SGuideObject& object)
{
    const std::string place = !object.contentLocation.empty() ? object.contentLocation
                              : object.toi                    ? ToiText(*object.toi)
                                                              : std::string();
    return std::string("guide ") + GuideObjectName(object.kind) + ' ' + object.session + ' ' +
           (object.tsi && object.contentLocation.empty() ? std::to_string(*object.tsi) + ' ' : "file ") + place;
}

TJson TableHeadJson(const STable& table)
{
    TJson json = Object("table");
    PutPlace(json, table);
    if (table.insideMultiTable) {
        json["insideSignedMultiTable"] = true;
    }
    json["status"] = StatusName(table.status);
    json["size"] = table.payload.size;
    json["encoding"] = table.encoding;
    if (table.interval) {
        json["intervalSeconds"] = *table.interval;
    }
    for (const auto& [stream, group] : table.listsGone) {
        if (stream == table.stream) {
            json["groupsGone"].push_back(group);
        } else {
            json["listsGone"].push_back({{"stream", stream}, {"LLS_group_id", group}});
        }
    }
    if (table.status == EStatus::REPEATED) {
        return json;
    }
    if (!table.parserExists) {
        json["payload"] = Hex(table.payload);
    } else {
        json["parsed"] = table.slt.has_value() || table.content.has_value();
    }
    if (table.slt) {
        json.update(SltJson(*table.slt));
        json["services"] = table.slt->services.size() + table.slt->leftOut - table.slt->dropped;
        json["servicesDropped"] = table.slt->dropped;
        if (table.slt->leftOut != 0) {
            json["leftOut"] = {{"service", table.slt->leftOut}};
        }
    }
    return json;
}

TJson TableJson(const STable& table)
{
    TJson json = TableHeadJson(table);
    if (table.content) {
        json.update(table.content->json);
    }
    return json;
}

TJson EnvelopeJson(const std::vector<SEnvelopeItem>& items)
{
    TJson json = TJson::array();
    for (const SEnvelopeItem& item : items) {
        TJson entry = TJson::object();
        PutValue(entry, "metadataURI", item.metadataURI);
        PutValue(entry, "version", item.version);
        PutValue(entry, "contentType", item.contentType);
        json.push_back(std::move(entry));
    }
    return json;
}

TJson PartsJson(const std::vector<SPackagePart>& parts)
{
    TJson json = TJson::array();
    for (const SPackagePart& part : parts) {
        TJson entry = TJson::object();
        PutText(entry, "Content-Type", part.contentType);
        PutText(entry, "Content-Location", part.contentLocation);
        entry["size"] = part.size;
        PutList(entry, "readAs", part.readAs);
        PutText(entry, "root", part.root);
        json.push_back(std::move(entry));
    }
    return json;
}

CJsonReport::CJsonReport(COutput& output, bool full)
    : m_output(output,
               [](const TLeftOut& leftOut) {
                   TJson json = Object("leftOut");
                   json["records"] = leftOut;
                   return JsonLine(json);
               }),
      m_full(full)
{
}

/// Writes what `make` makes with what changed alone. Where that does not fit, what it makes of the whole: long lists
/// and texts are cut, the shorter the less room there is. False: the reader has not got all of it.
template <class TMake>
bool CJsonReport::m_Write(const char* type, TMake make)
{
    if (!m_output.Begin(type)) {
        return false;
    }
    TJson json = make(true);
    std::string line = JsonLine(json);
    std::size_t most = MostEntries();
    if (line.size() <= m_output.Room() && (line.size() / 2 <= most || !CutJson(json, most))) {
        m_output.Write(type, line);
        return true;
    }
    json = make(false);
    line = JsonLine(json);
    while (most != 0 && line.size() > std::min(m_output.Room(), most)) {
        line = CutJson(json, most) ? JsonLine(json) : line;
        most = line.size() > m_output.Room() ? most / 10 : 0;
    }
    m_output.Write(type, line);
    return false;
}

/// Puts what changed since the document was shown last, if that is known and no longer than the document. False: the
/// document is to be shown as well.
bool CJsonReport::m_PutChanges(TJson& json, const std::string& key, const COptionalContent& now) const
{
    const CLastShown::SShown* last = now->whole ? m_last.Find(key) : nullptr;
    TJson patch = last != nullptr ? ChangesPatch(*last->json, now->json) : TJson();
    if (patch.is_null()) {
        return false;
    }
    PutNumber(json, "since", last->packet, std::uint64_t{0});
    json["changes"] = std::move(patch);
    return !m_full;
}

void CJsonReport::m_Remember(const std::string& key, bool told, std::shared_ptr<const TJson> json,
                             const SSource& source)
{
    m_last.Keep(key, told ? std::move(json) : nullptr, source);
}

void CJsonReport::Table(const STable& table)
{
    if (table.slt) {
        m_Slt(table);
        return;
    }
    const std::string key = DocumentKey(table);
    const bool told = m_Write("table", [&](bool changes) {
        TJson json = TableHeadJson(table);
        if (table.content && !(changes && table.status != EStatus::NEW && m_PutChanges(json, key, table.content))) {
            json.update(table.content->json);
        }
        return json;
    });
    if (table.status != EStatus::REPEATED) {
        m_Remember(key, told, table.content.Whole(), table.source);
    }
}

/// A service list: of one that changed, the services that are new or changed, and which are gone.
void CJsonReport::m_Slt(const STable& table)
{
    const std::string key = DocumentKey(table);
    const std::shared_ptr<const TJson> now = DocumentJson(table);
    const CLastShown::SShown* last = table.status != EStatus::NEW && now ? m_last.Find(key) : nullptr;
    if (last != nullptr && !(IdsDiffer((*last->json)[k_services]) && IdsDiffer((*now)[k_services]))) {
        last = nullptr;
    }
    const auto own = [](TJson list) {
        list.erase(k_services);
        return list;
    };
    const TJson ownChanges = last != nullptr ? BoundedPatch(own(*last->json), own(*now)) : TJson();
    last = ownChanges.is_null() ? nullptr : last;
    const TJson none = TJson::array();
    const TJson& before = last != nullptr ? (*last->json)[k_services] : none;
    TJson removed = TJson::array();
    std::vector<const TJson*> predecessors(table.slt->services.size());
    std::size_t unchanged = 0;
    if (last != nullptr) {
        const TJson& after = (*now)[k_services];
        for (const SAligned& service : AlignedElements(before, after)) {
            if (service.after == SAligned::k_none) {
                removed.push_back(before[service.before]["serviceId"]);
            } else if (service.before != SAligned::k_none) {
                predecessors[service.after] = &before[service.before];
                unchanged += before[service.before] == after[service.after] ? 1 : 0;
            }
        }
    }
    bool told = m_Write("table", [&](bool changes) {
        TJson json = TableHeadJson(table);
        if (!changes) {
            last = nullptr;  // the whole list follows
            predecessors.assign(predecessors.size(), nullptr);
        }
        if (last != nullptr) {
            PutNumber(json, "since", last->packet, std::uint64_t{0});
            json["servicesUnchanged"] = unchanged;
            json["servicesRemoved"] = removed;
            json["changes"] = ownChanges;
        }
        return json;
    });
    for (std::size_t i = 0; i < table.slt->services.size(); ++i) {
        const TJson service = ServiceJson(table.slt->services[i]);
        const bool same = predecessors[i] != nullptr && *predecessors[i] == service;
        if (same && !m_full) {
            continue;
        }
        told = m_Write("service",
                       [&](bool changes) {
                           TJson json = Object("service");
                           PutPlace(json, table);
                           if (table.status == EStatus::NEW || last != nullptr) {
                               json["status"] = same ? "unchanged" : predecessors[i] != nullptr ? "changed" : "new";
                           }
                           json["bsid"] = table.slt->bsid;
                           json.update(service);
                           const bool compared = changes && predecessors[i] != nullptr && !same;
                           if (TJson patch = compared ? BoundedPatch(*predecessors[i], service) : TJson();
                               !patch.is_null()) {
                               json["changes"] = std::move(patch);
                           }
                           return json;
                       }) &&
               told;
    }
    m_Remember(key, told, now, table.source);
}

void CJsonReport::Signalling(const SSignalling& signalling)
{
    const bool told = m_Write("signalling", [&](bool changes) { return m_Json(signalling, changes); });
    for (const SSlsDocument& document : signalling.documents) {
        if (document.status != EDocumentStatus::UNCHANGED || m_last.Find(document.key) == nullptr) {
            m_Remember(document.key, told, document.content.Whole(), signalling.source);
        }
    }
}

TJson CJsonReport::m_Json(const SSignalling& signalling, bool changes) const
{
    TJson json = Object("signalling");
    json["source"] = SourceJson(signalling.source);
    PutText(json, "session", signalling.session);
    PutList(json, "serviceIds", signalling.services);
    if (signalling.toi) {
        json["TSI"] = 0;
        PutToi(json, *signalling.toi);
    }
    json["status"] = StatusName(signalling.status);
    json["size"] = signalling.size;
    json["gzip"] = signalling.gzip;
    PutText(json, "contentType", signalling.contentType);
    PutList(json, "metadataEnvelope", EnvelopeJson(signalling.items));
    if (!signalling.parts.empty()) {
        json["parts"] = PartsJson(signalling.parts);
        PutNumber(json, "partsMore", signalling.moreParts, std::uint64_t{0});
        json["partsEnded"] = signalling.partsEnded;
    }
    if (signalling.signature) {
        json["signature"] = signalling.signature->json;
    }
    std::vector<const SSlsDocument*> whole;
    for (const SSlsDocument& document : signalling.documents) {
        TJson entry = TJson::object();
        entry["name"] = DocumentName(document.kind);
        entry["size"] = document.size;
        entry["status"] = DocumentStatusName(document.status);
        entry["parsed"] = document.parsed;
        PutText(entry, "reason", document.reason);
        const CLastShown::SShown* last = m_last.Find(document.key);
        if (document.status == EDocumentStatus::UNCHANGED && last != nullptr && !m_full) {
            PutNumber(entry, "since", last->packet, std::uint64_t{0});
        } else if (document.content && !(changes && document.status == EDocumentStatus::CHANGED &&
                                         m_PutChanges(entry, document.key, document.content))) {
            whole.push_back(&document);
        }
        json["documents"].push_back(std::move(entry));
    }
    for (const SSlsDocument* document : whole) {
        json[DocumentName(document->kind)] = document->content->json;
    }
    return json;
}

void CJsonReport::Message(const SMessage& message)
{
    const bool told = m_Write("message", [&](bool changes) {
        TJson json = Object("message");
        json["source"] = SourceJson(message.source);
        PutText(json, "session", message.session);
        PutList(json, "serviceIds", message.services);
        PutValue(json, "packet_id", message.packetId);
        PutNamed(json, "message_id", message.id, MessageName(message.id));
        json["version"] = message.version;
        json["status"] = StatusName(message.status);
        json["size"] = message.payload.size;
        if (message.supported) {
            json["parsed"] = message.content.has_value();
        } else {
            json["payload"] = Hex(message.payload);
        }
        if (message.content &&
            !(changes && message.status != EStatus::NEW && m_PutChanges(json, message.key, message.content))) {
            json.update(message.content->json);
        }
        return json;
    });
    m_Remember(message.key, told, message.content.Whole(), message.source);
}

void CJsonReport::GuideObject(const SGuideObject& object)
{
    const std::string key = DocumentKey(object);
    const bool told = m_Write("guideObject", [&](bool changes) {
        TJson json = Object("guideObject");
        json["source"] = SourceJson(object.source);
        PutText(json, "session", object.session);
        PutValue(json, "TSI", object.tsi);
        if (object.toi) {
            PutToi(json, *object.toi);
        }
        PutText(json, "Content-Location", object.contentLocation);
        json["name"] = GuideObjectName(object.kind);
        json["status"] = StatusName(object.status);
        json["size"] = object.size;
        json["gzip"] = object.gzip;
        json["parsed"] = object.content.has_value();
        if (object.content && !(changes && object.status != EStatus::NEW && m_PutChanges(json, key, object.content))) {
            json[GuideObjectName(object.kind)] = object.content->json;
        }
        return json;
    });
    m_Remember(key, told, object.content.Whole(), object.source);
}

void CJsonReport::Guide(const SGuide& guide)
{
    m_Write("guide", [&](bool) {
        TJson json = Object("guide");
        json["source"] = SourceJson(guide.source);
        json["fragments"] = guide.fragments;
        json["unscheduledContents"] = guide.unscheduledContents;
        json["missingContents"] = guide.missingContents;
        json["missingServices"] = guide.missingServices;
        json["services"] = TJson::array();
        for (const SGuideService& service : guide.services) {
            json["services"].push_back(GuideServiceJson(service));
        }
        if (guide.leftOut != 0) {
            json["leftOut"] = {{"services", guide.leftOut}};
        }
        return json;
    });
}

void CJsonReport::Delivery(const SDelivery& delivery)
{
    const auto write = [this](const TJson& fields) {
        m_Write("delivery", [&](bool) {
            TJson json = Object("delivery");
            json.update(fields);
            return json;
        });
    };
    write(DeliveryJson(delivery));
    for (const SSessionDelivery& session : delivery.sessions) {
        write(DeliveryJson(delivery, session));
    }
}

void CJsonReport::BeginInterim()
{
    m_interim = std::make_shared<TJson>(TJson::array());
}

void CJsonReport::Verdicts(const SVerdicts& verdicts)
{
    for (const SVerdict& verdict : verdicts.verdicts) {
        if (m_interim) {
            m_interim->push_back(VerdictJson(verdicts.source, verdict));
        } else {
            m_Write("verdict", [&](bool) { return VerdictJson(verdicts.source, verdict); });
        }
    }
}

void CJsonReport::Finding(const SFinding& finding)
{
    m_Write("finding", [&](bool) { return FindingJson(finding); });
}

void CJsonReport::Interim(const SInterim& interim, const SSummary& summary)
{
    constexpr std::size_t k_most = 100;  // findings of a list
    TJson json = Object("interim");
    json["source"] = SourceJson(interim.source);
    json["number"] = interim.number;
    json["seconds"] = interim.seconds;
    json["holding"] = interim.holding;
    const auto put = [&](const char* name, const char* leftOut, const std::vector<SFinding>& findings) {
        TJson& list = json[name] = TJson::array();
        for (const SFinding& finding : findings) {
            if (list.size() < Limit(k_most)) {
                list.push_back(FindingJson(finding));
            }
        }
        PutNumber(json, leftOut, findings.size() - list.size(), std::size_t{0});
    };
    put("begun", "begunLeftOut", interim.begun);
    put("over", "overLeftOut", interim.over);
    for (const SVerdictChange& change : interim.verdicts) {
        TJson entry = {{"serviceList", change.now.serviceList}, {"service", change.now.serviceId}};
        PutChange(entry, change.before, change.now.judgement);
        Append(json, "verdictsChanged", std::move(entry));
    }
    json["verdicts"] = std::move(*m_interim);
    m_interim.reset();
    summary.Each(SPutCount{json["summary"] = TJson::object()});
    m_output.Always(JsonLine(json));
}

void CJsonReport::Summary(const SSummary& summary)
{
    TJson json = Object("summary");
    PutList(json, "chosen", summary.chosen);
    summary.Each(SPutCount{json});
    PutList(json, "leftOut", m_output.LeftOut());
    m_output.Always(JsonLine(json));
}

}  // namespace vyr::inspect
