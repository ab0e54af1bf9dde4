#include "lls/ParseSLT.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "common/ChannelMap.h"
#include "common/Give.h"
#include "common/Owned.h"
#include "common/SeededHash.h"
#include "common/XmlRead.h"
#include "lls/Replace.h"
#include "lls/TableDocument.h"
#include "platform/Log.h"

using vyr::CNodeText;

namespace {

typedef SParseSLT::SService SService;
typedef vyr::THeld<SService> SHeldService;
typedef vyr::THeld<SParseSLT::SSltInetUrl> SHeldUrl;

/// Services that a new table has replaced, until the channel map has heard of it.
struct SGone {
    std::vector<std::unique_ptr<SHeldService>> services;
    bool open = false;  // what leaves the list comes here
};

constexpr int k_noMinorChannel = 1000;
constexpr int k_maxChannel = 999;
constexpr char k_broadbandSetting[] = "db/menu/broadcasting/atsc3_bb_option";

void g_CbRemoveService(void* context, void* element)
{
    std::unique_ptr<SHeldService> service(static_cast<SHeldService*>(element));
    SGone& gone = *static_cast<SGone*>(context);
    if (gone.open) {
        gone.services.push_back(std::move(service));
    }
}

std::optional<std::string> Text(void* node, const char* name)
{
    const CNodeText text = CNodeText::Attribute(node, name);
    return text.Found() ? std::optional<std::string>(text.Text()) : std::nullopt;
}

/// Whether an attribute is there.
void Note(SService& service, SService::EGiven bit, bool given)
{
    service.given = given ? service.given | bit : service.given & ~bit;
}

/// A number, and whether it is there.
void ReadNoted(SService& service, SService::EGiven bit, void* node, const char* name, int& out)
{
    const CNodeText text = CNodeText::Attribute(node, name);
    vyr::Read(text, out);
    Note(service, bit, text.Found());
}

/// What the rule for equal services compares.
struct SEqual {
    bool operator()(const SService* a, const SService* b) const
    {
        return a->slsProtocol == b->slsProtocol && a->slsMajorProtocolVersion == b->slsMajorProtocolVersion &&
               a->slsMinorProtocolVersion == b->slsMinorProtocolVersion &&
               a->slsDestinationIpAddress == b->slsDestinationIpAddress &&
               a->slsDestinationUdpPort == b->slsDestinationUdpPort && a->slsSourceIpAddress == b->slsSourceIpAddress &&
               a->serviceId == b->serviceId && a->sltSvcSeqNum == b->sltSvcSeqNum &&
               a->majorChannelNo == b->majorChannelNo && a->minorChannelNo == b->minorChannelNo &&
               a->serviceCategory == b->serviceCategory;
    }
};

struct SEqualHash {
    std::size_t operator()(const SService* service) const
    {
        vyr::CSeededHash hash;
        hash.Add(service->slsDestinationIpAddress).Add(service->slsSourceIpAddress).Add(service->serviceId);
        for (const int value : {service->slsProtocol, service->slsMajorProtocolVersion,
                                service->slsMinorProtocolVersion, service->slsDestinationUdpPort, service->sltSvcSeqNum,
                                service->majorChannelNo, service->minorChannelNo, service->serviceCategory}) {
            hash.Add(static_cast<unsigned int>(value));
        }
        return hash.Value();
    }
};

/// Removal by index out of the list 0 .. n-1, where each index is near the one before: the elements
/// on both sides of the last place are kept on two stacks.
class CRemovals {
  public:
    explicit CRemovals(int n) : m_removed(static_cast<std::size_t>(n))
    {
        for (int i = n; i-- > 0;) {
            m_behind.push_back(i);
        }
    }

    /// Removes the element that now has this index.
    void RemoveAt(std::size_t index)
    {
        while (m_before.size() < index) {
            m_before.push_back(m_behind.back());
            m_behind.pop_back();
        }
        while (m_before.size() > index) {
            m_behind.push_back(m_before.back());
            m_before.pop_back();
        }
        m_removed[static_cast<std::size_t>(m_behind.back())] = true;
        m_behind.pop_back();
    }

    bool Removed(int i) const { return m_removed[static_cast<std::size_t>(i)]; }

  private:
    std::vector<int> m_before;
    std::vector<int> m_behind;
    std::vector<bool> m_removed;
};

struct SServices {
    unsigned char groupId = 0;
    std::set<unsigned char> groupIds;
    int bsid = 0;
    std::map<unsigned char, int> bsidByGroup;
    std::string capabilities;
    int lowestMinorChannelNo = k_noMinorChannel;
    SGone gone;
    CCPtrArray services{g_CbRemoveService, &gone};
    TPtrArray<SHeldUrl> sltInetUrls;
    SService* current = nullptr;
    void* channel = nullptr;
    CChannelMap* channelMap = nullptr;
    CParseSLT::SCallback callback{};
    bool lenient = false;
    CParseSLT::SDropCallback dropCallback{};
    vyr::CReplace replace;
    bool leaveChannelMap = false;

    SService* Service(int index) const { return static_cast<SHeldService*>(services.Data(index)); }

    void Drop(const SService* service, CParseSLT::EDropReason reason) const
    {
        if (dropCallback.fn) {
            dropCallback.fn(dropCallback.userData, service, reason);
        }
    }
};

void sm_CbService(SServices* m, void* node);

void sm_CbSimulcastTSID(SServices* m, void* node)
{
    SService* service = m->current;
    if (VYR_ASSERT(service, "m->current")) {
        vyr::ReadAttribute(node, "SimulcastTSID", service->simulcastTsid);
        vyr::ReadAttribute(node, "simulcastMajorChannelNo", service->simulcastMajorChannelNo);
        vyr::ReadAttribute(node, "simulcastMinorChannelNo", service->simulcastMinorChannelNo);
    }
}

void sm_CbBroadcastSvcSignaling(SServices* m, void* node)
{
    SService* service = m->current;
    if (VYR_ASSERT(service, "m->current")) {
        service->hasBroadcastSvcSignaling = true;
        ReadNoted(*service, SService::GIVEN_SLS_PROTOCOL, node, "slsProtocol", service->slsProtocol);
        ReadNoted(*service, SService::GIVEN_SLS_MAJOR_VERSION, node, "slsMajorProtocolVersion",
                  service->slsMajorProtocolVersion);
        ReadNoted(*service, SService::GIVEN_SLS_MINOR_VERSION, node, "slsMinorProtocolVersion",
                  service->slsMinorProtocolVersion);
        ReadNoted(*service, SService::GIVEN_SLS_PORT, node, "slsDestinationUdpPort", service->slsDestinationUdpPort);
        service->slsDestinationIpAddress = 0;
        Note(*service, SService::GIVEN_SLS_ADDRESS,
             vyr::ReadIpv4(CNodeText::Attribute(node, "slsDestinationIpAddress"), service->slsDestinationIpAddress));
        service->slsSourceIpAddress = 0;
        vyr::ReadIpv4(CNodeText::Attribute(node, "slsSourceIpAddress"), service->slsSourceIpAddress);
    }
}

void sm_CbSltInetUrl(SServices* m, void* node)
{
    const int type = CNodeText::Attribute(node, "urlType").Int(-1);
    const CNodeText url = CNodeText::Content(node);
    if (!url.HasText()) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseSLT::sm_CbSltInetUrl] sltInetUrl value is not exist !!!");
        return;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseSLT::sm_CbSltInetUrl] sltUrl[%s], sltUrlType[%d]", url.Text(), type);
    if (m->replace.Take()) {
        m->sltInetUrls.Append(std::unique_ptr<SHeldUrl>(new SHeldUrl{{url.Text(), type}, m->replace.Group()}));
    }
}

void sm_CbSvcInetUrl(SServices* m, void* node)
{
    SService* service = m->current;
    if (!VYR_ASSERT(service, "m->current")) {
        return;
    }
    const int type = CNodeText::Attribute(node, "urlType").Int(-1);
    const CNodeText url = CNodeText::Content(node);
    if (!url.HasText()) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseSLT::sm_CbSvcInetUrl] svcInetUrl value is not exist !!!");
        return;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseSLT::sm_CbSvcInetUrl] svcUrl[%s], svcUrlType[%d]", url.Text(), type);
    service->svcInetUrl = {url.Text(), type, true};
}

constexpr vyr::SElementHandler<SServices> k_handlers[] = {
    {"sltInetUrl", sm_CbSltInetUrl},
    {"SLTInetUrl", sm_CbSltInetUrl},
    {"Service", sm_CbService},
    {"SimulcastTSID", sm_CbSimulcastTSID},
    {"BroadcastSvcSignaling", sm_CbBroadcastSvcSignaling},
    {"svcInetUrl", sm_CbSvcInetUrl},
    {"SvcInetUrl", sm_CbSvcInetUrl},
};

void sm_CbService(SServices* m, void* node)
{
    auto service = std::make_unique<SHeldService>();
    const auto drop = [m, &service](CParseSLT::EDropReason reason) { m->Drop(service.get(), reason); };
    service->groupId = m->groupId;
    vyr::ReadAttribute(node, "serviceId", service->serviceId);
    service->globalServiceId = Text(node, "globalServiceID");
    if (!service->globalServiceId) {
        service->globalServiceId = Text(node, "globalServiceId");
    }
    ReadNoted(*service, SService::GIVEN_SEQ_NUM, node, "sltSvcSeqNum", service->sltSvcSeqNum);

    const CNodeText protected1 = CNodeText::Attribute(node, "protected");
    if (!m->lenient && !VYR_ASSERT(protected1.Found(), "protected1 != nullptr")) {
        return drop(CParseSLT::DROP_NO_PROTECTED);
    }
    service->isProtected = protected1.Bool();
    vyr::Read(protected1, service->givenProtected);
    const CNodeText hidden1 = CNodeText::Attribute(node, "hidden");
    if (!m->lenient && !VYR_ASSERT(hidden1.Found(), "hidden1 != nullptr")) {
        return drop(CParseSLT::DROP_NO_HIDDEN);
    }
    service->hidden = hidden1.Bool();
    vyr::Read(hidden1, service->givenHidden);
    vyr::ReadAttribute(node, "hideInGuide", service->hideInGuide);
    service->configuration = Text(node, "configuration");
    const CNodeText broadbandAccessRequired1 = CNodeText::Attribute(node, "broadbandAccessRequired");
    if (!m->lenient && !VYR_ASSERT(broadbandAccessRequired1.Found(), "broadbandAccessRequired1 != nullptr")) {
        return drop(CParseSLT::DROP_NO_BROADBAND);
    }
    service->broadbandAccessRequired = broadbandAccessRequired1.Bool();
    vyr::Read(broadbandAccessRequired1, service->givenBroadband);

    ReadNoted(*service, SService::GIVEN_MAJOR_CHANNEL, node, "majorChannelNo", service->majorChannelNo);
    ReadNoted(*service, SService::GIVEN_MINOR_CHANNEL, node, "minorChannelNo", service->minorChannelNo);
    ReadNoted(*service, SService::GIVEN_CATEGORY, node, "serviceCategory", service->serviceCategory);
    service->shortServiceName = Text(node, "shortServiceName");
    vyr::ReadAttribute(node, "drmSystemID", service->drmSystemID);
    if (service->serviceCategory >= 1 && service->serviceCategory <= 3) {
        if (service->majorChannelNo < 1 || service->majorChannelNo > k_maxChannel) {
            VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseSLT::sm_CbService] mojor channel number ERROR major[%d]",
                    service->majorChannelNo);
            return drop(CParseSLT::DROP_MAJOR_CHANNEL);
        }
        if (service->minorChannelNo < 1 || service->minorChannelNo > k_maxChannel) {
            VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseSLT::sm_CbService] minor channel number ERROR minor[%d]",
                    service->minorChannelNo);
            return drop(CParseSLT::DROP_MINOR_CHANNEL);
        }
        int supported = 0;
        if (service->broadbandAccessRequired && (!vyr::GetSetting(k_broadbandSetting, &supported) || supported == 0)) {
            VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseSLT::sm_CbService] Broadband service is NOT supported !!!");
            return drop(CParseSLT::DROP_BROADBAND_UNSUPPORTED);
        }
    }
    if (!m->replace.Take()) {
        return drop(CParseSLT::DROP_LIMIT);
    }
    service->group = m->replace.Group();
    service->svcCapabilities = Text(node, "svcCapabilities");

    {
        const vyr::CScoped<SService*> current(m->current, service.get(), nullptr);
        vyr::DispatchChildren(m, k_handlers, node);
    }
    vyr::Append(m->services, std::move(service));
}

bool m_ProcessParseSLT(SServices& m, const CXML& xml, void* root)
{
    if (!xml.Compare(root, "SLT")) {
        return false;
    }
    vyr::ReadAttribute(root, "bsid", m.bsid);
    m.bsidByGroup.emplace(m.groupId, m.bsid);
    if (!vyr::ReadAttribute(root, "sltCapabilities", m.capabilities)) {
        vyr::ReadAttribute(root, "SLTCapabilities", m.capabilities);
    }
    vyr::DispatchChildren(&m, k_handlers, root, "[CParseSLT::m_ProcessParseSLT] Name[%s]", vyr::LOG_ALL_CHILDREN);
    return true;
}

}  // namespace

struct CParseSLT::SSLT : SServices {};

CParseSLT::CParseSLT() : m(nullptr) {}

CParseSLT::~CParseSLT()
{
    VYR_ASSERT(!m, "!m");
}

bool CParseSLT::Create(CChannelMap* channelMap, const CParseSLT::SCallback* callback)
{
    if ((!m && !VYR_ASSERT(channelMap, "channelMap")) || !vyr::CreateState(m)) {
        return false;
    }
    m->channelMap = channelMap;
    m->callback = callback ? *callback : SCallback{};
    return true;
}

void CParseSLT::Destroy()
{
    if (!VYR_ASSERT(m, "m") || !t_Idle()) {
        return;
    }
    m_RemoveSLT();
    vyr::DestroyState(m);
}

void CParseSLT::m_RemoveSLT()
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseSLT::m_RemoveSLT]");
    m->bsidByGroup.clear();
    m->groupIds.clear();
    m->services.RemoveAll();
    m->sltInetUrls.RemoveAll();
}

bool CParseSLT::Start(void* channel)
{
    if (!VYR_ASSERT(m, "m")) {
        return false;
    }
    m->channel = channel;
    return true;
}

bool CParseSLT::Stop()
{
    return VYR_ASSERT(m, "m");
}

bool CParseSLT::AddLLSGroupId(unsigned char groupId)
try {
    if (!VYR_ASSERT(m, "m")) {
        return false;
    }
    m->groupIds.insert(groupId);
    m->groupId = groupId;
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CParseSLT::SetLenient(bool lenient)
{
    if (VYR_ASSERT(m, "m")) {
        m->lenient = lenient;
    }
}

void CParseSLT::SetReplace(bool replace, bool leaveChannelMap)
{
    if (VYR_ASSERT(m, "m")) {
        m->replace.Set(replace);
        m->leaveChannelMap = leaveChannelMap;
    }
}

void CParseSLT::SetDropCallback(const SDropCallback* callback)
{
    if (VYR_ASSERT(m, "m")) {
        m->dropCallback = callback ? *callback : SDropCallback{};
    }
}

int CParseSLT::ServiceCount() const
{
    return VYR_ASSERT(m, "m") ? m->services.Size() : 0;
}

int CParseSLT::Bsid() const
{
    return VYR_ASSERT(m, "m") ? m->bsid : 0;
}

int CParseSLT::LowestMinorChannelNo() const
{
    return VYR_ASSERT(m, "m") ? m->lowestMinorChannelNo : 0;
}

int CParseSLT::SltInetUrlCount() const
{
    return VYR_ASSERT(m, "m") ? m->sltInetUrls.Size() : 0;
}

bool CParseSLT::GetSltCapability(std::string& capability) const
{
    return VYR_ASSERT(m, "m") && vyr::Give(m->capabilities, capability);
}

bool CParseSLT::GetSltInetUrl(int index, std::string& url, EATSC3UrlType& type) const
{
    const SHeldUrl* record = VYR_ASSERT(m, "m") ? m->sltInetUrls.Get(index) : nullptr;
    return record && vyr::Give(record->url, url) && vyr::Give(record->urlType, type);
}

const SParseSLT::SService* CParseSLT::GetServiceInfo(int index) const
{
    void* element = nullptr;
    return VYR_ASSERT(m, "m") && m->services.GetAt(index, &element) ? static_cast<SHeldService*>(element) : nullptr;
}

bool CParseSLT::GetService(int index, void*& service) const
{
    const SService* record = GetServiceInfo(index);
    return record && vyr::Give(record->service, service);
}

bool CParseSLT::GetService(void (*fn)(void*, void*, int), void* userData) const
{
    if (!VYR_ASSERT(m, "m") || !VYR_ASSERT(fn, "fn")) {
        return false;
    }
    const vyr::CScoped<bool> parsing(t_parsing, true, t_parsing);
    for (int i = 0; i < m->services.Size(); ++i) {
        fn(userData, m->Service(i)->service, i);
    }
    return true;
}

std::set<unsigned char> CParseSLT::GetLLSGroupIDs() const
try {
    return VYR_ASSERT(m, "m") ? m->groupIds : std::set<unsigned char>();
} catch (...) {
    return vyr::OutOfMemory<std::set<unsigned char>>(VYR_HERE);
}

std::map<unsigned char, int> CParseSLT::GetBsidByLLSGroupID() const
try {
    return VYR_ASSERT(m, "m") ? m->bsidByGroup : std::map<unsigned char, int>();
} catch (...) {
    return vyr::OutOfMemory<std::map<unsigned char, int>>(VYR_HERE);
}

bool CParseSLT::t_Parse(IParse::SItem* item)
{
    if (!VYR_ASSERT(m, "m")) {
        return false;
    }
    const int services = m->services.Size();
    const int urls = m->sltInetUrls.Size();
    m->replace.Begin({m->channel, t_GroupId(), m->groupId});
    if (!vyr::ParseTableDocument(item, t_DecompressLLS(), "m_ProcessParseSLT(root)",
                                 [this](const CXML& xml, void* root) { return m_ProcessParseSLT(*m, xml, root); })) {
        return false;
    }
    m_PutAside(services, urls);
    t_RemoveDuplicateServices();
    m->lowestMinorChannelNo = k_noMinorChannel;
    for (int i = 0; i < m->services.Size(); ++i) {
        const SService* service = m->Service(i);
        if (!service->hidden && service->minorChannelNo >= 1 && service->minorChannelNo < m->lowestMinorChannelNo) {
            m->lowestMinorChannelNo = service->minorChannelNo;
        }
    }
    // Required: services of earlier tables are offered again.
    for (int i = 0; i < m->services.Size(); ++i) {
        m_Publish(m->Service(i));
    }
    m_Leave();
    if (m->callback.fn) {
        m->callback.fn(m->callback.userData, 1);
    }
    m_DumpSLT();
    return true;
}

/// With SetReplace: takes what the table's group held before out of the lists, of which so many are older.
void CParseSLT::m_PutAside(int services, int urls)
{
    if (m->replace.Group() != 0) {
        // A table that ended early may have left some.
        m->gone.services.reserve(m->gone.services.size() + static_cast<std::size_t>(services));
        {
            const vyr::CScoped<bool> open(m->gone.open, true, false);
            m->replace.Drop<SService>(m->services, services);
        }
        m->replace.Drop<SParseSLT::SSltInetUrl>(m->sltInetUrls, urls);
    }
    m->replace.End("CParseSLT");
}

/// Tells of the services that were put aside and are not offered to the channel map any more.
void CParseSLT::m_Leave()
{
    const auto gone = std::exchange(m->gone.services, {});
    if (gone.empty()) {
        return;
    }
    std::unordered_set<const void*> offered{nullptr};
    for (int i = 0; i < m->services.Size(); ++i) {
        offered.insert(m->Service(i)->service);
    }
    for (const auto& service : gone) {
        if (offered.count(service->service) == 0) {
            m->Drop(service.get(), DROP_GONE);
        }
    }
    for (const auto& service : gone) {
        if (m->leaveChannelMap && offered.count(service->service) == 0) {
            m->channelMap->RemoveService(service->service);
        }
    }
}

/// Offers a service to the channel map and hands over what the map keeps of it.
void CParseSLT::m_Publish(SParseSLT::SService* service)
{
    CChannelMap* map = m->channelMap;
    void* entry = map->AddService(m->channel, service->groupId, service->serviceId, service->majorChannelNo,
                                  service->minorChannelNo, service->simulcastTsid, service->simulcastMajorChannelNo,
                                  service->simulcastMinorChannelNo, service->broadbandAccessRequired, nullptr);
    service->service = entry;
    if (!entry) {
        return;
    }
    if (service->globalServiceId) {
        map->SetGlobalServiceId(entry, service->globalServiceId->c_str(),
                                static_cast<int>(service->globalServiceId->size()));
    }
    if (service->shortServiceName) {
        map->SetServiceName(entry, service->shortServiceName->c_str(),
                            static_cast<int>(service->shortServiceName->size()));
    }
    map->SetServiceCategory(entry, service->serviceCategory, service->broadbandAccessRequired, service->hidden);
    map->SetProtected(entry, service->isProtected);
    if (service->hasBroadcastSvcSignaling) {
        map->SetDestination(entry, service->slsDestinationIpAddress,
                            static_cast<unsigned short>(service->slsDestinationUdpPort));
        map->SetSource(entry, service->slsSourceIpAddress);
        map->SetProtocolType(entry, static_cast<EATSC3ProtocolType>(service->slsProtocol));
    }
    if (service->svcInetUrl.present) {
        map->SetSvcInetUrl(entry, service->svcInetUrl.url.c_str());
        map->SetSvcInetUrlType(entry, static_cast<EATSC3UrlType>(service->svcInetUrl.urlType));
    }
    if (!service->drmSystemID.empty()) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseSLT::t_Parse] systemID[%s]", service->drmSystemID.c_str());
        map->SetDrmSystemID(entry, service->drmSystemID);
    }
}

/// Every pair of equal services lists the index of its later one; the list in ascending order, its
/// k-th entry (from 0) removes the element that stands at (index - k) by then. Required as it is: of
/// two equal services the first stays, of three none does, and in longer runs the array refuses the
/// indices below zero. Refusals beyond one per service held are passed over in silence.
void CParseSLT::t_RemoveDuplicateServices()
{
    const int count = m->services.Size();
    if (count < 2) {
        return;
    }
    std::unordered_map<const SService*, int, SEqualHash, SEqual> seen(static_cast<std::size_t>(count));
    CRemovals removals(count);
    std::int64_t k = 0;
    int refusals = 0;
    for (int index = 0; index < count; ++index) {
        const std::int64_t entries = seen[m->Service(index)]++;
        const std::int64_t last = k + entries;
        for (; k < last && k <= index; ++k) {
            removals.RemoveAt(static_cast<std::size_t>(index - k));
        }
        for (; k < last && refusals < count; ++k) {
            m->services.RemoveAt(static_cast<int>(std::max<std::int64_t>(index - k, INT_MIN)));
            ++refusals;
        }
        k = last;
    }
    if (k == 0) {
        return;
    }
    for (int i = 0; i < count; ++i) {
        if (removals.Removed(i)) {
            m->Drop(m->Service(i), DROP_DUPLICATE);
        }
    }
    m->services.RemoveIf([](void* user, int i) { return static_cast<CRemovals*>(user)->Removed(i); }, &removals);
}

void CParseSLT::m_DumpSLT() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    VYR_DUMP("[CParseSLT::m_DumpSLT] bsid[%d], capabilities[%s], services[%d], urls[%d]", m->bsid,
             m->capabilities.c_str(), m->services.Size(), m->sltInetUrls.Size());
    for (int i = 0; i < m->services.Size(); ++i) {
        const SService* service = m->Service(i);
        VYR_LOG(LOG_PRIORITY_DEBUG,
                "[CParseSLT::m_DumpSLT] service[%d] id[%d] channel[%d-%d] category[%d] name[%s] protocol[%d] "
                "destination[%08x:%d] hidden[%d] protected[%d]",
                i, service->serviceId, service->majorChannelNo, service->minorChannelNo, service->serviceCategory,
                service->shortServiceName ? service->shortServiceName->c_str() : "", service->slsProtocol,
                service->slsDestinationIpAddress, service->slsDestinationUdpPort, service->hidden,
                service->isProtected);
    }
}
