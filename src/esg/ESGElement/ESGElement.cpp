#include "esg/ESGElement/ESGElement.h"

#include <cstring>
#include <ctime>

#include "esg/ESGKind.h"
#include "platform/Log.h"

SESGState::SESGState() = default;

SESGState::~SESGState() = default;

CESGElement::CESGElement() : m(nullptr), m_kind(nullptr), m_node(nullptr) {}

CESGElement::~CESGElement()
{
    if (m) {
        vyr::AssertFailed(m_kind->Here(__func__), "!m");
    }
}

bool CESGElement::Create(void* doc, void* node)
try {
    const vyr::SESGKind& kind = t_Kind();
    const char* wrong = m ? "!m" : !doc ? "doc" : !node ? "node" : nullptr;
    if (wrong) {
        return vyr::AssertFailed(kind.Here(__func__), wrong);
    }
    VYR_LOG(LOG_PRIORITY_INFO, "[%s::Create]", kind.className);
    m = kind.create();
    m_kind = &kind;
    m_node = node;
    return true;
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
    CXML xml;
    if (!m_node) {
        xml.Create(static_cast<void*>(m));  // required: the view of the first parse stands in the way of a second
    }
    if (!xml.Create(m_node ? vyr::NodeDocument(m_node) : nullptr)) {
        return vyr::CheckFailed(here, "m->xml.Create((CXML::TDocPtr)m->pdoc)");
    }
    const bool processed = m_Process() || vyr::CheckFailed(here, m_kind->process);
    m_node = nullptr;  // the owner of the document need not keep it for the values
    return processed;
}

bool CESGElement::m_Process()
{
    const auto is = [name = vyr::NodeName(m_node)](const char* element) {
        return name && element && std::strcmp(name, element) == 0;
    };
    if (!is(m_kind->element) && !is(m_kind->otherElement)) {
        VYR_LOG(LOG_PRIORITY_INFO, "[%s::m_Process] Root node is not %s", m_kind->className, m_kind->element);
        return false;
    }
    m_kind->read(*m, m_node);
    return true;
}

void CESGElement::Destroy()
{
    if (!m) {
        vyr::AssertFailed(t_Kind().Here(__func__), "m");
        return;
    }
    VYR_LOG(LOG_PRIORITY_INFO, "[%s::Destroy]", m_kind->className);
    delete m;
    m = nullptr;
}

namespace vyr {

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
