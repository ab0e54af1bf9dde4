#include "common/ChannelMapST.h"

#include <algorithm>
#include <functional>
#include <new>

#include "common/Log.h"
#include "common/SeededHash.h"

namespace {

constexpr int k_maxGlobalServiceId = 999999;
constexpr std::size_t k_maxClonedText = 1000000;

/// What AddService tells services apart by, and no setter changes.
struct SKey {
    void* channel;
    unsigned char groupId;
    int serviceId;
    int majorChannel;
    int minorChannel;
    int simulcastTsid;
    int simulcastMajor;
    int simulcastMinor;

    bool operator==(const SKey& other) const
    {
        return channel == other.channel && groupId == other.groupId && serviceId == other.serviceId &&
               majorChannel == other.majorChannel && minorChannel == other.minorChannel &&
               simulcastTsid == other.simulcastTsid && simulcastMajor == other.simulcastMajor &&
               simulcastMinor == other.simulcastMinor;
    }
};

struct SKeyHash {
    std::size_t operator()(const SKey& key) const
    {
        vyr::CSeededHash hash;
        hash.Add(reinterpret_cast<std::uintptr_t>(key.channel)).Add(key.groupId);
        for (const int value : {key.serviceId, key.majorChannel, key.minorChannel, key.simulcastTsid,
                                key.simulcastMajor, key.simulcastMinor}) {
            hash.Add(static_cast<unsigned int>(value));
        }
        return hash.Value();
    }
};

struct SServiceRecord {
    SServiceRecord(const SKey& numbers, bool broadband) : key(numbers), broadbandAccessRequired(broadband) {}
    SServiceRecord(const SServiceRecord&) = default;
    virtual ~SServiceRecord() = default;

    SKey key;
    bool broadbandAccessRequired;
    bool hidden = false;
    bool isProtected = false;
    std::string globalServiceId;
    std::string svcInetUrl;
    std::string serviceName;
    std::string drmSystemId;
    std::uint32_t source = 0xFFFFFFFF;
    std::uint32_t destination = 0xFFFFFFFF;
    std::uint16_t destinationPort = 0xFFFF;
    int category = -1;
    EATSC3ProtocolType protocolType = ATSC3_PROTOCOL_NONE;
    EATSC3UrlType svcInetUrlType = ATSC3_URL_NONE;
    SServiceRecord* nextSame = nullptr;  // the next younger record of the store with an equal key
};

/// One walk of the list, for the life of the object.
struct SWalk {
    explicit SWalk(std::size_t& walks) : count(walks) { ++count; }
    ~SWalk() { --count; }
    SWalk(const SWalk&) = delete;
    SWalk& operator=(const SWalk&) = delete;

    std::size_t& count;
};

SServiceRecord* Record(void* service)
{
    return static_cast<SServiceRecord*>(service);
}

template <class T>
void Give(T* out, const T& value)
{
    if (out) {
        *out = value;
    }
}

}  // namespace

CChannelMapST* SChannelMap::ref = nullptr;
unsigned int SChannelMap::refCnt = 0;

struct CChannelMapST::SState {
    std::vector<SServiceRecord*> list;                          // in the order they were added; null: removed since
    std::unordered_map<const void*, std::size_t> places;        // in the list; empty until a service is removed
    std::size_t walks = 0;                                      // of the list under way, which its indices must survive
    std::unordered_map<SKey, SServiceRecord*, SKeyHash> index;  // the oldest record of a key
    std::set<const CChannelMap::SCallback*, std::less<>> callbacks;
    std::mutex mutex;

    /// Closes the gaps of the list.
    void Compact()
    {
        list.erase(std::remove(list.begin(), list.end(), nullptr), list.end());
        FillPlaces();
    }

    void FillPlaces()
    {
        for (std::size_t i = 0; i < list.size(); ++i) {
            if (list[i]) {
                places[list[i]] = i;
            }
        }
    }
};

CChannelMapST::CChannelMapST() : m(nullptr) {}

CChannelMapST::~CChannelMapST()
{
    VYR_ASSERT(!m, "!m");
}

bool CChannelMapST::Create()
{
    if (!VYR_ASSERT(!m, "!m")) {
        return false;
    }
    m = new SState;
    return true;
}

void CChannelMapST::Destroy()
{
    if (!VYR_ASSERT(m, "m")) {
        return;
    }
    for (SServiceRecord* record : m->list) {
        delete record;
    }
    for (const CChannelMap::SCallback* callback : m->callbacks) {
        delete callback;
    }
    delete m;
    m = nullptr;
}

const CChannelMap::SCallback* CChannelMapST::AddCallback(const CChannelMap::SCallback& callback)
{
    return *m->callbacks.insert(new CChannelMap::SCallback(callback)).first;
}

void CChannelMapST::RemoveCallback(const CChannelMap::SCallback* key)
{
    if (m->callbacks.erase(key)) {
        delete key;
    }
}

void CChannelMapST::t_Notify(ENotify type, void* service)
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CChannelMapST::t_Notify]");
    if (!VYR_ASSERT(type == NOTIFY_SERVICE_ADDED, "!\"Unknown Noti. Type\"")) {
        return;
    }
    // Looked up anew after each call: the callback may register or take back callbacks.
    for (auto it = m->callbacks.begin(); it != m->callbacks.end();) {
        const CChannelMap::SCallback* key = *it;
        if (key->fn) {
            key->fn(key->userData, service);
        }
        it = m->callbacks.upper_bound(key);
    }
}

void* CChannelMapST::AddService(void* channel, unsigned char groupId, int serviceId, int majorChannel, int minorChannel,
                                int simulcastTsid, int simulcastMajor, int simulcastMinor, bool broadbandAccessRequired,
                                bool* existed)
{
    const SKey key{channel,      groupId,       serviceId,      majorChannel,
                   minorChannel, simulcastTsid, simulcastMajor, simulcastMinor};
    SServiceRecord* record = nullptr;
    bool found = false;
    {
        const std::lock_guard<std::mutex> lock(m->mutex);
        SServiceRecord** same = &m->index[key];
        // Oldest first. The flag is compared as it stands: SetServiceCategory changes it.
        while (*same && (*same)->broadbandAccessRequired != broadbandAccessRequired) {
            same = &(*same)->nextSame;
        }
        record = *same;
        found = record != nullptr;
        if (!found) {
            record = new SServiceRecord(key, broadbandAccessRequired);
            VYR_LOG(LOG_PRIORITY_DEBUG,
                    "[CChannelMapST::AddService] channel: %p, groupId: %d, service: %p, SID: %d, CN:%d-%d, simulcast "
                    "TSID:%d CN:%d-%d broadbandAccessRequired: %d",
                    channel, groupId, static_cast<void*>(record), serviceId, majorChannel, minorChannel, simulcastTsid,
                    simulcastMajor, simulcastMinor, broadbandAccessRequired);
            *same = record;
            if (!m->places.empty()) {
                m->places.emplace(record, m->list.size());
            }
            m->list.push_back(record);
        }
    }
    // Required order: a found service is flagged before its notification, a new one after it.
    if (found) {
        Give(existed, true);
    }
    t_Notify(NOTIFY_SERVICE_ADDED, record);
    if (!found) {
        Give(existed, false);
    }
    return record;
}

bool CChannelMapST::RemoveService(void* service)
{
    if (!VYR_ASSERT(service, "obj")) {
        return false;
    }
    if (m->places.empty()) {
        m->FillPlaces();
    }
    const auto place = m->places.find(service);
    if (place == m->places.end()) {
        return false;
    }
    SServiceRecord* record = m->list[place->second];
    m->list[place->second] = nullptr;
    m->places.erase(place);
    if (m->walks == 0 && m->list.size() > 2 * m->places.size()) {
        m->Compact();
    }
    const auto oldest = m->index.find(record->key);
    SServiceRecord** same = &oldest->second;
    while (*same != record) {
        same = &(*same)->nextSame;
    }
    *same = record->nextSame;
    if (!oldest->second) {
        m->index.erase(oldest);
    }
    delete record;
    return true;
}

bool CChannelMapST::GetServiceList(void (*fn)(void*, void*), void* userData)
{
    if (!VYR_ASSERT(fn, "fn")) {
        return false;
    }
    const SWalk walk(m->walks);
    for (std::size_t i = 0; i < m->list.size(); ++i) {
        if (m->list[i]) {
            fn(userData, m->list[i]);
        }
    }
    return true;
}

void* CChannelMapST::Channel(void* service)
{
    return VYR_ASSERT(service, "obj") ? Record(service)->key.channel : nullptr;
}

bool CChannelMapST::GetServiceNumber(void* service, unsigned char* groupId, int* serviceId, int* major, int* minor,
                                     int* simulcastTsid, int* simulcastMajor, int* simulcastMinor)
{
    if (!VYR_ASSERT(service, "obj")) {
        return false;
    }
    const SKey& key = Record(service)->key;
    Give(groupId, key.groupId);
    Give(serviceId, key.serviceId);
    Give(major, key.majorChannel);
    Give(minor, key.minorChannel);
    Give(simulcastTsid, key.simulcastTsid);
    Give(simulcastMajor, key.simulcastMajor);
    Give(simulcastMinor, key.simulcastMinor);
    return true;
}

bool CChannelMapST::SetDestination(void* service, unsigned int address, unsigned short port)
{
    if (!VYR_ASSERT(service, "obj")) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CChannelMapST::SetDestination] service: %p, address: %d.%d.%d.%d, port: %d", service,
            address >> 24, address >> 16 & 0xFF, address >> 8 & 0xFF, address & 0xFF, port);
    Record(service)->destination = address;
    Record(service)->destinationPort = port;
    return true;
}

bool CChannelMapST::GetDestination(void* service, unsigned int* address, unsigned short* port)
{
    if (!VYR_ASSERT(service, "obj")) {
        return false;
    }
    Give(address, Record(service)->destination);
    Give(port, Record(service)->destinationPort);
    return true;
}

bool CChannelMapST::SetSource(void* service, unsigned int address)
{
    if (!VYR_ASSERT(service, "obj")) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CChannelMapST::SetSource] service: %p, address: %d.%d.%d.%d", service, address >> 24,
            address >> 16 & 0xFF, address >> 8 & 0xFF, address & 0xFF);
    Record(service)->source = address;
    return true;
}

bool CChannelMapST::GetSource(void* service, unsigned int* address)
{
    if (!VYR_ASSERT(service, "obj")) {
        return false;
    }
    Give(address, Record(service)->source);
    return true;
}

bool CChannelMapST::SetProtected(void* service, bool isProtected)
{
    if (!VYR_ASSERT(service, "obj")) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CChannelMapST::SetProtected] service: %p, protected: %d", service, isProtected);
    Record(service)->isProtected = isProtected;
    return true;
}

bool CChannelMapST::GetProtected(void* service, bool* isProtected)
{
    if (!VYR_ASSERT(service, "obj")) {
        return false;
    }
    Give(isProtected, Record(service)->isProtected);
    return true;
}

bool CChannelMapST::SetSvcInetUrl(void* service, const char* url)
{
    // Required: here a null service is not asserted.
    if (!service) {
        return false;
    }
    if (!VYR_ASSERT(url, "url")) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CChannelMapST::SetSvcInetUrl] service: %p, url: %s", service, url);
    Record(service)->svcInetUrl = url;
    return true;
}

bool CChannelMapST::GetSvcInetUrl(void* service, std::string& url)
{
    if (!VYR_ASSERT(service, "obj")) {
        return false;
    }
    url = Record(service)->svcInetUrl;
    return true;
}

bool CChannelMapST::SetSvcInetUrlType(void* service, EATSC3UrlType type)
{
    if (!VYR_ASSERT(service, "obj")) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CChannelMapST::SetSvcInetUrlType] service: %p, type: %d", service, type);
    Record(service)->svcInetUrlType = type;
    return true;
}

bool CChannelMapST::GetSvcInetUrlType(void* service, EATSC3UrlType* type)
{
    if (!VYR_ASSERT(service, "obj")) {
        return false;
    }
    Give(type, Record(service)->svcInetUrlType);
    return true;
}

bool CChannelMapST::SetGlobalServiceId(void* service, const char* id, int size)
{
    if (!VYR_ASSERT(service, "obj") || !VYR_ASSERT(id && size >= 0, "id")) {
        return false;
    }
    if (size > k_maxGlobalServiceId) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CChannelMapST::SetGlobalServiceId] string size is too big size[%d]", size);
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CChannelMapST::SetGlobalServiceId] service: %p, id: %.*s", service, size, id);
    Record(service)->globalServiceId.assign(id, static_cast<std::size_t>(size));
    return true;
}

bool CChannelMapST::GetGlobalServiceId(void* service, std::string& id)
{
    if (!VYR_ASSERT(service, "obj")) {
        return false;
    }
    id = Record(service)->globalServiceId;
    return true;
}

bool CChannelMapST::SetServiceName(void* service, const char* name, int size)
{
    if (!VYR_ASSERT(service, "obj") || !VYR_ASSERT(name && size >= 0, "name")) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CChannelMapST::SetServiceName] service: %p, name: %.*s", service, size, name);
    Record(service)->serviceName.assign(name, static_cast<std::size_t>(size));
    return true;
}

bool CChannelMapST::GetServiceName(void* service, unsigned char* buffer, unsigned short& length)
{
    if (!VYR_ASSERT(service, "obj") || !VYR_ASSERT(buffer, "buffer")) {
        return false;
    }
    const std::string& name = Record(service)->serviceName;
    // Required: the lengths are compared as 16-bit numbers. What is copied is there all the same.
    const unsigned short size = static_cast<unsigned short>(name.size());
    if (size >= length) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CChannelMapST::GetServiceName] !! ERROR service name is too long length = [%d]",
                size);
    } else {
        length = size;
    }
    std::copy_n(name.begin(), length, buffer);
    return true;
}

bool CChannelMapST::SetServiceCategory(void* service, int category, bool broadbandAccessRequired, bool hidden)
{
    if (!VYR_ASSERT(service, "obj")) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG,
            "[CChannelMapST::SetServiceCategory] service: %p, category: %d, broadbandAccessRequired: %d, hidden: %d",
            service, category, broadbandAccessRequired, hidden);
    Record(service)->category = category;
    Record(service)->broadbandAccessRequired = broadbandAccessRequired;
    Record(service)->hidden = hidden;
    return true;
}

bool CChannelMapST::GetServiceCategory(void* service, int* category, bool* broadbandAccessRequired, bool* hidden)
{
    if (!VYR_ASSERT(service, "obj")) {
        return false;
    }
    Give(category, Record(service)->category);
    Give(broadbandAccessRequired, Record(service)->broadbandAccessRequired);
    Give(hidden, Record(service)->hidden);
    return true;
}

bool CChannelMapST::SetProtocolType(void* service, EATSC3ProtocolType type)
{
    if (!VYR_ASSERT(service, "obj")) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CChannelMapST::SetProtocolType] service: %p, type: %d", service, type);
    Record(service)->protocolType = type;
    return true;
}

bool CChannelMapST::GetProtocolType(void* service, EATSC3ProtocolType* type)
{
    if (!VYR_ASSERT(service, "obj")) {
        return false;
    }
    Give(type, Record(service)->protocolType);
    return true;
}

bool CChannelMapST::SetDrmSystemID(void* service, std::string id)
{
    if (!VYR_ASSERT(service, "obj")) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CChannelMapST::SetDrmSystemID] service: %p, id: %s", service, id.c_str());
    Record(service)->drmSystemId = std::move(id);
    return true;
}

bool CChannelMapST::GetDrmSystemID(void* service, std::string& id)
{
    if (!VYR_ASSERT(service, "obj")) {
        return false;
    }
    id = Record(service)->drmSystemId;
    return true;
}

void* CChannelMapST::CloneService(void* service)
{
    if (!VYR_ASSERT(service, "obj")) {
        return nullptr;
    }
    const SServiceRecord* record = Record(service);
    for (const std::string* text :
         {&record->globalServiceId, &record->svcInetUrl, &record->serviceName, &record->drmSystemId}) {
        if (text->size() > k_maxClonedText) {
            return nullptr;
        }
    }
    return new SServiceRecord(*record);
}

bool CChannelMapST::DeleteClonedService(void* service)
{
    if (!VYR_ASSERT(service, "obj")) {
        return false;
    }
    delete Record(service);
    return true;
}
