#pragma once

#include <string>

#include "../../common/XmlElement.h"
#include "../../platform/Api.h"

/// Parser of the broadband component of an MMT service (ATSC A/331 7.2.1): where the MPD of its broadband part is.
class VYR_API CMMTBroadbandComponent : public CXmlElement {
  public:
    /// Attributes of the element.
    struct SBroadbandComponent {
        std::string fullMPDUri;  ///< URI of the MPD; empty: not given
    };

    /// What was parsed; null before Create, good until Destroy.
    const SBroadbandComponent* State() const { return t_Values<SBroadbandComponent>(); }

  private:
    vyr::SXmlKind t_Kind() const override;
};
