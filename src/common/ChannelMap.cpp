#include "common/ChannelMap.h"

#include <memory>
#include <utility>

#include "common/ChannelMapST.h"
#include "common/OutOfMemory.h"
#include "platform/Log.h"

/// What a handle has registered with the store.
struct CChannelMap::SState {
    const SCallback* key;
};

CChannelMap::CChannelMap() : m(nullptr) {}

CChannelMap::~CChannelMap()
{
    VYR_ASSERT(!m, "!m");
}

bool CChannelMap::Create()
try {
    if (!VYR_ASSERT(!m, "!m")) {
        return false;
    }
    int count = 0;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const std::lock_guard<std::mutex> storeLock(SChannelMap::mutex);
        auto slot = std::make_unique<SState>(SState{nullptr});
        if (SChannelMap::refCnt == 0) {
            auto store = std::make_unique<CChannelMapST>();
            store->Create();
            SChannelMap::ref = store.release();
        }
        count = static_cast<int>(++SChannelMap::refCnt);
        m = slot.release();
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CChannelMap::Create1][%p], m->refCnt[%d]", static_cast<void*>(this), count);
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CChannelMap::Destroy()
{
    if (!VYR_ASSERT(m, "m")) {
        return;
    }
    int count = -1;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const std::lock_guard<std::mutex> storeLock(SChannelMap::mutex);
        if (SChannelMap::refCnt > 1 || !SChannelMap::ref->Visited()) {
            if (m->key) {
                SChannelMap::ref->RemoveCallback(m->key);
            }
            count = static_cast<int>(--SChannelMap::refCnt);
            if (count == 0) {
                SChannelMap::ref->Destroy();
                delete SChannelMap::ref;
                SChannelMap::ref = nullptr;
            }
            delete m;
            m = nullptr;
        }
    }
    // The last handle would pull the store from under a callback.
    if (VYR_ASSERT(count >= 0, "!m->visited")) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CChannelMap::Destroy][%p], m->refCnt[%d]", static_cast<void*>(this), count);
    }
}

bool CChannelMap::SetCallback(const SCallback* callback)
try {
    if (!VYR_ASSERT(m, "m")) {
        return false;
    }
    const SCallback* key = callback ? SChannelMap::ref->AddCallback(*callback) : nullptr;
    if (m->key) {
        SChannelMap::ref->RemoveCallback(m->key);
    }
    m->key = key;
    return m->key != nullptr;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void* CChannelMap::AddService(void* channel, unsigned char groupId, int serviceId, int majorChannel, int minorChannel,
                              int simulcastTsid, int simulcastMajor, int simulcastMinor, bool broadbandAccessRequired,
                              bool* existed)
{
    return VYR_ASSERT(m, "m")
               ? SChannelMap::ref->AddService(channel, groupId, serviceId, majorChannel, minorChannel, simulcastTsid,
                                              simulcastMajor, simulcastMinor, broadbandAccessRequired, existed)
               : nullptr;
}

bool CChannelMap::RemoveService(void* service)
{
    return VYR_ASSERT(m, "m") && SChannelMap::ref->RemoveService(service);
}

bool CChannelMap::GetServiceList(void (*fn)(void* userData, void* service), void* userData)
{
    return VYR_ASSERT(m, "m") && SChannelMap::ref->GetServiceList(fn, userData);
}

void* CChannelMap::Channel(void* service)
{
    return VYR_ASSERT(m, "m") ? SChannelMap::ref->Channel(service) : nullptr;
}

bool CChannelMap::GetServiceNumber(void* service, unsigned char* groupId, int* serviceId, int* major, int* minor,
                                   int* simulcastTsid, int* simulcastMajor, int* simulcastMinor)
{
    return VYR_ASSERT(m, "m") && SChannelMap::ref->GetServiceNumber(service, groupId, serviceId, major, minor,
                                                                    simulcastTsid, simulcastMajor, simulcastMinor);
}

bool CChannelMap::SetDestination(void* service, unsigned int address, unsigned short port)
{
    return VYR_ASSERT(m, "m") && SChannelMap::ref->SetDestination(service, address, port);
}

bool CChannelMap::GetDestination(void* service, unsigned int* address, unsigned short* port)
{
    return VYR_ASSERT(m, "m") && SChannelMap::ref->GetDestination(service, address, port);
}

bool CChannelMap::SetSource(void* service, unsigned int address)
{
    return VYR_ASSERT(m, "m") && SChannelMap::ref->SetSource(service, address);
}

bool CChannelMap::GetSource(void* service, unsigned int* address)
{
    return VYR_ASSERT(m, "m") && SChannelMap::ref->GetSource(service, address);
}

bool CChannelMap::SetProtected(void* service, bool isProtected)
{
    return VYR_ASSERT(m, "m") && SChannelMap::ref->SetProtected(service, isProtected);
}

bool CChannelMap::GetProtected(void* service, bool* isProtected)
{
    return VYR_ASSERT(m, "m") && SChannelMap::ref->GetProtected(service, isProtected);
}

bool CChannelMap::SetSvcInetUrl(void* service, const char* url)
try {
    return VYR_ASSERT(m, "m") && SChannelMap::ref->SetSvcInetUrl(service, url);
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool CChannelMap::GetSvcInetUrl(void* service, std::string& url)
try {
    return VYR_ASSERT(m, "m") && SChannelMap::ref->GetSvcInetUrl(service, url);
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool CChannelMap::SetSvcInetUrlType(void* service, EATSC3UrlType type)
{
    return VYR_ASSERT(m, "m") && SChannelMap::ref->SetSvcInetUrlType(service, type);
}

bool CChannelMap::GetSvcInetUrlType(void* service, EATSC3UrlType* type)
{
    return VYR_ASSERT(m, "m") && SChannelMap::ref->GetSvcInetUrlType(service, type);
}

bool CChannelMap::SetGlobalServiceId(void* service, const char* id, int size)
try {
    return VYR_ASSERT(m, "m") && SChannelMap::ref->SetGlobalServiceId(service, id, size);
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool CChannelMap::GetGlobalServiceId(void* service, std::string& id)
try {
    return VYR_ASSERT(m, "m") && SChannelMap::ref->GetGlobalServiceId(service, id);
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool CChannelMap::SetServiceName(void* service, const char* name, int size)
try {
    return VYR_ASSERT(m, "m") && SChannelMap::ref->SetServiceName(service, name, size);
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool CChannelMap::GetServiceName(void* service, unsigned char* buffer, unsigned short& length)
{
    return VYR_ASSERT(m, "m") && SChannelMap::ref->GetServiceName(service, buffer, length);
}

bool CChannelMap::SetServiceCategory(void* service, int category, bool broadbandAccessRequired, bool hidden)
{
    return VYR_ASSERT(m, "m") &&
           SChannelMap::ref->SetServiceCategory(service, category, broadbandAccessRequired, hidden);
}

bool CChannelMap::GetServiceCategory(void* service, int* category, bool* broadbandAccessRequired, bool* hidden)
{
    return VYR_ASSERT(m, "m") &&
           SChannelMap::ref->GetServiceCategory(service, category, broadbandAccessRequired, hidden);
}

bool CChannelMap::SetProtocolType(void* service, EATSC3ProtocolType type)
{
    return VYR_ASSERT(m, "m") && SChannelMap::ref->SetProtocolType(service, type);
}

bool CChannelMap::GetProtocolType(void* service, EATSC3ProtocolType* type)
{
    return VYR_ASSERT(m, "m") && SChannelMap::ref->GetProtocolType(service, type);
}

bool CChannelMap::SetDrmSystemID(void* service, std::string id)
{
    return VYR_ASSERT(m, "m") && SChannelMap::ref->SetDrmSystemID(service, std::move(id));
}

bool CChannelMap::GetDrmSystemID(void* service, std::string& id)
try {
    return VYR_ASSERT(m, "m") && SChannelMap::ref->GetDrmSystemID(service, id);
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void* CChannelMap::CloneService(void* service)
try {
    return VYR_ASSERT(m, "m") ? SChannelMap::ref->CloneService(service) : nullptr;
} catch (...) {
    return vyr::OutOfMemory<void*>(VYR_HERE);
}

bool CChannelMap::DeleteClonedService(void* service)
{
    return VYR_ASSERT(m, "m") && SChannelMap::ref->DeleteClonedService(service);
}
