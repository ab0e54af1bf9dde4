#include "common/RSAT.h"

#include <memory>
#include <vector>

#include "common/CoreOS/PtrArray.h"
#include "common/XmlParser.h"
#include "platform/Log.h"

using vyr::CNodeText;

namespace {

/// A service as it is held.
struct SService : SRSATServiceInfo {
    std::vector<const SRSATUpdateInfo*> byIndex;  // its updates, which callers ask for one by one
};

void g_CbRemoveService(void* /*context*/, void* element)
{
    delete static_cast<SService*>(element);
}

/// What a service and an update have in common.
template <class TInfo>
void ReadBroadcast(TInfo& info, void* node)
{
    info.preferred = CNodeText::Attribute(node, "preferred").Bool();
    info.majorChannelNo = static_cast<unsigned short>(CNodeText::Attribute(node, "majorChannelNo").Int(-1));
    info.minorChannelNo = static_cast<unsigned short>(CNodeText::Attribute(node, "minorChannelNo").Int(-1));
    CNodeText::Attribute(node, "frequency").CopyTo(info.frequency);
    CNodeText::Attribute(node, "broadcastType").CopyTo(info.broadcastType);
}

}  // namespace

struct CRSAT::SState : vyr::SHandlers {
    std::string timestamp;
    std::string RSATInetURL;
    CCPtrArray services{g_CbRemoveService, nullptr};
    SService* current = nullptr;  // set while the children of a service are read
};

CRSAT::CRSAT() : m(nullptr)
{
    t_keepsDocument = false;
}

CRSAT::~CRSAT() = default;

bool CRSAT::Create()
{
    return vyr::CreateXmlParser(m, "[CRSAT::Create]", VYR_HERE, [this] { return t_CreateCallback(); });
}

bool CRSAT::t_CreateCallback()
{
    static constexpr vyr::SElementHandler<CRSAT> k_handlers[] = {{"Service", sm_CbService}, {"Update", sm_CbUpdate}};
    return vyr::AddHandlers(m->handlers, k_handlers);
}

void CRSAT::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CRSAT::Destroy]", VYR_HERE);
}

bool CRSAT::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    if (!t_xml.Compare(root, "RSAT")) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CRSAT::m_ProcessParseRSAT] NOT RSAT FILE");
        return false;
    }
    if (!CNodeText::Attribute(root, "timestamp").CopyTo(m->timestamp)) {
        return false;
    }
    if (t_replace) {
        m->RSATInetURL.clear();
        m->services.RemoveAll();
    }
    CNodeText::Attribute(root, "RSATInetURL").CopyTo(m->RSATInetURL);
    vyr::DispatchChildren(this, m->handlers, root, vyr::LOG_HANDLED_CHILDREN, "[CRSAT::m_ProcessParseRSAT] Name[%s]",
                          VYR_HERE);
    return true;
}

void CRSAT::sm_CbService(CRSAT* rsat, void* node)
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "[sm_CbService] ");
    SState* m = rsat->m;
    auto service = std::make_unique<SService>();
    ReadBroadcast(*service, node);
    CNodeText::Attribute(node, "validUntil").CopyTo(service->validUntil);
    {
        const vyr::CScoped<SService*> current(m->current, service.get(), nullptr);
        vyr::DispatchChildren(rsat, m->handlers, node, vyr::LOG_NO_CHILDREN, "", VYR_HERE);
    }
    vyr::Append(m->services, std::move(service));
    VYR_LOG(LOG_PRIORITY_DEBUG, "[sm_CbService] %d ", m->services.Size());
}

void CRSAT::sm_CbUpdate(CRSAT* rsat, void* node)
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CRSAT::sm_CbUpdate]");
    // Outside a service there is nothing to update.
    if (SService* service = rsat->m->current) {
        SRSATUpdateInfo& update = service->updates.emplace_back();
        service->byIndex.push_back(&update);
        ReadBroadcast(update, node);
        CNodeText::Attribute(node, "validFrom").CopyTo(update.validFrom);
        VYR_LOG(LOG_PRIORITY_DEBUG, "[sm_CbUpdate] %d, %d, %s ", update.majorChannelNo, update.minorChannelNo,
                update.validFrom.c_str());
    }
}

bool CRSAT::GetTimestamp(std::string& timestamp) const
{
    return VYR_ASSERT(m, "m") && vyr::Give(m->timestamp, timestamp);
}

bool CRSAT::GetRSATInetURL(std::string& url) const
{
    return VYR_ASSERT(m, "m") && vyr::Give(m->RSATInetURL, url);
}

int CRSAT::NumOfService() const
{
    return VYR_ASSERT(m, "m") ? m->services.Size() : 0;
}

const SRSATServiceInfo* CRSAT::m_Service(int index) const
{
    void* service = nullptr;
    return VYR_ASSERT(m, "m") && m->services.GetAt(index, &service) ? static_cast<SService*>(service) : nullptr;
}

bool CRSAT::GetServiceInfo(int index, SRSATServiceInfo* info) const
{
    const SRSATServiceInfo* service = m_Service(index);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CRSAT::GetServiceInfo] array size[%d]", m ? m->services.Size() : 0);
    if (!service || !VYR_ASSERT(info, "info")) {
        return false;
    }
    if (!vyr::Give(*service, *info)) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CRSAT::GetServiceInfo] update size[%d]", static_cast<int>(info->updates.size()));
    return true;
}

int CRSAT::NumOfUpdate(int service) const
{
    const SRSATServiceInfo* record = m_Service(service);
    return record ? static_cast<int>(record->updates.size()) : 0;
}

bool CRSAT::GetUpdateInfo(int service, int update, SRSATUpdateInfo* info) const
{
    const auto* record = static_cast<const SService*>(m_Service(service));
    if (!record || update < 0 || update >= static_cast<int>(record->byIndex.size()) || !VYR_ASSERT(info, "info")) {
        return false;
    }
    return vyr::Give(*record->byIndex[static_cast<std::size_t>(update)], *info);
}
