#pragma once

#include <string>

#include "../../common/ParseXML.h"
#include "../../platform/Api.h"

/// Parser of a content rating element of the content information of an S-TSID (ATSC A/331 annex A.3.2).
/// An object that is not created is asserted ("m").
class VYR_API CContentRating : public XMLBase {
  public:
    /// What was parsed.
    struct SContentRating {
        std::string schemeIdUri;  ///< rating scheme; empty: not given
        std::string value;        ///< rating in that scheme; empty: not given
    };

    CContentRating();
    ~CContentRating() override;

    bool Create() override;
    void Destroy() override;
    /// Copies the value; true. False, with `out` as it was, before Create.
    bool GetContentRating(std::string& out) const;
    /// What was parsed; null before Create, good until Destroy.
    const SContentRating* State() const;

  private:
    struct SState;

    bool t_CreateCallback();
    bool m_ProcessParse(void* root) override;

    SState* m;
};
