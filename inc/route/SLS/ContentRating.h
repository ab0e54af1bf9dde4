#pragma once

#include <string>

#include "../../common/XmlElement.h"
#include "../../platform/Api.h"

/// Parser of a content rating element of the content information of an S-TSID (ATSC A/331 annex A.3.2).
/// An object that is not created is asserted ("m").
class VYR_API CContentRating : public CXmlElement {
  public:
    /// What was parsed.
    struct SContentRating {
        std::string schemeIdUri;  ///< rating scheme; empty: not given
        std::string value;        ///< rating in that scheme; empty: not given
    };

    /// Copies the value; true. False, with `out` as it was, before Create.
    bool GetContentRating(std::string& out) const;
    /// What was parsed; null before Create, good until Destroy.
    const SContentRating* State() const { return t_Values<SContentRating>(); }

  private:
    vyr::SXmlKind t_Kind() const override;
};
