#pragma once

#include <optional>

#include "../../common/Owned.h"
#include "../../common/XmlElement.h"
#include "../../platform/Api.h"

class CDeliveryMethod;
class CServiceLinkage;
class CServiceName;

/// Parser of the ROUTE user service bundle description of one service (USBD; ATSC A/331 7.1.3). Callers
/// make a new object for each document: the lists of one that is parsed again grow until Destroy, see SetReplace. An
/// object that is not created is asserted ("m"); results are then 0, false or null.
class VYR_API CROUTEUsbd : public CXmlElement {
  public:
    /// What was parsed and has no getter of its own; all of it belongs to the USBD.
    struct SROUTEUsbd {
        const char* globalServiceId = nullptr;         ///< null: not given
        unsigned short serviceId = 0xFFFF;             ///< 65,535: not given
        bool serviceStatus = true;                     ///< whether the service is on
        TOwnedArray<CServiceName> names;               ///< name
        TTextArray languages;                          ///< the text of each serviceLanguage
        TOwnedArray<CDeliveryMethod> deliveryMethods;  ///< deliveryMethod
        TOwned<CServiceLinkage> serviceLinkage;        ///< the last one; null: none

        /// Extension: what "serviceStatus" says by XML Schema; empty: not given, or no boolean.
        std::optional<bool> givenServiceStatus;
    };

    /// globalServiceID, else globalServiceId; null: neither. Good until the next Parse or Destroy.
    const char* GlobalServiceId() const;
    /// Id of the service; 65,535: not given.
    unsigned short ServiceId() const;
    /// Whether the service is on: true before a user service description is read, and by its
    /// "serviceStatus" afterwards, where a missing one is false (required).
    bool ServiceStatus() const;
    /// Number of delivery methods.
    int NumOfDeliveryMethod() const;
    /// Id of the linked service; -1: no service linkage.
    int LinkServiceId() const;
    /// serviceCategory of the linked service; -1: no service linkage.
    int ServiceCategory() const;
    /// Kind of the service linkage; -1: none.
    int LinkageType() const;
    /// Begin of the service linkage, xs:dateTime as it stands; null: none, or not given.
    const char* ActivationTime() const;
    /// End of the service linkage; likewise.
    const char* DeActivationTime() const;
    /// What was parsed; null before Create, good until Destroy.
    const SROUTEUsbd* State() const { return t_Values<SROUTEUsbd>(); }

  private:
    vyr::SXmlKind t_Kind() const override;
};
