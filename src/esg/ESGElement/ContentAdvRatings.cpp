#include "esg/ESGElement/ContentAdvRatings.h"

#include "esg/ESGKind.h"

namespace {

using TState = CContentAdvRatings::SContentAdvRatings;

using SRating = CContentAdvRatings::SRating;

void ReadText(CContentAdvRatings::SRatingText& text, void* node)
{
    vyr::ReadContent(node, text.content);
    vyr::ReadAttribute(node, "lang", text.lang);
}

void ReadAttributes(TState& state, void* node)
{
    vyr::ReadAttribute(node, "lang", state.lang);
}

/// The rating that an element outside of RatingDimVal belongs to: a new one where the last has it already.
SRating& Rating(TState* state, bool (*has)(const SRating& rating))
{
    if (state->ratings.empty() || has(state->ratings.back())) {
        state->ratings.emplace_back();
    }
    return state->ratings.back();
}

void TakeDimension(TState* state, void* child)
{
    SRating& rating = Rating(state, [](const SRating& last) { return last.hasDimension; });
    rating.hasDimension = true;
    vyr::ReadContent(child, rating.ratingDimension);
}

void TakeDimVal(TState* state, void* child);

void TakeValueString(TState* state, void* child)
{
    SRating& rating = Rating(state, [](const SRating&) { return false; });
    ReadText(rating.ratingValueStrings.emplace_back(), child);
}

constexpr vyr::SElementHandler<TState> k_handlers[] = {
    {"RegionIdentifier", vyr::TakeContent<&TState::regionIdentifier>},
    {"RatedDimensions", vyr::TakeContent<&TState::ratedDimensions>},
    {"RatingDescription", vyr::TakeRecord<&TState::ratingDescriptions, ReadText>},
    {"RatingDimension", TakeDimension},
    {"RatingDimVal", TakeDimVal},
    {"RatingValueString", TakeValueString},
};

void TakeDimVal(TState* state, void* child)
{
    if (vyr::FirstElement(child)) {
        state->ratings.emplace_back();
        vyr::DispatchChildren(state, k_handlers, child);
    } else {
        vyr::ReadContent(child,
                         Rating(state, [](const SRating& last) { return last.ratingDimVal != nullptr; }).ratingDimVal);
    }
}

}  // namespace

const vyr::SESGKind& CContentAdvRatings::t_Kind() const
{
    return vyr::ElementKind<TState, ReadAttributes, k_handlers>("CContentAdvRatings", "ContentAdvisoryRatings");
}
