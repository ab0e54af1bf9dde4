#pragma once

#include "../platform/Api.h"
#include "XmlElement.h"

/// Parser of a service linkage: another service that stands in for the one it is found with, and when.
/// An object that is not created is asserted ("m"); results are then 0 or null.
class VYR_API CServiceLinkage : public CXmlElement {
  public:
    /// Values of the element; numbers that are not given have all bits set.
    struct SServiceLinkage {
        unsigned short bsid;           ///< broadcast stream of the linked service
        unsigned char LLSGroupId;      ///< LLS group that announces it
        unsigned short serviceId;      ///< its id
        int linkageType;               ///< as it stands
        int serviceCategory;           ///< as CChannelMap has it
        bool broadbandAccessRequired;  ///< required: read from "broadbandAccessRequied", spelt so
        const char* activationTime;    ///< xs:dateTime as it stands; null: not given
        const char* deActivationTime;  ///< likewise
        const char* svcCapabilities;   ///< null: not given
        const char* linkageData;       ///< null: not given
    };

    /// Id of the linked service.
    unsigned short LinkServiceId() const;
    /// Begin and end of the linkage, xs:dateTime as it stands; null: not given. Good until the next
    /// Parse or Destroy.
    const char* ActivationTime() const;
    /// See ActivationTime.
    const char* DeActivationTime() const;
    /// serviceCategory of the linked service.
    int ServiceCategory() const;
    /// Kind of linkage.
    int LinkageType() const;
    /// All values; null before Create, good until Destroy.
    const SServiceLinkage* State() const { return t_Values<SServiceLinkage>(); }
    /// Writes the values to the log.
    void Dump() const;

  private:
    vyr::SXmlKind t_Kind() const override;
};
