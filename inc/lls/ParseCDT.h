#pragma once

#include <list>
#include <optional>
#include <string>

#include "../common/ATSC3TimeUtility.h"
#include "../platform/Api.h"
#include "ParseLLS.h"

/// Parser of the certification data table (CDT, LLS_table_id 6; ATSC A/331, over A/360): signing
/// certificates, their replacement, OCSP data and the signature over them. Signatures are not verified
/// here: the exact signed bytes are handed out for it. Certificates, responses and signature are base64
/// texts as they stand. Those outside of a ToBeSignedData join those held, until Destroy; see SetReplace. An
/// object that is not created is asserted ("m"); getters then give false.
class VYR_API CParseCDT : public TCParseLLS {
  public:
    /// Extension: times as the tables give them; empty: never given.
    struct SGiven {
        std::optional<SGivenTime> nextCertFrom;      ///< of CertReplacement, xs:dateTime
        std::optional<SGivenTime> currentCertUntil;  ///< likewise
        std::optional<SGivenTime> ocspRefresh;       ///< what GetOCSPRefresh was read from, xs:duration
    };

    CParseCDT();
    /// Destroy comes first, else that is asserted.
    ~CParseCDT() override;

    /// Makes the parser ready; false when it is already (asserted).
    bool Create();
    /// Frees all that was parsed; the object can be created anew.
    void Destroy() override;

    /// Extension, off by default: the certificates and responses that a table brings take the place of what the last
    /// table of its group left, see TCParseLLS. A ToBeSignedData begins the lists anew, with or without.
    void SetReplace(bool replace);

    /// Text of CurrentCert.
    bool GetCurrentCert(std::string& cert) const;
    /// Attributes of CertReplacement; the times are epoch seconds (0: never given; -1: no date, or behind 4,096 of
    /// them in a table), one second late (required).
    bool GetCertReplacement(std::string& nextCert, long long& nextCertFrom, long long& currentCertUntil) const;
    /// The same; where a `long` has 32 bits, times that it cannot hold are its greatest or least.
    bool GetCertReplacement(std::string& nextCert, long& nextCertFrom, long& currentCertUntil) const;
    /// Interval at which OCSP responses are renewed, seconds; 0: never given.
    bool GetOCSPRefresh(int& seconds) const;
    /// Extension: the times above, and the interval, as they are given; null (asserted) before Create, good until the
    /// next Parse or Destroy.
    const SGiven* Given() const;
    /// Text of CMSSignedData.
    bool GetCMSSignedData(std::string& data) const;
    /// The ToBeSignedData element as libxml2 writes it, which is what is signed where it was written so: quotes, empty
    /// elements and references can read otherwise than in the document.
    bool GetToBeSignedData(std::string& text) const;
    /// Text of each Certificates element since the last ToBeSignedData began, in order.
    bool GetCertificates(std::list<std::string>& certs) const;
    /// Text of each OCSPResponse element since the last ToBeSignedData began, in order.
    bool GetOCSPResponse(std::list<std::string>& responses) const;

  protected:
    bool t_Parse(IParse::SItem* item) override;

  private:
    struct SState;

    void m_DumpCDT() const;

    SState* m;
};
