#include "common/RSAT.h"

#include <memory>
#include <vector>

#include "common/Give.h"
#include "common/Owned.h"
#include "common/XmlParser.h"
#include "common/XmlRead.h"
#include "platform/Log.h"

using vyr::CNodeText;

namespace {

/// A service as it is held.
struct SService : SRSATServiceInfo {
    std::vector<const SRSATUpdateInfo*> byIndex;  // its updates, which callers ask for one by one
};

/// What a service and an update have in common.
template <class TInfo>
void ReadBroadcast(TInfo& info, void* node)
{
    info.preferred = CNodeText::Attribute(node, "preferred").Bool();
    vyr::ReadAttribute(node, "majorChannelNo", info.majorChannelNo, -1);
    vyr::ReadAttribute(node, "minorChannelNo", info.minorChannelNo, -1);
    vyr::ReadAttribute(node, "frequency", info.frequency);
    vyr::ReadAttribute(node, "broadcastType", info.broadcastType);
}

struct SState : vyr::SXmlState {
    std::string timestamp;
    std::string RSATInetURL;
    TPtrArray<SService> services;
    SService* current = nullptr;  // set while the children of a service are read

    bool m_ProcessParse(void* root) override;
};

void sm_CbService(SState* m, void* node);

void sm_CbUpdate(SState* m, void* node)
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CRSAT::sm_CbUpdate]");
    // Outside a service there is nothing to update.
    if (SService* service = m->current) {
        SRSATUpdateInfo& update = service->updates.emplace_back();
        service->byIndex.push_back(&update);
        ReadBroadcast(update, node);
        vyr::ReadAttribute(node, "validFrom", update.validFrom);
        VYR_LOG(LOG_PRIORITY_DEBUG, "[sm_CbUpdate] %d, %d, %s ", update.majorChannelNo, update.minorChannelNo,
                update.validFrom.c_str());
    }
}

constexpr vyr::SElementHandler<SState> k_handlers[] = {{"Service", sm_CbService}, {"Update", sm_CbUpdate}};

void sm_CbService(SState* m, void* node)
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "[sm_CbService] ");
    auto service = std::make_unique<SService>();
    ReadBroadcast(*service, node);
    vyr::ReadAttribute(node, "validUntil", service->validUntil);
    {
        const vyr::CScoped<SService*> current(m->current, service.get(), nullptr);
        vyr::DispatchChildren(m, k_handlers, node);
    }
    m->services.Append(std::move(service));
    VYR_LOG(LOG_PRIORITY_DEBUG, "[sm_CbService] %d ", m->services.Size());
}

bool SState::m_ProcessParse(void* root)
{
    if (!xml->Compare(root, "RSAT")) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CRSAT::m_ProcessParseRSAT] NOT RSAT FILE");
        return false;
    }
    if (!vyr::ReadAttribute(root, "timestamp", timestamp)) {
        return false;
    }
    if (replace) {
        RSATInetURL.clear();
        services.RemoveAll();
    }
    vyr::ReadAttribute(root, "RSATInetURL", RSATInetURL);
    vyr::DispatchChildren(this, k_handlers, root, "[CRSAT::m_ProcessParseRSAT] Name[%s]");
    return true;
}

/// A service; null: there is none.
const SService* Service(const SState* m, int index, VYR_CALLER)
{
    return m || vyr::AssertFailed(here, "m") ? m->services.Get(index) : nullptr;
}

}  // namespace

bool CRSAT::GetTimestamp(std::string& timestamp) const
{
    const auto* m = t_State<SState>();
    return VYR_ASSERT(m, "m") && vyr::Give(m->timestamp, timestamp);
}

bool CRSAT::GetRSATInetURL(std::string& url) const
{
    const auto* m = t_State<SState>();
    return VYR_ASSERT(m, "m") && vyr::Give(m->RSATInetURL, url);
}

int CRSAT::NumOfService() const
{
    const auto* m = t_State<SState>();
    return VYR_ASSERT(m, "m") ? m->services.Size() : 0;
}

bool CRSAT::GetServiceInfo(int index, SRSATServiceInfo* info) const
{
    const auto* m = t_State<SState>();
    const SService* service = Service(m, index);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CRSAT::GetServiceInfo] array size[%d]", m ? m->services.Size() : 0);
    if (!service || !VYR_ASSERT(info, "info")) {
        return false;
    }
    if (!vyr::Give<SRSATServiceInfo>(*service, *info)) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CRSAT::GetServiceInfo] update size[%d]", static_cast<int>(info->updates.size()));
    return true;
}

int CRSAT::NumOfUpdate(int service) const
{
    const SService* record = Service(t_State<SState>(), service);
    return record ? static_cast<int>(record->updates.size()) : 0;
}

bool CRSAT::GetUpdateInfo(int service, int update, SRSATUpdateInfo* info) const
{
    const SService* record = Service(t_State<SState>(), service);
    if (!record || update < 0 || update >= static_cast<int>(record->byIndex.size()) || !VYR_ASSERT(info, "info")) {
        return false;
    }
    return vyr::Give(*record->byIndex[static_cast<std::size_t>(update)], *info);
}

vyr::SXmlKind CRSAT::t_Kind() const
{
    return vyr::XmlKind<SState>("CRSAT");
}
