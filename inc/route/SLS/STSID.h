#pragma once

#include <string>

#include "../../common/Owned.h"
#include "../../common/XmlElement.h"
#include "../../platform/Api.h"
#include "LS.h"

class CRS;

/// Parser of the service-based transport session instance description (S-TSID; ATSC A/331 7.1.4): where
/// the components of a service travel. Sessions of every element that is parsed join those already held,
/// until Destroy; see SetReplace. Callers make a new object for each document.
///
/// Below, `i` is a ROUTE session and `j` an LCT session of it, each from 0. One that does not exist is
/// asserted (GetTSI and GetContentRating tell of it in their result), and gives what an LCT session
/// without a source flow gives: an empty string, false, 0, null.
class VYR_API CSTSID : public CXmlElement {
  public:
    /// What was parsed.
    struct SSTSID {
        TOwnedArray<CRS> routeSessions;  ///< in document order
    };

    /// Copies the record that every LCT session is given, to be told of each EFDT while it is parsed; null
    /// takes it back. After Create and before Parse; false (asserted) before Create.
    bool SetCallback(const CLS::SCallback* callback);

    /// Number of ROUTE sessions, 0 before Create.
    int NumberOfRouteSessions() const;
    /// Number of LCT sessions of ROUTE session `i`; 0 without that one.
    int NumberOfLctSessions(int i) const;

    /// 65,535 always; required: it is not read.
    unsigned short BsId(int i) const;
    /// Source address, host byte order; 0xFFFFFFFF: not given, or no address.
    unsigned int SIpAddr(int i) const;
    /// Destination address, likewise.
    unsigned int DIpAddr(int i) const;
    /// Destination port; 65,535: not given.
    unsigned short DPort(int i) const;

    /// Transport session identifier through `tsi`, 0xFFFFFFFF when not given. False, with `*tsi` as it was:
    /// no such LCT session.
    bool GetTSI(int i, int j, unsigned int* tsi) const;
    /// Id of the DASH representation, or what else identifies the content. False, with `out` empty: no
    /// source flow.
    bool GetContentId(int i, int j, std::string& out) const;
    /// Id of the emergency alert that the content belongs to.
    std::string GetAEAId(int i, int j) const;
    /// Whether the session carries streaming media.
    bool GetRT(int i, int j) const;
    /// Number of content ratings of LCT session `j` of ROUTE session `i`; 0 without that one.
    int NumberOfContentRatings(int i, int j) const;
    /// Copies the value of rating `k`; false, with `out` as it was: there is none.
    bool GetContentRating(int i, int j, int k, std::string& out) const;
    /// Record of the EFDT of the session; null: none. Good until Destroy.
    SEFDTInfo* GetEFDTInfo(int i, int j) const;
    /// What was parsed; null before Create, good until Destroy.
    const SSTSID* State() const { return t_Values<SSTSID>(); }

  private:
    vyr::SXmlKind t_Kind() const override;
};
