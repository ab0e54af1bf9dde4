#pragma once

#include "../../common/ParseXML.h"
#include "../../platform/Api.h"
#include "AppSvc.h"

/// Parser of an application service that is reached over broadband. The patterns of every element that is
/// parsed join those already held, until Destroy; see SetReplace.
class VYR_API CUnicastAppSvc : public XMLBase {
  public:
    CUnicastAppSvc();
    ~CUnicastAppSvc() override;

    bool Create() override;
    void Destroy() override;
    /// What was parsed; null before Create, good until Destroy.
    const SAppSvc* State() const;

  private:
    struct SState;

    bool t_CreateCallback();
    bool m_ProcessParse(void* root) override;

    static void sm_CbBasePattern(CUnicastAppSvc* service, void* node);

    SState* m;
};
