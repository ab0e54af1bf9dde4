#pragma once

#include "ESGElement.h"

/// Ratings of a content: the ContentAdvisoryRatings element.
class VYR_API CContentAdvRatings : public CESGElement {
  public:
    /// A text of a rating.
    struct SRatingText {
        TESGText content;  ///< text
        TESGText lang;     ///< lang
    };

    /// The rating in one dimension: a RatingDimVal with its children, or these elements in a row.
    struct SRating {
        int ratingDimension = 0;                      ///< RatingDimension, text: index of the dimension
        bool hasDimension = false;                    ///< whether there is a RatingDimension
        TESGText ratingDimVal;                        ///< RatingDimVal, text, where it has no children
        std::vector<SRatingText> ratingValueStrings;  ///< RatingValueString
    };

    /// What was parsed.
    struct SContentAdvRatings : SESGState {
        TESGText lang;                                ///< lang of the element itself
        int regionIdentifier = 0;                     ///< RegionIdentifier, text: the rating region
        int ratedDimensions = 0;                      ///< RatedDimensions, text: number of dimensions
        std::vector<SRatingText> ratingDescriptions;  ///< RatingDescription
        std::vector<SRating> ratings;                 ///< one for each dimension
    };

    /// The record; null before Create.
    const SContentAdvRatings* State() const { return static_cast<const SContentAdvRatings*>(t_State()); }

  private:
    const vyr::SESGKind& t_Kind() const override;
};
