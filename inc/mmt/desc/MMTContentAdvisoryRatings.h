#pragma once

#include <string>
#include <vector>

#include "../../common/XmlElement.h"
#include "../../platform/Api.h"

/// Parser of the content advisory ratings of one rating region (ATSC A/331 7.2.1; rating regions are those of
/// the RRT). Each element parsed takes the place of the one before.
class VYR_API CMMTContentAdvisoryRatings : public CXmlElement {
  public:
    /// A text in one language.
    struct SText {
        std::string text;  ///< may be empty
        std::string lang;  ///< BCP 47; empty: not given
    };
    /// A rating in one dimension of the region: RatingDimVal.
    struct SDimension {
        int dimension;              ///< RatingDimension: index of the dimension; 0: not given
        std::vector<SText> values;  ///< RatingValueString, in each language
    };
    /// The children of the element.
    struct SContentAdvisoryRatings {
        int regionIdentifier = 0;         ///< RegionIdentifier; 0: not given
        std::vector<SText> descriptions;  ///< RatingDescription, in each language
        int ratedDimensions = 0;          ///< RatedDimensions, the number announced; 0: not given
        std::vector<SDimension> ratings;  ///< in document order
    };

    /// The rating as one string: region, description and each dimension with its value, such as
    /// "1,'TV-PG-L',{0 'TV-PG'}{1 'L'}". Of texts in several languages it has the first; a text that is not
    /// given is empty in it. True; an object that is not created is asserted ("m"): false.
    bool GetContentRatingString(std::string& rating) const;
    /// What was parsed; null before Create, good until Destroy.
    const SContentAdvisoryRatings* State() const { return t_Values<SContentAdvisoryRatings>(); }

  private:
    vyr::SXmlKind t_Kind() const override;
};
