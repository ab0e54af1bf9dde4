#include "content/GuideFragment.h"

#include <iterator>
#include <utility>

#include "base/Text.h"
#include "content/GuideValues.h"
#include "esg/ESGContentFragment.h"
#include "esg/ESGScheduleFragment.h"
#include "esg/ESGServiceFragment.h"

namespace vyr::inspect {

namespace {

using TService = CESGServiceFragment::SESGServiceFragment;
using TContent = CESGContentFragment::SESGContentFragment;
using TSchedule = CESGScheduleFragment::SESGScheduleFragment;

template <class TList>
std::vector<SGuideText> SpokenTexts(const TList& list)
{
    std::vector<SGuideText> texts;
    for (const auto& element : list) {
        const CSpokenText::SSpokenText& state = *element->State();
        if (const TESGText& shown = Shown(state); shown && shown[0] != '\0') {
            texts.push_back({Text(state.lang), Text(shown)});
        }
    }
    return texts;
}

template <class TList>
std::vector<std::string> Languages(const TList& list)
{
    std::vector<std::string> languages;
    for (const auto& element : list) {
        const CLanguageTag::SLanguageTag& state = *element->State();
        const std::string tag = Text(state.languageSDPTag);
        languages.push_back(tag.empty() ? Text(state.content) : tag);
    }
    return languages;
}

std::vector<std::string> Genres(const TOwnedList<CGenre>& list)
{
    std::vector<std::string> genres;
    for (const auto& element : list) {
        const CGenre::SGenre& genre = *element->State();
        const std::string text = genre.name != nullptr ? genre.name : Text(genre.content);
        if (const std::string& shown = text.empty() ? Text(genre.href) : text; !shown.empty()) {
            genres.push_back(shown);
        }
    }
    return genres;
}

/// Of each element what it says in words: its description, or the values of its dimensions.
std::vector<std::string> Ratings(const TOwnedList<CContentAdvRatings>& list)
{
    std::vector<std::string> all;
    for (const auto& element : list) {
        const CContentAdvRatings::SContentAdvRatings& ratings = *element->State();
        std::vector<std::string> texts;
        for (const auto& description : ratings.ratingDescriptions) {
            texts.push_back(Text(description.content));
        }
        if (Joined(texts).empty()) {
            for (const auto& rating : ratings.ratings) {
                const TESGText* value = &rating.ratingDimVal;
                if (!rating.ratingValueStrings.empty()) {
                    value = &rating.ratingValueStrings.front().content;
                }
                texts.push_back(Text(*value));
            }
        }
        if (std::string text = Joined(texts); !text.empty()) {
            all.push_back(std::move(text));
        }
    }
    return all;
}

SGuideWindow Window(const CPresentationWindow& element)
{
    const CPresentationWindow::SPresentationWindow& window = *element.State();
    SGuideWindow times = {FromNtp(window.startTime != 0 ? window.startTime : window.startTimeElement),
                          FromNtp(window.endTime != 0 ? window.endTime : window.endTimeElement)};
    if (const unsigned duration = Duration(element); times.start && !times.end && duration != 0) {
        times.end = *times.start + duration;
    }
    return times;
}

std::vector<SGuideReference> References(const TSchedule& state)
{
    std::vector<SGuideReference> references;
    for (const auto& element : state.contentRefs) {
        const CScheduleContentRef::SScheduleContentRef& content = *element->State();
        SGuideReference& reference = references.emplace_back();
        reference.contentId = Text(content.idRef);
        for (const auto& window : content.presentationWindows) {
            reference.windows.push_back(Window(*window));
        }
        if (reference.windows.empty()) {
            reference.windows.emplace_back();
        }
    }
    return references;
}

SGuideService Service(const TService& state)
{
    SGuideService service;
    service.fragmentId = Text(state.id);
    service.globalServiceId = Text(state.globalServiceID);
    service.names = SpokenTexts(state.names);
    service.descriptions = SpokenTexts(state.descriptions);
    service.genres = Genres(state.genres);
    if (state.serviceExt && state.serviceExt->State()->majorChannelNum != 0) {
        service.majorChannelNo = state.serviceExt->State()->majorChannelNum;
        service.minorChannelNo = state.serviceExt->State()->minorChannelNum;
    }
    return service;
}

SProgramme Programme(const TContent& state)
{
    SProgramme programme;
    programme.contentId = Text(state.id);
    programme.titles = SpokenTexts(state.names);
    programme.descriptions = SpokenTexts(state.descriptions);
    programme.genres = Genres(state.genres);
    programme.ratings = Ratings(state.contentAdvRatings);
    programme.audioLanguages = Languages(state.audioLanguages);
    programme.textLanguages = Languages(state.textLanguages);
    return programme;
}

}  // namespace

const char* FragmentTypeName(unsigned type)
{
    constexpr const char* k_names[] = {nullptr,       "Service",          "Content",      "Schedule",
                                       "Access",      "PurchaseItem",     "PurchaseData", "PurchaseChannel",
                                       "PreviewData", "InteractivityData"};
    return type < std::size(k_names) ? k_names[type] : nullptr;
}

SGuideFragment GuideFragment(unsigned type, const CESGFragmentBase& fragment)
{
    SGuideFragment held;
    held.type = type;
    const auto base = [&held](const SESGFragment& state) {
        held.id = Text(state.id);
        held.version = state.version;
        held.validFrom = FromNtp(state.validFrom);
        held.validTo = FromNtp(state.validTo);
    };
    if (type == 1) {
        const TService& state = *static_cast<const CESGServiceFragment&>(fragment).State();
        base(state);
        held.service = Service(state);
    } else if (type == 2) {
        const TContent& state = *static_cast<const CESGContentFragment&>(fragment).State();
        base(state);
        held.serviceId = Text(state.serviceRefId);
        held.programme = Programme(state);
    } else {
        const TSchedule& state = *static_cast<const CESGScheduleFragment&>(fragment).State();
        base(state);
        held.serviceId = Text(state.serviceRefId);
        held.references = References(state);
    }
    return held;
}

}  // namespace vyr::inspect
