#pragma once

#include "../../common/Owned.h"
#include "../../common/XmlElement.h"
#include "../../platform/Api.h"
#include "BroadcastAppSvc.h"
#include "UnicastAppSvc.h"

/// Parser of a delivery method of a user service description: the paths on which the content of the
/// service is reached (ATSC A/331 table 7.1). The services of every element that is parsed join those
/// already held, until Destroy; see SetReplace.
class VYR_API CDeliveryMethod : public CXmlElement {
  public:
    /// What was parsed.
    struct SDeliveryMethod {
        TOwnedArray<CUnicastAppSvc> unicastAppSvcs;      ///< in document order
        TOwnedArray<CBroadcastAppSvc> broadcastAppSvcs;  ///< in document order
    };

    /// What was parsed; null before Create, good until Destroy.
    const SDeliveryMethod* State() const { return t_Values<SDeliveryMethod>(); }

  private:
    vyr::SXmlKind t_Kind() const override;
};
