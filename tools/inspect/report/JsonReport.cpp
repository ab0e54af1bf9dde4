#include "report/JsonReport.h"

#include <algorithm>
#include <utility>

#include "base/Json.h"
#include "base/Limits.h"
#include "base/Names.h"
#include "base/Text.h"
#include "model/Content.h"
#include "model/Guide.h"

namespace vyr::inspect {

namespace {

constexpr int k_schemaVersion = 1;

TJson Object(const char* type)
{
    return {{"schema_version", k_schemaVersion}, {"type", type}};
}

TJson SourceJson(const SSource& source)
{
    TJson json = {{"file", source.file}};
    if (source.packet != 0) {
        json["packet"] = source.packet;
    }
    if (source.time) {
        json["time"] = InstantText(source.time->seconds, source.time->nanoseconds, 6);
    }
    return json;
}

void PutHeader(TJson& json, const SLlsHeader& header)
{
    PutNamed(json, "LLS_table_id", header.tableId, TableName(header.tableId));
    json["LLS_group_id"] = header.groupId;
    json["group_count_minus1"] = header.groupCountMinus1;
    json["LLS_table_version"] = header.version;
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

    void operator()(const char* name, const std::map<EFault, std::uint64_t>& faults) const
    {
        TJson& object = json[name] = TJson::object();
        for (const auto& [code, count] : faults) {
            object[FaultName(code)] = count;
        }
    }
};

void PutToi(TJson& json, const TToi& toi)
{
    if (toi.first == 0) {
        json["TOI"] = toi.second;
    } else {
        json["TOI"] = ToiText(toi);
    }
}

std::string JsonLine(const TJson& json)
{
    return PlainJson(json.dump(-1, ' ', false, TJson::error_handler_t::replace)) + '\n';
}

}  // namespace

TJson ServiceJson(const STable& table, const SSltService& service)
{
    using SService = SParseSLT::SService;
    TJson json = Object("service");
    json["source"] = SourceJson(table.source);
    if (!table.stream.empty()) {
        json["stream"] = table.stream;
    }
    PutHeader(json, table.header);
    json["bsid"] = table.slt->bsid;
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

TJson TableJson(const STable& table)
{
    TJson json = Object("table");
    json["source"] = SourceJson(table.source);
    if (!table.stream.empty()) {
        json["stream"] = table.stream;
    }
    PutHeader(json, table.header);
    if (table.insideMultiTable) {
        json["insideSignedMultiTable"] = true;
    }
    json["status"] = StatusName(table.status);
    json["size"] = table.payload.size;
    json["encoding"] = table.encoding;
    if (table.interval) {
        json["intervalSeconds"] = *table.interval;
    }
    if (table.status == EStatus::REPEATED) {
        return json;
    }
    if (!table.parserExists) {
        json["payload"] = Hex(table.payload);
    } else {
        json["parsed"] = table.slt.has_value() || table.content.has_value();
    }
    if (table.content) {
        json.update(table.content->json);
    }
    if (table.slt) {
        json["bsid"] = table.slt->bsid;
        if (!table.slt->capabilities.empty()) {
            json["sltCapabilities"] = table.slt->capabilities;
        }
        for (const SParseSLT::SSltInetUrl& url : table.slt->inetUrls) {
            json["sltInetUrl"].push_back(UrlJson(url.urlType, url.url));
        }
        json["cmsSignedData"] = table.slt->cmsSignedData;
        json["services"] = table.slt->services.size() + table.slt->leftOut - table.slt->dropped;
        json["servicesDropped"] = table.slt->dropped;
        if (table.slt->leftOut != 0) {
            json["leftOut"] = {{"service", table.slt->leftOut}};
        }
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

CJsonReport::CJsonReport(COutput& output)
    : m_output(output, [](const TLeftOut& leftOut) {
          TJson json = Object("leftOut");
          json["records"] = leftOut;
          return JsonLine(json);
      })
{
}

/// Long lists and texts are cut, the shorter the less room there is.
void CJsonReport::m_Write(const char* type, TJson&& json)
{
    std::size_t most = MostEntries();
    std::string line = JsonLine(json);
    while (most != 0 && line.size() > std::min(m_output.Room(), most)) {
        line = CutJson(json, most) ? JsonLine(json) : line;
        most = line.size() > m_output.Room() ? most / 10 : 0;
    }
    m_output.Write(type, line);
}

void CJsonReport::Table(const STable& table)
{
    if (m_output.Begin("table")) {
        m_Write("table", TableJson(table));
    }
    if (table.slt) {
        for (const SSltService& service : table.slt->services) {
            if (m_output.Begin("service")) {
                m_Write("service", ServiceJson(table, service));
            }
        }
    }
}

void CJsonReport::Signalling(const SSignalling& signalling)
{
    if (!m_output.Begin("signalling")) {
        return;
    }
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
    for (const SSlsDocument& document : signalling.documents) {
        TJson entry = {{"name", DocumentName(document.kind)},
                       {"size", document.size},
                       {"status", DocumentStatusName(document.status)},
                       {"parsed", document.content.has_value()}};
        PutText(entry, "reason", document.reason);
        json["documents"].push_back(std::move(entry));
    }
    for (const SSlsDocument& document : signalling.documents) {
        if (document.content) {
            json[DocumentName(document.kind)] = document.content->json;
        }
    }
    m_Write("signalling", std::move(json));
}

void CJsonReport::Message(const SMessage& message)
{
    if (!m_output.Begin("message")) {
        return;
    }
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
    if (message.content) {
        json.update(message.content->json);
    }
    m_Write("message", std::move(json));
}

void CJsonReport::GuideObject(const SGuideObject& object)
{
    if (!m_output.Begin("guideObject")) {
        return;
    }
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
    if (object.content) {
        json[GuideObjectName(object.kind)] = object.content->json;
    }
    m_Write("guideObject", std::move(json));
}

void CJsonReport::Guide(const SGuide& guide)
{
    if (!m_output.Begin("guide")) {
        return;
    }
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
    m_Write("guide", std::move(json));
}

void CJsonReport::Fault(const SFault& fault)
{
    const char* type = fault.note ? "note" : "fault";
    if (!m_output.Begin(type)) {
        return;
    }
    TJson json = Object(type);
    json["source"] = SourceJson(fault.source);
    json["code"] = FaultName(fault.code);
    json["message"] = fault.message;
    PutNumber(json, "count", fault.times, std::uint64_t{1});
    if (fault.header) {
        PutHeader(json, *fault.header);
    }
    if (fault.serviceId) {
        json["serviceId"] = *fault.serviceId;
    }
    if (!fault.attribute.empty()) {
        json["attribute"] = fault.attribute;
    }
    m_Write(type, std::move(json));
}

void CJsonReport::Summary(const SSummary& summary)
{
    TJson json = Object("summary");
    summary.Each(SPutCount{json});
    PutList(json, "leftOut", m_output.LeftOut());
    m_output.Finish(JsonLine(json));
}

}  // namespace vyr::inspect
