#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>

#include "../common/ATSC3Type.h"
#include "../platform/Api.h"
#include "ParseLLS.h"

class CChannelMap;

/// Records of the service list table.
struct SParseSLT {
    /// A URL of the whole table: sltInetUrl (ATSC A/331 table 6.2).
    struct SSltInetUrl {
        std::string url;  ///< never empty
        int urlType;      ///< EATSC3UrlType, any number; -1: absent
    };

    /// One service of the table: the Service element (ATSC A/331 table 6.2). Numbers that the table
    /// does not give are 0, addresses are a x 2^24 + b x 2^16 + c x 2^8 + d.
    struct SService {
        /// The service's SvcInetUrl.
        struct SSvcInetUrl {
            std::string url;  ///< the last one with a text
            int urlType;      ///< -1: absent
            bool present;     ///< whether there is one
        };

        /// Extension: attributes whose number does not tell whether they are there.
        enum EGiven : unsigned int {
            GIVEN_SEQ_NUM = 1u << 0,
            GIVEN_MAJOR_CHANNEL = 1u << 1,
            GIVEN_MINOR_CHANNEL = 1u << 2,
            GIVEN_CATEGORY = 1u << 3,
            GIVEN_SLS_PROTOCOL = 1u << 4,
            GIVEN_SLS_MAJOR_VERSION = 1u << 5,
            GIVEN_SLS_MINOR_VERSION = 1u << 6,
            GIVEN_SLS_ADDRESS = 1u << 7,
            GIVEN_SLS_PORT = 1u << 8
        };

        void* service;                                ///< the service in the channel map
        unsigned char groupId;                        ///< LLS group that announced it
        unsigned short serviceId;                     ///< unique in the broadcast stream, low 16 bits
        std::optional<std::string> globalServiceId;   ///< globalServiceID, else globalServiceId
        int sltSvcSeqNum;                             ///< version of what the table says of the service
        bool isProtected;                             ///< "protected": components are encrypted
        int majorChannelNo;                           ///< 1 to 999 for services that people select
        int minorChannelNo;                           ///< likewise
        int simulcastTsid;                            ///< "SimulcastTSID": ATSC 1.0 stream with the same programme
        int simulcastMajorChannelNo;                  ///< channel numbers there
        int simulcastMinorChannelNo;                  ///< likewise
        int serviceCategory;                          ///< as CChannelMap has it, any number
        std::optional<std::string> shortServiceName;  ///< up to 7 characters, by the standard
        bool hidden;                                  ///< not to be shown to people
        bool broadbandAccessRequired;                 ///< needs the internet
        std::optional<std::string> svcCapabilities;   ///< what a receiver must be able to do (A/332)
        bool hasBroadcastSvcSignaling;                ///< whether there is a BroadcastSvcSignaling
        std::string drmSystemID;                      ///< URI of the DRM system; empty: none
        int slsProtocol;                              ///< EATSC3ProtocolType, any number
        int slsMajorProtocolVersion;                  ///< of the signalling protocol
        int slsMinorProtocolVersion;                  ///< likewise
        unsigned int slsDestinationIpAddress;         ///< of the signalling
        int slsDestinationUdpPort;                    ///< of the signalling
        unsigned int slsSourceIpAddress;              ///< of the signalling
        SSvcInetUrl svcInetUrl;                       ///< of the service on the internet

        // Extension: what the table gives; flags by XML Schema, empty: not given, or no boolean.
        unsigned int given;                        ///< EGiven
        std::optional<bool> givenProtected;        ///< protected
        std::optional<bool> givenHidden;           ///< hidden
        std::optional<bool> givenBroadband;        ///< broadbandAccessRequired
        std::optional<bool> hideInGuide;           ///< whether a hidden service is not in guides either
        std::optional<std::string> configuration;  ///< such as "Broadcast" or "Broadband"; empty: not given
    };
};

/// Parser of the service list table (SLT, LLS_table_id 1; ATSC A/331 6.3). Every service it accepts
/// is published in the channel map. Required: tables pile up. The services and URLs of each new table
/// join those already held, until Destroy, and all services are offered to the channel map again, which
/// keeps them beyond that; see SetReplace.
///
/// An object that is not created is asserted ("m"); results are then false, 0 or empty.
class VYR_API CParseSLT : public TCParseLLS {
  public:
    /// Told with the number 1 after each table that parsed, inside Parse and on its thread: the services
    /// are held, and have been offered to the channel map with all that it keeps of them. What it may call:
    /// see TCParseLLS.
    struct SCallback {
        void* userData;                          ///< handed back to fn
        void (*fn)(void* userData, int result);  ///< null: nobody is told
    };

    /// Why a Service element did not become a service.
    enum EDropReason {
        DROP_NO_PROTECTED,           ///< the attribute "protected" is missing
        DROP_NO_HIDDEN,              ///< the attribute "hidden" is missing
        DROP_NO_BROADBAND,           ///< the attribute "broadbandAccessRequired" is missing
        DROP_MAJOR_CHANNEL,          ///< category 1 to 3, majorChannelNo outside 1 to 999
        DROP_MINOR_CHANNEL,          ///< category 1 to 3, minorChannelNo outside 1 to 999
        DROP_BROADBAND_UNSUPPORTED,  ///< category 1 to 3 needs broadband, and the settings have none
        DROP_DUPLICATE,              ///< removed by the rule for equal services
        DROP_LIMIT,                  ///< SetReplace is on, and the group holds its most
        DROP_GONE                    ///< SetReplace is on, and its group's new table has it no more
    };
    /// Told of each service that is dropped, inside Parse and on its thread; the service is good during the
    /// call only, and holds what was read before it was dropped. Services before it in the table are held,
    /// and not yet in the channel map. What it may call: see TCParseLLS.
    struct SDropCallback {
        void* userData;  ///< handed back to fn
        /// Null: nobody is told.
        void (*fn)(void* userData, const SParseSLT::SService* service, EDropReason reason);
    };

    CParseSLT();
    /// Destroy comes first, else "!m" is asserted.
    ~CParseSLT() override;

    /// `channelMap` is a created handle that outlives the parser's Destroy; without one (asserted) the
    /// result is false. `callback` is copied and may be null.
    bool Create(CChannelMap* channelMap, const CParseSLT::SCallback* callback);
    void Destroy() override;

    /// Gives the channel context that every later AddService carries.
    bool Start(void* channel);
    /// Counterpart of Start; changes nothing.
    bool Stop();
    /// Gives the LLS group that the services of the next tables belong to.
    bool AddLLSGroupId(unsigned char groupId);

    /// Extension, off by default: a Service without "protected", "hidden" or "broadbandAccessRequired"
    /// takes the default false that ATSC A/331 gives these attributes, in place of being dropped.
    void SetLenient(bool lenient);
    /// Extension, off by default: what a table brings takes the place of what the last table of its group
    /// left, see TCParseLLS; to the group belongs what AddLLSGroupId gave, and the channel. A service that is
    /// gone is told of as DROP_GONE, with the channel map's service still good, and with `leaveChannelMap`
    /// leaves the channel map then: pointers to it in the hands of others end there, and nobody else may have
    /// taken it out before. What GetServiceInfo handed out is good until the next Parse, as ever.
    void SetReplace(bool replace, bool leaveChannelMap = false);
    /// Extension: tells why services are dropped. Copied; null takes it back.
    void SetDropCallback(const SDropCallback* callback);

    /// Number of services held.
    int ServiceCount() const;
    /// Broadcast stream id of the last table; 0 before the first.
    int Bsid() const;
    /// Lowest minorChannelNo (1 or more) of the services that are not hidden; 1000 without any.
    int LowestMinorChannelNo() const;
    /// Number of SLT-level URLs held.
    int SltInetUrlCount() const;
    /// sltCapabilities of the last table that had one; false before Create.
    bool GetSltCapability(std::string& capability) const;
    /// False, outputs untouched, for an index outside 0 to SltInetUrlCount() - 1.
    bool GetSltInetUrl(int index, std::string& url, EATSC3UrlType& type) const;
    /// Gives the channel map's service of the index-th service; false, and nothing changed, outside
    /// the range.
    bool GetService(int index, void*& service) const;
    /// Calls `fn(userData, service, index)` once per service, in order, on this thread. `service` is null
    /// when a callback of the channel map removed it as it was announced. Parse and Destroy are refused
    /// inside, as in callbacks.
    bool GetService(void (*fn)(void* userData, void* service, int index), void* userData) const;
    /// Extension: all that was read of the index-th service, null outside the range; good until the
    /// next Parse or Destroy.
    const SParseSLT::SService* GetServiceInfo(int index) const;
    /// The LLS groups given so far.
    std::set<unsigned char> GetLLSGroupIDs() const;
    /// The first bsid seen per LLS group.
    std::map<unsigned char, int> GetBsidByLLSGroupID() const;

  protected:
    bool t_Parse(IParse::SItem* item) override;

  private:
    struct SSLT;

    void t_RemoveDuplicateServices();
    void m_PutAside(int services, int urls);
    void m_Leave();
    void m_Publish(SParseSLT::SService* service);
    void m_RemoveSLT();
    void m_DumpSLT() const;

    SSLT* m;
};
