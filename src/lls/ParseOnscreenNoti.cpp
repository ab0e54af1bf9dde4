#include "lls/ParseOnscreenNoti.h"

#include <climits>

#include "common/CoreOS/PtrArray.h"
#include "lls/Replace.h"
#include "lls/TableDocument.h"
#include "platform/Log.h"

using vyr::CNodeText;

typedef vyr::THeld<CParseOnscreenNoti::SKeepScreenClear> SHeld;

static void g_CbRemoveKSC(void* /*context*/, void* element)
{
    delete static_cast<SHeld*>(element);
}

struct CParseOnscreenNoti::SState : vyr::STable {
    CCPtrArray entries{g_CbRemoveKSC, nullptr};
    vyr::CReplace replace;
};

CParseOnscreenNoti::CParseOnscreenNoti() : m(nullptr) {}

CParseOnscreenNoti::~CParseOnscreenNoti()
{
    VYR_ASSERT(!m, "!m && \"call Destroy() before deleting the parser\"");
}

bool CParseOnscreenNoti::Create()
{
    if (!m) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseOnscreenNoti::Create]");
    }
    return vyr::CreateState(m, VYR_HERE, [this] { return t_CreateCallback(); });
}

bool CParseOnscreenNoti::t_CreateCallback()
{
    static constexpr vyr::SElementHandler<CParseOnscreenNoti> k_handlers[] = {{"KeepScreenClear", sm_CbKSC}};
    return vyr::AddHandlers(m->handlers, k_handlers);
}

void CParseOnscreenNoti::Destroy()
{
    if (!VYR_ASSERT(m, "m")) {
        return;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseOnscreenNoti::Destroy]");
    delete m;
    m = nullptr;
}

unsigned int CParseOnscreenNoti::KSCCount() const
{
    return VYR_ASSERT(m, "m") ? static_cast<unsigned int>(m->entries.Size()) : 0;
}

const CParseOnscreenNoti::SKeepScreenClear* CParseOnscreenNoti::m_Entry(unsigned int index) const
{
    // Required: the array itself asserts a bad index.
    return VYR_ASSERT(m, "m") ? static_cast<SHeld*>(m->entries.Data(index <= INT_MAX ? static_cast<int>(index) : -1))
                              : nullptr;
}

unsigned short CParseOnscreenNoti::Bsid(unsigned int index) const
{
    const SKeepScreenClear* entry = m_Entry(index);
    return entry ? entry->bsid : 0;
}

unsigned short CParseOnscreenNoti::ServiceId(unsigned int index) const
{
    const SKeepScreenClear* entry = m_Entry(index);
    return entry ? entry->serviceId : 0;
}

unsigned short CParseOnscreenNoti::ServiceIdRange(unsigned int index) const
{
    const SKeepScreenClear* entry = m_Entry(index);
    return entry ? entry->serviceIdRange : 0;
}

const CParseOnscreenNoti::SKeepScreenClear* CParseOnscreenNoti::GetKSC(unsigned int index) const
{
    return index < KSCCount() ? m_Entry(index) : nullptr;
}

void CParseOnscreenNoti::SetReplace(bool replace)
{
    if (VYR_ASSERT(m, "m")) {
        m->replace.Set(replace);
    }
}

bool CParseOnscreenNoti::t_Parse(IParse::SItem* item)
{
    if (!VYR_ASSERT(m, "m")) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseOnscreenNoti::t_Parse]");
    const int held = m->entries.Size();
    m->replace.Begin({nullptr, t_GroupId(), 0});
    if (!vyr::ParseTableDocument(m->xml, item, t_DecompressLLS(), "m_ProcessParseOnscreenNoti(root)", VYR_HERE,
                                 [this](void* root) { return m_ProcessParseOnscreenNoti(root); })) {
        return false;
    }
    m->replace.Drop<SKeepScreenClear>(m->entries, held);
    m->replace.End("CParseOnscreenNoti", VYR_HERE);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseOnscreenNoti::t_Parse] array size[%d]", m->entries.Size());
    m_DumpKSC();
    return true;
}

bool CParseOnscreenNoti::m_ProcessParseOnscreenNoti(void* root)
{
    if (!m->xml.Compare(root, "OnscreenMessageNotification")) {
        return false;
    }
    vyr::DispatchChildren(this, m->handlers, root, vyr::LOG_HANDLED_CHILDREN,
                          "[CParseOnscreenNoti::m_ProcessParseOnscreenNoti] Name[%s]", VYR_HERE);
    return true;
}

void CParseOnscreenNoti::sm_CbKSC(CParseOnscreenNoti* parser, void* node)
{
    const auto number = [node](const char* name) { return CNodeText::Attribute(node, name).Int(0); };
    if (!parser->m->replace.Take()) {
        return;
    }
    auto entry = std::make_unique<SHeld>();
    entry->group = parser->m->replace.Group();
    entry->bsid = static_cast<unsigned short>(number("bsid"));
    entry->serviceId = static_cast<unsigned short>(number("serviceId"));
    entry->serviceIdRange = static_cast<unsigned short>(number("serviceIdRange"));
    CNodeText::Attribute(node, "notificationDuration").CopyTo(entry->notificationDuration);
    entry->kscFlag = CNodeText::Attribute(node, "kscFlag").Bool();
    entry->version = static_cast<unsigned char>(number("version"));
    vyr::Append(parser->m->entries, std::move(entry));
}

void CParseOnscreenNoti::m_DumpKSC() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    for (int i = 0; i < m->entries.Size(); ++i) {
        const auto* entry = static_cast<const SHeld*>(m->entries.Data(i));
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseOnscreenNoti::m_DumpKSC]index: %d , bsid: %d, serviceId: %d", i,
                entry->bsid, entry->serviceId);
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseOnscreenNoti::m_DumpKSC]serviceIdRange: %d , duration: %s",
                entry->serviceIdRange, entry->notificationDuration.c_str());
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseOnscreenNoti::m_DumpKSC]kscFlag: %d , version: %d", entry->kscFlag,
                entry->version);
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseOnscreenNoti::m_DumpKSC] End Dump !!!");
}
