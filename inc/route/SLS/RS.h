#pragma once

#include <optional>

#include "../../common/Owned.h"
#include "../../common/XmlElement.h"
#include "../../platform/Api.h"
#include "LS.h"

/// Parser of the RS element of an S-TSID: one ROUTE session (ATSC A/331 table 7.2). An object
/// is for one element: further ones join its lists until Destroy, see SetReplace.
class VYR_API CRS : public CXmlElement {
  public:
    /// What was parsed.
    struct SRS {
        unsigned short bsid = 65535;        ///< 65,535 always; required: it is not read
        unsigned int sIpAddr = 0xFFFFFFFF;  ///< source address, host byte order; 0xFFFFFFFF: not given, or no address
        unsigned int dIpAddr = 0xFFFFFFFF;  ///< destination address, likewise
        unsigned short dPort = 65535;       ///< destination port; 65,535: not given
        TOwnedArray<CLS> ls;                ///< in document order
    };

    /// Extension: what the element gives by XML Schema; empty: not given, or no number.
    struct SGiven {
        std::optional<long long> bsid;  ///< broadcast stream of the session; not given: that of the S-TSID
    };

    /// Copies the record that each LCT session is given; null takes it back. False (asserted) before
    /// Create.
    bool SetCallback(const CLS::SCallback* callback);
    /// What was parsed; null before Create, good until Destroy.
    const SRS* State() const { return t_Values<SRS>(); }
    /// Extension: what the element gives; likewise.
    const SGiven* Given() const;

  private:
    vyr::SXmlKind t_Kind() const override;
};
