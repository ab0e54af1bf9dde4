#pragma once

#include <string>

#include "../../common/XmlElement.h"
#include "../../platform/Api.h"

/// Parser of the ROUTE component of an MMT service (ATSC A/331 7.2.1): where the S-TSID of its ROUTE part is.
class VYR_API CMMTRouteComponent : public CXmlElement {
  public:
    /// Attributes of the element.
    struct SRouteComponent {
        std::string sTSIDUri;                        ///< URI of the S-TSID; empty: not given
        unsigned int sTSIDDestinationIpAddress = 0;  ///< host order; 0: not given; 0xFFFFFFFF: no address
        unsigned short sTSIDDestinationUdpPort = 0;  ///< 0: not given
        unsigned int sTSIDSourceIpAddress = 0;       ///< like the destination
        int sTSIDMajorProtocolVersion = 0;           ///< 0: not given
        int sTSIDMinorProtocolVersion = 0;           ///< 0: not given
    };

    /// What was parsed; null before Create, good until Destroy.
    const SRouteComponent* State() const { return t_Values<SRouteComponent>(); }

  private:
    vyr::SXmlKind t_Kind() const override;
};
