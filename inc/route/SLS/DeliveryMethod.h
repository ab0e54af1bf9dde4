#pragma once

#include <list>

#include "../../common/ParseXML.h"
#include "../../platform/Api.h"
#include "BroadcastAppSvc.h"
#include "UnicastAppSvc.h"

/// Parser of a delivery method of a user service description: the paths on which the content of the
/// service is reached (ATSC A/331 table 7.1). The services of every element that is parsed join those
/// already held, until Destroy; see SetReplace.
class VYR_API CDeliveryMethod : public XMLBase {
  public:
    /// What was parsed; the objects belong to the delivery method.
    struct SDeliveryMethod {
        std::list<CBroadcastAppSvc*> broadcastAppSvcs;  ///< in document order
        std::list<CUnicastAppSvc*> unicastAppSvcs;      ///< in document order
    };

    CDeliveryMethod();
    ~CDeliveryMethod() override;

    bool Create() override;
    void Destroy() override;
    /// What was parsed; null before Create, good until Destroy.
    const SDeliveryMethod* State() const;

  private:
    struct SState;

    bool t_CreateCallback();
    bool m_ProcessParse(void* root) override;

    static void sm_CbBroadcastAppSvc(CDeliveryMethod* method, void* cur);
    static void sm_CbUnicastAppSvc(CDeliveryMethod* method, void* cur);

    SState* m;
};
