#include "content/MpdContent.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>

#include "base/Json.h"
#include "base/Text.h"
#include "content/LibraryPort.h"
#include "model/Content.h"
#include "route/SLS/MPD.h"

namespace vyr::inspect {

namespace {

constexpr std::size_t k_shortText = 64;

/// The beginning of a text; a long one that many representations inherit is not looked at whole.
std::string Given(const char* text)
{
    constexpr std::size_t k_enough = 260;  // bytes of 65 columns
    return text != nullptr ? Short(Printable(std::string(text, strnlen(text, k_enough)))) : std::string();
}

/// "label text", or nothing.
std::string Labelled(const char* label, const char* text)
{
    return text != nullptr ? std::string(label) + ' ' + Given(text) : std::string();
}

std::string SecondsText(const char* label, const std::optional<double>& seconds)
{
    return seconds ? std::string(label) + ' ' + NumberText(*seconds) + " s" : std::string();
}

std::string TimeText(const char* label, const std::optional<double>& time)
{
    return time ? std::string(label) + ' ' + EpochText(*time) : std::string();
}

void PutTime(TJson& json, const char* key, const std::optional<double>& time)
{
    if (time) {
        json[key] = EpochText(*time);
    }
}

/// Sets the field unless it is the one of the level above and long.
void PutInherited(TJson& json, const char* key, const char* text, const char* above)
{
    if (text != above || text == nullptr || strnlen(text, k_shortText + 1) <= k_shortText) {
        PutText(json, key, text);
    }
}

TJson TextsJson(const std::vector<const char*>& texts)
{
    TJson json = TJson::array();
    for (const char* text : texts) {
        json.push_back(text);
    }
    return json;
}

TJson DescriptorJson(const SMPDDescriptor& descriptor)
{
    TJson json = TJson::object();
    PutText(json, "schemeIdUri", descriptor.schemeIdUri);
    PutText(json, "value", descriptor.value);
    PutText(json, "id", descriptor.id);
    return json;
}

void PutDescriptors(TJson& json, const SMPDDescriptors& descriptors)
{
    for (const SMPDContentProtection& protection : descriptors.contentProtections) {
        TJson entry = DescriptorJson(protection);
        PutText(entry, "default_KID", protection.defaultKid);
        PutList(entry, "pssh", TextsJson(protection.pssh));
        PutList(entry, "Laurl", TextsJson(protection.licenceUrls));
        Append(json, "ContentProtection", std::move(entry));
    }
    PutEach(json, "Role", descriptors.roles, DescriptorJson);
    PutEach(json, "Accessibility", descriptors.accessibilities, DescriptorJson);
    PutEach(json, "Rating", descriptors.ratings, DescriptorJson);
    PutEach(json, "EssentialProperty", descriptors.essentialProperties, DescriptorJson);
    PutEach(json, "SupplementalProperty", descriptors.supplementalProperties, DescriptorJson);
    PutEach(json, "AudioChannelConfiguration", descriptors.audioChannelConfigurations, DescriptorJson);
}

/// "INF", or seconds.
void PutAvailability(TJson& json, const SMPDAvailability& availability)
{
    if (availability.timeOffset && !std::isfinite(*availability.timeOffset)) {
        json["availabilityTimeOffsetSeconds"] = "INF";
    } else {
        PutSeconds(json, "availabilityTimeOffsetSeconds", availability.timeOffset);
    }
    PutValue(json, "availabilityTimeComplete", availability.timeComplete);
}

/// The base URLs, and if one of them says when its segments are available, that of each.
void PutBaseUrls(TJson& json, const std::vector<const char*>& urls, const std::vector<SMPDAvailability>& availabilities)
{
    PutList(json, "BaseURL", TextsJson(urls));
    const bool said = std::any_of(availabilities.begin(), availabilities.end(),
                                  [](const SMPDAvailability& each) { return each.timeOffset || each.timeComplete; });
    for (const SMPDAvailability& each : said ? availabilities : std::vector<SMPDAvailability>()) {
        PutAvailability(json["BaseURLAvailability"].emplace_back(TJson::object()), each);
    }
}

/// "available 1.5 s early, in parts", or nothing.
std::string AvailabilityText(const SMPDAvailability& availability)
{
    const std::optional<double>& offset = availability.timeOffset;
    return Joined({!offset                  ? std::string()
                   : std::isfinite(*offset) ? "available " + NumberText(*offset) + " s early"
                                            : "available at any time",
                   availability.timeComplete.value_or(true) ? "" : "in parts"});
}

/// What the level says itself of when its segments are available.
std::string AvailabilityText(const SMPDSegmentInfo& own, const SMPDSegmentInfo* above)
{
    std::vector<std::string> texts;
    for (const SMPDAvailability& each : own.baseUrlAvailabilities) {
        texts.push_back(AvailabilityText(each));
    }
    if (own.segmentTemplate && (above == nullptr || own.segmentTemplate != above->segmentTemplate)) {
        texts.push_back(AvailabilityText(own.segmentTemplate->availability));
    }
    if (own.segmentList && (above == nullptr || own.segmentList != above->segmentList)) {
        texts.push_back(AvailabilityText(own.segmentList->availability));
    }
    return Short(Joined(texts));
}

/// What templates and lists have in common; `above` is that of the level above, null: none.
TJson SegmentsJson(const SMPDSegments& segments, const SMPDSegments* above)
{
    TJson json = {{"timescale", segments.timescale}};
    PutNumber(json, "duration", segments.duration, -1LL);
    json["startNumber"] = segments.startNumber;
    json["presentationTimeOffset"] = segments.presentationTimeOffset;
    PutAvailability(json, segments.availability);
    if (segments.timeline && (above == nullptr || segments.timeline != above->timeline)) {
        json["SegmentTimeline"] = TJson::array();
        for (const SMPDSegment& segment : *segments.timeline) {
            TJson run = TJson::object();
            PutNumber(run, "t", segment.t, -1LL);
            PutNumber(run, "n", segment.n, -1LL);
            run["d"] = segment.d;
            run["r"] = segment.r;
            run["k"] = segment.k;
            Append(json, "SegmentTimeline", std::move(run));
        }
    }
    return json;
}

void PutTemplate(TJson& json, const SMPDSegmentTemplate& segments, const SMPDSegmentTemplate* above)
{
    TJson entry = SegmentsJson(segments, above);
    PutInherited(entry, "media", segments.media, above != nullptr ? above->media : nullptr);
    PutInherited(entry, "index", segments.index, above != nullptr ? above->index : nullptr);
    PutInherited(entry, "initialization", segments.initialization, above != nullptr ? above->initialization : nullptr);
    json["SegmentTemplate"] = std::move(entry);
}

void PutSegmentList(TJson& json, const SMPDSegmentList& segments, const SMPDSegmentList* above)
{
    TJson entry = SegmentsJson(segments, above);
    PutInherited(entry, "initialization", segments.initialization, above != nullptr ? above->initialization : nullptr);
    PutInherited(entry, "initializationRange", segments.initializationRange,
                 above != nullptr ? above->initializationRange : nullptr);
    if (segments.urls && (above == nullptr || segments.urls != above->urls)) {
        entry["SegmentURL"] = TJson::array();
        for (const SMPDSegmentURL& url : *segments.urls) {
            TJson item = TJson::object();
            PutText(item, "media", url.media);
            PutText(item, "mediaRange", url.mediaRange);
            PutText(item, "index", url.index);
            PutText(item, "indexRange", url.indexRange);
            Append(entry, "SegmentURL", std::move(item));
        }
    }
    json["SegmentList"] = std::move(entry);
}

/// Segments that the level says itself.
void PutSegments(TJson& json, const SMPDSegmentInfo& own, const SMPDSegmentInfo* above)
{
    PutBaseUrls(json, own.baseUrls, own.baseUrlAvailabilities);
    if (own.segmentTemplate && (above == nullptr || own.segmentTemplate != above->segmentTemplate)) {
        PutTemplate(json, *own.segmentTemplate, above != nullptr ? above->segmentTemplate.get() : nullptr);
    }
    if (own.segmentList && (above == nullptr || own.segmentList != above->segmentList)) {
        PutSegmentList(json, *own.segmentList, above != nullptr ? above->segmentList.get() : nullptr);
    }
}

void PutCommon(TJson& json, const SMPDCommon& own, const SMPDCommon& above)
{
    PutInherited(json, "profiles", own.profiles, above.profiles);
    PutNumber(json, "width", own.width, -1LL);
    PutNumber(json, "height", own.height, -1LL);
    PutInherited(json, "sar", own.sar, above.sar);
    PutInherited(json, "frameRate", own.frameRate, above.frameRate);
    PutInherited(json, "audioSamplingRate", own.audioSamplingRate, above.audioSamplingRate);
    PutInherited(json, "mimeType", own.mimeType, above.mimeType);
    PutInherited(json, "codecs", own.codecs, above.codecs);
    PutNumber(json, "startWithSAP", own.startWithSAP, -1LL);
    PutInherited(json, "scanType", own.scanType, above.scanType);
    PutNumber(json, "selectionPriority", own.selectionPriority, -1LL);
    PutInherited(json, "tag", own.tag, above.tag);
}

TJson RepresentationJson(const SMPDRepresentation& representation, const SMPDAdaptationSet& set)
{
    TJson json = TJson::object();
    PutText(json, "id", representation.id);
    PutNumber(json, "bandwidth", representation.bandwidth, -1LL);
    PutNumber(json, "qualityRanking", representation.qualityRanking, -1LL);
    PutText(json, "dependencyId", representation.dependencyId);
    PutCommon(json, representation, set);
    PutDescriptors(json, representation);
    PutSegments(json, representation, &set);
    return json;
}

TJson SetJson(const SMPDAdaptationSet& set, const SMPDPeriod& period)
{
    TJson json = TJson::object();
    PutText(json, "id", set.id);
    PutNumber(json, "group", set.group, -1LL);
    PutText(json, "lang", set.lang);
    PutText(json, "contentType", set.contentType);
    PutText(json, "par", set.par);
    PutNumber(json, "minBandwidth", set.minBandwidth, -1LL);
    PutNumber(json, "maxBandwidth", set.maxBandwidth, -1LL);
    PutNumber(json, "minWidth", set.minWidth, -1LL);
    PutNumber(json, "maxWidth", set.maxWidth, -1LL);
    PutNumber(json, "minHeight", set.minHeight, -1LL);
    PutNumber(json, "maxHeight", set.maxHeight, -1LL);
    PutText(json, "minFrameRate", set.minFrameRate);
    PutText(json, "maxFrameRate", set.maxFrameRate);
    PutText(json, "segmentAlignment", set.segmentAlignment);
    PutCommon(json, set, {});
    PutDescriptors(json, set);
    PutSegments(json, set, &period);
    json["Representation"] = TJson::array();
    for (const SMPDRepresentation& representation : set.representations) {
        Append(json, "Representation", RepresentationJson(representation, set));
    }
    return json;
}

TJson PeriodJson(const SMPDPeriod& period)
{
    TJson json = TJson::object();
    PutText(json, "id", period.id);
    PutSeconds(json, "startSeconds", period.start);
    PutSeconds(json, "durationSeconds", period.duration);
    PutSegments(json, period, nullptr);
    json["AdaptationSet"] = TJson::array();
    for (const SMPDAdaptationSet& set : period.adaptationSets) {
        Append(json, "AdaptationSet", SetJson(set, period));
    }
    for (const SMPDPreselection& preselection : period.preselections) {
        TJson entry = TJson::object();
        PutText(entry, "id", preselection.id);
        PutText(entry, "preselectionComponents", preselection.preselectionComponents);
        PutText(entry, "lang", preselection.lang);
        PutText(entry, "order", preselection.order);
        PutDescriptors(entry, preselection);
        Append(json, "Preselection", std::move(entry));
    }
    PutEach(json, "EventStream", period.eventStreams, DescriptorJson);
    PutEach(json, "SupplementalProperty", period.supplementalProperties, DescriptorJson);
    return json;
}

TJson MpdJson(const SMPDInfo& mpd)
{
    TJson json = TJson::object();
    PutText(json, "id", mpd.id);
    PutText(json, "profiles", mpd.profiles);
    json["type"] = mpd.dynamic ? "dynamic" : "static";
    PutTime(json, "availabilityStartTime", mpd.availabilityStartTime);
    PutTime(json, "availabilityEndTime", mpd.availabilityEndTime);
    PutTime(json, "publishTime", mpd.publishTime);
    PutSeconds(json, "mediaPresentationDurationSeconds", mpd.mediaPresentationDuration);
    PutSeconds(json, "minimumUpdatePeriodSeconds", mpd.minimumUpdatePeriod);
    PutSeconds(json, "minBufferTimeSeconds", mpd.minBufferTime);
    PutSeconds(json, "timeShiftBufferDepthSeconds", mpd.timeShiftBufferDepth);
    PutSeconds(json, "suggestedPresentationDelaySeconds", mpd.suggestedPresentationDelay);
    PutBaseUrls(json, mpd.baseUrls, mpd.baseUrlAvailabilities);
    PutEach(json, "EssentialProperty", mpd.essentialProperties, DescriptorJson);
    PutEach(json, "SupplementalProperty", mpd.supplementalProperties, DescriptorJson);
    PutEach(json, "UTCTiming", mpd.utcTimings, DescriptorJson);
    json["Period"] = TJson::array();
    for (const SMPDPeriod& period : mpd.periods) {
        Append(json, "Period", PeriodJson(period));
    }
    return json;
}

/// "main" of a scheme that everybody knows, else "value of scheme".
std::string DescriptorText(const SMPDDescriptor& descriptor)
{
    constexpr const char* k_known[] = {"urn:mpeg:dash:role:2011",
                                       "urn:mpeg:dash:23003:3:audio_channel_configuration:2011",
                                       "urn:mpeg:mpegB:cicp:ChannelConfiguration"};
    const bool known = descriptor.schemeIdUri != nullptr &&
                       std::any_of(std::begin(k_known), std::end(k_known), [&](const char* scheme) {
                           return std::strcmp(descriptor.schemeIdUri, scheme) == 0;
                       });
    return Given(descriptor.value) +
           (known ? std::string() : Labelled(descriptor.value ? " of" : "of", descriptor.schemeIdUri));
}

std::string DescriptorsText(const char* label, const std::vector<SMPDDescriptor>& descriptors)
{
    std::vector<std::string> texts;
    for (const SMPDDescriptor& descriptor : descriptors) {
        texts.push_back(DescriptorText(descriptor));
    }
    return texts.empty() ? std::string() : std::string(label) + ' ' + Joined(texts);
}

/// Where receivers have the time from. A time that stands in the MPD itself is another one in each: it is left out, so
/// that an MPD where nothing else is new shows no change.
std::string TimingText(const std::vector<SMPDDescriptor>& timings)
{
    std::vector<std::string> texts;
    for (const SMPDDescriptor& timing : timings) {
        const bool direct =
            timing.schemeIdUri != nullptr && std::strcmp(timing.schemeIdUri, "urn:mpeg:dash:utc:direct:2014") == 0;
        texts.push_back(direct ? "in the MPD" : DescriptorText(timing));
    }
    return Joined(texts);
}

/// Lines for what protects the level, each behind `indent`.
std::string ProtectionText(const std::string& indent, const SMPDDescriptors& descriptors)
{
    std::string text;
    for (const SMPDContentProtection& protection : descriptors.contentProtections) {
        const std::string boxes =
            protection.pssh.empty() ? "" : Counted(protection.pssh.size(), "pssh box", "pssh boxes");
        std::vector<std::string> parts = {DescriptorText(protection), Labelled("key", protection.defaultKid), boxes};
        for (const char* url : protection.licenceUrls) {
            parts.push_back(Labelled("licences from", url));
        }
        text += indent + "protected: " + Joined(parts) + '\n';
    }
    return text;
}

std::string PropertiesText(const SMPDDescriptors& descriptors)
{
    return Joined(
        {DescriptorsText("role", descriptors.roles), DescriptorsText("accessibility", descriptors.accessibilities),
         DescriptorsText("rated", descriptors.ratings), DescriptorsText("essential", descriptors.essentialProperties),
         DescriptorsText("supplemental", descriptors.supplementalProperties),
         DescriptorsText("channel configuration", descriptors.audioChannelConfigurations)});
}

std::string RepresentationText(const SMPDRepresentation& representation, const SMPDAdaptationSet& set)
{
    const bool sized = representation.width != -1 && representation.height != -1;
    const bool ownType = representation.mimeType != set.mimeType;
    std::string size = sized ? std::to_string(representation.width) + 'x' + std::to_string(representation.height) : "";
    const std::string rate = representation.frameRate != nullptr ? Given(representation.frameRate) + " fps" : "";
    const std::string sampling =
        representation.audioSamplingRate != nullptr ? Given(representation.audioSamplingRate) + " Hz" : "";
    const std::string bits = representation.bandwidth != -1 ? std::to_string(representation.bandwidth) + " bit/s" : "";
    return "        representation " + (representation.id != nullptr ? Given(representation.id) : "-") + ": " +
           Joined({ownType ? Given(representation.mimeType) : "", Given(representation.codecs), size, rate, sampling,
                   bits, AvailabilityText(representation, &set), PropertiesText(representation)}) +
           '\n' + ProtectionText("          ", representation);
}

std::string SetText(const SMPDAdaptationSet& set, const SMPDPeriod& period)
{
    const char* type = set.mimeType != nullptr ? set.mimeType : set.contentType;
    std::string text =
        "      adaptation set" + (set.id != nullptr ? ' ' + Given(set.id) : "") + ": " +
        Joined({Given(type), Labelled("language", set.lang), AvailabilityText(set, &period), PropertiesText(set)}) +
        '\n' + ProtectionText("        ", set);
    for (const SMPDRepresentation& representation : set.representations) {
        text += RepresentationText(representation, set);
    }
    return text;
}

std::string PeriodText(const SMPDPeriod& period)
{
    std::string text = "    period" + (period.id != nullptr ? ' ' + Given(period.id) : "") + ": " +
                       Joined({SecondsText("from", period.start), SecondsText("for", period.duration),
                               Counted(period.adaptationSets.size(), "adaptation set"),
                               AvailabilityText(period, nullptr), DescriptorsText("events", period.eventStreams),
                               DescriptorsText("supplemental", period.supplementalProperties)}) +
                       '\n';
    for (const SMPDAdaptationSet& set : period.adaptationSets) {
        text += SetText(set, period);
    }
    for (const SMPDPreselection& preselection : period.preselections) {
        text += "      preselection" + (preselection.id != nullptr ? ' ' + Given(preselection.id) : "") + ": " +
                Joined({Labelled("of", preselection.preselectionComponents), Labelled("language", preselection.lang),
                        PropertiesText(preselection)}) +
                '\n' + ProtectionText("        ", preselection);
    }
    return text;
}

}  // namespace

SContent MpdContent(const SMPDInfo& mpd, bool text)
{
    SContent content;
    content.headline = Joined(
        {mpd.dynamic ? "dynamic" : "static", Counted(mpd.periods.size(), "period"),
         SecondsText("lasts", mpd.mediaPresentationDuration), TimeText("available from", mpd.availabilityStartTime),
         SecondsText("updated every", mpd.minimumUpdatePeriod), SecondsText("buffer", mpd.minBufferTime)});
    content.json = MpdJson(mpd);
    if (!text) {
        return content;
    }
    SMPDSegmentInfo own;
    own.baseUrlAvailabilities = mpd.baseUrlAvailabilities;
    content.text += Line("segments", AvailabilityText(own, nullptr)) + Line("time", TimingText(mpd.utcTimings)) +
                    Line("property", Joined({DescriptorsText("essential", mpd.essentialProperties),
                                             DescriptorsText("supplemental", mpd.supplementalProperties)}));
    for (const SMPDPeriod& period : mpd.periods) {
        content.text += PeriodText(period);
    }
    return content;
}

COptionalContent ReadMpd(const std::string& document, std::string& reason)
{
    COptionalContent content;
    CMPD mpd;
    mpd.Create();
    const CMPD::SCallback callback = {
        &content, [](void* context, SMPDInfo* info) { *static_cast<COptionalContent*>(context) = MpdContent(*info); },
        [](void* context, const CMPD::TRatings& ratings) {
            AddRatings({ratings.begin(), ratings.end()}, **static_cast<COptionalContent*>(context));
        }};
    mpd.SetCallback(&callback);
    mpd.Parse(document.data(), static_cast<unsigned>(document.size()), false);
    reason = Reason();
    mpd.Destroy();
    reason = content ? "" : reason.empty() ? "the library gave no reason" : reason;
    return content;
}

void AddRatings(const CSLSManager::TRatings& ratings, SContent& content)
{
    std::vector<std::string> texts;
    for (const auto& [scheme, value] : ratings) {
        texts.push_back(Short(Printable(value)) + " of " + Short(Printable(scheme)));
        Append(content.json, "ratings", {{"schemeIdUri", scheme}, {"value", value}});
    }
    content.text += Line("ratings", Joined(texts));
}

}  // namespace vyr::inspect
