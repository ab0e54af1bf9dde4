#include "lls/ParseAEAT.h"

#include <cstring>
#include <memory>

#include "common/Give.h"
#include "common/Owned.h"
#include "common/XmlRead.h"
#include "lls/Replace.h"
#include "lls/TableDocument.h"
#include "platform/Log.h"

using vyr::CNodeText;

namespace {

typedef SParseAEAT::SAEAInfo SAEAInfo;

struct SAlert : SAEAInfo {
    CParseAEAT::SGiven given;
};

typedef vyr::THeld<SAlert> SHeld;

/// The number of the first word, counted from 1, that the attribute begins with; 0: none, or absent.
template <class TEnum, std::size_t N>
TEnum Word(void* node, const char* name, const char* const (&words)[N])
{
    const CNodeText text = CNodeText::Attribute(node, name);
    for (std::size_t i = 0; text.Found() && i < N; ++i) {
        if (std::strncmp(text.Text(), words[i], std::strlen(words[i])) == 0) {
            return static_cast<TEnum>(i + 1);
        }
    }
    return static_cast<TEnum>(0);
}

std::string Attribute(void* node, const char* name)
{
    std::string text;
    CNodeText::Attribute(node, name).CopyTo(text);
    return text;
}

std::string Content(void* node)
{
    std::string text;
    CNodeText::Content(node).CopyTo(text);
    return text;
}

struct SAlerts {
    SAEAInfo* current = nullptr;  // set while the children of an alert are read
    TPtrArray<SHeld> alerts;
    CParseAEAT::SCallback callback{};
    vyr::CReplace replace;

    /// The alert that a list is read for, when there is room for one entry more.
    SAEAInfo* Listing() { return current && replace.Take() ? current : nullptr; }
};

// Elements are handled wherever they stand; without an alert around them they are read and dropped.

void sm_CbAEA(SAlerts* m, void* node);
void sm_CbHeader(SAlerts* m, void* node);
void sm_CbLiveMedia(SAlerts* m, void* node);

void sm_CbEventCode(SAlerts* m, void* node)
{
    if (SAEAInfo* alert = m->current) {
        alert->eventCode = Content(node);
        alert->eventCodeType = Attribute(node, "type");
    }
}

void sm_CbEventDesc(SAlerts* m, void* node)
{
    if (SAEAInfo* alert = m->Listing()) {
        alert->eventDescs.push_back({Content(node), Attribute(node, "lang")});
    }
}

void sm_CbLocation(SAlerts* m, void* node)
{
    if (SAEAInfo* alert = m->Listing()) {
        alert->locations.push_back(
            {Content(node), Word<EAEALocationType>(node, "type", {"FIPS", "SGC", "polygon", "circle"})});
    }
}

void sm_CbAEAText(SAlerts* m, void* node)
{
    if (SAEAInfo* alert = m->Listing()) {
        alert->texts.push_back({Content(node), Attribute(node, "lang")});
    }
}

void sm_CbServiceName(SAlerts* m, void* node)
{
    SAEAInfo* alert = m->current;
    if (alert && alert->liveMedia && m->replace.Take()) {
        // Required: the attribute, not the element's text.
        alert->liveMedia->serviceNames.push_back({Attribute(node, "ServiceName"), Attribute(node, "lang")});
    }
}

void sm_CbMedia(SAlerts* m, void* node)
{
    SAEAInfo* alert = m->Listing();
    if (!alert) {
        return;
    }
    SParseAEAT::SMedia media{};
    media.lang = Attribute(node, "lang");
    // Required: "mediaDesc" is overwritten by "mediaType", present or not, and nothing becomes the type.
    media.mediaDesc = Attribute(node, "mediaType");
    media.url = Attribute(node, "url");
    media.alternateUrl = Attribute(node, "alternateUrl");
    media.contentType = Attribute(node, "contentType");
    media.contentLength = static_cast<unsigned int>(CNodeText::Attribute(node, "contentLength").LLong(0));
    media.mediaAssoc = Attribute(node, "mediaAssoc");
    alert->media.push_back(std::move(media));
}

constexpr vyr::SElementHandler<SAlerts> k_handlers[] = {
    {"AEA", sm_CbAEA},
    {"Header", sm_CbHeader},
    {"EventCode", sm_CbEventCode},
    {"EventDesc", sm_CbEventDesc},
    {"Location", sm_CbLocation},
    {"AEAText", sm_CbAEAText},
    {"LiveMedia", sm_CbLiveMedia},
    {"ServiceName", sm_CbServiceName},
    {"Media", sm_CbMedia},
};

void sm_CbAEA(SAlerts* m, void* node)
{
    if (!m->replace.Take()) {
        return;
    }
    auto alert = std::make_unique<SHeld>();
    alert->group = m->replace.Group();
    alert->aeaId = Attribute(node, "aeaId");
    alert->issuer = Attribute(node, "issuer");
    alert->audience = Word<EAEAAudience>(node, "audience", {"public", "restricted", "private"});
    alert->aeaType = Word<EAEAType>(node, "aeaType", {"alert", "update", "cancel"});
    alert->retAEAId = Attribute(node, "retAEAId");
    alert->priority = static_cast<EAEAPriority>(CNodeText::Attribute(node, "priority").Int(0));
    alert->wakeup = CNodeText::Attribute(node, "wakeup").Bool();
    vyr::ReadAttribute(node, "wakeup", alert->given.wakeup);
    {
        const vyr::CScoped<SAEAInfo*> current(m->current, alert.get(), nullptr);
        vyr::DispatchChildren(m, k_handlers, node, "[CParseAEAT::sm_CbAEA] %s");
    }
    m->alerts.Append(std::move(alert));
}

void sm_CbHeader(SAlerts* m, void* node)
{
    if (SAEAInfo* alert = m->current) {
        alert->effective = Attribute(node, "effective");
        alert->expires = Attribute(node, "expires");
    }
    vyr::DispatchChildren(m, k_handlers, node, "[CParseAEAT::sm_CbHeader] %s");
}

void sm_CbLiveMedia(SAlerts* m, void* node)
{
    if (SAEAInfo* alert = m->current) {
        alert->liveMedia.reset(
            new SParseAEAT::SLiveMedia{static_cast<unsigned short>(CNodeText::Attribute(node, "bsid").Int(0)),
                                       static_cast<unsigned short>(CNodeText::Attribute(node, "serviceId").Int(0)),
                                       {}});
    }
    vyr::DispatchChildren(m, k_handlers, node, "[CParseAEAT::sm_CbLiveMedia] %s");
}

bool m_ProcessParseAEAT(SAlerts& m, const CXML& xml, void* root)
{
    if (!xml.Compare(root, "AEAT")) {
        return false;
    }
    vyr::DispatchChildren(&m, k_handlers, root, "[CParseAEAT::m_ProcessParseAEAT] Name[%s]");
    return true;
}

/// The alert of that index; without the parser's record the caller's failed assertion.
const SAlert* Alert(const SAlerts* m, int index, VYR_CALLER)
{
    if (!m) {
        vyr::AssertFailed(here, "m");
        return nullptr;
    }
    return m->alerts.Get(index);
}

}  // namespace

struct CParseAEAT::SState : SAlerts {};

CParseAEAT::CParseAEAT() : m(nullptr) {}

CParseAEAT::~CParseAEAT()
{
    VYR_ASSERT(!m, "!m && \"call Destroy() before deleting the parser\"");
}

bool CParseAEAT::Create(const CParseAEAT::SCallback* callback)
{
    if (!vyr::CreateState(m)) {
        return false;
    }
    m->callback = callback ? *callback : SCallback{};
    return true;
}

void CParseAEAT::Destroy()
{
    vyr::DestroyState(m);
}

void CParseAEAT::SetReplace(bool replace)
{
    if (VYR_ASSERT(m, "m")) {
        m->replace.Set(replace);
    }
}

bool CParseAEAT::t_Parse(IParse::SItem* item)
{
    if (!VYR_ASSERT(m, "m")) {
        return false;
    }
    const int held = m->alerts.Size();
    m->replace.Begin({nullptr, t_GroupId(), 0});
    if (!vyr::ParseTableDocument(item, t_DecompressLLS(), "m_ProcessParseAEAT(root)",
                                 [this](const CXML& xml, void* root) { return m_ProcessParseAEAT(*m, xml, root); })) {
        return false;
    }
    m->replace.Drop<SAlert>(m->alerts, held);
    m->replace.End("CParseAEAT");
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CParseAEAT::t_Parse] AEA Table size[%d]", m->alerts.Size());
    m_DumpAEAT();
    return true;
}

int CParseAEAT::AEACount() const
{
    return VYR_ASSERT(m, "m") ? m->alerts.Size() : 0;
}

const SParseAEAT::SAEAInfo* CParseAEAT::GetAEA(int index) const
{
    return Alert(m, index);
}

const CParseAEAT::SGiven* CParseAEAT::Given(int index) const
{
    const SAlert* alert = Alert(m, index);
    return alert ? &alert->given : nullptr;
}

bool CParseAEAT::GetAEAId(int index, std::string& aeaId, std::string& retAEAId) const
{
    const SAEAInfo* alert = Alert(m, index);
    return alert && vyr::Give(alert->aeaId, aeaId) && vyr::Give(alert->retAEAId, retAEAId);
}

bool CParseAEAT::GetAEAIssuer(int index, std::string& issuer) const
{
    const SAEAInfo* alert = Alert(m, index);
    return alert && vyr::Give(alert->issuer, issuer);
}

bool CParseAEAT::GetAEAAudience(int index, EAEAAudience& audience) const
{
    const SAEAInfo* alert = Alert(m, index);
    return alert && vyr::Give(alert->audience, audience);
}

bool CParseAEAT::GetAEAType(int index, EAEAType& type) const
{
    const SAEAInfo* alert = Alert(m, index);
    return alert && vyr::Give(alert->aeaType, type);
}

bool CParseAEAT::GetAEAPriority(int index, EAEAPriority& priority) const
{
    const SAEAInfo* alert = Alert(m, index);
    return alert && vyr::Give(alert->priority, priority);
}

bool CParseAEAT::AEAWakeup(int index) const
{
    const SAEAInfo* alert = Alert(m, index);
    return alert && alert->wakeup;
}

bool CParseAEAT::GetAEATimeInfo(int index, std::string& effective, std::string& expires) const
{
    const SAEAInfo* alert = Alert(m, index);
    return alert && vyr::Give(alert->effective, effective) && vyr::Give(alert->expires, expires);
}

bool CParseAEAT::GetAEAEventCode(int index, std::string& eventCode, std::string& eventCodeType) const
{
    const SAEAInfo* alert = Alert(m, index);
    return alert && vyr::Give(alert->eventCode, eventCode) && vyr::Give(alert->eventCodeType, eventCodeType);
}

int CParseAEAT::AEAEventDescCount(int index) const
{
    const SAEAInfo* alert = Alert(m, index);
    return alert ? static_cast<int>(alert->eventDescs.size()) : 0;
}

void CParseAEAT::m_DumpAEAT() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    for (int i = 0; i < m->alerts.Size(); ++i) {
        const SAEAInfo& alert = *GetAEA(i);
        VYR_DUMP("AEA Info ID[%s], ISSUER[%s]", alert.aeaId.c_str(), alert.issuer.c_str());
        VYR_DUMP("AEA Info AUDIENCE[%d], AEATYPE[%d]", alert.audience, alert.aeaType);
        VYR_DUMP("AEA Info RET ID[%s], PRIORITY[%d], WAKEUP[%d]", alert.retAEAId.c_str(), alert.priority, alert.wakeup);
        VYR_DUMP("------------AEA HEADER----------------------");
        VYR_DUMP("EFFECTIVE[%s], EXPIRES[%s]", alert.effective.c_str(), alert.expires.c_str());
        VYR_DUMP("EVENTCODE[%s], EVENTCODETYPE[%s]", alert.eventCode.c_str(), alert.eventCodeType.c_str());
        for (const auto& desc : alert.eventDescs) {
            VYR_DUMP("EVENTDESC[%s], EVENTDESCLANG[%s]", desc.text.c_str(), desc.lang.c_str());
        }
        for (const auto& location : alert.locations) {
            VYR_DUMP("LOCATION[%s], LOCATIONTYPE[%d]", location.location.c_str(), location.type);
        }
        VYR_DUMP("------------AEA TEXT size[%d]----------------------", static_cast<int>(alert.texts.size()));
        for (const auto& text : alert.texts) {
            VYR_DUMP("AEATEXT[%s], TEXTLANG[%s]", text.text.c_str(), text.lang.c_str());
        }
        VYR_DUMP("------------Media Size[%d]----------------------", static_cast<int>(alert.media.size()));
        for (const auto& media : alert.media) {
            VYR_DUMP("mediaLang[%s], mediaType[%s], url[%s]", media.lang.c_str(), media.mediaType.c_str(),
                     media.url.c_str());
            VYR_DUMP("alternateUrl[%s], contentType[%s], length[%u], ASSOC[%s]", media.alternateUrl.c_str(),
                     media.contentType.c_str(), media.contentLength, media.mediaAssoc.c_str());
        }
        if (alert.liveMedia) {
            VYR_DUMP("------------LiveMedia----------------------");
            VYR_DUMP("BSID[%d], SERVICEID[%d]", alert.liveMedia->bsid, alert.liveMedia->serviceId);
            for (const auto& name : alert.liveMedia->serviceNames) {
                VYR_DUMP("NAME[%s], LANG[%s]", name.text.c_str(), name.lang.c_str());
            }
        }
    }
}
