#include "common/XML.h"

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>

#include <climits>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <unordered_map>

#include "common/Inflate.h"
#include "common/Log.h"
#include "common/XmlNode.h"
#include "common/XmlScan.h"

// Every call of libxml2 stands in this file. Some are marked deprecated by newer versions.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace {

// What the texts and attributes of a document with entities may expand to, in bytes and in references.
constexpr std::size_t k_maxExpansion = 524288;

xmlNodePtr AsNode(void* node)
{
    return static_cast<xmlNodePtr>(node);
}

const xmlChar* AsName(const char* name)
{
    return reinterpret_cast<const xmlChar*>(name);
}

const char* AsText(const xmlChar* text)
{
    return reinterpret_cast<const char*>(text);
}

/// New array of `length` bytes and `zeros` zero bytes; null when memory is out.
char* NewCopy(const char* text, std::size_t length, std::size_t zeros = 1)
{
    char* copy = new (std::nothrow) char[length + zeros];
    if (copy) {
        std::memcpy(copy, text, length);
        std::memset(copy + length, 0, zeros);
    }
    return copy;
}

/// Copies what was found for a caller, as an empty string when nothing was.
char* HandOut(const vyr::CNodeText& text, std::size_t zeros, bool* found)
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
    const vyr::CNodeText text = vyr::CNodeText::Attribute(node, name);
    if (found) {
        *found = text.Found();
    }
    return text.LLong(-1);
}

/// Adds up what the texts and attributes of a document expand to. References inside an entity are
/// counted once per entity and remembered, so that nesting costs nothing.
class CExpansion {
  public:
    /// False when the limit is passed.
    static bool WithinLimit(xmlDocPtr doc)
    {
        CExpansion expansion(doc);
        return !Exceeds(expansion.m_List(doc->children, 0));
    }

  private:
    struct SCost {
        std::size_t bytes = 0;
        std::size_t references = 0;
    };

    static constexpr int k_maxDepth = 64;

    explicit CExpansion(xmlDocPtr doc) : m_doc(doc) {}

    static bool Exceeds(const SCost& cost) { return cost.bytes > k_maxExpansion || cost.references > k_maxExpansion; }

    static void Add(SCost& sum, const SCost& cost)
    {
        sum.bytes += cost.bytes;
        sum.references += cost.references;
    }

    SCost m_Entity(xmlNodePtr reference, int depth)
    {
        const xmlEntityPtr entity = xmlGetDocEntity(m_doc, reference->name);
        if (!entity) {
            return {reference->content ? std::strlen(AsText(reference->content)) : 0, 1};
        }
        const auto known = m_known.find(entity);
        if (known != m_known.end()) {
            return known->second;
        }
        // Endless until proved otherwise: a loop is met here.
        m_known[entity] = {k_maxExpansion + 1, 0};
        SCost cost{0, 1};
        if (entity->children) {
            Add(cost, m_List(entity->children, depth + 1));
        } else if (entity->content) {
            cost.bytes = std::strlen(AsText(entity->content));
        }
        m_known[entity] = cost;
        return cost;
    }

    SCost m_List(xmlNodePtr node, int depth)
    {
        SCost sum;
        if (depth > k_maxDepth) {
            sum.bytes = k_maxExpansion + 1;
            return sum;
        }
        // Elements are walked without recursion; only entities nest calls.
        const xmlNodePtr parent = node ? node->parent : nullptr;
        while (node && !Exceeds(sum)) {
            if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE) {
                sum.bytes += node->content ? std::strlen(AsText(node->content)) : 0;
            } else if (node->type == XML_ENTITY_REF_NODE) {
                Add(sum, m_Entity(node, depth));
            } else if (node->type == XML_ELEMENT_NODE) {
                for (xmlAttrPtr attribute = node->properties; attribute; attribute = attribute->next) {
                    Add(sum, m_List(attribute->children, depth + 1));
                }
                if (node->children) {
                    node = node->children;
                    continue;
                }
            }
            while (node && !node->next && node->parent != parent) {
                node = node->parent;
            }
            node = node ? node->next : nullptr;
        }
        return sum;
    }

    xmlDocPtr m_doc;
    std::unordered_map<xmlEntityPtr, SCost> m_known;
};

/// Appends what the nodes of an attribute's value stand for. xmlGetProp copies all that it has for every
/// entity reference anew, which makes a value of many references quadratic.
void AppendValue(xmlBufferPtr out, xmlDocPtr doc, const xmlNode* node)
{
    for (; node; node = node->next) {
        if (node->type != XML_ENTITY_REF_NODE) {
            if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE) {
                xmlBufferCat(out, node->content);
            }
        } else if (const xmlEntityPtr entity = xmlGetDocEntity(doc, node->name)) {
            AppendValue(out, doc, entity->children);
        } else {
            xmlBufferCat(out, node->content);
        }
    }
}

/// The value of an attribute of several nodes, to be freed with xmlFree; null when memory is out.
xmlChar* AttributeValue(const xmlAttr* attribute)
{
    xmlBufferPtr buffer = xmlBufferCreate();
    if (!buffer) {
        return nullptr;
    }
    xmlBufferSetAllocationScheme(buffer, XML_BUFFER_ALLOC_DOUBLEIT);
    AppendValue(buffer, attribute->doc, attribute->children);
    xmlChar* value = xmlBufferDetach(buffer);
    xmlBufferFree(buffer);
    return value ? value : xmlStrdup(AsName(""));
}

struct SContextDeleter {
    void operator()(xmlParserCtxtPtr context) const { xmlFreeParserCtxt(context); }
};
using TContext = std::unique_ptr<xmlParserCtxt, SContextDeleter>;

/// A parser context that does what libxml2 does by default, whatever the process has set globally.
TContext NewContext()
{
    xmlSetGenericErrorFunc(nullptr, XmlError);
    xmlInitParser();
    TContext context(xmlNewParserCtxt());
    if (context) {
        // The defaults of the process leak into these, and options only ever add to them.
        context->options = 0;
        context->replaceEntities = 0;
        context->loadsubset = 0;
        context->validate = 0;
        context->pedantic = 0;
        context->keepBlanks = 1;
        if (context->sax) {
            context->sax->ignorableWhitespace = context->sax->characters;
            // Faults are shown at debug priority only; else nobody need put their place in the text into words.
            if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
                context->sax->serror = [](void*, auto*) {};
            }
        }
    }
    return context;
}

}  // namespace

namespace vyr {

CNodeText CNodeText::Attribute(void* node, const char* name)
{
    const xmlNodePtr element = AsNode(node);
    if (!element || element->type != XML_ELEMENT_NODE || !name) {
        return {nullptr, false};
    }
    for (xmlAttrPtr attribute = element->properties; attribute; attribute = attribute->next) {
        if (*AsText(attribute->name) != *name || std::strcmp(AsText(attribute->name), name) != 0) {
            continue;
        }
        const xmlNodePtr value = attribute->children;
        if (!value) {
            return {"", false};
        }
        if (!value->next && value->type == XML_TEXT_NODE && value->content) {
            return {AsText(value->content), false};
        }
        return {AsText(AttributeValue(attribute)), true};
    }
    if (!element->doc || !element->doc->intSubset) {
        return {nullptr, false};
    }
    return {AsText(xmlGetProp(element, AsName(name))), true};
}

CNodeText CNodeText::Content(void* node)
{
    const xmlNodePtr element = AsNode(node);
    if (!element) {
        return {nullptr, false};
    }
    if (element->type == XML_ELEMENT_NODE) {
        const xmlNodePtr value = element->children;
        if (!value) {
            return {"", false};
        }
        if (!value->next && value->content && (value->type == XML_TEXT_NODE || value->type == XML_CDATA_SECTION_NODE)) {
            return {AsText(value->content), false};
        }
    }
    return {AsText(xmlNodeGetContent(element)), true};
}

CNodeText::~CNodeText()
{
    if (m_owned && m_text) {
        xmlFree(const_cast<char*>(m_text));
    }
}

int CNodeText::Int(int absent) const
{
    return static_cast<int>(static_cast<unsigned long long>(LLong(absent)));
}

long long CNodeText::LLong(long long absent) const
{
    return m_text ? std::strtoll(m_text, nullptr, 10) : absent;
}

bool CNodeText::Bool() const
{
    return m_text && std::strncmp(m_text, "true", 4) == 0;
}

bool CNodeText::CopyTo(std::string& out) const
{
    if (m_text) {
        out = m_text;
    }
    return m_text != nullptr;
}

void* FirstElement(void* node)
{
    const xmlNodePtr element = AsNode(node);
    if (!element || element->type != XML_ELEMENT_NODE) {
        return nullptr;
    }
    xmlNodePtr child = element->children;
    while (child && child->type != XML_ELEMENT_NODE) {
        child = child->next;
    }
    return child;
}

void* NextElement(void* node)
{
    xmlNodePtr next = AsNode(node);
    do {
        next = next->next;
    } while (next && next->type != XML_ELEMENT_NODE);
    return next;
}

void* FindElement(void* node, const char* name)
{
    xmlNodePtr element = AsNode(node);
    while (element && (element->type != XML_ELEMENT_NODE || std::strcmp(AsText(element->name), name) != 0)) {
        element = element->next;
    }
    return element;
}

const char* NodeNamespace(void* node)
{
    // Only elements have the field; other nodes hold something else there.
    const xmlNsPtr ns = AsNode(node)->type == XML_ELEMENT_NODE ? AsNode(node)->ns : nullptr;
    return ns ? AsText(ns->href) : nullptr;
}

const char* NodeName(void* node)
{
    return AsText(AsNode(node)->name);
}

}  // namespace vyr

using vyr::CNodeText;

CXML::CStr::CStr() : m_str(nullptr) {}

CXML::CStr::~CStr()
{
    if (m_str) {
        xmlFree(m_str);
    }
}

CXML::CXML() : m_held{nullptr, false}, m(nullptr) {}

CXML::~CXML() = default;

bool CXML::Create(const char* buf, int length, bool compressed)
{
    if (!VYR_ASSERT(!m, "!m")) {
        return false;
    }
    if (!buf || length < 2) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "XML Create Fail buffer[%p], length[%d]", static_cast<const void*>(buf), length);
        return false;
    }
    vyr::SInflated inflated;
    const char* text = buf;
    int size = length;
    if (compressed) {
        if (length > k_maxCompressed) {
            VYR_LOG(LOG_PRIORITY_DEBUG, "XML Create Fail. File size is too big. length[%d]", length);
            return false;
        }
        const std::size_t bytes = static_cast<std::size_t>(length);
        if (vyr::HasGzipMagic(buf, bytes) && vyr::Inflate(buf, bytes, k_maxCompressed, inflated)) {
            text = inflated.data.get();
            size = static_cast<int>(inflated.size);
        }
    }
    xmlDocPtr doc = nullptr;
    if (const char* reason = vyr::RefusalOf(text, static_cast<std::size_t>(size))) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CXML::Create] refused: %s", reason);
    } else if (const TContext context = NewContext()) {
        doc = xmlCtxtReadMemory(context.get(), text, size, nullptr, nullptr, XML_PARSE_COMPACT);
    }
    return m_Adopt(doc, "m->pdoc = xmlParseMemory((const char*)buf, size)");
}

bool CXML::Create(const char* filename)
{
    if (!VYR_ASSERT(!m, "!m")) {
        return false;
    }
    xmlDocPtr doc = nullptr;
    if (const TContext context = NewContext()) {
        doc = filename ? xmlCtxtReadFile(context.get(), filename, nullptr, XML_PARSE_COMPACT) : nullptr;
    }
    return m_Adopt(doc, "m->pdoc = xmlParseFile((const char*)filename)");
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
    xmlDocPtr doc = static_cast<xmlDocPtr>(parsed);
    if (doc && doc->intSubset && doc->intSubset->entities && !CExpansion::WithinLimit(doc)) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CXML::Create] refused: entities expand to more than %zu bytes", k_maxExpansion);
        xmlFreeDoc(doc);
        doc = nullptr;
    }
    if (!VYR_CHECK(doc, text)) {
        return false;
    }
    m_held = {doc, true};
    m = &m_held;
    return true;
}

void CXML::Destroy()
{
    if (!VYR_ASSERT(m, "m")) {
        return;
    }
    if (m->owned) {
        xmlFreeDoc(static_cast<xmlDocPtr>(m->pdoc));
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
    xmlNodePtr element = xmlDocGetRootElement(static_cast<xmlDocPtr>(m->pdoc));
    if (element) {
        *root = element;
    }
    return element != nullptr;
}

void* CXML::MoveChild(void* node) const
{
    return VYR_ASSERT(m, "m") && VYR_ASSERT(node, "node") ? AsNode(node)->children : nullptr;
}

void* CXML::MoveNext(void* node) const
{
    return VYR_ASSERT(m, "m") && VYR_ASSERT(node, "node") ? AsNode(node)->next : nullptr;
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
{
    return VYR_ASSERT(m, "m") ? HandOut(CNodeText::Attribute(node, name), 1, found) : nullptr;
}

bool CXML::PeekPropStr(void* node, const char* name, CStr* out) const
{
    if (!VYR_ASSERT(m, "m") || !VYR_ASSERT(out, "out")) {
        return false;
    }
    const CNodeText text = CNodeText::Attribute(node, name);
    xmlChar* value = text.Found() ? xmlStrdup(AsName(text.Text())) : nullptr;
    if (!value) {
        return false;
    }
    if (out->m_str) {
        xmlFree(out->m_str);
    }
    out->m_str = reinterpret_cast<char*>(value);
    return true;
}

int CXML::PropInt(void* node, const char* name, bool* found) const
{
    return VYR_ASSERT(m, "m") ? static_cast<int>(static_cast<unsigned long long>(Number(node, name, found))) : 0;
}

long long CXML::PropLLong(void* node, const char* name, bool* found) const
{
    return VYR_ASSERT(m, "m") ? Number(node, name, found) : 0;
}

bool CXML::PropBool(void* node, const char* name, bool* found) const
{
    if (!VYR_ASSERT(m, "m")) {
        return false;
    }
    const CNodeText text = CNodeText::Attribute(node, name);
    if (found) {
        *found = text.Found();
    }
    return text.Bool();
}

char* CXML::Content(void* node, bool* found) const
{
    return VYR_ASSERT(m, "m") ? HandOut(CNodeText::Content(node), 2, found) : nullptr;
}

std::string CXML::m_charToStringWithDelete(char* text) const
{
    const std::unique_ptr<char[]> owner(text);
    return text ? std::string(text) : std::string();
}

std::string CXML::getStringContent(void* node, bool* found) const
{
    return m_charToStringWithDelete(Content(node, found));
}

std::string CXML::getStringProp(void* node, const char* name, bool* found) const
{
    return m_charToStringWithDelete(PropStr(node, name, found));
}

char* CXML::Dump(TDocPtr doc, int* size) const
{
    xmlChar* block = nullptr;
    int length = 0;
    xmlDocDumpMemory(static_cast<xmlDocPtr>(doc), &block, &length);
    if (size) {
        *size = block ? length : 0;
    }
    if (!block) {
        return nullptr;
    }
    char* copy = NewCopy(AsText(block), static_cast<std::size_t>(length));
    xmlFree(block);
    return copy;
}

char* CXML::NodeDump(void* node, int* size) const
{
    if (size) {
        *size = 0;
    }
    if (!VYR_ASSERT(m, "m") || !VYR_ASSERT(node, "node")) {
        return nullptr;
    }
    xmlBufferPtr buffer = xmlBufferCreate();
    if (!buffer) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CXML::NodeDump] xmlBufferCreate fail");
        return nullptr;
    }
    xmlBufferSetAllocationScheme(buffer, XML_BUFFER_ALLOC_DOUBLEIT);
    const int length = xmlNodeDump(buffer, nullptr, AsNode(node), 0, 0);
    char* copy = nullptr;
    if (length > 0) {
        copy = NewCopy(AsText(xmlBufferContent(buffer)), static_cast<std::size_t>(length));
    }
    xmlBufferFree(buffer);
    if (copy && size) {
        *size = length;
    }
    return copy;
}

void XmlError(void* /*ctx*/, const char* format, ...)
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[Xml Error Info]%s", text);
}
