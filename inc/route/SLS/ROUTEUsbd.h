#pragma once

#include <optional>

#include "../../common/Owned.h"
#include "../../common/Usbd.h"
#include "../../platform/Api.h"

class CDeliveryMethod;
class CServiceLinkage;
class CServiceName;

/// Parser of the ROUTE user service bundle description of one service (ATSC A/331 7.1.3).
class VYR_API CROUTEUsbd : public CUsbd {
  public:
    /// What was parsed; all of it belongs to the USBD.
    struct SROUTEUsbd : SUsbd {
        /// Required: a service is on until a user service description is read, where a missing status is off.
        VYR_API SROUTEUsbd();

        TOwnedArray<CServiceName> names;               ///< name
        TTextArray languages;                          ///< the text of each serviceLanguage
        TOwnedArray<CDeliveryMethod> deliveryMethods;  ///< deliveryMethod
        TOwned<CServiceLinkage> serviceLinkage;        ///< the last one; null: none

        /// Extension: what "serviceStatus" says by XML Schema; empty: not given, or no boolean.
        std::optional<bool> givenServiceStatus;
    };

    /// Number of delivery methods.
    int NumOfDeliveryMethod() const;
    /// What was parsed; null before Create, good until Destroy.
    const SROUTEUsbd* State() const { return t_Values<SROUTEUsbd>(); }

  private:
    const SUsbd* m_Usbd() const override { return State(); }
    const CServiceLinkage* m_Linkage() const override { return State()->serviceLinkage.get(); }
    vyr::SXmlKind t_Kind() const override;
};
