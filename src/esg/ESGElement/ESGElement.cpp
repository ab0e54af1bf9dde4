#include "esg/ESGElement/ESGElement.h"

#include <cstring>
#include <ctime>

#include "esg/ESGKind.h"
#include "platform/Log.h"

SESGState::SESGState() : kind(nullptr) {}

SESGState::~SESGState()
{
    if (xml.FlagCreate()) {
        xml.Destroy();
    }
}

SESGElement::SESGElement() : pdoc(nullptr), proot(nullptr) {}

SESGElement::~SESGElement() = default;

CESGElement::CESGElement() : m(nullptr) {}

CESGElement::~CESGElement()
{
    if (m) {
        vyr::AssertFailed(m->kind->Here(__func__), "!m");
    }
}

bool CESGElement::Create(void* doc, void* node)
try {
    const vyr::SESGKind& kind = t_Kind();
    const vyr::SHere here = kind.Here(__func__);
    const char* wrong = m ? "!m" : !doc ? "doc" : !node ? "node" : nullptr;
    if (wrong) {
        return vyr::AssertFailed(here, wrong);
    }
    VYR_LOG(LOG_PRIORITY_INFO, "[%s::Create]", kind.className);
    m = static_cast<SESGElement*>(vyr::CreateState(kind));
    if (m) {
        m->pdoc = doc;
        m->proot = node;
    }
    return m != nullptr;
} catch (...) {
    return vyr::OutOfMemory(t_Kind().Here(__func__));
}

bool CESGElement::Parse()
try {
    return m_Parse();
} catch (...) {
    return vyr::OutOfMemory(t_Kind().Here(__func__));
}

/// Parse, which throws when memory is out; the object may try again then.
bool CESGElement::m_Parse()
{
    const vyr::SHere here = t_Kind().Here("Parse");
    if (!m) {
        return vyr::AssertFailed(here, "m");
    }
    if (!m->xml.Create(m->pdoc)) {
        return vyr::CheckFailed(here, "m->xml.Create((CXML::TDocPtr)m->pdoc)");
    }
    const vyr::SDocumentEnd end{m->xml};
    const bool processed = m_Process() || vyr::CheckFailed(here, m->kind->process);
    // The owner of the document need not keep it for the values.
    m->pdoc = nullptr;
    m->proot = nullptr;
    return processed;
}

bool CESGElement::m_Process()
{
    const vyr::SESGKind& kind = *m->kind;
    if (!m->xml.Compare(m->proot, kind.element) && !m->xml.Compare(m->proot, kind.otherElement)) {
        VYR_LOG(LOG_PRIORITY_INFO, "[%s::m_Process] Root node is not %s", kind.className, kind.element);
        return false;
    }
    return kind.read(*m, m->proot);
}

void CESGElement::Destroy()
{
    if (!m) {
        vyr::AssertFailed(t_Kind().Here(__func__), "m");
        return;
    }
    VYR_LOG(LOG_PRIORITY_INFO, "[%s::Destroy]", m->kind->className);
    delete m;
    m = nullptr;
}

namespace vyr {

SESGState* CreateState(const SESGKind& kind)
{
    SESGState* state = kind.create();
    state->kind = &kind;
    return state;
}

TESGText Namespace(const CXML& xml, void* node)
{
    bool found = false;
    TESGText ns(xml.Ns(node, &found));
    return found ? std::move(ns) : nullptr;
}

void Read(const CNodeText& text, bool& out)
{
    if (text.Found() && std::strcmp(text.Text(), "true") == 0) {
        out = true;
    } else if (text.Found() && std::strcmp(text.Text(), "false") == 0) {
        out = false;
    }
}

void ReadDate(void* node, const char* name, long long& out)
{
    const CNodeText text = CNodeText::Attribute(node, name);
    std::tm date{};
    const bool read = text.Found() && strptime(text.Text(), "%Y-%m-%dT%H:%M:%SZ", &date);
    out = read ? static_cast<long long>(timegm(&date)) : 0;
}

void ReadMediaInfo(SESGMediaInfo& info, void* node)
{
    ReadAttribute(node, "MIMEType", info.mimeType);
    ReadAttribute(node, "width", info.width);
    ReadAttribute(node, "height", info.height);
    ReadAttribute(node, "dataSize", info.dataSize);
}

void ReadMedia(SESGMedia& media, void* node)
{
    ReadContent(node, media.content);
    ReadMediaInfo(media, node);
}

}  // namespace vyr
