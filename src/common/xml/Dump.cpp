#include <libxml/parserInternals.h>
#include <libxml/xmlIO.h>

#include <climits>
#include <cstring>
#include <new>

#include "common/xml/LibXml.h"
#include "common/xml/Xml.h"

namespace vyr::xml {

namespace {

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

char* NewCopy(const char* text, std::size_t length, std::size_t zeros)
{
    char* copy = new (std::nothrow) char[length + zeros];
    if (copy) {
        std::memcpy(copy, text, length);
        std::memset(copy + length, 0, zeros);
    }
    return copy;
}

char* DumpDocument(void* document, int* size)
{
    const CErrorsToLog errors;
    xmlChar* block = nullptr;
    int length = 0;
    xmlDocDumpMemory(AsDoc(document), &block, &length);
    char* copy = block && !errors.MemoryOut() ? NewCopy(AsText(block), static_cast<std::size_t>(length)) : nullptr;
    xmlFree(block);
    *size = copy ? length : 0;
    return copy;
}

char* DumpNode(void* node, int* size, const SHere& here)
{
    *size = 0;
    if (char* text = CPlainDump::Of(AsNode(node), size)) {
        return text;
    }
    const CErrorsToLog errors;
    // Not xmlNodeDump: when memory is out in it, the buffer it is given is freed twice.
    const xmlOutputBufferPtr out = xmlAllocOutputBuffer(nullptr);
    if (!out) {
        if (LogEnabled(LOG_PRIORITY_DEBUG)) {
            Print(LOG_PRIORITY_DEBUG, here, "[CXML::NodeDump] xmlBufferCreate fail");
        }
        return nullptr;
    }
    xmlNodeDumpOutput(out, nullptr, AsNode(node), 0, 0, nullptr);
    const xmlChar* text = out->error || errors.MemoryOut() ? nullptr : xmlOutputBufferGetContent(out);
    const std::size_t bytes = text ? xmlOutputBufferGetSize(out) : 0;
    char* copy = nullptr;
    if (text && bytes <= INT_MAX) {
        copy = NewCopy(AsText(text), bytes);
        *size = copy ? static_cast<int>(bytes) : 0;
    }
    xmlOutputBufferClose(out);
    return copy;
}

}  // namespace vyr::xml
