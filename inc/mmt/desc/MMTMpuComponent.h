#pragma once

#include <string>

#include "../../common/XmlElement.h"
#include "../../platform/Api.h"

/// Parser of the MPU component of an MMT service (ATSC A/331 7.2.1): its packages and contents, now and next.
/// Texts that are not given are empty.
class VYR_API CMMTMpuComponent : public CXmlElement {
  public:
    /// Attributes of the element.
    struct SMpuComponent {
        std::string mmtPackageId;              ///< package on the air
        std::string contentIdSchemeIdUri;      ///< scheme of the content's id
        std::string contentIdValue;            ///< id of the content
        std::string nextMMTPackageId;          ///< package that follows
        std::string nextContentIdSchemeIdUri;  ///< scheme of the id of the content that follows
        std::string nextContentIdValue;        ///< id of the content that follows
    };

    /// What was parsed; null before Create, good until Destroy.
    const SMpuComponent* State() const { return t_Values<SMpuComponent>(); }

  private:
    vyr::SXmlKind t_Kind() const override;
};
