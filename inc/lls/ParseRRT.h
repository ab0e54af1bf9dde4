#pragma once

#include <optional>
#include <string>
#include <vector>

#include "../platform/Api.h"
#include "ParseLLS.h"

/// Records of the rating region table (ATSC A/331).
struct SParseRRT {
    /// A text and its language.
    struct STextType {
        std::string text;  ///< empty: none
        std::string lang;  ///< "en" when the table does not say
    };

    /// One Rating element.
    struct SRating {
        int ratingValue = 0;     ///< number of the rating in its dimension
        STextType abbreviation;  ///< the last RatingValueAbbrev
        STextType text;          ///< the last RatingValueString
    };

    /// One Dimension element.
    struct SDimension {
        int dimensionLevels = 0;          ///< number of values that it is said to have
        bool dimensionGraduated = false;  ///< whether higher values include lower ones
        STextType title;                  ///< the last DimensionTitle
        std::vector<SRating> ratings;     ///< in document order
    };

    /// One RatingRegionTable element.
    struct SRegion {
        int regionIdentifier = 0;            ///< number of the region
        STextType text;                      ///< the last RegionIdText
        std::vector<SDimension> dimensions;  ///< in document order
    };
};

/// Parser of the rating region table (RRT, LLS_table_id 2): regions, each with dimensions, each with
/// rating values. Required: tables pile up. The regions of each join those held, until Destroy; see
/// SetReplace.
///
/// Getters address a region r, its dimension d and that one's rating k, all from 0. One that is out of
/// range is logged: false or 0, outputs untouched. An object that is not created is asserted ("m").
class VYR_API CParseRRT : public TCParseLLS {
  public:
    /// Told with the number 1 after each table that parsed, inside Parse and on its thread: its regions are
    /// held. What it may call: see TCParseLLS.
    struct SCallback {
        void* userData;                          ///< handed back to fn
        void (*fn)(void* userData, int result);  ///< null: nobody is told
    };

    /// Extension: what attributes of a dimension say by XML Schema; empty: not given, or no boolean.
    struct SGiven {
        std::optional<bool> dimensionGraduated;  ///< whether higher values include lower ones
    };

    CParseRRT();
    /// Destroy comes first, else "!m" is asserted.
    ~CParseRRT() override;

    /// Makes the parser ready; false when it is already (asserted).
    bool Create();
    /// Frees every region; the object can be created anew.
    void Destroy() override;
    /// Copies the record; null takes it back.
    bool SetCallback(const CParseRRT::SCallback* callback);
    /// Remembers the caller's channel context.
    bool Start(void* channel);
    /// Counterpart of Start; changes nothing.
    bool Stop();

    /// Extension, off by default: what a table brings takes the place of what the last table of its group
    /// left, see TCParseLLS. What was handed out of those is gone then.
    void SetReplace(bool replace);

    /// Number of regions held.
    unsigned int numOfRatingRegionTable() const;
    /// Number of the region: regionIdentifier.
    bool GetRegionIdentifier(unsigned int r, unsigned int& identifier) const;
    /// Name of the region: the last RegionIdText.
    bool GetRegionIdText(unsigned int r, std::string& text) const;
    /// Number of dimensions of the region.
    unsigned int numOfDimension(unsigned int r) const;
    /// Number of values that the dimension is said to have.
    bool GetDimensionLevels(unsigned int r, unsigned int d, unsigned int& levels) const;
    /// Whether higher values include lower ones.
    bool GetDimensionGraduated(unsigned int r, unsigned int d, bool& graduated) const;
    /// Name of the dimension: the last DimensionTitle.
    bool GetDimensionTitle(unsigned int r, unsigned int d, std::string& title) const;
    /// Number of ratings of the dimension.
    unsigned int numOfRating(unsigned int r, unsigned int d) const;
    /// Number of the rating: ratingValue.
    bool GetRatingValue(unsigned int r, unsigned int d, unsigned int k, unsigned int& value) const;
    /// Short form of the rating: the last RatingValueAbbrev.
    bool GetRatingValueAbbrev(unsigned int r, unsigned int d, unsigned int k, std::string& abbreviation) const;
    /// Long form of the rating: the last RatingValueString.
    bool GetRatingValueString(unsigned int r, unsigned int d, unsigned int k, std::string& text) const;
    /// All of region r, languages included, null outside the range; good until the next Parse or Destroy.
    const SParseRRT::SRegion* GetRegion(unsigned int r) const;
    /// Extension: what dimension d of region r gives; likewise.
    const SGiven* Given(unsigned int r, unsigned int d) const;

  protected:
    bool t_Parse(IParse::SItem* item) override;

  private:
    struct SState;

    bool m_isValidIndex(unsigned int r, unsigned int d, unsigned int k) const;

    SState* m;
};
