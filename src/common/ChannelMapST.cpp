#include "common/ChannelMapST.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <new>
#include <unordered_set>

#include "common/OutOfMemory.h"
#include "common/SeededHash.h"
#include "platform/Log.h"

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

SServiceRecord* Record(void* service)
{
    return static_cast<SServiceRecord*>(service);
}

/// The copies outside the store, which outlive it.
struct SClones {
    std::mutex mutex;
    std::unordered_set<void*> records;
};

SClones& Clones()
{
    static SClones& s_clones = *new SClones;  // for whoever holds a copy at the end of the program
    return s_clones;
}

/// A registered callback, and which registration of the store it was.
struct SRegistered : CChannelMap::SCallback {
    std::uint64_t number;
};

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
std::mutex SChannelMap::mutex;

struct CChannelMapST::SState {
    /// Where a record is in the list, and which record of the store it is: an address may come again.
    struct SPlace {
        std::size_t index;
        std::uint64_t number;
    };

    std::vector<SServiceRecord*> list;                          // in the order they were added; null: removed since
    std::unordered_map<SKey, SServiceRecord*, SKeyHash> index;  // the oldest record of a key
    std::unordered_map<const void*, SPlace> places;             // of the records in the list
    std::uint64_t records = 0;                                  // made so far
    std::set<const CChannelMap::SCallback*, std::less<>> callbacks;
    std::uint64_t registrations = 0;  // made so far
    int visits = 0;                   // callers' functions under way, which the indices must survive
    std::mutex mutex;                 // never held around a caller's function, the log or an assertion

    using TLock = std::lock_guard<std::mutex>;

    bool IsLive(void* service, std::uint64_t number) const
    {
        const auto found = places.find(service);
        return found != places.end() && found->second.number == number;
    }

    /// Closes the gaps of the list where they are most of it, unless a walk is under way.
    void Compact()
    {
        if (visits > 0 || list.size() <= 2 * places.size()) {
            return;
        }
        list.erase(std::remove(list.begin(), list.end(), nullptr), list.end());
        for (std::size_t i = 0; i < list.size(); ++i) {
            places.find(list[i])->second.index = i;
        }
    }

    /// Runs `step(record)` for a service of the store or a copy, under its lock; anything else is asserted.
    template <class TStep>
    bool With(void* service, TStep step, VYR_CALLER)
    {
        if (service) {
            {
                const TLock lock(mutex);
                if (places.count(service)) {
                    step(*Record(service));
                    return true;
                }
            }
            SClones& clones = Clones();
            const TLock lock(clones.mutex);
            if (clones.records.count(service)) {
                step(*Record(service));
                return true;
            }
        }
        return vyr::AssertFailed(here, "obj");
    }

    void* Store(const SKey& key, bool broadbandAccessRequired, bool& found, std::uint64_t& number);
};

/// Keeps the store while a caller's function runs.
struct CChannelMapST::SVisit {
    SState& state;

    explicit SVisit(SState& visited) : state(visited)
    {
        const SState::TLock lock(state.mutex);
        ++state.visits;
    }
    ~SVisit()
    {
        const SState::TLock lock(state.mutex);
        --state.visits;
        state.Compact();
    }
    SVisit(const SVisit&) = delete;
    SVisit& operator=(const SVisit&) = delete;
};

/// Finds a service or adds it; `number` is which of the store's it is.
void* CChannelMapST::SState::Store(const SKey& key, bool broadbandAccessRequired, bool& found, std::uint64_t& number)
{
    const TLock lock(mutex);
    const auto place = index.try_emplace(key, nullptr).first;
    SServiceRecord** same = &place->second;
    // Oldest first. The flag is compared as it stands: SetServiceCategory changes it.
    while (*same && (*same)->broadbandAccessRequired != broadbandAccessRequired) {
        same = &(*same)->nextSame;
    }
    found = *same != nullptr;
    if (found) {
        number = places.find(*same)->second.number;
        return *same;
    }
    try {
        auto record = std::make_unique<SServiceRecord>(key, broadbandAccessRequired);
        list.push_back(record.get());
        try {
            number = records + 1;
            places.emplace(record.get(), SPlace{list.size() - 1, number});
        } catch (...) {
            list.pop_back();
            throw;
        }
        ++records;
        return *same = record.release();
    } catch (...) {
        if (!place->second) {
            index.erase(place);
        }
        throw;
    }
}

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
    Clones();  // made here, where memory may be out
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
        delete static_cast<const SRegistered*>(callback);
    }
    delete m;
    m = nullptr;
}

bool CChannelMapST::Visited() const
{
    const SState::TLock lock(m->mutex);
    return m->visits > 0;
}

const CChannelMap::SCallback* CChannelMapST::AddCallback(const CChannelMap::SCallback& callback)
{
    auto fresh = std::make_unique<SRegistered>(SRegistered{callback, 0});
    const SState::TLock lock(m->mutex);
    m->callbacks.insert(fresh.get());
    fresh->number = ++m->registrations;
    return fresh.release();
}

void CChannelMapST::RemoveCallback(const CChannelMap::SCallback* key)
{
    const SState::TLock lock(m->mutex);
    if (m->callbacks.erase(key)) {
        delete static_cast<const SRegistered*>(key);
    }
}

void CChannelMapST::t_Notify(ENotify type, void* service)
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CChannelMapST::t_Notify]");
    if (!VYR_ASSERT(type == NOTIFY_SERVICE_ADDED, "!\"Unknown Noti. Type\"")) {
        return;
    }
    const SVisit visit(*m);
    std::uint64_t last = 0;
    const CChannelMap::SCallback* key = nullptr;
    // Looked up anew for each call: a callback may register or take back callbacks. Those that are new since the
    // notification began are not told, or one that registers itself anew would be told for ever.
    for (bool first = true;; first = false) {
        CChannelMap::SCallback callback{};
        {
            const SState::TLock lock(m->mutex);
            last = first ? m->registrations : last;
            auto it = first ? m->callbacks.begin() : m->callbacks.upper_bound(key);
            while (it != m->callbacks.end() && static_cast<const SRegistered*>(*it)->number > last) {
                ++it;
            }
            if (it == m->callbacks.end()) {
                return;
            }
            key = *it;
            callback = *key;
        }
        if (callback.fn) {
            callback.fn(callback.userData, service);
        }
    }
}

void* CChannelMapST::AddService(void* channel, unsigned char groupId, int serviceId, int majorChannel, int minorChannel,
                                int simulcastTsid, int simulcastMajor, int simulcastMinor, bool broadbandAccessRequired,
                                bool* existed)
{
    const SKey key{channel,      groupId,       serviceId,      majorChannel,
                   minorChannel, simulcastTsid, simulcastMajor, simulcastMinor};
    bool found = false;
    std::uint64_t number = 0;
    void* service = nullptr;
    try {
        service = m->Store(key, broadbandAccessRequired, found, number);
    } catch (...) {
        return vyr::OutOfMemory<void*>(VYR_HERE);
    }
    // Required order: a found service is flagged before its notification, a new one after it.
    if (found) {
        Give(existed, true);
    } else {
        VYR_LOG(LOG_PRIORITY_DEBUG,
                "[CChannelMapST::AddService] channel: %p, groupId: %d, service: %p, SID: %d, CN:%d-%d, simulcast "
                "TSID:%d CN:%d-%d broadbandAccessRequired: %d",
                channel, groupId, service, serviceId, majorChannel, minorChannel, simulcastTsid, simulcastMajor,
                simulcastMinor, broadbandAccessRequired);
    }
    t_Notify(NOTIFY_SERVICE_ADDED, service);
    if (!found) {
        Give(existed, false);
    }
    // A callback may have removed it.
    const SState::TLock lock(m->mutex);
    return m->IsLive(service, number) ? service : nullptr;
}

bool CChannelMapST::RemoveService(void* service)
{
    if (!VYR_ASSERT(service, "obj")) {
        return false;
    }
    const SState::TLock lock(m->mutex);
    const auto place = m->places.find(service);
    if (place == m->places.end()) {
        return false;
    }
    const std::unique_ptr<SServiceRecord> record(Record(service));
    m->list[place->second.index] = nullptr;
    m->places.erase(place);
    m->Compact();
    const auto oldest = m->index.find(record->key);
    SServiceRecord** same = &oldest->second;
    while (*same != record.get()) {
        same = &(*same)->nextSame;
    }
    *same = record->nextSame;
    if (!oldest->second) {
        m->index.erase(oldest);
    }
    return true;
}

bool CChannelMapST::GetServiceList(void (*fn)(void*, void*), void* userData)
{
    if (!VYR_ASSERT(fn, "fn")) {
        return false;
    }
    const SVisit visit(*m);
    for (std::size_t i = 0;; ++i) {
        void* service = nullptr;
        {
            const SState::TLock lock(m->mutex);
            if (i >= m->list.size()) {
                return true;
            }
            service = m->list[i];
        }
        if (service) {
            fn(userData, service);
        }
    }
}

void* CChannelMapST::Channel(void* service)
{
    void* channel = nullptr;
    m->With(service, [&](const SServiceRecord& record) { channel = record.key.channel; });
    return channel;
}

bool CChannelMapST::GetServiceNumber(void* service, unsigned char* groupId, int* serviceId, int* major, int* minor,
                                     int* simulcastTsid, int* simulcastMajor, int* simulcastMinor)
{
    return m->With(service, [&](SServiceRecord& record) {
        const SKey& key = record.key;
        Give(groupId, key.groupId);
        Give(serviceId, key.serviceId);
        Give(major, key.majorChannel);
        Give(minor, key.minorChannel);
        Give(simulcastTsid, key.simulcastTsid);
        Give(simulcastMajor, key.simulcastMajor);
        Give(simulcastMinor, key.simulcastMinor);
    });
}

bool CChannelMapST::SetDestination(void* service, unsigned int address, unsigned short port)
{
    if (service) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CChannelMapST::SetDestination] service: %p, address: %d.%d.%d.%d, port: %d",
                service, address >> 24, address >> 16 & 0xFF, address >> 8 & 0xFF, address & 0xFF, port);
    }
    return m->With(service, [&](SServiceRecord& record) {
        record.destination = address;
        record.destinationPort = port;
    });
}

bool CChannelMapST::GetDestination(void* service, unsigned int* address, unsigned short* port)
{
    return m->With(service, [&](SServiceRecord& record) {
        Give(address, record.destination);
        Give(port, record.destinationPort);
    });
}

bool CChannelMapST::SetSource(void* service, unsigned int address)
{
    if (service) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CChannelMapST::SetSource] service: %p, address: %d.%d.%d.%d", service,
                address >> 24, address >> 16 & 0xFF, address >> 8 & 0xFF, address & 0xFF);
    }
    return m->With(service, [&](SServiceRecord& record) { record.source = address; });
}

bool CChannelMapST::GetSource(void* service, unsigned int* address)
{
    return m->With(service, [&](SServiceRecord& record) { Give(address, record.source); });
}

bool CChannelMapST::SetProtected(void* service, bool isProtected)
{
    if (service) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CChannelMapST::SetProtected] service: %p, protected: %d", service, isProtected);
    }
    return m->With(service, [&](SServiceRecord& record) { record.isProtected = isProtected; });
}

bool CChannelMapST::GetProtected(void* service, bool* isProtected)
{
    return m->With(service, [&](SServiceRecord& record) { Give(isProtected, record.isProtected); });
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
    return m->With(service, [&](SServiceRecord& record) { record.svcInetUrl = url; });
}

bool CChannelMapST::GetSvcInetUrl(void* service, std::string& url)
{
    return m->With(service, [&](SServiceRecord& record) { url = record.svcInetUrl; });
}

bool CChannelMapST::SetSvcInetUrlType(void* service, EATSC3UrlType type)
{
    if (service) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CChannelMapST::SetSvcInetUrlType] service: %p, type: %d", service, type);
    }
    return m->With(service, [&](SServiceRecord& record) { record.svcInetUrlType = type; });
}

bool CChannelMapST::GetSvcInetUrlType(void* service, EATSC3UrlType* type)
{
    return m->With(service, [&](SServiceRecord& record) { Give(type, record.svcInetUrlType); });
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
    return m->With(service,
                   [&](SServiceRecord& record) { record.globalServiceId.assign(id, static_cast<std::size_t>(size)); });
}

bool CChannelMapST::GetGlobalServiceId(void* service, std::string& id)
{
    return m->With(service, [&](SServiceRecord& record) { id = record.globalServiceId; });
}

bool CChannelMapST::SetServiceName(void* service, const char* name, int size)
{
    if (!VYR_ASSERT(service, "obj") || !VYR_ASSERT(name && size >= 0, "name")) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CChannelMapST::SetServiceName] service: %p, name: %.*s", service, size, name);
    return m->With(service,
                   [&](SServiceRecord& record) { record.serviceName.assign(name, static_cast<std::size_t>(size)); });
}

bool CChannelMapST::GetServiceName(void* service, unsigned char* buffer, unsigned short& length)
{
    if (!VYR_ASSERT(service, "obj") || !VYR_ASSERT(buffer, "buffer")) {
        return false;
    }
    // Required: the lengths are compared as 16-bit numbers. What is copied is there all the same.
    unsigned short size = 0;
    bool cut = false;
    const bool known = m->With(service, [&](const SServiceRecord& record) {
        size = static_cast<unsigned short>(record.serviceName.size());
        cut = size >= length;
        length = cut ? length : size;
        std::copy_n(record.serviceName.begin(), length, buffer);
    });
    if (cut) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CChannelMapST::GetServiceName] !! ERROR service name is too long length = [%d]",
                size);
    }
    return known;
}

bool CChannelMapST::SetServiceCategory(void* service, int category, bool broadbandAccessRequired, bool hidden)
{
    if (service) {
        VYR_LOG(
            LOG_PRIORITY_DEBUG,
            "[CChannelMapST::SetServiceCategory] service: %p, category: %d, broadbandAccessRequired: %d, hidden: %d",
            service, category, broadbandAccessRequired, hidden);
    }
    return m->With(service, [&](SServiceRecord& record) {
        record.category = category;
        record.broadbandAccessRequired = broadbandAccessRequired;
        record.hidden = hidden;
    });
}

bool CChannelMapST::GetServiceCategory(void* service, int* category, bool* broadbandAccessRequired, bool* hidden)
{
    return m->With(service, [&](SServiceRecord& record) {
        Give(category, record.category);
        Give(broadbandAccessRequired, record.broadbandAccessRequired);
        Give(hidden, record.hidden);
    });
}

bool CChannelMapST::SetProtocolType(void* service, EATSC3ProtocolType type)
{
    if (service) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CChannelMapST::SetProtocolType] service: %p, type: %d", service, type);
    }
    return m->With(service, [&](SServiceRecord& record) { record.protocolType = type; });
}

bool CChannelMapST::GetProtocolType(void* service, EATSC3ProtocolType* type)
{
    return m->With(service, [&](SServiceRecord& record) { Give(type, record.protocolType); });
}

bool CChannelMapST::SetDrmSystemID(void* service, std::string id)
{
    if (service) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CChannelMapST::SetDrmSystemID] service: %p, id: %s", service, id.c_str());
    }
    return m->With(service, [&](SServiceRecord& record) { record.drmSystemId = std::move(id); });
}

bool CChannelMapST::GetDrmSystemID(void* service, std::string& id)
{
    return m->With(service, [&](SServiceRecord& record) { id = record.drmSystemId; });
}

void* CChannelMapST::CloneService(void* service)
{
    std::unique_ptr<SServiceRecord> clone;
    m->With(service, [&](const SServiceRecord& record) {
        bool fits = true;
        for (const std::string* text :
             {&record.globalServiceId, &record.svcInetUrl, &record.serviceName, &record.drmSystemId}) {
            fits = fits && text->size() <= k_maxClonedText;
        }
        clone = fits ? std::make_unique<SServiceRecord>(record) : nullptr;
    });
    if (clone) {
        SClones& clones = Clones();
        const std::lock_guard<std::mutex> lock(clones.mutex);
        clones.records.insert(clone.get());
    }
    return clone.release();
}

bool CChannelMapST::DeleteClonedService(void* service)
{
    SClones& clones = Clones();
    {
        const std::lock_guard<std::mutex> lock(clones.mutex);
        if (clones.records.erase(service) > 0) {
            delete Record(service);
            return true;
        }
    }
    return vyr::AssertFailed(VYR_HERE, "obj");
}
