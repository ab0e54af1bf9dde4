#include "judge/Facts.h"

#include <algorithm>

#include "base/Text.h"
#include "judge/Read.h"

namespace vyr::inspect {

namespace {

/// Adds an entry unless the list is full; false: it is.
template <class TEntry>
bool Add(std::vector<TEntry>& list, TEntry entry)
{
    if (list.size() == k_mostFacts) {
        return false;
    }
    list.push_back(std::move(entry));
    return true;
}

std::size_t BytesOf(const std::vector<std::string>& texts)
{
    std::size_t bytes = 0;
    for (const std::string& text : texts) {
        bytes += sizeof text + text.size();
    }
    return bytes;
}

std::string Either(const std::string& first, const std::string& second)
{
    return first.empty() ? second : first;
}

/// "video" of "video/mp4"; what it is said to be goes before.
std::string TypeOf(const TJson& level)
{
    const std::string type = Text(level, "contentType");
    const std::string mime = Text(level, "mimeType");
    return Either(type, mime.substr(0, mime.find('/')));
}

bool PatternsOf(const TJson& method, const char* service, std::vector<std::string>& patterns)
{
    bool whole = true;
    whole = Each(method, service,
                 [&](const TJson& app) {
                     whole = Each(app, "BasePattern",
                                  [&](const TJson& pattern) {
                                      whole =
                                          (!pattern.is_string() || Add(patterns, pattern.get<std::string>())) && whole;
                                  }) &&
                             whole;
                 }) &&
            whole;
    return whole;
}

void ReadEfdt(const TJson& efdt, SLctFacts& lct, bool& whole)
{
    lct.hasEfdt = true;
    const TJson& instance = Field(efdt, "FDT-Instance");
    const std::optional<std::uint64_t> expires = Unsigned(instance, "Expires");
    lct.expires = expires ? std::max(lct.expires.value_or(0), *expires) : lct.expires;
    lct.fileTemplate = Either(Either(Text(instance, "fileTemplate"), Text(efdt, "fileTemplate")), lct.fileTemplate);
    whole = Each(instance, "File",
                 [&](const TJson& file) {
                     const std::optional<std::uint64_t> toi = Unsigned(file, "TOI");
                     std::optional<std::uint64_t> sent = Unsigned(file, "Transfer-Length");
                     if (!sent && Either(Text(file, "Content-Encoding"), Text(instance, "Content-Encoding")).empty()) {
                         sent = Unsigned(file, "Content-Length");
                     }
                     if (toi) {
                         whole = Add(lct.files, {{0, *toi}, Text(file, "Content-Location"), sent}) && whole;
                     }
                 }) &&
            whole;
}

/// What the level says of protection, base URL and segments, on top of the level above.
struct SLevel {
    std::string contentType;
    std::string lang;
    std::string base;
    std::string media;
    std::string initialization;
    bool isProtected = false;

    SLevel Below(const TJson& level) const
    {
        SLevel below = *this;
        below.contentType = Either(TypeOf(level), contentType);
        below.lang = Either(Text(level, "lang"), lang);
        const TJson& urls = Field(level, "BaseURL");
        if (urls.is_array() && !urls.empty() && urls[0].is_string()) {
            const std::string url = urls[0].get<std::string>();
            const bool absolute = url.find("://") != std::string::npos;
            below.base = absolute ? url : base.substr(0, base.rfind('/') + 1) + url;
        }
        const TJson& segments = Field(level, "SegmentTemplate");
        below.media = Either(Text(segments, "media"), media);
        below.initialization = Either(Text(segments, "initialization"), initialization);
        below.isProtected = isProtected || !Field(level, "ContentProtection").empty();
        return below;
    }
};

}  // namespace

SUsbdFacts UsbdFacts(const TJson& usbd)
{
    constexpr std::uint64_t k_notGiven = 65535;
    SUsbdFacts facts;
    const std::uint64_t id = Unsigned(usbd, "serviceId").value_or(k_notGiven);
    facts.serviceId = id != k_notGiven ? std::optional<unsigned>(static_cast<unsigned>(id)) : std::nullopt;
    facts.globalServiceId = Text(usbd, "globalServiceID");
    facts.whole = Each(usbd, "DeliveryMethod",
                       [&](const TJson& method) {
                           const bool broadcast = PatternsOf(method, "BroadcastAppService", facts.broadcast);
                           facts.whole =
                               PatternsOf(method, "UnicastAppService", facts.unicast) && broadcast && facts.whole;
                       }) &&
                  facts.whole;
    return facts;
}

SStsidFacts StsidFacts(const TJson& stsid)
{
    SStsidFacts facts;
    bool& whole = facts.whole;
    whole = Each(stsid, "RS",
                 [&](const TJson& route) {
                     const std::string address = Text(route, "dIpAddr");
                     const std::optional<std::uint64_t> port = Unsigned(route, "dPort");
                     whole = Each(route, "LS",
                                  [&](const TJson& ls) {
                                      SLctFacts lct;
                                      lct.destination = address + ':' + (port ? std::to_string(*port) : std::string());
                                      lct.source = Text(route, "sIpAddr");
                                      lct.tsi = Unsigned(ls, "tsi").value_or(0);
                                      lct.bandwidth = Unsigned(ls, "bw");
                                      lct.startTime = Text(ls, "startTime");
                                      lct.endTime = Text(ls, "endTime");
                                      whole =
                                          Each(ls, "SrcFlow",
                                               [&](const TJson& flow) {
                                                   const TJson& content = Field(flow, "ContentInfo");
                                                   const TJson& media = Field(content, "MediaInfo");
                                                   lct.sourceFlow = true;
                                                   lct.realTime = lct.realTime || Flag(flow, "rt").value_or(false);
                                                   lct.contentId = Text(content, "contentId");
                                                   lct.contentType = Text(media, "contentType");
                                                   lct.lang = Text(media, "lang");
                                                   lct.repId = Text(media, "repId");
                                                   whole =
                                                       Each(flow, "EFDT",
                                                            [&](const TJson& efdt) { ReadEfdt(efdt, lct, whole); }) &&
                                                       whole;
                                               }) &&
                                          whole;
                                      whole = Add(facts.sessions, std::move(lct)) && whole;
                                  }) &&
                             whole;
                 }) &&
            whole;
    return facts;
}

SMpdFacts MpdFacts(const TJson& mpd)
{
    SMpdFacts facts;
    bool& whole = facts.whole;
    facts.dynamic = Text(mpd, "type") == "dynamic";
    facts.publishTime = Text(mpd, "publishTime");
    facts.availabilityStartTime = Text(mpd, "availabilityStartTime");
    facts.updatePeriod = Number(mpd, "minimumUpdatePeriodSeconds");
    const SLevel root = SLevel().Below(mpd);
    whole =
        Each(mpd, "Period",
             [&](const TJson& periodJson) {
                 const SLevel period = root.Below(periodJson);
                 const std::size_t number = facts.periods.size();
                 whole =
                     Add(facts.periods, {Number(periodJson, "startSeconds"), Number(periodJson, "durationSeconds")}) &&
                     whole;
                 whole = Each(periodJson, "AdaptationSet",
                              [&](const TJson& setJson) {
                                  const SLevel set = period.Below(setJson);
                                  facts.isProtected = facts.isProtected || set.isProtected;
                                  whole =
                                      Each(setJson, "Representation",
                                           [&](const TJson& json) {
                                               const SLevel level = set.Below(json);
                                               facts.isProtected = facts.isProtected || level.isProtected;
                                               const auto located = [&level](const std::string& url) {
                                                   return url.empty() || url.find("://") != std::string::npos
                                                              ? url
                                                              : level.base.substr(0, level.base.rfind('/') + 1) + url;
                                               };
                                               whole =
                                                   Add(facts.representations,
                                                       {Text(json, "id"), level.contentType, level.lang,
                                                        Unsigned(json, "bandwidth").value_or(0), level.isProtected,
                                                        located(level.media), located(level.initialization), number}) &&
                                                   whole;
                                           }) &&
                                      whole;
                              }) &&
                         whole;
             }) &&
        whole;
    return facts;
}

void SGuideFacts::Add(const TJson& descriptor)
{
    constexpr std::size_t k_most = 256;
    came = true;
    whole = Each(descriptor, "DescriptorEntry",
                 [&](const TJson& entry) {
                     const TJson& transport = Field(entry, "Transport");
                     const std::string address = Text(transport, "ipAddress");
                     whole = whole && destinations.size() < k_most;
                     if (whole && !address.empty()) {
                         destinations.insert(address + ':' + std::to_string(Unsigned(transport, "port").value_or(0)));
                     }
                 }) &&
            whole;
}

std::size_t SUsbdFacts::Bytes() const
{
    return sizeof *this + globalServiceId.size() + BytesOf(broadcast) + BytesOf(unicast);
}

std::size_t SStsidFacts::Bytes() const
{
    std::size_t bytes = sizeof *this;
    for (const SLctFacts& lct : sessions) {
        bytes += sizeof lct + lct.destination.size() + lct.source.size() + lct.contentId.size() +
                 lct.contentType.size() + lct.lang.size() + lct.repId.size() + lct.fileTemplate.size() +
                 lct.startTime.size() + lct.endTime.size();
        for (const SFileFacts& file : lct.files) {
            bytes += sizeof file + file.name.size();
        }
    }
    return bytes;
}

std::size_t SMpdFacts::Bytes() const
{
    std::size_t bytes = sizeof *this + periods.size() * sizeof(SPeriodFacts);
    for (const SRepresentationFacts& one : representations) {
        bytes += sizeof one + one.id.size() + one.contentType.size() + one.lang.size() + one.media.size() +
                 one.initialization.size();
    }
    return bytes;
}

void SArrivals::Add(const SSource& source)
{
    if (count != 0 && source.time && last.time) {
        const double since = Seconds(*source.time) - Seconds(*last.time);
        if (since > longest) {
            longest = since;
            longestEnd = source;
        }
    }
    first = count == 0 ? source : first;
    last = source;
    ++count;
}

}  // namespace vyr::inspect
