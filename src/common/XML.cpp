#include "common/XML.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>

#include "common/Inflate.h"
#include "common/OutOfMemory.h"
#include "common/XmlNode.h"
#include "common/xml/Refusal.h"
#include "common/xml/Xml.h"
#include "platform/FailureKeeping.h"
#include "platform/Log.h"

using vyr::CNodeText;
using vyr::xml::FreeText;
using vyr::xml::NewCopy;
using vyr::xml::TDocument;

namespace {

/// Copies what was found for a caller, as an empty string when nothing was.
char* HandOut(const CNodeText& text, std::size_t zeros, bool* found)
{
    const char* source = text.Found() ? text.Text() : "";
    char* copy = NewCopy(source, std::strlen(source), text.Found() ? zeros : 1);
    if (found && copy) {
        *found = text.Found();
    }
    return copy;
}

/// The attribute as a decimal number; -1 when absent.
long long Number(void* node, const char* name, bool* found)
{
    const CNodeText text = CNodeText::Attribute(node, name);
    if (found) {
        *found = text.Found();
    }
    return text.LLong(-1);
}

}  // namespace

CXML::CStr::CStr() : m_str(nullptr) {}

CXML::CStr::~CStr()
{
    FreeText(m_str);
}

CXML::CXML() : m_held{nullptr, false}, m(nullptr) {}

CXML::~CXML() = default;

bool CXML::Create(const char* buf, int length, bool compressed)
try {
    const vyr::CEntry entry;
    if (!VYR_ASSERT(!m, "!m")) {
        return false;
    }
    if (!buf || length < 2) {
        return VYR_FAIL(FAILURE_SIZE, "XML Create Fail buffer[%p], length[%d]", static_cast<const void*>(buf), length);
    }
    vyr::SInflated inflated;
    const char* text = buf;
    std::size_t size = static_cast<std::size_t>(length);
    if (compressed) {
        if (length > k_maxCompressed) {
            return VYR_FAIL(FAILURE_SIZE, "XML Create Fail. File size is too big. length[%d]", length);
        }
        if (vyr::HasGzipMagic(buf, size) && vyr::Inflate(buf, size, k_maxCompressed, inflated)) {
            text = inflated.data.get();
            size = inflated.size;
        }
    }
    TDocument doc;
    vyr::xml::ETextForm form{};
    if (const char* reason = vyr::xml::RefusalOf(text, size, &form)) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CXML::Create] refused: %s", reason);
        vyr::KeepFailure(std::strcmp(reason, "not well-formed") == 0 ? FAILURE_XML : FAILURE_LIMIT, reason);
    } else {
        doc = vyr::xml::ParseText(text, size, form, text != buf);
    }
    return m_Adopt(doc.release(), "m->pdoc = xmlParseMemory((const char*)buf, size)");
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool CXML::Create(const char* filename)
try {
    const vyr::CEntry entry;
    if (!VYR_ASSERT(!m, "!m")) {
        return false;
    }
    TDocument doc(filename ? vyr::xml::ParseFile(filename) : nullptr);
    return m_Adopt(doc.release(), "m->pdoc = xmlParseFile((const char*)filename)");
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool CXML::Create(TDocPtr docPtr)
{
    if (!VYR_ASSERT(!m, "!m") || !VYR_ASSERT(docPtr, "docPtr")) {
        return false;
    }
    m_held = {docPtr, false};
    m = &m_held;
    return true;
}

/// Takes over a parsed document; `text` is the failed step when there is none.
bool CXML::m_Adopt(void* parsed, const char* text)
{
    TDocument doc(parsed);
    if (!vyr::xml::ExpandsWithinLimit(parsed)) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CXML::Create] refused: entities expand to more than %zu bytes",
                vyr::xml::k_maxExpansion);
        vyr::KeepFailure(FAILURE_LIMIT, "entities expand to more than 524288 bytes");
        doc.reset();
    }
    if (!VYR_CHECK(doc, text)) {
        return false;
    }
    m_held = {doc.release(), true};
    m = &m_held;
    return true;
}

void CXML::Destroy()
{
    if (!VYR_ASSERT(m, "m")) {
        return;
    }
    if (m->owned) {
        TDocument(m->pdoc).reset();
    }
    m = nullptr;
}

CXML::TDocPtr CXML::Doc() const
{
    return VYR_ASSERT(m, "m") ? m->pdoc : nullptr;
}

bool CXML::MoveRoot(void** root) const
{
    if (!VYR_ASSERT(m, "m") || !VYR_ASSERT(root, "root")) {
        return false;
    }
    void* element = vyr::xml::RootElement(m->pdoc);
    if (element) {
        *root = element;
    }
    return element != nullptr;
}

void* CXML::MoveChild(void* node) const
{
    return VYR_ASSERT(m, "m") && VYR_ASSERT(node, "node") ? vyr::xml::FirstChild(node) : nullptr;
}

void* CXML::MoveNext(void* node) const
{
    return VYR_ASSERT(m, "m") && VYR_ASSERT(node, "node") ? vyr::xml::NextSibling(node) : nullptr;
}

const char* CXML::Name(void* node) const
{
    return VYR_ASSERT(m, "m") && VYR_ASSERT(node, "node") ? vyr::NodeName(node) : nullptr;
}

char* CXML::Ns(void* node, bool* found) const
{
    if (!VYR_ASSERT(m, "m") || !VYR_ASSERT(node, "node")) {
        return nullptr;
    }
    const char* uri = vyr::NodeNamespace(node);
    if (found) {
        *found = uri != nullptr;
    }
    uri = uri ? uri : "";
    return NewCopy(uri, std::strlen(uri));
}

bool CXML::Compare(void* node, const char* name) const
{
    if (!VYR_ASSERT(m, "m") || !VYR_ASSERT(node, "node")) {
        return false;
    }
    const char* own = vyr::NodeName(node);
    return own && name && std::strcmp(own, name) == 0;
}

char* CXML::PropStr(void* node, const char* name, bool* found) const
try {
    return VYR_ASSERT(m, "m") ? HandOut(CNodeText::Attribute(node, name), 1, found) : nullptr;
} catch (...) {
    return vyr::OutOfMemory<char*>(VYR_HERE);
}

bool CXML::PeekPropStr(void* node, const char* name, CStr* out) const
try {
    if (!VYR_ASSERT(m, "m") || !VYR_ASSERT(out, "out")) {
        return false;
    }
    const CNodeText text = CNodeText::Attribute(node, name);
    char* value = text.Found() ? vyr::xml::NewText(text.Text()) : nullptr;
    if (!value) {
        return false;
    }
    out->m_str = value;  // required: what it held is overwritten, not freed
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

int CXML::PropInt(void* node, const char* name, bool* found) const
try {
    return VYR_ASSERT(m, "m") ? static_cast<int>(static_cast<unsigned long long>(Number(node, name, found))) : 0;
} catch (...) {
    return vyr::OutOfMemory<int>(VYR_HERE);
}

long long CXML::PropLLong(void* node, const char* name, bool* found) const
try {
    return VYR_ASSERT(m, "m") ? Number(node, name, found) : 0;
} catch (...) {
    return vyr::OutOfMemory<long long>(VYR_HERE);
}

bool CXML::PropBool(void* node, const char* name, bool* found) const
try {
    if (!VYR_ASSERT(m, "m")) {
        return false;
    }
    const CNodeText text = CNodeText::Attribute(node, name);
    if (found) {
        *found = text.Found();
    }
    return text.Bool();
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

char* CXML::Content(void* node, bool* found) const
try {
    return VYR_ASSERT(m, "m") ? HandOut(CNodeText::Content(node), 2, found) : nullptr;
} catch (...) {
    return vyr::OutOfMemory<char*>(VYR_HERE);
}

std::string CXML::m_charToStringWithDelete(char* text) const
{
    const std::unique_ptr<char[]> owner(text);
    return text ? std::string(text) : std::string();
}

std::string CXML::getStringContent(void* node, bool* found) const
try {
    return m_charToStringWithDelete(Content(node, found));
} catch (...) {
    return vyr::OutOfMemory<std::string>(VYR_HERE);
}

std::string CXML::getStringProp(void* node, const char* name, bool* found) const
try {
    return m_charToStringWithDelete(PropStr(node, name, found));
} catch (...) {
    return vyr::OutOfMemory<std::string>(VYR_HERE);
}

char* CXML::Dump(TDocPtr doc, int* size) const
{
    int ignored = 0;
    return vyr::xml::DumpDocument(doc, size ? size : &ignored);
}

char* CXML::NodeDump(void* node, int* size) const
{
    int ignored = 0;
    size = size ? size : &ignored;
    *size = 0;
    return VYR_ASSERT(m, "m") && VYR_ASSERT(node, "node") ? vyr::xml::DumpNode(node, size) : nullptr;
}

void XmlError(void* /*ctx*/, const char* format, ...)
{
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    vyr::xml::HearPiece(format, text);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[Xml Error Info]%s", text);
}
