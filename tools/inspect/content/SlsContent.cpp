#include "content/SlsContent.h"

#include <type_traits>

#include "base/Json.h"
#include "base/Limits.h"
#include "base/Names.h"
#include "base/Text.h"
#include "common/RSAT.h"
#include "content/PtrArrays.h"
#include "model/Content.h"
#include "route/SLS/ContentInfo.h"
#include "route/SLS/ContentRating.h"
#include "route/SLS/DeliveryMethod.h"
#include "route/SLS/EFDT.h"
#include "route/SLS/MediaInfo.h"
#include "route/SLS/ROUTEUsbd.h"
#include "route/SLS/RS.h"
#include "route/SLS/STSID.h"
#include "route/SLS/ServiceName.h"
#include "route/SLS/SrcFlow.h"

namespace vyr::inspect {

namespace {

constexpr unsigned k_none = 0xFFFFFFFF;
constexpr unsigned short k_none16 = 0xFFFF;

std::string Given(const char* text)
{
    return text != nullptr ? Printable(text) : std::string();
}

std::string Given(unsigned number)
{
    return number != k_none ? std::to_string(number) : std::string();
}

/// What the broadcast says, in UTC; what is no time as it stands, nothing for none.
std::string GivenText(const SGivenTime* given)
{
    return !given ? std::string() : given->seconds ? EpochText(*given->seconds) : given->text;
}

/// Base patterns of the services, and one JSON object for each.
template <class TServices>
TJson BasePatterns(const TServices& services, std::vector<std::string>& patterns)
{
    TJson json = TJson::array();
    for (const auto* service : services) {
        TJson list = TJson::array();
        for (const std::string& pattern : service->State()->basePatterns) {
            list.push_back(pattern);
            patterns.push_back(Printable(pattern));
        }
        json.push_back({{"BasePattern", std::move(list)}});
    }
    return json;
}

TJson ContextIds(const std::list<std::string>& ids)
{
    TJson json = TJson::array();
    for (const std::string& id : ids) {
        json.push_back(id);
    }
    return json;
}

TJson FileJson(const SFDTFile& file)
{
    TJson json = TJson::object();
    PutText(json, "Content-Location", file.contentLocation);
    PutNumber(json, "TOI", file.toi, ~0ull);
    PutNumber(json, "Transfer-Length", file.transferLength, -1LL);
    PutNumber(json, "Content-Length", file.contentLength, -1LL);
    PutText(json, "Content-Type", file.contentType);
    PutText(json, "Content-Encoding", file.contentEncoding);
    PutList(json, "appContextIdList", ContextIds(file.appContextIdList));
    return json;
}

TJson EfdtJson(const SEFDTInfo& efdt)
{
    TJson json = TJson::object();
    PutNumber(json, "tsi", efdt.tsi, k_none);
    PutText(json, "idRef", std::string(efdt.idRef != nullptr ? efdt.idRef : ""));
    PutNumber(json, "version", efdt.version, k_none);
    PutNumber(json, "maxExpiresDelta", efdt.maxExpiresDelta, k_none);
    PutNumber(json, "maxTransportSize", efdt.maxTransportSize, k_none);
    PutText(json, "fileTemplate", efdt.fileTemplate);
    if (efdt.fdtGlobal != nullptr) {
        const SFDTGlobal& global = *efdt.fdtGlobal;
        TJson instance = TJson::object();
        PutNumber(instance, "Expires", global.expires, -1LL);
        PutText(instance, "Content-Type", global.contentType);
        PutText(instance, "Content-Encoding", global.contentEncoding);
        PutNumber(instance, "efdtVersion", global.efdtVersion, -1);
        PutNumber(instance, "maxExpiresDelta", global.maxExpiresDelta, -1LL);
        PutNumber(instance, "maxTransportSize", global.maxTransportSize, -1LL);
        PutText(instance, "fileTemplate", global.fileTemplate);
        PutList(instance, "appContextIdList", ContextIds(global.appContextIdList));
        instance["File"] = TJson::array();
        ForEach<SFDTFile>(global.files, [&](const SFDTFile& file) { Append(instance, "File", FileJson(file)); });
        json["FDT-Instance"] = std::move(instance);
    }
    return json;
}

struct SFiles {
    std::vector<TRow> rows = {{"  TSI", "TOI", "file", "type", "bytes"}};
    std::size_t count = 0;
    std::size_t all = 0;  ///< and templates
};

/// A table's row, as long as it has no more than a report shows of a list.
void AddRow(std::vector<TRow>& rows, TRow row)
{
    if (rows.size() <= MostEntries()) {
        rows.push_back(std::move(row));
    }
}

/// A table, and how many of its rows are not there.
std::string RowsText(const std::vector<TRow>& rows, std::size_t count)
{
    return TableText(rows) + MoreText("  ", count, rows.size() - 1);
}

/// A row for each file of the EFDT, and one for those that a template names.
void AddFiles(const SEFDTInfo& efdt, const std::string& tsi, SFiles& files)
{
    const auto any = [&](const std::string& name, long long size) {
        ++files.all;
        AddRow(files.rows,
               {"  " + tsi, "any", Printable(name), "", size != -1 ? "up to " + std::to_string(size) : std::string()});
    };
    if (efdt.fileTemplate != nullptr) {
        any(efdt.fileTemplate, efdt.maxTransportSize != k_none ? efdt.maxTransportSize : -1LL);
    }
    if (efdt.fdtGlobal == nullptr) {
        return;
    }
    if (!efdt.fdtGlobal->fileTemplate.empty()) {
        any(efdt.fdtGlobal->fileTemplate, efdt.fdtGlobal->maxTransportSize);
    }
    ForEach<SFDTFile>(efdt.fdtGlobal->files, [&](const SFDTFile& file) {
        const long long size = file.contentLength != -1 ? file.contentLength : file.transferLength;
        ++files.count;
        ++files.all;
        AddRow(files.rows,
               {"  " + tsi, file.toi != ~0ull ? std::to_string(file.toi) : "-", Printable(file.contentLocation),
                Printable(file.contentType), size != -1 ? std::to_string(size) : ""});
    });
}

TJson MediaInfoJson(const CMediaInfo::SMediaInfo& media)
{
    constexpr const char* k_types[] = {nullptr, "audio", "video", "subtitles"};
    TJson json = TJson::object();
    PutValue(json, "startUp", media.givenStartUp);
    PutText(json, "lang", media.lang);
    PutText(json, "contentType", k_types[media.contentType]);
    PutText(json, "repId", media.repId);
    ForEach<CContentRating>(media.contentRatings, [&](const CContentRating& rating) {
        TJson pair = TJson::object();
        PutText(pair, "schemeIdUri", rating.State()->schemeIdUri);
        PutText(pair, "value", rating.State()->value);
        Append(json, "ContentRating", std::move(pair));
    });
    return json;
}

std::string RatingsText(const CMediaInfo::SMediaInfo& media)
{
    std::vector<std::string> ratings;
    ForEach<CContentRating>(media.contentRatings,
                            [&](const CContentRating& rating) { ratings.push_back(Printable(rating.State()->value)); });
    return Joined(ratings);
}

TJson PayloadJson(const CSrcFlow::SPayload& payload)
{
    TJson json = TJson::object();
    PutValue(json, "codePoint", payload.codePoint);
    if (payload.formatId) {
        PutNamed(json, "formatId", *payload.formatId, PayloadFormatName(*payload.formatId));
    }
    PutValue(json, "frag", payload.frag);
    PutValue(json, "order", payload.order);
    PutValue(json, "srcFecPayloadId", payload.srcFecPayloadId);
    return json;
}

/// "128: format 1 file": what packets of a code point carry.
std::string PayloadText(const CSrcFlow::SPayload& payload)
{
    const char* name = payload.formatId ? PayloadFormatName(*payload.formatId) : nullptr;
    return (payload.codePoint ? std::to_string(*payload.codePoint) : "-") +
           (payload.formatId ? ": format " + std::to_string(*payload.formatId) : "") +
           (name != nullptr ? std::string(" ") + name : "");
}

/// The source flow in JSON, and the rest of the row that tells of its LCT session.
TJson SrcFlowJson(const CSrcFlow::SSrcFlow& flow, TRow& row)
{
    constexpr const char* k_types[] = {"", "audio", "video", "subtitles"};
    TJson json = TJson::object();
    PutValue(json, "rt", flow.givenRt);
    PutNumber(json, "minBuffSize", flow.minBuffSize, k_none);
    std::vector<std::string> payloads;
    for (const CSrcFlow::SPayload& payload : flow.payloads) {
        Append(json, "Payload", PayloadJson(payload));
        payloads.push_back(PayloadText(payload));
    }
    row.insert(row.end(), {flow.givenRt.value_or(flow.rt) ? "streaming" : "files", Short(Joined(payloads))});
    if (flow.contentInfo != nullptr) {
        const CContentInfo::SContentInfo& info = *flow.contentInfo->State();
        TJson content = TJson::object();
        PutText(content, "contentId", info.contentId);
        PutText(content, "aeaId", info.aeaId);
        row.push_back(Printable(info.contentId) + (info.aeaId.empty() ? "" : " alert " + Quoted(info.aeaId)));
        if (info.mediaInfo != nullptr) {
            const CMediaInfo::SMediaInfo& media = *info.mediaInfo->State();
            content["MediaInfo"] = MediaInfoJson(media);
            row.insert(row.end(), {k_types[media.contentType], Printable(media.lang), RatingsText(media)});
        }
        json["ContentInfo"] = std::move(content);
    }
    ForEach<CEFDT>(flow.efdts, [&](const CEFDT& efdt) { Append(json, "EFDT", EfdtJson(*efdt.GetEFDTInfo())); });
    return json;
}

TJson LctSessionJson(const CLS::SLS& session, const TRow& route, std::vector<TRow>& sessions, SFiles& files)
{
    TJson json = TJson::object();
    PutNumber(json, "tsi", session.tsi, k_none);
    PutNumber(json, "bw", session.bw, k_none);
    PutText(json, "startTime", GivenText(session.givenStartTime.get()));
    PutText(json, "endTime", GivenText(session.givenEndTime.get()));
    const std::string tsi = session.tsi != k_none ? std::to_string(session.tsi) : "-";
    TRow row = {"  " + tsi, route[0], route[1], Given(session.bw)};
    TJson flows = TJson::array();
    ForEach<CSrcFlow>(session.srcFlows, [&](const CSrcFlow& flow) {
        row.resize(4);  // the last flow counts
        flows.push_back(SrcFlowJson(*flow.State(), row));
        ForEach<CEFDT>(flow.State()->efdts, [&](const CEFDT& efdt) { AddFiles(*efdt.GetEFDTInfo(), tsi, files); });
    });
    if (!flows.empty()) {
        json["SrcFlow"] = std::move(flows);
    }
    AddRow(sessions, std::move(row));
    return json;
}

/// Of a service or an update.
template <class TInfo>
TJson ChannelJson(const TInfo& info)
{
    TJson json = {{"preferred", info.preferred}};
    PutNumber(json, "majorChannelNo", info.majorChannelNo, k_none16);
    PutNumber(json, "minorChannelNo", info.minorChannelNo, k_none16);
    PutText(json, "frequency", info.frequency);
    PutText(json, "broadcastType", info.broadcastType);
    if constexpr (std::is_same_v<TInfo, SRSATUpdateInfo>) {
        PutText(json, "validFrom", info.validFrom);
    } else {
        PutText(json, "validUntil", info.validUntil);
    }
    return json;
}

/// "7.1 on 593 MHz, ATSC3, preferred" of a service or an update.
template <class TInfo>
std::string ChannelText(const TInfo& info)
{
    const auto number = [](unsigned short part) { return part != k_none16 ? std::to_string(part) : "-"; };
    return Joined({number(info.majorChannelNo) + '.' + number(info.minorChannelNo),
                   info.frequency.empty() ? "" : "frequency " + Printable(info.frequency),
                   Printable(info.broadcastType), info.preferred ? "preferred" : ""});
}

}  // namespace

std::string ServiceStatusText(const std::optional<bool>& given, bool receiver)
{
    return !given ? std::string() : *given ? receiver ? ", active" : ", active (to a receiver off)" : ", off";
}

TJson LinkageJson(const CServiceLinkage::SServiceLinkage& linkage)
{
    TJson json = TJson::object();
    PutNumber(json, "bsid", linkage.bsid, k_none16);
    PutNumber<int>(json, "LLSGroupId", linkage.LLSGroupId, 0xFF);
    PutNumber(json, "serviceId", linkage.serviceId, k_none16);
    PutNumber(json, "serviceCategory", linkage.serviceCategory, -1);
    PutNumber(json, "linkageType", linkage.linkageType, -1);
    json["broadbandAccessRequired"] = linkage.broadbandAccessRequired;
    PutText(json, "activationTime", linkage.activationTime);
    PutText(json, "deActivationTime", linkage.deActivationTime);
    PutText(json, "svcCapabilities", linkage.svcCapabilities);
    PutText(json, "linkageData", linkage.linkageData);
    return json;
}

std::string LinkageText(const CServiceLinkage::SServiceLinkage& linkage)
{
    std::string text = linkage.serviceId != k_none16 ? "service " + std::to_string(linkage.serviceId) : "a service";
    text += linkage.bsid != k_none16 ? " of bsid " + std::to_string(linkage.bsid) : "";
    text += linkage.linkageType != -1 ? ", type " + std::to_string(linkage.linkageType) : "";
    text += linkage.activationTime != nullptr ? ", from " + Printable(linkage.activationTime) : "";
    text += linkage.deActivationTime != nullptr ? ", until " + Printable(linkage.deActivationTime) : "";
    return text;
}

SContent UsbdContent(const CROUTEUsbd& usbd)
{
    const CROUTEUsbd::SROUTEUsbd& state = *usbd.State();
    SContent content;
    content.headline = "service " + std::to_string(state.serviceId);
    content.headline += state.globalServiceId != nullptr ? ", " + Quoted(state.globalServiceId) : "";
    content.headline += ServiceStatusText(state.givenServiceStatus, state.serviceStatus);
    TJson& json = content.json;
    PutText(json, "globalServiceID", state.globalServiceId);
    json["serviceId"] = state.serviceId;  // one may have the number that stands for "not given"
    PutValue(json, "serviceStatus", state.givenServiceStatus);
    std::vector<std::string> names;
    ForEach<CServiceName>(state.names, [&](const CServiceName& name) {
        TJson entry = TJson::object();
        PutText(entry, "lang", name.Lang());
        PutText(entry, "name", name.Text());
        Append(json, "Name", std::move(entry));
        names.push_back(Quoted(name.Text() != nullptr ? name.Text() : "") +
                        InLanguage(name.Lang() != nullptr ? name.Lang() : ""));
    });
    std::vector<std::string> languages;
    ForEach<char>(state.languages, [&](const char& language) {
        Append(json, "ServiceLanguage", &language);
        languages.push_back(Given(&language));
    });
    std::vector<std::string> broadcast;
    std::vector<std::string> unicast;
    ForEach<CDeliveryMethod>(state.deliveryMethods, [&](const CDeliveryMethod& method) {
        TJson entry = TJson::object();
        PutList(entry, "BroadcastAppService", BasePatterns(method.State()->broadcastAppSvcs, broadcast));
        PutList(entry, "UnicastAppService", BasePatterns(method.State()->unicastAppSvcs, unicast));
        Append(json, "DeliveryMethod", std::move(entry));
    });
    content.text = Line("names", Joined(names)) + Line("languages", Joined(languages)) +
                   Line("broadcast", Joined(broadcast)) + Line("broadband", Joined(unicast));
    if (state.serviceLinkage != nullptr) {
        const CServiceLinkage::SServiceLinkage& linkage = *state.serviceLinkage->State();
        json["ServiceLinkage"] = LinkageJson(linkage);
        content.text += Line("linked to", LinkageText(linkage));
    }
    return content;
}

SContent StsidContent(const CSTSID& stsid)
{
    SContent content;
    std::vector<TRow> sessions = {
        {"  TSI", "session", "source", "kbit/s", "kind", "payload", "content", "type", "language", "ratings"}};
    SFiles files;
    std::size_t count = 0;
    content.json["RS"] = TJson::array();
    ForEach<CRS>(stsid.State()->routeSessions, [&](const CRS& rs) {
        const CRS::SRS& state = *rs.State();
        const bool addressed = state.dIpAddr != k_none;
        TJson json = TJson::object();
        PutValue(json, "bsid", rs.Given()->bsid);
        if (addressed) {
            json["dIpAddr"] = Ipv4Text(state.dIpAddr);
        }
        PutNumber(json, "dPort", state.dPort, k_none16);
        if (state.sIpAddr != k_none) {
            json["sIpAddr"] = Ipv4Text(state.sIpAddr);
        }
        const std::string port = state.dPort != k_none16 ? ':' + std::to_string(state.dPort) : "";
        const TRow route = {(addressed ? Ipv4Text(state.dIpAddr) : "") + port,
                            state.sIpAddr != k_none ? Ipv4Text(state.sIpAddr) : ""};
        json["LS"] = TJson::array();
        ForEach<CLS>(state.ls, [&](const CLS& ls) {
            ++count;
            Append(json, "LS", LctSessionJson(*ls.State(), route, sessions, files));
        });
        Append(content.json, "RS", std::move(json));
    });
    content.headline = Counted(static_cast<std::uint64_t>(stsid.State()->routeSessions.Size()), "ROUTE session") +
                       ", " + Counted(count, "LCT session") + ", " + Counted(files.count, "file");
    content.text = RowsText(sessions, count) + RowsText(files.rows, files.all);
    return content;
}

SContent EfdtContent(const SEFDTInfo& efdt)
{
    SContent content;
    content.json = EfdtJson(efdt);
    SFiles files;
    AddFiles(efdt, Given(efdt.tsi), files);
    content.headline =
        Joined({efdt.tsi != k_none ? "TSI " + std::to_string(efdt.tsi) : "",
                efdt.version != k_none ? "version " + std::to_string(efdt.version) : "", Counted(files.count, "file")});
    content.text = RowsText(files.rows, files.all);
    return content;
}

SContent RsatContent(const CRSAT& rsat)
{
    SContent content;
    std::string timestamp;
    std::string url;
    rsat.GetTimestamp(timestamp);
    rsat.GetRSATInetURL(url);
    content.headline =
        "of " + Printable(timestamp) + ", " + Counted(static_cast<std::uint64_t>(rsat.NumOfService()), "service");
    content.text = Line("URL", Printable(url));
    content.json["timestamp"] = timestamp;
    PutText(content.json, "RSATInetURL", url);
    content.json["Service"] = TJson::array();
    for (int i = 0; i < rsat.NumOfService(); ++i) {
        SRSATServiceInfo service;
        rsat.GetServiceInfo(i, &service);
        TJson json = ChannelJson(service);
        content.text +=
            Line("service",
                 ChannelText(service) + (service.validUntil.empty() ? "" : ", until " + Printable(service.validUntil)));
        for (const SRSATUpdateInfo& update : service.updates) {
            Append(json, "Update", ChannelJson(update));
            content.text +=
                Line("  update",
                     ChannelText(update) + (update.validFrom.empty() ? "" : ", from " + Printable(update.validFrom)));
        }
        Append(content.json, "Service", std::move(json));
    }
    return content;
}

SContent AppDataContent(const std::string& text)
{
    SContent content;
    const std::string first = text.substr(0, text.find_first_of("\r\n"));
    content.headline = Counted(text.size(), "byte");
    content.text = Line("begins", Short(Printable(first)));
    content.json["size"] = text.size();
    content.json["firstLine"] = first;
    return content;
}

}  // namespace vyr::inspect
