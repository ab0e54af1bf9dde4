#pragma once

#include <string>

#include "../../common/XmlElement.h"
#include "../../platform/Api.h"

/// Parser of a name element of the user service bundle description of an MMT service (ATSC A/331 7.2.1).
class VYR_API CMMTName : public CXmlElement {
  public:
    /// A name.
    struct SName {
        std::string name;  ///< the element's text
        std::string lang;  ///< its language, BCP 47; empty: not given
    };

    /// What was parsed; null before Create, good until Destroy.
    const SName* State() const { return t_Values<SName>(); }

  private:
    vyr::SXmlKind t_Kind() const override;
};
