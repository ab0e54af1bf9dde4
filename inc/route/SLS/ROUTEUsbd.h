#pragma once

#include "../../common/CoreOS/PtrArray.h"
#include "../../common/ParseXML.h"
#include "../../platform/Api.h"

class CServiceLinkage;

/// Parser of the ROUTE user service bundle description of one service (USBD; ATSC A/331 7.1.3). Callers
/// make a new object for each document: the lists of one that is parsed again grow until Destroy, see SetReplace. An
/// object that is not created is asserted ("m"); results are then 0, false or null.
class VYR_API CROUTEUsbd : public XMLBase {
  public:
    /// What was parsed and has no getter of its own; all of it belongs to the USBD.
    struct SROUTEUsbd {
        SROUTEUsbd();
        ~SROUTEUsbd();
        SROUTEUsbd(const SROUTEUsbd&) = delete;
        SROUTEUsbd& operator=(const SROUTEUsbd&) = delete;

        char* globalServiceId;            ///< new[]; null: not given
        unsigned short serviceId;         ///< 65,535: not given
        bool serviceStatus;               ///< whether the service is on
        CCPtrArray names;                 ///< of CServiceName
        CCPtrArray languages;             ///< of char*, new[]: the text of each serviceLanguage
        CCPtrArray deliveryMethods;       ///< of CDeliveryMethod
        CServiceLinkage* serviceLinkage;  ///< the last one; null: none
    };

    CROUTEUsbd();
    ~CROUTEUsbd() override;

    bool Create() override;
    void Destroy() override;

    /// globalServiceID, else globalServiceId; null: neither. Good until the next Parse or Destroy.
    const char* GlobalServiceId() const;
    /// Id of the service; 65,535: not given.
    unsigned short ServiceId() const;
    /// Whether the service is on: true before a user service description is read, and by its
    /// "serviceStatus" afterwards, where a missing one is false (required).
    bool ServiceStatus() const;
    /// Number of delivery methods.
    int NumOfDeliveryMethod() const;
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
    /// What was parsed; null before Create, good until Destroy.
    const SROUTEUsbd* State() const;

  private:
    struct SState;

    bool t_CreateCallback();
    bool m_ProcessParse(void* root) override;
    void m_Dispatch(void* node);

    static void sm_CbUSD(CROUTEUsbd* usbd, void* node);
    static void sm_CbName(CROUTEUsbd* usbd, void* cur);
    static void sm_CbSvcLanguage(CROUTEUsbd* usbd, void* node);
    static void sm_CbDeliveryMethod(CROUTEUsbd* usbd, void* cur);
    static void sm_CbServiceLinkage(CROUTEUsbd* usbd, void* cur);

    SState* m;
};
