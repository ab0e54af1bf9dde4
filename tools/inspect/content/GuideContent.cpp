#include "content/GuideContent.h"

#include "base/Json.h"
#include "base/Text.h"
#include "content/GuideFragment.h"
#include "content/GuideValues.h"
#include "esg/ESGContentFragment.h"
#include "esg/ESGScheduleFragment.h"
#include "esg/ESGServiceFragment.h"
#include "model/Content.h"

namespace vyr::inspect {

namespace {

using TService = CESGServiceFragment::SESGServiceFragment;
using TContent = CESGContentFragment::SESGContentFragment;
using TSchedule = CESGScheduleFragment::SESGScheduleFragment;

std::string TimeText(const std::optional<std::int64_t>& time)
{
    return time ? EpochText(static_cast<double>(*time)) : std::string();
}

std::string SpanText(unsigned from, unsigned to)
{
    const std::string begin = TimeText(FromNtp(from));
    const std::string end = TimeText(FromNtp(to));
    return Joined({begin.empty() ? "" : "from " + begin, end.empty() ? "" : "to " + end});
}

void PutNtp(TJson& json, const char* key, unsigned ntp)
{
    PutText(json, key, TimeText(FromNtp(ntp)));
}

void PutEpoch(TJson& json, const char* key, long long time)
{
    if (time != 0) {
        json[key] = EpochText(static_cast<double>(time));
    }
}

/// Numbers that are not given are 0.
void PutCount(TJson& json, const char* key, long long number)
{
    PutNumber(json, key, number, 0LL);
}

/// One entry for each parser of an element.
template <class TList, class TMake>
void PutStates(TJson& json, const char* key, const TList& list, TMake make)
{
    PutEach(json, key, list, [&](const auto& element) { return make(*element->State()); });
}

TJson TextJson(const TESGText& text)
{
    return Text(text);
}

TJson InLanguageJson(const TESGText& text, const TESGText& lang, const char* langName = "lang")
{
    TJson json = TJson::object();
    PutText(json, langName, lang.get());
    PutText(json, "text", text.get());
    return json;
}

TJson SpeechJson(const CSpokenText::SSpeechInfo& speech)
{
    TJson json = TJson::object();
    PutText(json, "Content-type", speech.contentType.get());
    PutText(json, "Content-enc", speech.contentEnc.get());
    PutText(json, "text", speech.content.get());
    return json;
}

TJson SpokenJson(const CSpokenText::SSpokenText& text)
{
    TJson json = InLanguageJson(Shown(text), text.lang);
    if (text.text && text.content) {
        PutText(json, "content", Text(text.content));
    }
    PutEach(json, "SpeechInfoURI", text.speechInfoURIs, SpeechJson);
    PutEach(json, "SpeechInfo", text.speechInfos, SpeechJson);
    return json;
}

TJson LanguageJson(const CLanguageTag::SLanguageTag& language)
{
    return InLanguageJson(language.content, language.languageSDPTag, "languageSDPTag");
}

TJson GenreJson(const CGenre::SGenre& genre)
{
    TJson json = TJson::object();
    PutText(json, "type", genre.type.get());
    PutText(json, "href", genre.href.get());
    PutText(json, "text", genre.content.get());
    PutText(json, "name", genre.name);
    return json;
}

TJson RatingTextJson(const CContentAdvRatings::SRatingText& text)
{
    return InLanguageJson(text.content, text.lang);
}

TJson RatingsJson(const CContentAdvRatings::SContentAdvRatings& ratings)
{
    TJson json = TJson::object();
    PutText(json, "lang", ratings.lang.get());
    PutCount(json, "RegionIdentifier", ratings.regionIdentifier);
    PutCount(json, "RatedDimensions", ratings.ratedDimensions);
    PutEach(json, "RatingDescription", ratings.ratingDescriptions, RatingTextJson);
    PutEach(json, "RatingDimVal", ratings.ratings, [](const CContentAdvRatings::SRating& rating) {
        TJson entry = TJson::object();
        if (rating.hasDimension) {
            entry["RatingDimension"] = rating.ratingDimension;
        }
        PutText(entry, "text", rating.ratingDimVal.get());
        PutEach(entry, "RatingValueString", rating.ratingValueStrings, RatingTextJson);
        return entry;
    });
    return json;
}

TJson ProfileJson(const CTargetUserProfile::STargetUserProfile& profile)
{
    TJson json = TJson::object();
    PutText(json, "attributeName", profile.attributeName.get());
    PutText(json, "attributeValue", profile.attributeValue.get());
    return json;
}

TJson TermsJson(const CTermsOfUse::STermsOfUse& terms)
{
    TJson json = TJson::object();
    PutCount(json, "type", terms.type);
    PutText(json, "id", terms.id.get());
    json["userConsentRequired"] = terms.userConsentRequired;
    PutEach(json, "Country", terms.countries, TextJson);
    PutText(json, "Language", terms.language.get());
    PutText(json, "TermsOfUseText", terms.termsOfUseText.get());
    return json;
}

void PutMediaInfo(TJson& json, const SESGMediaInfo& info)
{
    PutText(json, "MIMEType", info.mimeType.get());
    PutCount(json, "width", info.width);
    PutCount(json, "height", info.height);
    PutCount(json, "dataSize", info.dataSize);
}

TJson MediaJson(const SESGMedia& media)
{
    TJson json = TJson::object();
    PutText(json, "text", media.content.get());
    PutMediaInfo(json, media);
    return json;
}

void PutAreaNames(TJson& json, const CBroadcastArea::SAreaNames& names)
{
    PutText(json, "cc", names.cc.get());
    PutText(json, "mcc", names.mcc.get());
    PutText(json, "name_area", names.nameArea.get());
}

TJson AreaJson(const CBroadcastArea::SBroadcastArea& area)
{
    TJson json = {{"polarity", area.polarity}};
    PutAreaNames(json, area.names);
    if (!area.p_area) {
        return json;
    }
    TJson target = TJson::object();
    PutAreaNames(target, *area.p_area);
    PutEach(target, "ZipCode", area.p_area->zipCodes, TextJson);
    if (area.p_area->cellTargetArea) {
        const auto& cells = *area.p_area->cellTargetArea->State();
        TJson entry = TJson::object();
        PutCount(entry, "type", cells.type);
        PutText(entry, "value", cells.value.get());
        PutEach(entry, "CellArea", cells.cells, [](const auto& cell) {
            TJson one = TJson::object();
            PutText(one, "value", cell.value.get());
            PutEach(one, "PP2CellID", cell.pp2CellIDs, TextJson);
            return one;
        });
        target["CellTargetArea"] = std::move(entry);
    }
    json["TargetArea"] = std::move(target);
    return json;
}

TJson PreviewJson(const CPreviewData::SPreviewData& preview)
{
    TJson json = TJson::object();
    PutCount(json, "usage", preview.usage);
    PutMediaInfo(json, preview.media);
    PutEach(json, "PreviewContent", preview.previewContents, MediaJson);
    PutEach(json, "PreviewIcon", preview.previewIcons, MediaJson);
    PutStates(json, "PreviewDescription", preview.descriptions, [](const CPreviewDesc::SPreviewDesc& description) {
        TJson entry = InLanguageJson(description.content, description.lang);
        PutText(entry, "linkUri", description.linkUri.get());
        PutText(entry, "uriType", description.uriType.get());
        return entry;
    });
    return json;
}

TJson ExtensionJson(const CContentPrivateExt::SContentPrivateExt& extension)
{
    TJson json = TJson::object();
    PutMediaInfo(json, extension.media);
    PutText(json, "Capabilities", extension.capabilities.get());
    if (extension.comp) {
        const CComponent::SComponent& components = *extension.comp->State();
        const auto item = [](const CComponent::SComponentItem& component) {
            return InLanguageJson(component.content, component.language, "language");
        };
        TJson entry = TJson::object();
        PutText(entry, "language", components.language.get());
        PutEach(entry, "VideoComponent", components.videoComponents, item);
        PutEach(entry, "AudioComponent", components.audioComponents, item);
        PutEach(entry, "CCComponent", components.ccComponents, item);
        PutEach(entry, "AppComponent", components.appComponents, item);
        json["Components"] = std::move(entry);
    }
    PutEach(json, "ContentIcon", extension.contentIcons, MediaJson);
    PutStates(json, "Preview", extension.previews, PreviewJson);
    return json;
}

/// What services and contents have in common.
template <class TState>
void PutDescribed(TJson& json, const TState& state)
{
    PutStates(json, "Name", state.names, SpokenJson);
    PutStates(json, "Description", state.descriptions, SpokenJson);
    PutStates(json, "AudioLanguage", state.audioLanguages, LanguageJson);
    PutStates(json, "TextLanguage", state.textLanguages, LanguageJson);
    PutStates(json, "ContentAdvisoryRatings", state.contentAdvRatings, RatingsJson);
    PutStates(json, "TargetUserProfile", state.targetProfiles, ProfileJson);
    PutStates(json, "Genre", state.genres, GenreJson);
}

void PutService(TJson& json, const TService& state)
{
    PutText(json, "globalServiceID", state.globalServiceID.get());
    PutCount(json, "weight", state.weight);
    json["emergency"] = state.emergency;
    PutCount(json, "ServiceType", state.serviceType);
    PutDescribed(json, state);
    if (state.broadcaseArea) {
        json["BroadcastArea"] = AreaJson(*state.broadcaseArea->State());
    }
    if (state.serviceExt) {
        const CATSC3ServiceExt::SATSC3ServiceExt& extension = *state.serviceExt->State();
        TJson entry = TJson::object();
        PutMediaInfo(entry, extension.media);
        PutCount(entry, "MajorChannelNum", extension.majorChannelNum);
        PutCount(entry, "MinorChannelNum", extension.minorChannelNum);
        PutEach(entry, "Icon", extension.icons, MediaJson);
        json["ATSC3ServiceExtension"] = std::move(entry);
    }
}

void PutContent(TJson& json, const TContent& state)
{
    PutText(json, "globalContentID", state.globalContentID.get());
    PutText(json, "baseCID", state.baseCID.get());
    if (state.serviceRefId) {
        json["ServiceReference"] = {{"idRef", Text(state.serviceRefId)}};
        PutCount(json["ServiceReference"], "weight", state.serviceRefWeight);
    }
    PutDescribed(json, state);
    PutCount(json, "LengthSeconds", state.length);
    PutStates(json, "TermsOfUse", state.termsOfUses, TermsJson);
    if (state.popularity) {
        const CPopularity::SPopularity& popularity = *state.popularity->State();
        TJson entry = TJson::object();
        PutCount(entry, "rating", popularity.rating);
        PutCount(entry, "noOfViews", popularity.noOfViews);
        PutCount(entry, "noOfDiscussions", popularity.noOfDiscussions);
        PutEpoch(entry, "samplingDate", popularity.samplingDate);
        json["Popularity"] = std::move(entry);
    }
    if (state.freshness) {
        TJson entry = TJson::object();
        PutEpoch(entry, "broadcastDate", state.freshness->State()->broadcastDate);
        PutEpoch(entry, "releastDate", state.freshness->State()->releaseDate);
        json["Freshness"] = std::move(entry);
    }
    if (state.contentExt) {
        json["PrivateExt"] = ExtensionJson(*state.contentExt->State());
    }
}

void PutSchedule(TJson& json, const TSchedule& state)
{
    if (state.serviceRefId) {
        json["ServiceReference"] = {{"idRef", Text(state.serviceRefId)}};
    }
    PutStates(json, "ContentReference", state.contentRefs, [](const CScheduleContentRef::SScheduleContentRef& content) {
        TJson entry = TJson::object();
        PutText(entry, "idRef", content.idRef.get());
        PutText(entry, "contentLocation", content.contentLocation.get());
        PutEach(entry, "PresentationWindow", content.presentationWindows, [](const auto& element) {
            const CPresentationWindow::SPresentationWindow& window = *element->State();
            TJson one = TJson::object();
            PutText(one, "id", window.id.get());
            PutNtp(one, "startTime", window.startTime != 0 ? window.startTime : window.startTimeElement);
            PutNtp(one, "endTime", window.endTime != 0 ? window.endTime : window.endTimeElement);
            PutCount(one, "DurationSeconds", Duration(*element));
            return one;
        });
        return entry;
    });
    PutStates(json, "TermsOfUse", state.termsOfUses, TermsJson);
}

std::string TitlesText(const std::vector<SGuideText>& titles)
{
    std::vector<std::string> texts;
    for (const SGuideText& title : titles) {
        texts.push_back(Quoted(Short(title.text)) + InLanguage(title.lang));
    }
    return Joined(texts);
}

TJson UnitFragmentJson(const CFragment::SFragment& fragment)
{
    TJson json = TJson::object();
    json["transportID"] = fragment.transportID;
    PutText(json, "id", fragment.id.get());
    PutNtp(json, "validFrom", fragment.validFrom);
    PutNtp(json, "validTo", fragment.validTo);
    json["fragmentEncoding"] = fragment.fragmentEncoding;
    json["fragmentType"] = fragment.fragmentType;
    PutText(json, "fragmentTypeName", FragmentTypeName(static_cast<unsigned>(fragment.fragmentType)));
    PutText(json, "BSMSelector", fragment.idRef.get());
    PutNtp(json, "startTime", fragment.startTime);
    PutNtp(json, "endTime", fragment.endTime);
    return json;
}

TJson UnitJson(const CSGDeliveryUnit::SSGDeliveryUnit& unit)
{
    TJson json = {{"transportObjectID", unit.transportObjectID}};
    PutCount(json, "versionIDLength", unit.versionIDLength);
    PutText(json, "contentLocation", unit.contentLocation.get());
    PutNtp(json, "validFrom", unit.validFrom);
    PutNtp(json, "validTo", unit.validTo);
    PutStates(json, "Fragment", unit.fragments, UnitFragmentJson);
    return json;
}

TJson GroupingJson(const CGroupingCri::SGroupingCri& grouping)
{
    TJson json = TJson::object();
    PutNtp(json, "startTime", grouping.startTime);
    PutNtp(json, "endTime", grouping.endTime);
    PutText(json, "type", grouping.type.get());
    PutText(json, "href", grouping.href.get());
    PutText(json, "GenreGroupingCriteria", grouping.genre.get());
    PutText(json, "BSMSelector", grouping.idRef.get());
    PutText(json, "ServiceCriteria", grouping.serviceCriteria.get());
    return json;
}

TJson TransportJson(const CESGTransport::SESGTransport& transport)
{
    TJson json = TJson::object();
    PutText(json, "ipAddress", transport.ipAddress.get());
    PutCount(json, "port", transport.port);
    PutText(json, "srcIpAddress", transport.srcIpAddress.get());
    json["transmissionSessionID"] = transport.transmissionSessionID;
    json["hasFDT"] = transport.hasFDT;
    return json;
}

TJson EntryJson(const CDescriptorEntry::SDescriptorEntry& entry)
{
    TJson json = TJson::object();
    PutCount(json, "type", entry.type);
    if (entry.groupingCri) {
        json["GroupingCriteria"] = GroupingJson(*entry.groupingCri->State());
    }
    if (entry.transport) {
        json["Transport"] = TransportJson(*entry.transport->State());
    }
    PutEach(json, "AlternativeAccessURL", entry.alternativeAccessURLs, TextJson);
    PutStates(json, "ServiceGuideDeliveryUnit", entry.deliveryUnits, UnitJson);
    return json;
}

std::string TransportText(const CESGTransport::SESGTransport& transport)
{
    const std::string source = Text(transport.srcIpAddress);
    return Printable(Text(transport.ipAddress)) + (transport.port != 0 ? ':' + std::to_string(transport.port) : "") +
           " TSI " + std::to_string(transport.transmissionSessionID) +
           (source.empty() ? "" : ", from " + Printable(source));
}

std::string UnitText(const CSGDeliveryUnit::SSGDeliveryUnit& unit)
{
    std::string text =
        "      " + Joined({"unit TOI " + std::to_string(unit.transportObjectID), Printable(Text(unit.contentLocation)),
                           SpanText(unit.validFrom, unit.validTo), Counted(unit.fragments.size(), "fragment")});
    std::vector<TRow> rows = {{"        id", "transportID", "type", "valid", "presents"}};
    for (const auto& element : unit.fragments) {
        const CFragment::SFragment& fragment = *element->State();
        const char* type = FragmentTypeName(static_cast<unsigned>(fragment.fragmentType));
        rows.push_back({"        " + Printable(Text(fragment.id)), std::to_string(fragment.transportID),
                        type != nullptr ? type : std::to_string(fragment.fragmentType),
                        SpanText(fragment.validFrom, fragment.validTo),
                        SpanText(fragment.startTime, fragment.endTime)});
    }
    return text + '\n' + TableText(rows);
}

std::string EntryText(const CDescriptorEntry::SDescriptorEntry& entry)
{
    std::vector<std::string> facts = {entry.transport ? TransportText(*entry.transport->State()) : ""};
    if (entry.groupingCri) {
        const CGroupingCri::SGroupingCri& grouping = *entry.groupingCri->State();
        const std::string service = Text(grouping.serviceCriteria);
        const std::string genre = Text(grouping.genre);
        facts.push_back(SpanText(grouping.startTime, grouping.endTime));
        facts.push_back(service.empty() ? "" : "service " + Printable(service));
        facts.push_back(genre.empty() ? "" : "genre " + Printable(genre));
    }
    facts.push_back(Counted(entry.deliveryUnits.size(), "unit"));
    std::string text = "    entry: " + Joined(facts) + '\n';
    for (const TESGText& url : entry.alternativeAccessURLs) {
        text += "      or " + Printable(Text(url)) + '\n';
    }
    for (const auto& unit : entry.deliveryUnits) {
        text += UnitText(*unit->State());
    }
    return text;
}

}  // namespace

SContent FragmentContent(const SGuideFragment& held, const CESGFragmentBase& fragment)
{
    SContent content;
    TJson& json = content.json;
    std::string what;
    const auto base = [&](const SESGFragment& state) {
        PutText(json, "id", state.id.get());
        json["version"] = state.version;
        PutNtp(json, "validFrom", state.validFrom);
        PutNtp(json, "validTo", state.validTo);
        PutText(json, "xmlns", state.ns.get());
        const std::string span = SpanText(state.validFrom, state.validTo);
        content.headline = std::string(FragmentTypeName(held.type)) + ' ' + Printable(held.id) + " version " +
                           std::to_string(state.version) + (span.empty() ? "" : ", valid " + span);
    };
    if (held.type == 1) {
        const TService& state = *static_cast<const CESGServiceFragment&>(fragment).State();
        base(state);
        PutService(json, state);
        what = TitlesText(held.service.names);
    } else if (held.type == 2) {
        const TContent& state = *static_cast<const CESGContentFragment&>(fragment).State();
        base(state);
        PutContent(json, state);
        what = TitlesText(held.programme.titles);
    } else {
        const TSchedule& state = *static_cast<const CESGScheduleFragment&>(fragment).State();
        base(state);
        PutSchedule(json, state);
        std::size_t presentations = 0;
        for (const SGuideReference& reference : held.references) {
            presentations += reference.windows.size();
        }
        what = "service " + (state.serviceRefId ? Printable(Text(state.serviceRefId)) : "-") + ", " +
               Counted(presentations, "presentation");
    }
    content.headline += what.empty() ? "" : ": " + what;
    return content;
}

SContent DescriptorContent(const CSGDDParse& descriptor)
{
    const CSGDDParse::SSGDDParse& state = *descriptor.State();
    SContent content;
    PutText(content.json, "id", state.id.get());
    content.json["version"] = state.version;
    PutText(content.json, "xmlns", state.ns.get());
    PutStates(content.json, "DescriptorEntry", state.descriptorEntries, EntryJson);
    content.headline = Joined({Printable(Text(state.id)), "version " + std::to_string(state.version),
                               Counted(state.descriptorEntries.size(), "entry", "entries")});
    for (const auto& entry : state.descriptorEntries) {
        content.text += EntryText(*entry->State());
    }
    return content;
}

SContent ResponseContent(const CSGResponse& response)
{
    const CSGResponse::SSGResponse& state = *response.State();
    SContent content;
    TJson& json = content.json;
    json["status"] = state.status;
    PutCount(json, "lastResponseVersion", state.lastResponseVersion);
    PutEach(json, "SupportedVersion", state.supportedVersions, TextJson);
    content.headline =
        "status " + std::to_string(state.status) + ", " + Counted(state.descriptors.size(), "delivery descriptor");
    std::vector<std::string> versions;
    for (const TESGText& version : state.supportedVersions) {
        versions.push_back(Printable(Text(version)));
    }
    content.text = Line("versions", Joined(versions));
    if (state.responseValidity) {
        json["ResponseValidity"] = {{"expirationTime", state.responseValidity->expirationTime},
                                    {"timeWindow", state.responseValidity->timeWindow}};
        content.text += Line("expires", std::to_string(state.responseValidity->expirationTime) + ", time window " +
                                            std::to_string(state.responseValidity->timeWindow));
    }
    PutText(json, "PrivateExt", state.privateExt.get());
    for (const auto& descriptor : state.descriptors) {
        SContent one = DescriptorContent(*descriptor);
        Append(json, "ServiceGuideDeliveryDescriptor", std::move(one.json));
        content.text += "    descriptor: " + one.headline + '\n' + one.text;
    }
    return content;
}

}  // namespace vyr::inspect
