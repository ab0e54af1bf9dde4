#include "common/XmlElement.h"

#include "common/OutOfMemory.h"
#include "common/XmlParser.h"

namespace vyr {

SXmlState::SXmlState() : xml(nullptr), replace(false) {}

SXmlState::~SXmlState() = default;

}  // namespace vyr

CXmlElement::CXmlElement() : m_state(nullptr)
{
    t_keepsDocument = false;
}

CXmlElement::~CXmlElement() = default;

bool CXmlElement::Create()
try {
    const vyr::SXmlKind kind = t_Kind();
    if (m_state) {
        return vyr::AssertFailed(kind.Here(__func__), "!m");
    }
    if (vyr::LogEnabled(kind.priority)) {
        vyr::Print(kind.priority, kind.Here(__func__), "[%s::Create]%s", kind.className, kind.noteEnd);
    }
    m_state = kind.create();
    m_state->xml = &t_xml;
    return true;
} catch (...) {
    return vyr::OutOfMemory(t_Kind().Here(__func__));
}

void CXmlElement::Destroy()
{
    const vyr::SXmlKind kind = t_Kind();
    if (!m_state || Parsing()) {
        vyr::AssertFailed(kind.Here(__func__), m_state ? "!m->parsing" : "m");
        return;
    }
    if (vyr::LogEnabled(kind.priority)) {
        vyr::Print(kind.priority, kind.Here(__func__), "[%s::Destroy]", kind.className);
    }
    delete m_state;
    m_state = nullptr;
    XMLBase::Destroy();
}

bool CXmlElement::m_ProcessParse(void* root)
{
    if (!m_state) {
        return vyr::AssertFailed(t_Kind().Here(__func__), "m != nullptr");
    }
    m_state->replace = t_replace;
    return m_state->m_ProcessParse(root);
}
