#pragma once

#include "../platform/Api.h"
#include "XmlElement.h"

class CServiceLinkage;

/// What the records of both user service bundle descriptions begin with.
struct SUsbd {
    const char* globalServiceId = nullptr;  ///< null: not given
    unsigned short serviceId = 0;           ///< 65,535: not given
    bool serviceStatus = false;             ///< whether the service is on
};

/// Base of the parsers of the user service bundle description of one service (USBD; ATSC A/331 7.1.3, 7.2.1). Callers
/// make a new object for each document: the lists of one that is parsed again grow until Destroy, see SetReplace. An
/// object that is not created is asserted ("m"); results are then 0, false or null.
class VYR_API CUsbd : public CXmlElement {
  public:
    ~CUsbd() override;

    /// globalServiceID, else globalServiceId; null: neither. Good until the next Parse or Destroy.
    const char* GlobalServiceId() const;
    /// Id of the service; 65,535: not given.
    unsigned short ServiceId() const;
    /// Whether the service is on: of a user service description true exactly when its "serviceStatus" is 1.
    bool ServiceStatus() const;

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

  private:
    /// The record; null before Create.
    virtual const SUsbd* m_Usbd() const = 0;
    /// The linkage in it; null: none.
    virtual const CServiceLinkage* m_Linkage() const = 0;
    bool m_Created(const char* function) const;
};
