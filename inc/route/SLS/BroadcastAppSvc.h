#pragma once

#include "platform/Api.h"
#include "route/SLS/AppSvc.h"

/// Parser of an application service that is reached over the air.
class VYR_API CBroadcastAppSvc : public CAppSvc {
  public:
    CBroadcastAppSvc();

  private:
    static const STexts sm_texts;
};
