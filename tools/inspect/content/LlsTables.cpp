#include "content/LlsTables.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <list>
#include <string_view>
#include <type_traits>

#include "base/Gunzip.h"
#include "base/Json.h"
#include "base/Limits.h"
#include "base/Names.h"
#include "base/Text.h"
#include "common/XML.h"
#include "content/Certificates.h"
#include "content/LibraryPort.h"
#include "lls/LLSSMTParser.h"
#include "lls/ParseAEAT.h"
#include "lls/ParseCDT.h"
#include "lls/ParseOnscreenNoti.h"
#include "lls/ParseRRT.h"
#include "lls/ParseSystemTime.h"
#include "model/Content.h"

namespace vyr::inspect {

namespace {

constexpr std::size_t k_header = 4;
constexpr unsigned k_sltId = 1;
constexpr unsigned k_multiTableId = 0xFE;

/// "UTC-5", "UTC+5:30", "UTC+5:30:01".
std::string ZoneText(int seconds)
{
    const long long size = std::llabs(seconds);
    const char* format = size % 60 != 0     ? "UTC%c%lld:%02lld:%02lld"
                         : size % 3600 != 0 ? "UTC%c%lld:%02lld"
                                            : "UTC%c%lld";
    char text[80];
    std::snprintf(text, sizeof text, format, seconds < 0 ? '-' : '+', size / 3600, size / 60 % 60, size % 60);
    return text;
}

/// Gives the table to a fresh parser; false, with the reason, when it does not parse.
template <class TTable>
bool Feed(TTable& parser, SView bytes, std::string& reason)
{
    IParse::SItem item = {bytes.data, static_cast<unsigned>(bytes.size), static_cast<unsigned>(bytes.size) * 8, 0,
                          true};
    parser.Parse(&item);
    reason = StepFailed() ? Reason() : std::string();
    return !StepFailed();
}

/// "local time UTC-5"; where no zone has such an offset, or a receiver reads another one than the attribute says, its
/// text and what a receiver makes of it.
std::string LocalTimeText(const SGivenTime& given, int seconds)
{
    constexpr int k_farthest = 16 * 3600;
    const bool known = seconds >= -k_farthest && seconds <= k_farthest;
    if (known && given.seconds == seconds) {
        return "local time " + ZoneText(seconds);
    }
    return "local time " + Quoted(given.text) + " (to a receiver " + ZoneText(seconds) +
           (known ? ")" : ", which no zone has)");
}

SContent ReadSystemTime(const CParseSystemTime& parser)
{
    const CParseSystemTime::SGiven& given = *parser.Given();
    SContent content;
    std::vector<std::string> parts;
    PutValue(content.json, "currentUtcOffset", given.currentUtcOffset);
    if (given.currentUtcOffset) {
        parts.push_back("TAI-UTC " + std::to_string(*given.currentUtcOffset) + " s");
    }
    PutValue(content.json, "ptpPrepend", given.ptpPrepend);
    PutValue(content.json, "leap59", given.leap59);
    PutValue(content.json, "leap61", given.leap61);
    if (given.utcLocalOffset) {
        const int seconds = parser.UtcLocalOffset();
        content.json["utcLocalOffset"] = given.utcLocalOffset->text;
        content.json["utcLocalOffsetSeconds"] = seconds;
        content.json["utcLocalOffsetHours"] = seconds / 3600.0;
        parts.push_back(LocalTimeText(*given.utcLocalOffset, seconds));
    }
    PutValue(content.json, "dsStatus", given.dsStatus);
    PutValue(content.json, "dsDayOfMonth", given.dsDayOfMonth);
    PutValue(content.json, "dsHour", given.dsHour);
    parts.emplace_back(given.dsStatus.value_or(false) ? "daylight saving" : "");
    parts.emplace_back(given.leap59.value_or(false) || given.leap61.value_or(false) ? "leap second ahead" : "");
    if (given.dsDayOfMonth.value_or(0) != 0) {
        parts.push_back("daylight saving changes on day " + std::to_string(*given.dsDayOfMonth) +
                        (given.dsHour ? " at hour " + std::to_string(*given.dsHour) : ""));
    }
    const std::string text = Joined(parts);
    content.headline = text.empty() ? "no times" : text;
    return content;
}

/// The first entries of a list of the table: `read` is called with the index of each, and the others are counted.
template <class TRead>
void ReadEach(SContent& content, const char* list, std::size_t count, TRead read)
{
    content.json[list] = TJson::array();
    const std::size_t most = std::min(count, MostEntries());
    for (std::size_t i = 0; i < most; ++i) {
        read(static_cast<int>(i));
    }
    LeaveOut(content.json, list, count - most);
    content.text += MoreText("  ", count, most);
}

/// What a flag says; where a receiver reads it as the other, that too. "-": it is not given, or is no boolean.
std::string FlagText(const std::optional<bool>& given, bool read, const char* on, const char* off)
{
    const std::string text = !given ? "-" : *given ? on : off;
    return text + (given && *given != read ? std::string(" (to a receiver ") + (read ? on : off) + ')' : "");
}

TJson TextJson(const SParseRRT::STextType& text)
{
    return {{"lang", text.lang}, {"text", text.text}};
}

SContent ReadRrt(const CParseRRT& parser)
{
    SContent content;
    content.headline = Counted(parser.numOfRatingRegionTable(), "region");
    ReadEach(content, "RatingRegionTable", parser.numOfRatingRegionTable(), [&](int r) {
        const SParseRRT::SRegion& region = *parser.GetRegion(static_cast<unsigned>(r));
        content.text +=
            "  region " + std::to_string(region.regionIdentifier) + ": " + Printable(region.text.text) + '\n';
        TJson json = {{"regionIdentifier", region.regionIdentifier},
                      {"RegionIdText", TextJson(region.text)},
                      {"Dimension", TJson::array()}};
        std::vector<TRow> rows = {{"  dimension", "levels", "graduated", "value", "abbreviation", "meaning"}};
        for (unsigned d = 0; d < region.dimensions.size(); ++d) {
            const SParseRRT::SDimension& dimension = region.dimensions[d];
            const std::optional<bool>& graduated = parser.Given(static_cast<unsigned>(r), d)->dimensionGraduated;
            TRow row = {"  " + Printable(dimension.title.text), std::to_string(dimension.dimensionLevels),
                        FlagText(graduated, dimension.dimensionGraduated, "yes", "no")};
            TJson ratings = TJson::array();
            for (const SParseRRT::SRating& rating : dimension.ratings) {
                row.insert(row.end(), {std::to_string(rating.ratingValue), Printable(rating.abbreviation.text),
                                       Printable(rating.text.text)});
                rows.push_back(row);
                row = {"", "", ""};
                ratings.push_back({{"ratingValue", rating.ratingValue},
                                   {"RatingValueAbbrev", TextJson(rating.abbreviation)},
                                   {"RatingValueString", TextJson(rating.text)}});
            }
            if (dimension.ratings.empty()) {
                rows.push_back(row);
            }
            TJson entry = {{"DimensionTitle", TextJson(dimension.title)},
                           {"dimensionLevels", dimension.dimensionLevels}};
            PutValue(entry, "dimensionGraduated", graduated);
            entry["Rating"] = std::move(ratings);
            Append(json, "Dimension", std::move(entry));
        }
        if (rows.size() > 1) {
            content.text += Aligned(rows);
        }
        Append(content.json, "RatingRegionTable", std::move(json));
    });
    return content;
}

TJson TextsJson(const std::vector<SParseAEAT::SText>& texts)
{
    TJson json = TJson::array();
    for (const SParseAEAT::SText& text : texts) {
        json.push_back({{"lang", text.lang}, {"text", text.text}});
    }
    return json;
}

void ReadAlert(const SParseAEAT::SAEAInfo& alert, const CParseAEAT::SGiven& given, SContent& content)
{
    std::string headline;
    for (const SParseAEAT::SText& desc : alert.eventDescs) {
        headline += (headline.empty() ? "" : " / ") + Printable(desc.text) + InLanguage(desc.lang);
    }
    const char* type = AlertTypeName(alert.aeaType);
    const char* audience = AudienceName(alert.audience);
    std::string& text = content.text;
    text += "  " + (headline.empty() ? "alert " + Quoted(alert.aeaId) : headline) + '\n';
    text += Line("alert", Quoted(alert.aeaId) + (type ? std::string(", ") + type : "") +
                              (alert.retAEAId.empty() ? "" : " of " + Quoted(alert.retAEAId)) + ", priority " +
                              std::to_string(alert.priority) +
                              (given.wakeup.value_or(false)
                                   ? ", " + FlagText(given.wakeup, alert.wakeup, "wakes receivers", "off")
                                   : ""));
    text += Line("issuer", Printable(alert.issuer));
    text += Line("audience", audience ? audience : "");
    if (!alert.effective.empty() || !alert.expires.empty()) {
        text += Line("time", "from " + Printable(alert.effective.empty() ? "-" : alert.effective) + " until " +
                                 Printable(alert.expires.empty() ? "-" : alert.expires));
    }
    if (!alert.eventCode.empty()) {
        text += Line("event", Printable(alert.eventCode) +
                                  (alert.eventCodeType.empty() ? "" : " (" + Printable(alert.eventCodeType) + ')'));
    }
    TJson json = TJson::object();
    PutText(json, "aeaId", alert.aeaId);
    PutText(json, "issuer", alert.issuer);
    json["audience"] = alert.audience;
    json["aeaType"] = alert.aeaType;
    PutText(json, "retAEAId", alert.retAEAId);
    json["priority"] = alert.priority;
    PutValue(json, "wakeup", given.wakeup);
    PutText(json, "effective", alert.effective);
    PutText(json, "expires", alert.expires);
    PutText(json, "eventCode", alert.eventCode);
    PutText(json, "eventCodeType", alert.eventCodeType);
    json["EventDesc"] = TextsJson(alert.eventDescs);
    json["AEAText"] = TextsJson(alert.texts);
    json["Location"] = TJson::array();
    json["Media"] = TJson::array();
    json["audienceName"] = audience ? audience : "unknown";
    json["aeaTypeName"] = type ? type : "unknown";
    for (const SParseAEAT::SLocation& location : alert.locations) {
        const char* kind = LocationTypeName(location.type);
        text += Line("place", Printable(location.location) + (kind ? std::string(" (") + kind + ')' : ""));
        TJson place = {{"location", location.location}, {"type", location.type}};
        PutText(place, "typeName", kind);
        Append(json, "Location", std::move(place));
    }
    for (const SParseAEAT::SText& aeaText : alert.texts) {
        text += Line("text", Printable(aeaText.text) + InLanguage(aeaText.lang));
    }
    for (const SParseAEAT::SMedia& media : alert.media) {
        text += Line("media", Joined({Printable(media.mediaDesc), Printable(media.contentType),
                                      media.contentLength != 0 ? Counted(media.contentLength, "byte") : "",
                                      Printable(media.url)}) +
                                  InLanguage(media.lang));
        TJson entry = TJson::object();
        PutText(entry, "lang", media.lang);
        PutText(entry, "mediaType", media.mediaDesc);
        PutText(entry, "url", media.url);
        PutText(entry, "alternateUrl", media.alternateUrl);
        PutText(entry, "contentType", media.contentType);
        PutNumber(entry, "contentLength", media.contentLength, 0u);
        PutText(entry, "mediaAssoc", media.mediaAssoc);
        Append(json, "Media", std::move(entry));
    }
    if (alert.liveMedia) {
        std::string names;
        // The library reads an attribute; names that are the elements' texts are not there.
        std::vector<SParseAEAT::SText> liveNames;
        std::copy_if(alert.liveMedia->serviceNames.begin(), alert.liveMedia->serviceNames.end(),
                     std::back_inserter(liveNames), [](const SParseAEAT::SText& name) { return !name.text.empty(); });
        for (const SParseAEAT::SText& name : liveNames) {
            names += (names.empty() ? ": " : ", ") + Quoted(name.text) + InLanguage(name.lang);
        }
        text += Line("live", "service " + std::to_string(alert.liveMedia->serviceId) + " of bsid " +
                                 std::to_string(alert.liveMedia->bsid) + names);
        json["LiveMedia"] = {{"bsid", alert.liveMedia->bsid},
                             {"serviceId", alert.liveMedia->serviceId},
                             {"ServiceName", TextsJson(liveNames)}};
    }
    Append(content.json, "AEA", std::move(json));
}

SContent ReadAeat(const CParseAEAT& parser)
{
    SContent content;
    content.headline = Counted(static_cast<std::uint64_t>(parser.AEACount()), "alert");
    ReadEach(content, "AEA", static_cast<std::size_t>(parser.AEACount()),
             [&](int i) { ReadAlert(*parser.GetAEA(i), *parser.Given(i), content); });
    return content;
}

SContent ReadOnscreen(const CParseOnscreenNoti& parser)
{
    SContent content;
    content.headline = Counted(parser.KSCCount(), "entry", "entries");
    ReadEach(content, "KeepScreenClear", parser.KSCCount(), [&](int e) {
        const CParseOnscreenNoti::SKeepScreenClear& entry = *parser.GetKSC(static_cast<unsigned>(e));
        const CParseOnscreenNoti::SGiven& given = *parser.Given(static_cast<unsigned>(e));
        constexpr long long k_lastId = 65535;
        std::string services = given.serviceId ? "service " + std::to_string(*given.serviceId) : "all services";
        if (const long long range = given.serviceIdRange.value_or(0);
            given.serviceId && *given.serviceId <= k_lastId && range > 0 && range <= k_lastId) {
            services += " to " + std::to_string(*given.serviceId + range);
        }
        content.text +=
            "  " + (given.kscFlag ? FlagText(given.kscFlag, entry.kscFlag, "keep clear", "release") : "entry") + ": " +
            Joined({given.bsid ? "bsid " + std::to_string(*given.bsid) : "", services,
                    entry.notificationDuration.empty() ? "" : "for " + Printable(entry.notificationDuration),
                    given.version ? "version " + std::to_string(*given.version) : ""}) +
            '\n';
        TJson json = TJson::object();
        PutValue(json, "bsid", given.bsid);
        PutValue(json, "serviceId", given.serviceId);
        PutValue(json, "serviceIdRange", given.serviceIdRange);
        PutText(json, "notificationDuration", entry.notificationDuration);
        PutValue(json, "kscFlag", given.kscFlag);
        PutValue(json, "version", given.version);
        Append(content.json, "KeepScreenClear", std::move(json));
    });
    return content;
}

/// What the broadcast says, in UTC; what is no time, as it stands.
std::string TimeText(const SGivenTime& given)
{
    return given.seconds ? EpochText(*given.seconds) : given.text;
}

/// The time of a certificate, if the table gives it.
std::string CertificateTime(const char* label, const std::optional<SGivenTime>& given)
{
    return !given           ? std::string()
           : given->seconds ? label + TimeText(*given)
                            : label + Quoted(given->text) + " (no time)";
}

SView Bytes(std::string_view text)
{
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

/// The first element of the name as it stands, with its tags; nothing: it is not found.
SView ElementText(std::string_view document, const std::string& name)
{
    const std::size_t found = document.find(name);
    const std::size_t begin = found != std::string_view::npos ? document.rfind('<', found) : found;
    if (begin == std::string_view::npos) {
        return {};
    }
    const std::string end = "</" + std::string(document.substr(begin + 1, found + name.size() - begin - 1)) + '>';
    const std::size_t last = document.find(end, found);
    return last != std::string_view::npos ? Bytes(document.substr(begin, last + end.size() - begin)) : SView{};
}

SContent ReadCdt(const CParseCDT& parser, SView bytes, STableOutcome& outcome)
{
    constexpr std::size_t k_longestDocument = 8388608;
    std::vector<unsigned char> inflated;
    SView payload = bytes.From(k_header);
    if (IsGzip(payload) && Gunzip(payload, k_longestDocument, inflated)) {
        payload = {inflated.data(), inflated.size()};
    }
    const std::string_view document(reinterpret_cast<const char*>(payload.data), payload.size);

    std::list<std::string> certificates;
    std::list<std::string> responses;
    std::string current;
    std::string next;
    std::string cms;
    std::string toBeSigned;
    long long times[2] = {};  // one second late, and of a zone: the given ones are shown
    int refresh = 0;
    parser.GetCertificates(certificates);
    parser.GetOCSPResponse(responses);
    parser.GetCurrentCert(current);
    parser.GetCertReplacement(next, times[0], times[1]);
    parser.GetOCSPRefresh(refresh);
    parser.GetCMSSignedData(cms);
    parser.GetToBeSignedData(toBeSigned);
    const CParseCDT::SGiven& given = *parser.Given();

    SContent content;
    content.headline = Counted(certificates.size(), "certificate") + ", " + Counted(responses.size(), "OCSP response");
    content.json["Certificates"] = TJson::array();
    for (const std::string& base64 : certificates) {
        SCertificate certificate = ReadCertificate(base64);
        if (!certificate.error.empty()) {
            outcome.faults.emplace_back(ERule::BAD_CERTIFICATE, "a certificate of the table is " + certificate.error);
            content.text += "  certificate: " + certificate.error + '\n';
            Append(content.json, "Certificates", TJson::object({{"error", certificate.error}}));
            continue;
        }
        constexpr std::size_t k_mostCertificates = 32;
        if (certificate.facts && outcome.certificates.size() < k_mostCertificates) {
            outcome.certificates.push_back(certificate.facts);
        }
        outcome.certificateBytes.push_back(std::move(certificate.der));
        content.text += "  certificate\n" + Line("subject", Printable(certificate.subject)) +
                        Line("issuer", Printable(certificate.issuer)) +
                        Line("valid", certificate.notBefore + " to " + certificate.notAfter);
        Append(content.json, "Certificates",
               {{"subject", certificate.subject},
                {"issuer", certificate.issuer},
                {"notBefore", certificate.notBefore},
                {"notAfter", certificate.notAfter}});
    }
    content.text += current.empty() ? "" : "  current certificate: " + Printable(current) + '\n';
    if (!next.empty() || given.nextCertFrom || given.currentCertUntil) {
        content.text += "  next certificate: " +
                        Joined({Printable(next), CertificateTime("from ", given.nextCertFrom),
                                CertificateTime("the current one until ", given.currentCertUntil)}) +
                        '\n';
        TJson& json = content.json["CertReplacement"] = TJson::object();
        PutText(json, "NextCert", next);
        PutText(json, "NextCertFrom", given.nextCertFrom ? TimeText(*given.nextCertFrom) : "");
        PutText(json, "CurrentCertUntil", given.currentCertUntil ? TimeText(*given.currentCertUntil) : "");
    }
    PutText(content.json, "CurrentCert", current);
    if (given.ocspRefresh) {
        const std::string seconds = std::to_string(refresh) + " s";
        content.text += "  OCSP responses are renewed every " +
                        (given.ocspRefresh->seconds == refresh
                             ? seconds
                             : Quoted(given.ocspRefresh->text) + " (to a receiver " + seconds + ')') +
                        '\n';
        content.json["OCSPRefresh"] = given.ocspRefresh->text;
        content.json["OCSPRefreshSeconds"] = refresh;
    }
    content.json["OCSPResponses"] = responses.size();
    content.json["ToBeSignedDataSize"] = toBeSigned.size();
    if (cms.empty()) {
        outcome.faults.emplace_back(ERule::BAD_SIGNATURE, "the table has no CMSSignedData");
    } else {
        const SSignature signature = ReadSignature(cms);
        content.text +=
            "  signature over " + Counted(toBeSigned.size(), "byte") + ": " + SignatureText(signature) + '\n';
        content.json["CMSSignedData"] = SignatureJson(signature);
        // The library writes the element anew.
        if (const SView text = ElementText(document, "ToBeSignedData"); text.size != 0) {
            outcome.signedBytes = Signed(signature, {text, Bytes(toBeSigned)});
        }
        if (!signature.error.empty()) {
            outcome.faults.emplace_back(ERule::BAD_SIGNATURE, "CMSSignedData: " + signature.error);
        }
    }
    return content;
}

/// Splits the multi-table; its tables go on to their own parsers, each behind a header made of what the
/// multi-table says of it.
void ReadMultiTable(const SLlsHeader& header, SView bytes, STableOutcome& outcome)
{
    CLLSSMTParser parser;
    parser.Create();
    IParse::SItem item = {bytes.data, static_cast<unsigned>(bytes.size), static_cast<unsigned>(bytes.size) * 8,
                          k_header * 8, true};
    if (!parser.Parse(&item)) {
        outcome.reason = "shorter than its lengths say";
        parser.Destroy();
        return;
    }
    unsigned length = 0;
    parser.GetSignedBlockLength(length);
    std::vector<unsigned char> block(length);
    parser.GetSignedBlock(block.data());
    SContent& content = outcome.content.emplace();
    content.headline = Counted(static_cast<std::uint64_t>(parser.PayloadCount()), "table");
    content.json["payloads"] = TJson::array();
    std::size_t at = 1;
    for (int i = 0; i < parser.PayloadCount(); ++i) {
        unsigned id = 0;
        parser.GetPayloadLength(i, length);
        std::vector<unsigned char> table(k_header + length);
        parser.GetPayload(i, id, table.data() + k_header);
        const unsigned char version = block[at + 1];
        at += k_header + length;
        table[0] = static_cast<unsigned char>(id);
        table[1] = header.groupId;
        table[2] = header.groupCountMinus1;
        table[3] = version;
        TJson json = {{"LLS_table_id", id}, {"LLS_table_version", version}, {"size", length}};
        if (TableName(id)) {
            json["LLS_table_idName"] = TableName(id);
        }
        Append(content.json, "payloads", std::move(json));
        outcome.inner.push_back(std::move(table));
    }
    parser.GetSignatureLength(length);
    std::vector<unsigned char> der(length);
    if (!parser.GetSignatureData(der.data())) {
        der.clear();
    }
    const SSignature signature = ReadSignature(der);
    content.text = "  signature over " + Counted(block.size(), "byte") + ": " + SignatureText(signature) + '\n';
    content.json["signedSize"] = block.size();
    content.json["signature"] = SignatureJson(signature);
    outcome.signedBytes = Signed(signature, {{block.data(), block.size()}});
    if (!signature.error.empty()) {
        outcome.faults.emplace_back(ERule::BAD_SIGNATURE, "the signature is " + signature.error);
    }
    parser.Destroy();
}

/// Gives the table to a fresh parser, and what it holds to `TRead`.
template <class TParser, auto TRead>
void Read(const SLlsHeader& header, SView bytes, STableOutcome& outcome)
{
    TParser parser;
    if constexpr (std::is_same_v<TParser, CParseSystemTime>) {
        parser.Create(header.groupId);
    } else if constexpr (std::is_same_v<TParser, CParseAEAT>) {
        parser.Create(nullptr);
    } else {
        parser.Create();
    }
    if (Feed(parser, bytes, outcome.reason)) {
        std::string xml;
        std::string cms;
        outcome.cmsSignedData = parser.CheckCMS(bytes.data, static_cast<int>(bytes.size), xml, cms);
        if constexpr (std::is_invocable_v<decltype(TRead), const TParser&>) {
            outcome.content = TRead(parser);
        } else {
            outcome.content = TRead(parser, bytes, outcome);
        }
    }
    parser.Destroy();
}

struct STableReader {
    unsigned tableId;
    void (*read)(const SLlsHeader& header, SView bytes, STableOutcome& outcome);
};

constexpr STableReader k_tables[] = {{2, Read<CParseRRT, ReadRrt>},   {3, Read<CParseSystemTime, ReadSystemTime>},
                                     {4, Read<CParseAEAT, ReadAeat>}, {5, Read<CParseOnscreenNoti, ReadOnscreen>},
                                     {6, Read<CParseCDT, ReadCdt>},   {k_multiTableId, ReadMultiTable}};

/// The bsid of a service list, by its payload.
std::optional<unsigned> ListBsid(SView payload)
{
    CXML xml;
    void* root = nullptr;
    bool found = false;
    int bsid = 0;
    if (xml.Create(reinterpret_cast<const char*>(payload.data), static_cast<int>(payload.size), true)) {
        bsid = xml.MoveRoot(&root) ? xml.PropInt(root, "bsid", &found) : 0;
        xml.Destroy();
    }
    return found ? std::optional<unsigned>(bsid & 0xFFFF) : std::nullopt;
}

const STableReader* Find(unsigned tableId)
{
    const auto* reader = std::find_if(std::begin(k_tables), std::end(k_tables),
                                      [tableId](const STableReader& each) { return each.tableId == tableId; });
    return reader != std::end(k_tables) ? reader : nullptr;
}

}  // namespace

bool HasParser(unsigned tableId)
{
    return Find(tableId) != nullptr;
}

std::optional<unsigned> TableBsid(SView table)
{
    const CUnheard guard;
    const unsigned id = table.size > k_header ? table[0] : 0u;
    std::optional<unsigned> bsid = id == k_sltId ? ListBsid(table.From(k_header)) : std::nullopt;
    if (id == k_multiTableId) {
        CLLSSMTParser parser;
        parser.Create();
        IParse::SItem item = {table.data, static_cast<unsigned>(table.size), static_cast<unsigned>(table.size) * 8,
                              k_header * 8, true};
        const int count = parser.Parse(&item) ? parser.PayloadCount() : 0;
        for (int i = 0; i < count && !bsid; ++i) {
            unsigned inner = 0;
            unsigned length = 0;
            parser.GetPayloadLength(i, length);
            std::vector<unsigned char> payload(length);
            parser.GetPayload(i, inner, payload.data());
            bsid = inner == k_sltId ? ListBsid({payload.data(), payload.size()}) : std::nullopt;
        }
        parser.Destroy();
    }
    return bsid;
}

STableOutcome ParseTable(const SLlsHeader& header, SView bytes)
{
    STableOutcome outcome;
    Find(header.tableId)->read(header, bytes, outcome);
    return outcome;
}

}  // namespace vyr::inspect
