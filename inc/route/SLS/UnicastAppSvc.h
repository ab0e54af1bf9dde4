#pragma once

#include "../../common/XmlElement.h"
#include "../../platform/Api.h"
#include "AppSvc.h"

/// Parser of an application service that is reached over broadband. The patterns of every element that is
/// parsed join those already held, until Destroy; see SetReplace.
class VYR_API CUnicastAppSvc : public CXmlElement {
  public:
    /// What was parsed; null before Create, good until Destroy.
    const SAppSvc* State() const { return t_Values<SAppSvc>(); }

  private:
    vyr::SXmlKind t_Kind() const override;
};
