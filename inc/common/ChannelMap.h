#pragma once

#include <mutex>
#include <string>

#include "../platform/Api.h"
#include "ATSC3Type.h"

/// Handle on the process-wide store of broadcast services that the SLT parser fills. The first
/// handle's Create makes the store, the last one's Destroy frees it with every service. See docs/using.md.
///
/// It grows with every new service until RemoveService: a transmitter that invents services fills it, unless
/// CParseSLT::SetReplace lets those that are gone leave.
///
/// A service is an opaque pointer, good until RemoveService or the end of the store. IPv4 addresses
/// are numbers: a.b.c.d is a x 2^24 + b x 2^16 + c x 2^8 + d; 0xFFFFFFFF stands for "not set", as
/// 0xFFFF does for ports.
///
/// Threads: every operation may be called from several at once, on handles of their own; a handle is
/// created, destroyed and given a callback on one thread. A service that another thread may remove is
/// as good as gone.
///
/// A handle that is not created is asserted ("m"), a service that is null or neither in the store nor
/// a copy too ("obj"); the result is then false or null, and outputs are untouched. Out of memory is
/// false or null, with a line in the log, and changes nothing. A mutex that cannot be locked throws
/// std::system_error.
class VYR_API CChannelMap {
  public:
    /// What a caller registers. Called inside AddService, on the thread that adds, after a service was
    /// added or announced again and outside the store's lock. The service has the numbers given to
    /// AddService; what setters say of it is not there yet: the SLT parser announces a service before it
    /// sets its name. It is good until it is removed.
    ///
    /// It may call everything of the map: add and remove services, this one included (AddService then
    /// gives null), register and take back callbacks, its own included (new ones are told from the next
    /// service on), and destroy handles, but for the last one, whose Destroy is asserted ("!m->visited")
    /// and does nothing. It may throw; the service is added, and those not told yet are not told. One
    /// taken back from another thread may be in its last call still.
    struct SCallback {
        void* userData;                             ///< handed back to fn
        void (*fn)(void* userData, void* service);  ///< told of the service; null: nobody
    };

    CChannelMap();
    /// Destroy comes first, else "!m" is asserted.
    ~CChannelMap();
    CChannelMap(const CChannelMap&) = delete;
    CChannelMap& operator=(const CChannelMap&) = delete;

    /// Joins the store, making it if this is the first handle. False when created already (asserted).
    bool Create();
    /// Takes back the callback and leaves the store; the last handle frees it. Inside a callback or a
    /// walk of GetServiceList, on whatever thread, the last handle stays (asserted, "!m->visited").
    void Destroy();
    /// Registers a copy of `callback` in place of the one this handle registered before; null only
    /// takes that one back. True when one is registered now.
    bool SetCallback(const SCallback* callback);

    /// Adds a service, or finds the one with the same nine values (all but `existed`), whose other
    /// fields stay as they are. Both are notified. `existed` may be null. Null: memory is out, or a callback
    /// removed the service.
    /// `channel` is the caller's transport context, `groupId` the LLS_group_id that announced the
    /// service; the numbers are serviceId, majorChannelNo, minorChannelNo and the SimulcastTSID
    /// fields of the SLT (ATSC A/331 table 6.2).
    void* AddService(void* channel, unsigned char groupId, int serviceId, int majorChannel, int minorChannel,
                     int simulcastTsid, int simulcastMajor, int simulcastMinor, bool broadbandAccessRequired,
                     bool* existed);
    /// Removes and frees a service; false when the store has no such service. Nobody is notified.
    bool RemoveService(void* service);
    /// Calls `fn` for every service in the order they were added, on this thread and outside the store's
    /// lock. It may call everything of the map, as SCallback says: services that it removes are not met
    /// any more, those that it adds are.
    bool GetServiceList(void (*fn)(void* userData, void* service), void* userData);

    /// The channel context given to AddService.
    void* Channel(void* service);
    /// The numbers given to AddService, each through its pointer unless that is null.
    bool GetServiceNumber(void* service, unsigned char* groupId, int* serviceId, int* major, int* minor,
                          int* simulcastTsid, int* simulcastMajor, int* simulcastMinor);

    /// Destination address and UDP port of the service's signalling.
    bool SetDestination(void* service, unsigned int address, unsigned short port);
    /// What SetDestination stored, each through its pointer unless that is null.
    bool GetDestination(void* service, unsigned int* address, unsigned short* port);
    /// Source address of the service's signalling.
    bool SetSource(void* service, unsigned int address);
    /// What SetSource stored.
    bool GetSource(void* service, unsigned int* address);
    /// Whether components of the service are protected (encrypted).
    bool SetProtected(void* service, bool isProtected);
    /// What SetProtected stored; false at first.
    bool GetProtected(void* service, bool* isProtected);
    /// Internet URL of the service. A null service gives false without an assertion in the setter.
    bool SetSvcInetUrl(void* service, const char* url);
    /// What SetSvcInetUrl stored; empty at first.
    bool GetSvcInetUrl(void* service, std::string& url);
    /// Kind of that URL: urlType (ATSC A/331 table 6.3).
    bool SetSvcInetUrlType(void* service, EATSC3UrlType type);
    /// What SetSvcInetUrlType stored; 0 at first.
    bool GetSvcInetUrlType(void* service, EATSC3UrlType* type);
    /// globalServiceID, `size` bytes; more than 999,999 are refused.
    bool SetGlobalServiceId(void* service, const char* id, int size);
    /// What SetGlobalServiceId stored; empty at first.
    bool GetGlobalServiceId(void* service, std::string& id);
    /// shortServiceName, exactly `size` bytes.
    bool SetServiceName(void* service, const char* name, int size);
    /// Copies the name without a terminating zero. `length` is the buffer's room before and the bytes
    /// copied after; a name that does not leave room for one byte more is cut to `length` bytes.
    bool GetServiceName(void* service, unsigned char* buffer, unsigned short& length);
    /// serviceCategory (ATSC A/331 table 6.4: 1 linear A/V, 2 audio, 3 application, 4 ESG, 5 EAS,
    /// 6 DRM data; -1 when never set) and two flags. Required: the setter overwrites the
    /// broadbandAccessRequired that AddService was given.
    bool SetServiceCategory(void* service, int category, bool broadbandAccessRequired, bool hidden);
    /// What SetServiceCategory stored, each through its pointer unless that is null.
    bool GetServiceCategory(void* service, int* category, bool* broadbandAccessRequired, bool* hidden);
    /// Signalling protocol of the service: slsProtocol (ATSC A/331 table 6.5).
    bool SetProtocolType(void* service, EATSC3ProtocolType type);
    /// What SetProtocolType stored; 0 at first.
    bool GetProtocolType(void* service, EATSC3ProtocolType* type);
    /// URI of the DRM system of the service: drmSystemID.
    bool SetDrmSystemID(void* service, std::string id);
    /// What SetDrmSystemID stored; empty at first.
    bool GetDrmSystemID(void* service, std::string& id);

    /// Copy of a service outside the store, to be freed with DeleteClonedService; null when one of its
    /// texts is longer than 1,000,000 bytes.
    void* CloneService(void* service);
    /// Frees a copy made by CloneService; anything else is asserted ("obj"): false.
    bool DeleteClonedService(void* service);

  private:
    struct SState;
    SState* m;
    std::mutex m_mutex;
};
