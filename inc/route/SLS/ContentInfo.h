#pragma once

#include <string>

#include "../../common/Owned.h"
#include "../../common/XmlElement.h"
#include "../../platform/Api.h"

class CMediaInfo;

/// Parser of the ContentInfo element of an S-TSID: what a source flow carries (ATSC A/331 table A.3.2).
/// An object that is not created is asserted ("m"); results are then empty, 0 or false.
class VYR_API CContentInfo : public CXmlElement {
  public:
    /// What was parsed.
    struct SContentInfo {
        std::string contentId;         ///< repId of the media information, else the text of the element
        std::string aeaId;             ///< emergency alert that the content belongs to; empty: none
        TOwned<CMediaInfo> mediaInfo;  ///< the last one; null: none
    };

    /// Copies the content identifier; true. False, with `out` as it was, before Create.
    bool GetContentId(std::string& out) const;
    /// Emergency alert that the content belongs to (AEAId); empty: none.
    std::string GetAEAId() const;
    /// Number of content ratings, 0 before Create.
    int NumberOfContentRating() const;
    /// Copies the value of rating `index` of the media information; false, with `out` as it was: none.
    bool GetContentRating(int index, std::string& out) const;
    /// What was parsed; null before Create, good until Destroy.
    const SContentInfo* State() const { return t_Values<SContentInfo>(); }

  private:
    vyr::SXmlKind t_Kind() const override;
};
