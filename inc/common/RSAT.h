#pragma once

#include <list>
#include <string>

#include "../platform/Api.h"
#include "XmlElement.h"

/// An update announced for a service of the RSAT. Channel numbers that are not given are 65,535.
struct SRSATUpdateInfo {
    bool preferred = false;             ///< whether the broadcast is the preferred one
    unsigned short majorChannelNo = 0;  ///< low 16 bits
    unsigned short minorChannelNo = 0;  ///< low 16 bits
    std::string frequency;              ///< as it stands
    std::string broadcastType;          ///< as it stands
    std::string validFrom;              ///< xs:dateTime as it stands
};

/// A service of the RSAT, with the updates announced for it.
struct SRSATServiceInfo {
    bool preferred = false;              ///< whether the broadcast is the preferred one
    unsigned short majorChannelNo = 0;   ///< low 16 bits; 65,535: not given
    unsigned short minorChannelNo = 0;   ///< low 16 bits; 65,535: not given
    std::string frequency;               ///< as it stands
    std::string broadcastType;           ///< as it stands
    std::string validUntil;              ///< xs:dateTime as it stands
    std::list<SRSATUpdateInfo> updates;  ///< in document order
};

/// Parser of the regional service availability table (RSAT; ATSC A/331): where else services of a
/// station are on the air. Services of every document that is parsed join those already held,
/// until Destroy; see SetReplace. An object that is not created is asserted ("m"); results are then false or 0.
class VYR_API CRSAT : public CXmlElement {
  public:
    /// Attribute "timestamp" of the last document, xs:dateTime as it stands.
    bool GetTimestamp(std::string& timestamp) const;
    /// Attribute "RSATInetURL" of the last document that had one.
    bool GetRSATInetURL(std::string& url) const;
    /// Number of services held.
    int NumOfService() const;
    /// Copies the index-th service; false, and nothing changed, outside the range.
    bool GetServiceInfo(int index, SRSATServiceInfo* info) const;
    /// Number of updates of a service; 0 outside the range.
    int NumOfUpdate(int service) const;
    /// Copies an update of a service; false, and nothing changed, outside the range.
    bool GetUpdateInfo(int service, int update, SRSATUpdateInfo* info) const;

  private:
    vyr::SXmlKind t_Kind() const override;
};
