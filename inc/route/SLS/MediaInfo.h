#pragma once

#include <optional>
#include <string>

#include "../../common/Owned.h"
#include "../../common/XmlElement.h"
#include "../../platform/Api.h"

class CContentRating;

/// Parser of the MediaInfo element of an S-TSID: what a media component is (ATSC A/331 table A.3.2). An object
/// is for one element: further ones join its lists until Destroy, see SetReplace. An
/// object that is not created is asserted ("m"); results are then 0 or false.
class VYR_API CMediaInfo : public CXmlElement {
  public:
    /// Kind of the media; CONTENT_OTHER also where it is not told.
    enum EContentType { CONTENT_OTHER = 0, CONTENT_AUDIO = 1, CONTENT_VIDEO = 2, CONTENT_SUBTITLES = 3 };

    /// What was parsed.
    struct SMediaInfo {
        bool startUp = false;  ///< whether the service can be shown without other components of the type
        std::string lang;      ///< BCP 47; empty: not given
        EContentType contentType = CONTENT_OTHER;    ///< CONTENT_OTHER: not given, or no name that is known
        std::string repId;                           ///< id of the DASH representation; empty: not given
        TOwnedArray<CContentRating> contentRatings;  ///< in document order

        /// Extension: what "startUp" says by XML Schema; empty: not given, or no boolean.
        std::optional<bool> givenStartUp;
    };

    /// Copies the id of the DASH representation; true. False, with `out` as it was, before Create.
    bool GetRepId(std::string& out) const;
    /// Number of content ratings, 0 before Create.
    int NumberOfContentRating() const;
    /// Copies the value of rating `index`, from 0; false, with `out` as it was: there is none.
    bool GetContentRating(int index, std::string& out) const;
    /// Logs what was parsed, at debug priority.
    void Dump() const;
    /// What was parsed; null before Create, good until Destroy.
    const SMediaInfo* State() const { return t_Values<SMediaInfo>(); }

  private:
    vyr::SXmlKind t_Kind() const override;
};
