#include "common/ParseXML.h"

#include <climits>

#include "common/OutOfMemory.h"
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
    // A length that no document has becomes one that the document refuses.
    const int size = length <= INT_MAX ? static_cast<int>(length) : -1;
    if (!VYR_CHECK(t_xml.Create(buffer, size, compressed), "t_xml.Create(buffer, length, compressed)")) {
        return false;
    }
    void* root = nullptr;
    if (!VYR_CHECK(t_xml.MoveRoot(&root), "t_xml.MoveRoot(&root)")) {
        return false;
    }
    if (!m_ProcessParse(root)) {
        vyr::KeepFailure(FAILURE_KIND);
        return VYR_CHECK(false, "m_ProcessParse(root)");
    }
    document.keep = t_keepsDocument;
    return true;
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
