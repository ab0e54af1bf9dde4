#pragma once

#include "../../common/CoreOS/PtrArray.h"
#include "../../common/ParseXML.h"
#include "../../platform/Api.h"
#include "LS.h"

/// Parser of the RS element of an S-TSID: one ROUTE session (ATSC A/331 table 7.2). An object
/// is for one element: further ones join its lists until Destroy, see SetReplace.
class VYR_API CRS : public XMLBase {
  public:
    /// What was parsed.
    struct SRS {
        SRS();

        unsigned short bsid;   ///< 65,535 always; required: it is not read
        unsigned int sIpAddr;  ///< source address, host byte order; 0xFFFFFFFF: not given, or no address
        unsigned int dIpAddr;  ///< destination address, likewise
        unsigned short dPort;  ///< destination port; 65,535: not given
        CCPtrArray ls;         ///< of CLS, owned, in document order
    };

    CRS();
    ~CRS() override;

    bool Create() override;
    void Destroy() override;
    /// Copies the record that each LCT session is given; null takes it back. False (asserted) before
    /// Create.
    bool SetCallback(const CLS::SCallback* callback);
    /// What was parsed; null before Create, good until Destroy.
    const SRS* State() const;

  private:
    struct SState;

    bool t_CreateCallback();
    bool m_ProcessParse(void* root) override;

    static void sm_CbLS(CRS* rs, void* cur);

    SState* m;
};
