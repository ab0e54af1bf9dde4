#pragma once

#include "platform/Api.h"
#include "route/SLS/AppSvc.h"

/// Parser of an application service that is reached over broadband.
class VYR_API CUnicastAppSvc : public CAppSvc {
  public:
    CUnicastAppSvc();

  private:
    static const STexts sm_texts;
};
