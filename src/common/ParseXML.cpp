#include "common/ParseXML.h"

#include "common/OutOfMemory.h"
#include "common/XmlDocument.h"
#include "platform/FailureKeeping.h"
#include "platform/Log.h"

/// Holds the object's document for a parse, and beyond it only if that succeeds.
struct XMLBase::SKeeper {
    XMLBase& parser;
    vyr::CScoped<bool> parsing;
    bool keep = false;

    explicit SKeeper(XMLBase& p) : parser(p), parsing(p.m_parsing, true, false) {}
    ~SKeeper()
    {
        if (!keep && parser.t_xml.FlagCreate()) {
            parser.t_xml.Destroy();
        }
    }
};

XMLBase::XMLBase() : t_compressed(false), t_keepsDocument(true), t_replace(false), m_parsing(false) {}

XMLBase::~XMLBase() = default;

void XMLBase::Destroy()
{
    if (VYR_ASSERT(!m_parsing, "!m->parsing") && t_xml.FlagCreate()) {
        t_xml.Destroy();
    }
}

bool XMLBase::Parse(const char* buffer, unsigned int length)
{
    return Parse(buffer, length, t_compressed);
}

bool XMLBase::Parse(const char* buffer, unsigned int length, bool compressed)
try {
    const vyr::CEntry entry;
    if (!buffer) {
        return vyr::AssertFailed({vyr::k_source.text, __func__, 20}, "buffer");
    }
    if (!VYR_ASSERT(!m_parsing, "!m->parsing")) {
        return false;
    }
    XMLBase::Destroy();
    SKeeper document(*this);
    const bool created = t_xml.Create(buffer, vyr::DocumentSize(length), compressed);
    const bool parsed = vyr::ProcessRoot(
        t_xml, created, {"t_xml.Create(buffer, length, compressed)", "t_xml.MoveRoot(&root)", "m_ProcessParse(root)"},
        [this](const CXML&, void* root) { return m_ProcessParse(root); });
    document.keep = parsed && t_keepsDocument;
    return parsed;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool XMLBase::Parse(void* doc, void* root)
try {
    const vyr::CEntry entry;
    return VYR_ASSERT(!m_parsing, "!m->parsing") && m_ParseElement(doc, root);
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

/// Parse of an element, which throws when memory is out.
bool XMLBase::m_ParseElement(void* doc, void* root)
{
    const auto here = [](int line) { return vyr::SHere{vyr::k_source.text, "Parse", line}; };
    XMLBase::Destroy();
    SKeeper document(*this);
    if (!t_xml.Create(doc)) {
        return vyr::CheckFailed(here(__LINE__), "t_xml.Create(doc)");
    }
    document.keep = m_ProcessParse(root) || vyr::CheckFailed(here(__LINE__), "m_ProcessParse(root)");
    return document.keep;
}
