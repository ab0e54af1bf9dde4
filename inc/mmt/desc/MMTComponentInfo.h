#pragma once

#include <string>

#include "../../common/XmlElement.h"
#include "../../platform/Api.h"

/// Parser of the description of one component of an MMT service (ATSC A/331 7.2.1).
class VYR_API CMMTComponentInfo : public CXmlElement {
  public:
    /// Attributes of the element.
    struct SComponentInfo {
        unsigned char componentType = 0;      ///< 0 audio, 1 video, 2 caption; low 8 bits, 0 when not given
        unsigned char componentRole = 0;      ///< depends on the type; low 8 bits, 0 when not given
        bool componentProtectedFlag = false;  ///< asserted when not given, and false then
        std::string componentId;              ///< asset id of the component; empty: not given
        std::string componentName;            ///< for people; empty: not given
    };

    /// What was parsed; null before Create, good until Destroy.
    const SComponentInfo* State() const { return t_Values<SComponentInfo>(); }

  private:
    vyr::SXmlKind t_Kind() const override;
};
