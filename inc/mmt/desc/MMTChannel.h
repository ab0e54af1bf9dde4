#pragma once

#include <string>

#include "../../common/XmlElement.h"
#include "../../platform/Api.h"

/// Parser of the channel of an MMT service (ATSC A/331 7.2.1). Texts that are not given are empty.
class VYR_API CMMTChannel : public CXmlElement {
  public:
    /// Attributes of the element.
    struct SChannel {
        std::string serviceGenre;  ///< genre of the service
        std::string serviceIcon;   ///< URL of its icon
    };

    /// What was parsed; null before Create, good until Destroy.
    const SChannel* State() const { return t_Values<SChannel>(); }

  private:
    vyr::SXmlKind t_Kind() const override;
};
