#pragma once

#include <cstdint>
#include <mutex>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "common/ChannelMap.h"

/// The process-wide store behind every CChannelMap. Its lock is never held around a caller's function.
class CChannelMapST {
  public:
    CChannelMapST();
    ~CChannelMapST();
    CChannelMapST(const CChannelMapST&) = delete;
    CChannelMapST& operator=(const CChannelMapST&) = delete;

    bool Create();
    void Destroy();

    /// Whether a caller's function is under way, which the store must outlive.
    bool Visited() const;

    /// Stores a copy of the record; the result is its key. Notifications go to every copy.
    const CChannelMap::SCallback* AddCallback(const CChannelMap::SCallback& callback);
    void RemoveCallback(const CChannelMap::SCallback* key);

    void* AddService(void* channel, unsigned char groupId, int serviceId, int majorChannel, int minorChannel,
                     int simulcastTsid, int simulcastMajor, int simulcastMinor, bool broadbandAccessRequired,
                     bool* existed);
    bool RemoveService(void* service);
    bool GetServiceList(void (*fn)(void*, void*), void* userData);

    void* Channel(void* service);
    bool GetServiceNumber(void* service, unsigned char* groupId, int* serviceId, int* major, int* minor,
                          int* simulcastTsid, int* simulcastMajor, int* simulcastMinor);
    bool SetDestination(void* service, unsigned int address, unsigned short port);
    bool GetDestination(void* service, unsigned int* address, unsigned short* port);
    bool SetSource(void* service, unsigned int address);
    bool GetSource(void* service, unsigned int* address);
    bool SetProtected(void* service, bool isProtected);
    bool GetProtected(void* service, bool* isProtected);
    bool SetSvcInetUrl(void* service, const char* url);
    bool GetSvcInetUrl(void* service, std::string& url);
    bool SetSvcInetUrlType(void* service, EATSC3UrlType type);
    bool GetSvcInetUrlType(void* service, EATSC3UrlType* type);
    bool SetGlobalServiceId(void* service, const char* id, int size);
    bool GetGlobalServiceId(void* service, std::string& id);
    bool SetServiceName(void* service, const char* name, int size);
    bool GetServiceName(void* service, unsigned char* buffer, unsigned short& length);
    bool SetServiceCategory(void* service, int category, bool broadbandAccessRequired, bool hidden);
    bool GetServiceCategory(void* service, int* category, bool* broadbandAccessRequired, bool* hidden);
    bool SetProtocolType(void* service, EATSC3ProtocolType type);
    bool GetProtocolType(void* service, EATSC3ProtocolType* type);
    bool SetDrmSystemID(void* service, std::string id);
    bool GetDrmSystemID(void* service, std::string& id);
    void* CloneService(void* service);
    bool DeleteClonedService(void* service);

  private:
    struct SState;
    struct SVisit;
    enum ENotify { NOTIFY_SERVICE_ADDED = 0 };

    void t_Notify(ENotify type, void* service);

    SState* m;
};

/// The one store, and the number of created handles on it.
struct SChannelMap {
    static CChannelMapST* ref;
    static unsigned int refCnt;
    static std::mutex mutex;  ///< of both
};
