#pragma once

#include "../../common/ParseXML.h"
#include "../../platform/Api.h"
#include "AppSvc.h"

/// Parser of an application service that is reached over the air. The patterns of every element that is
/// parsed join those already held, until Destroy; see SetReplace.
class VYR_API CBroadcastAppSvc : public XMLBase {
  public:
    CBroadcastAppSvc();
    ~CBroadcastAppSvc() override;

    bool Create() override;
    void Destroy() override;
    /// What was parsed; null before Create, good until Destroy.
    const SAppSvc* State() const;

  private:
    struct SState;

    bool t_CreateCallback();
    bool m_ProcessParse(void* root) override;

    static void sm_CbBasePattern(CBroadcastAppSvc* service, void* node);

    SState* m;
};
