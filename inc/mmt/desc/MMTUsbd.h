#pragma once

#include <optional>
#include <string>
#include <vector>

#include "../../common/Owned.h"
#include "../../common/Usbd.h"
#include "../../platform/Api.h"

class CMMTBroadbandComponent;
class CMMTChannel;
class CMMTComponentInfo;
class CMMTContentAdvisoryRatings;
class CMMTMpuComponent;
class CMMTName;
class CMMTRouteComponent;
class CServiceLinkage;

/// Parser of the user service bundle description of an MMT service (ATSC A/331 7.2.1).
class VYR_API CMMTUsbd : public CUsbd {
  public:
    /// What was parsed; all of it belongs to the USBD. Of an element that is held singly the last one counts.
    struct SMMTUsbd : SUsbd {
        TOwnedArray<CMMTName> names;                                     ///< Name
        TTextArray svcLanguages;                                         ///< the text of each serviceLanguage
        TOwnedArray<CMMTComponentInfo> componentInfos;                   ///< ComponentInfo
        TOwnedArray<CMMTContentAdvisoryRatings> contentAdvisoryRatings;  ///< ContentAdvisoryRatings
        TOwned<CServiceLinkage> serviceLinkage;                          ///< null: none
        TOwned<CMMTChannel> channel;                                     ///< null: none
        TOwned<CMMTMpuComponent> mpuComponent;                           ///< null: none
        TOwned<CMMTBroadbandComponent> broadbandComponent;               ///< null: none
        TOwned<CMMTRouteComponent> routeComponent;                       ///< null: none

        /// Extension: what "serviceStatus" says by XML Schema; empty: not given, or no boolean.
        std::optional<bool> givenServiceStatus;
    };

    /// Whether there is a ROUTE component.
    bool CheckRouteComponent() const;
    /// Whether there is a broadband component.
    bool CheckBroadbandComponent() const;
    /// URI of the S-TSID; false, and nothing changed, without a ROUTE component: so the next three, too.
    bool GetsTSIDUri(std::string& uri) const;
    /// Source address of the S-TSID's session, IPv4 in host order; 0: not given.
    bool GetRouteComponentSrcIp(unsigned int& address) const;
    /// Destination address of the S-TSID's session, IPv4 in host order; 0: not given.
    bool GetRouteComponentDestIp(unsigned int& address) const;
    /// Destination port of the S-TSID's session; 0: not given.
    bool GetRouteComponentDestPort(unsigned short& port) const;
    /// URI of the MPD; false, and nothing changed, without a broadband component.
    bool GetFullMPDUri(std::string& uri) const;

    /// Number of component infos.
    int ComponentInfoSize() const;
    /// Type of the index-th component info in document order; false, and nothing changed, without one: so the
    /// next four, too.
    bool GetComponentType(int index, unsigned char& type) const;
    /// Role of a component; its meaning depends on the type.
    bool GetComponentRole(int index, unsigned char& role) const;
    /// Whether a component is protected; false without one.
    bool ComponentProtectedFlag(int index) const;
    /// Asset id of a component.
    bool GetComponentId(int index, std::string& id) const;
    /// Name of a component.
    bool GetComponentName(int index, std::string& name) const;

    /// Number of service languages.
    int LanguageSize() const;
    /// The index-th service language, good until Destroy; false, and nothing changed, without one.
    bool GetLanguageInfo(int index, char** language) const;

    /// Appends the rating string of each ratings element, in document order; false without one.
    bool GetRatingStringTable(std::vector<std::string>& ratings) const;

    /// What was parsed; null before Create, good until Destroy.
    const SMMTUsbd* State() const { return t_Values<SMMTUsbd>(); }

  private:
    const SUsbd* m_Usbd() const override { return State(); }
    const CServiceLinkage* m_Linkage() const override { return State()->serviceLinkage.get(); }
    vyr::SXmlKind t_Kind() const override;
};
