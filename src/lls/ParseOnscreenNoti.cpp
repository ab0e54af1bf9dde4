#include "lls/ParseOnscreenNoti.h"

#include <climits>

#include "common/Owned.h"
#include "common/XmlRead.h"
#include "lls/Replace.h"
#include "lls/TableDocument.h"
#include "platform/Log.h"

using vyr::CNodeText;

namespace {

struct SEntry : CParseOnscreenNoti::SKeepScreenClear {
    CParseOnscreenNoti::SGiven given;
};

typedef vyr::THeld<SEntry> SHeld;

struct SEntries {
    TPtrArray<SHeld> entries;
    vyr::CReplace replace;
};

void sm_CbKSC(SEntries* m, void* node)
{
    if (!m->replace.Take()) {
        return;
    }
    auto entry = std::make_unique<SHeld>();
    entry->group = m->replace.Group();
    vyr::ReadAttribute(node, "bsid", entry->bsid);
    vyr::ReadAttribute(node, "serviceId", entry->serviceId);
    vyr::ReadAttribute(node, "serviceIdRange", entry->serviceIdRange);
    vyr::ReadAttribute(node, "notificationDuration", entry->notificationDuration);
    entry->kscFlag = CNodeText::Attribute(node, "kscFlag").Bool();
    vyr::ReadAttribute(node, "version", entry->version);
    CParseOnscreenNoti::SGiven& given = entry->given;
    vyr::ReadAttribute(node, "bsid", given.bsid);
    vyr::ReadAttribute(node, "serviceId", given.serviceId);
    vyr::ReadAttribute(node, "serviceIdRange", given.serviceIdRange);
    vyr::ReadAttribute(node, "kscFlag", given.kscFlag);
    vyr::ReadAttribute(node, "version", given.version);
    m->entries.Append(std::move(entry));
}

constexpr vyr::SElementHandler<SEntries> k_handlers[] = {{"KeepScreenClear", sm_CbKSC}};

bool m_ProcessParseOnscreenNoti(SEntries& m, const CXML& xml, void* root)
{
    if (!xml.Compare(root, "OnscreenMessageNotification")) {
        return false;
    }
    vyr::DispatchChildren(&m, k_handlers, root, "[CParseOnscreenNoti::m_ProcessParseOnscreenNoti] Name[%s]");
    return true;
}

/// The entry of that index; without the parser's record the caller's failed assertion.
const CParseOnscreenNoti::SKeepScreenClear* Entry(const SEntries* m, unsigned int index, VYR_CALLER)
{
    if (!m) {
        vyr::AssertFailed(here, "m");
        return nullptr;
    }
    return m->entries.At(index <= INT_MAX ? static_cast<int>(index) : -1);  // required: the array asserts a bad index
}

}  // namespace

struct CParseOnscreenNoti::SState : SEntries {};

CParseOnscreenNoti::CParseOnscreenNoti() : m(nullptr) {}

CParseOnscreenNoti::~CParseOnscreenNoti()
{
    VYR_ASSERT(!m, "!m && \"call Destroy() before deleting the parser\"");
}

bool CParseOnscreenNoti::Create()
{
    return vyr::CreateState(m, "[CParseOnscreenNoti::Create]");
}

void CParseOnscreenNoti::Destroy()
{
    vyr::DestroyState(m, "[CParseOnscreenNoti::Destroy]");
}

unsigned int CParseOnscreenNoti::KSCCount() const
{
    return VYR_ASSERT(m, "m") ? static_cast<unsigned int>(m->entries.Size()) : 0;
}

const CParseOnscreenNoti::SKeepScreenClear* CParseOnscreenNoti::m_Entry(unsigned int index) const
{
    return Entry(m, index);
}

unsigned short CParseOnscreenNoti::Bsid(unsigned int index) const
{
    const SKeepScreenClear* entry = Entry(m, index);
    return entry ? entry->bsid : 0;
}

unsigned short CParseOnscreenNoti::ServiceId(unsigned int index) const
{
    const SKeepScreenClear* entry = Entry(m, index);
    return entry ? entry->serviceId : 0;
}

unsigned short CParseOnscreenNoti::ServiceIdRange(unsigned int index) const
{
    const SKeepScreenClear* entry = Entry(m, index);
    return entry ? entry->serviceIdRange : 0;
}

const CParseOnscreenNoti::SKeepScreenClear* CParseOnscreenNoti::GetKSC(unsigned int index) const
{
    return index < KSCCount() ? m_Entry(index) : nullptr;
}

const CParseOnscreenNoti::SGiven* CParseOnscreenNoti::Given(unsigned int index) const
{
    return index < KSCCount() ? &m->entries.At(static_cast<int>(index))->given : nullptr;
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
    if (!vyr::ParseTableDocument(
            item, t_DecompressLLS(), "m_ProcessParseOnscreenNoti(root)",
            [this](const CXML& xml, void* root) { return m_ProcessParseOnscreenNoti(*m, xml, root); })) {
        return false;
    }
    m->replace.Drop<SEntry>(m->entries, held);
    m->replace.End("CParseOnscreenNoti");
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseOnscreenNoti::t_Parse] array size[%d]", m->entries.Size());
    m_DumpKSC();
    return true;
}

void CParseOnscreenNoti::m_DumpKSC() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    for (int i = 0; i < m->entries.Size(); ++i) {
        const SHeld* entry = m->entries.At(i);
        VYR_DUMP("[CParseOnscreenNoti::m_DumpKSC]index: %d , bsid: %d, serviceId: %d", i, entry->bsid,
                 entry->serviceId);
        VYR_DUMP("[CParseOnscreenNoti::m_DumpKSC]serviceIdRange: %d , duration: %s", entry->serviceIdRange,
                 entry->notificationDuration.c_str());
        VYR_DUMP("[CParseOnscreenNoti::m_DumpKSC]kscFlag: %d , version: %d", entry->kscFlag, entry->version);
    }
    VYR_DUMP("[CParseOnscreenNoti::m_DumpKSC] End Dump !!!");
}
