#include "common/XML.h"

#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/tree.h>
#include <libxml/xmlIO.h>
#include <libxml/xmlerror.h>
#include <pthread.h>

#include <climits>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <unordered_map>
#include <utility>

#include "common/Inflate.h"
#include "common/OutOfMemory.h"
#include "common/XmlNode.h"
#include "common/XmlScan.h"
#include "platform/FailureKeeping.h"
#include "platform/Log.h"

// Every call of libxml2 stands in this file. Some are marked deprecated by newer versions.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

// VYR_XML_PLAIN leaves out both short cuts; every test runs on a library built with it as well.
#if defined(VYR_XML_PLAIN)
#define VYR_XML_IN_PLACE 0
#define VYR_XML_SPARE_NODES 0
#else
// A text is parsed where it lies.
#define VYR_XML_IN_PLACE (LIBXML_VERSION < 21000 || LIBXML_VERSION >= 21400)
// Lists of spare nodes, as libxml2's own reader lends them to its context: fields known of 2.9 alone.
#define VYR_XML_SPARE_NODES (LIBXML_VERSION >= 20900 && LIBXML_VERSION < 21000)
#endif
#if defined(__has_feature)
#define VYR_HAS_FEATURE(feature) __has_feature(feature)
#else
#define VYR_HAS_FEATURE(feature) 0
#endif
#if defined(__SANITIZE_ADDRESS__) || VYR_HAS_FEATURE(address_sanitizer)
#include <sanitizer/asan_interface.h>
#define VYR_ASAN 1
#else
#define VYR_ASAN 0
#endif

namespace {

// What the texts and attributes of a document with entities may expand to, in bytes and in references.
constexpr std::size_t k_maxExpansion = 524288;
// Documents up to this size are copied to the stack to be zero-terminated.
constexpr std::size_t k_maxOnStack = 8191;
// Larger ones are parsed from libxml2's own copy.
constexpr std::size_t k_maxInPlace = 1048576;

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

/// The first fault that libxml2 tells of a document. It is why a document is not taken; one that is may have some.
struct SXmlFault {
    int line;
    bool next;  // its words come next
    char text[160];

    void Hear(const char* words, int inLine)
    {
        if (text[0] == 0) {
            line = inLine;
            std::snprintf(text, sizeof text, "%.*s", static_cast<int>(std::strcspn(words, "\n")), words);
        }
    }

    /// libxml2 tells a fault in pieces: "Entity: line 3: ", "parser ", "error : ", the words, and where they are.
    void HearPiece(const char* piece)
    {
        if (next) {
            Hear(piece, line);
        } else if (text[0] == 0 && std::strncmp(piece, "Entity: line ", 13) == 0) {
            line = std::atoi(piece + 13);
        }
        next = std::strcmp(piece, "error : ") == 0;
    }
};
thread_local SXmlFault t_fault;

/// While it lives libxml2 reports the calling thread's errors to XmlError; afterwards to whom it did before.
class CErrorsToLog {
  public:
    CErrorsToLog()
    {
        // The start of libxml2 is nothing for two threads at a time, and comes before its globals are looked at.
        static const bool s_started = (xmlInitParser(), true);
        static_cast<void>(s_started);
        m_handler = xmlGenericError;
        m_context = xmlGenericErrorContext;
        xmlSetGenericErrorFunc(nullptr, XmlError);
        t_fault.text[0] = 0;
        t_fault.next = false;
    }
    ~CErrorsToLog() { xmlSetGenericErrorFunc(m_context, m_handler); }
    CErrorsToLog(const CErrorsToLog&) = delete;
    CErrorsToLog& operator=(const CErrorsToLog&) = delete;

  private:
    xmlGenericErrorFunc m_handler;
    void* m_context;
};

/// A parser context that does what libxml2 does by default, whatever the process has set globally.
TContext NewContext()
{
    xmlInitParser();
    xmlResetLastError();
    TContext context(vyr::Allocated(xmlNewParserCtxt()));
    // The defaults of the process leak into these, and options only ever add to them.
    context->options = 0;
    context->replaceEntities = 0;
    context->loadsubset = 0;
    context->validate = 0;
    context->pedantic = 0;
    context->keepBlanks = 1;
    if (context->sax) {
        context->sax->ignorableWhitespace = context->sax->characters;
        // Faults are shown at debug priority only; else nobody need put their place in the text into pieces.
        if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
            context->sax->serror = [](void*, auto* error) {
                if (error->level >= XML_ERR_ERROR) {
                    t_fault.Hear(error->message ? error->message : "", error->line);
                }
            };
        }
    }
    return context;
}

#if VYR_XML_SPARE_NODES
/// Elements, texts and attributes of freed documents, for the next document of the thread: libxml2 takes them
/// from its context before it allocates. Half of what a small document costs is their allocation.
///
/// They are what malloc gave and free takes: with other allocators, and with hooks of the host that want to be
/// told of freed nodes, nothing is kept. A thread's nodes go when it ends; those of the main thread stay.
class CSpareNodes {
  public:
    /// Lends the thread's nodes to a context, and takes back what is left.
    class CLoan {
      public:
        explicit CLoan(xmlParserCtxtPtr context) : m_context(context), m_spare(CanKeep() ? Mine(true) : nullptr)
        {
            if (m_spare) {
                m_spare->m_Forbid(false);
                m_Swap();
            }
        }
        ~CLoan()
        {
            if (m_spare) {
                m_Swap();
                m_spare->m_Forbid(true);
            }
        }
        CLoan(const CLoan&) = delete;
        CLoan& operator=(const CLoan&) = delete;

      private:
        void m_Swap()
        {
            std::swap(m_context->freeElems, m_spare->m_nodes.first);
            std::swap(m_context->freeElemsNr, m_spare->m_nodes.count);
            std::swap(m_context->freeAttrs, m_spare->m_attributes.first);
            std::swap(m_context->freeAttrsNr, m_spare->m_attributes.count);
        }

        xmlParserCtxtPtr m_context;
        CSpareNodes* m_spare;
    };

    /// Takes the nodes out of a document that is about to be freed. Allocates nothing.
    static void TakeFrom(xmlDocPtr doc)
    {
        if (doc->intSubset || doc->extSubset || doc->ids || doc->refs || !doc->dict || !CanKeep()) {
            return;
        }
        if (CSpareNodes* spare = Mine(false)) {
            spare->m_TakeAll(doc);
        }
    }

  private:
    // The most that a thread keeps of each: 1,024 nodes of 120 bytes, as many attributes of 96.
    static constexpr int k_most = 1024;

    template <class T>
    struct SList {
        T* first = nullptr;
        int count = 0;

        void Take(T* node)
        {
            if (count >= k_most) {
                xmlFree(node);
                return;
            }
            node->next = first;
            first = node;
            ++count;
            Mark(node, true);
        }

        void Free()
        {
            while (T* node = first) {
                first = node->next;
                std::free(node);
            }
        }

        void Forbid(bool forbid)
        {
            for (T* node = first; VYR_ASAN && node; node = node->next) {
                Mark(node, forbid);
            }
        }

        /// Under AddressSanitizer what is kept is as forbidden as what is freed, but for the link.
        static void Mark(T* node, bool forbid)
        {
#if VYR_ASAN
            const auto mark = forbid ? __asan_poison_memory_region : __asan_unpoison_memory_region;
            mark(node, offsetof(T, next));
            mark(&node->next + 1, sizeof *node - offsetof(T, next) - sizeof node->next);
#else
            static_cast<void>(node);
            static_cast<void>(forbid);
#endif
        }
    };

    static bool CanKeep()
    {
        return xmlFree == std::free && xmlMalloc == std::malloc && !xmlDeregisterNodeDefaultValue;
    }

    /// The calling thread's nodes. Null when it has none and none are to be made, when memory or keys are out, and
    /// when the libxml2 that is loaded is not of the headers' kind.
    static CSpareNodes* Mine(bool make)
    {
        struct SKey {
            pthread_key_t key;
            bool made;
        };
        // Not thread_local: that ends the program when memory is out, and documents may outlive it.
        static const SKey s_key = [] {
            SKey key{};
            key.made = std::strncmp(xmlParserVersion, "209", 3) == 0 && pthread_key_create(&key.key, End) == 0;
            return key;
        }();
        if (!s_key.made) {
            return nullptr;
        }
        CSpareNodes* mine = static_cast<CSpareNodes*>(pthread_getspecific(s_key.key));
        if (!mine && make) {
            std::unique_ptr<CSpareNodes> fresh(new (std::nothrow) CSpareNodes);
            if (fresh && pthread_setspecific(s_key.key, fresh.get()) == 0) {
                mine = fresh.release();
            }
        }
        return mine;
    }

    static void End(void* mine)
    {
        const std::unique_ptr<CSpareNodes> spare(static_cast<CSpareNodes*>(mine));
        spare->m_nodes.Free();
        spare->m_attributes.Free();
    }

    static void FreeText(xmlDictPtr dict, const xmlChar* text)
    {
        if (text && !xmlDictOwns(dict, text)) {
            xmlFree(const_cast<xmlChar*>(text));
        }
    }

    void m_Forbid(bool forbid)
    {
        m_nodes.Forbid(forbid);
        m_attributes.Forbid(forbid);
    }

    void m_TakeText(xmlDictPtr dict, xmlNodePtr text)
    {
        // Short texts lie in fields that texts have no other use for.
        if (text->content != reinterpret_cast<xmlChar*>(&text->properties)) {
            FreeText(dict, text->content);
        }
        m_nodes.Take(text);
    }

    void m_TakeElement(xmlDictPtr dict, xmlNodePtr element)
    {
        for (xmlAttrPtr attribute = element->properties; attribute;) {
            const xmlAttrPtr next = attribute->next;
            const xmlNodePtr value = attribute->children;
            if (value && !value->next && value->type == XML_TEXT_NODE) {
                m_TakeText(dict, value);
            } else if (value) {
                xmlFreeNodeList(value);
            }
            FreeText(dict, attribute->name);
            m_attributes.Take(attribute);
            attribute = next;
        }
        if (element->nsDef) {
            xmlFreeNsList(element->nsDef);
        }
        FreeText(dict, element->name);
        m_nodes.Take(element);
    }

    /// From the leaves up, without recursion.
    void m_TakeAll(xmlDocPtr doc)
    {
        xmlNodePtr node = doc->children;
        doc->children = doc->last = nullptr;
        while (node) {
            if (node->type == XML_ELEMENT_NODE && node->children) {
                node = node->children;
                continue;
            }
            const xmlNodePtr next = node->next;
            const xmlNodePtr parent = node->parent;
            if (node->type == XML_ELEMENT_NODE) {
                m_TakeElement(doc->dict, node);
            } else if (node->type == XML_TEXT_NODE) {
                m_TakeText(doc->dict, node);
            } else {
                xmlFreeNode(node);
            }
            node = next ? next : reinterpret_cast<xmlDocPtr>(parent) != doc ? parent : nullptr;
            if (!next && node) {
                node->children = nullptr;
            }
        }
    }

    SList<xmlNode> m_nodes;
    SList<xmlAttr> m_attributes;
};
#endif

struct SDocumentDeleter {
    void operator()(xmlDocPtr doc) const
    {
#if VYR_XML_SPARE_NODES
        CSpareNodes::TakeFrom(doc);
#endif
        xmlFreeDoc(doc);
    }
};
using TDocument = std::unique_ptr<xmlDoc, SDocumentDeleter>;

/// Parses text with a zero byte behind it where it lies. xmlCtxtReadMemory makes a copy, and asks that for more
/// at every turn near its end.
TDocument ParseInPlace(xmlParserCtxtPtr context, const char* text, std::size_t size)
{
    xmlCtxtUseOptions(context, XML_PARSE_COMPACT);
    // Nobody asks for elements by their xml:id. (With a document type this would load external subsets.)
    context->loadsubset = XML_SKIP_IDS;
#if LIBXML_VERSION >= 21400
    const xmlParserInputFlags flags =
        static_cast<xmlParserInputFlags>(XML_INPUT_BUF_STATIC | XML_INPUT_BUF_ZERO_TERMINATED);
    const xmlParserInputPtr input = xmlNewInputFromMemory(nullptr, text, size, flags);
    return TDocument(input ? xmlCtxtParseDocument(context, input) : nullptr);
#else
    const xmlParserInputPtr input = xmlNewInputStream(context);
    if (!input) {
        return nullptr;
    }
    input->base = input->cur = AsName(text);
    input->end = input->base + size;
    input->length = static_cast<int>(size);
    if (inputPush(context, input) < 0) {
        xmlFreeInputStream(input);
        return nullptr;
    }
#if VYR_XML_SPARE_NODES
    const CSpareNodes::CLoan loan(context);
#endif
    xmlParseDocument(context);
    TDocument doc(std::exchange(context->myDoc, nullptr));
    if (!context->wellFormed) {
        doc = nullptr;
    }
    return doc;
#endif
}

/// The document; throws when memory was out on the way, as it may be cut then. libxml2 tells it in one place or
/// the other.
TDocument Whole(xmlParserCtxtPtr context, TDocument doc)
{
    const auto* error = xmlGetLastError();
    if (context->errNo == XML_ERR_NO_MEMORY || (error && error->code == XML_ERR_NO_MEMORY)) {
        throw std::bad_alloc();
    }
    return doc;
}

/// Parses a document in memory; `plain` as RefusalOf tells, `zeroBehind` when a zero byte is behind it.
TDocument ParseMemory(const char* text, std::size_t size, bool plain, bool zeroBehind)
{
    const TContext holder = NewContext();
    const xmlParserCtxtPtr context = holder.get();
    if (!VYR_XML_IN_PLACE || !plain || size > k_maxInPlace) {
        const int options = XML_PARSE_COMPACT;
        return Whole(context,
                     TDocument(xmlCtxtReadMemory(context, text, static_cast<int>(size), nullptr, nullptr, options)));
    }
    if (zeroBehind) {
        return Whole(context, ParseInPlace(context, text, size));
    }
    if (size > k_maxOnStack) {
        const std::unique_ptr<char[]> copy(vyr::Allocated(NewCopy(text, size)));
        return Whole(context, ParseInPlace(context, copy.get(), size));
    }
    char copy[k_maxOnStack + 1];
    std::memcpy(copy, text, size);
    copy[size] = 0;
    return Whole(context, ParseInPlace(context, copy, size));
}

/// Serialises what libxml2 would serialise byte by byte, when that is copying: elements and texts without
/// prefixes, declared name spaces and anything to be escaped.
class CPlainDump {
  public:
    /// New array of `*size` bytes and a zero byte; null: libxml2 is needed.
    static char* Of(xmlNodePtr root, int* size)
    {
        CPlainDump counter(nullptr);
        if (!counter.m_Tree(root) || counter.m_size > INT_MAX) {
            return nullptr;
        }
        char* text = new (std::nothrow) char[counter.m_size + 1];
        if (text) {
            CPlainDump(text).m_Tree(root);
            text[counter.m_size] = 0;
            *size = static_cast<int>(counter.m_size);
        }
        return text;
    }

  private:
    explicit CPlainDump(char* text) : m_text(text) {}

    void m_Put(const char* text, std::size_t length)
    {
        if (m_text) {
            std::memcpy(m_text + m_size, text, length);
        }
        m_size += length;
    }

    void m_Put(const char* text) { m_Put(text, std::strlen(text)); }

    /// False when there is something to escape, which the count alone looks for.
    bool m_Text(xmlNodePtr node, bool attribute)
    {
        if (node->type != XML_TEXT_NODE || node->name != xmlStringText || !node->content) {
            return false;
        }
        const std::size_t length = std::strlen(AsText(node->content));
        m_Put(AsText(node->content), length);
        return m_text || !HasSpecial(node->content, length, attribute);
    }

    /// Without branches, for the compiler to take many bytes at a time.
    static bool HasSpecial(const xmlChar* text, std::size_t length, bool attribute)
    {
        const xmlChar tab = attribute ? ' ' : '\t';
        const xmlChar line = attribute ? ' ' : '\n';
        const xmlChar quote = attribute ? '"' : '<';
        unsigned char special = 0;
        for (std::size_t i = 0; i < length; ++i) {
            const xmlChar c = text[i];
            const int control = (c < ' ') & (c != tab) & (c != line);
            special |= static_cast<xmlChar>(control | (c > '~') | (c == '<') | (c == '>') | (c == '&') | (c == quote));
        }
        return special != 0;
    }

    bool m_Start(xmlNodePtr element)
    {
        if (element->type != XML_ELEMENT_NODE || element->nsDef || (element->ns && element->ns->prefix)) {
            return false;
        }
        m_Put("<");
        m_Put(AsText(element->name));
        for (xmlAttrPtr attribute = element->properties; attribute; attribute = attribute->next) {
            const xmlNodePtr value = attribute->children;
            m_Put(" ");
            m_Put(AsText(attribute->name));
            m_Put("=\"");
            if ((attribute->ns && attribute->ns->prefix) || (value && (value->next || !m_Text(value, true)))) {
                return false;
            }
            m_Put("\"");
        }
        m_Put(element->children ? ">" : "/>");
        return true;
    }

    bool m_Tree(xmlNodePtr root)
    {
        xmlNodePtr node = root;
        while (m_Text(node, false) || m_Start(node)) {
            if (node->type == XML_ELEMENT_NODE && node->children) {
                node = node->children;
                continue;
            }
            while (node != root && !node->next) {
                node = node->parent;
                m_Put("</");
                m_Put(AsText(node->name));
                m_Put(">");
            }
            if (node == root) {
                return true;
            }
            node = node->next;
        }
        return false;
    }

    char* m_text;
    std::size_t m_size = 0;
};

}  // namespace

namespace vyr {

bool DecodeXml(const char* encoding, const char* data, std::size_t size, std::string* out)
{
    xmlSetGenericErrorFunc(nullptr, XmlError);
    xmlInitParser();
    xmlCharEncodingHandlerPtr decoder = xmlFindCharEncodingHandler(encoding);
    if (!decoder) {
        return false;
    }
    // It may do less than everything at a time, and stops for good before what it cannot decode.
    // A copy: for its message it reads four bytes from the wrong one on.
    const xmlBufferPtr text = xmlBufferCreate();
    const xmlBufferPtr rest = xmlBufferCreateSize(size + 4);
    if (rest) {
        xmlBufferAdd(rest, reinterpret_cast<const xmlChar*>(data), static_cast<int>(size));
    }
    for (int before = INT_MAX; text && rest && xmlBufferLength(rest) > 0 && xmlBufferLength(rest) < before;) {
        before = xmlBufferLength(rest);
        xmlCharEncInFunc(decoder, text, rest);
    }
    if (text && xmlBufferContent(text)) {
        out->assign(AsText(xmlBufferContent(text)), static_cast<std::size_t>(xmlBufferLength(text)));
    }
    xmlBufferFree(text);
    xmlBufferFree(rest);
    xmlCharEncCloseFunc(decoder);
    return true;
}

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
        return {AsText(Allocated(AttributeValue(attribute))), true};
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
        return {AsText(Allocated(xmlNodeGetContent(element))), true};
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
    const CErrorsToLog errors;
    TDocument doc;
    bool plain = false;
    if (const char* reason = vyr::RefusalOf(text, size, &plain)) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CXML::Create] refused: %s", reason);
        vyr::KeepFailure(std::strcmp(reason, "not well-formed") == 0 ? FAILURE_XML : FAILURE_LIMIT, reason);
    } else {
        doc = ParseMemory(text, size, plain, text != buf);
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
    const CErrorsToLog errors;
    TDocument doc;
    if (filename) {
        const TContext context = NewContext();
        doc = Whole(context.get(), TDocument(xmlCtxtReadFile(context.get(), filename, nullptr, XML_PARSE_COMPACT)));
    }
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
    TDocument doc(static_cast<xmlDocPtr>(parsed));
    if (doc && doc->intSubset && doc->intSubset->entities && !CExpansion::WithinLimit(doc.get())) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CXML::Create] refused: entities expand to more than %zu bytes", k_maxExpansion);
        vyr::KeepFailure(FAILURE_LIMIT, "entities expand to more than 524288 bytes");
        doc.reset();
    }
    if (!doc) {
        if (t_fault.text[0]) {
            vyr::KeepFailure(FAILURE_XML, t_fault.text, t_fault.line);
        }
        return VYR_CHECK(false, text);
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
        TDocument(static_cast<xmlDocPtr>(m->pdoc)).reset();
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
    xmlChar* value = text.Found() ? xmlStrdup(AsName(text.Text())) : nullptr;
    if (!value) {
        return false;
    }
    if (out->m_str) {
        xmlFree(out->m_str);
    }
    out->m_str = reinterpret_cast<char*>(value);
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
    const CErrorsToLog errors;
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
    int length = 0;
    char* copy = CPlainDump::Of(AsNode(node), &length);
    if (!copy) {
        const CErrorsToLog errors;
        // Not xmlNodeDump: when memory is out in it, the buffer it is given is freed twice.
        const xmlOutputBufferPtr out = xmlAllocOutputBuffer(nullptr);
        if (!out) {
            VYR_LOG(LOG_PRIORITY_DEBUG, "[CXML::NodeDump] xmlBufferCreate fail");
            return nullptr;
        }
        xmlNodeDumpOutput(out, nullptr, AsNode(node), 0, 0, nullptr);
        const xmlChar* text = out->error ? nullptr : xmlOutputBufferGetContent(out);
        const std::size_t bytes = text ? xmlOutputBufferGetSize(out) : 0;
        if (bytes > 0 && bytes <= INT_MAX) {
            length = static_cast<int>(bytes);
            copy = NewCopy(AsText(text), bytes);
        }
        xmlOutputBufferClose(out);
    }
    if (copy && size) {
        *size = static_cast<int>(length);
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
    t_fault.HearPiece(text);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[Xml Error Info]%s", text);
}
