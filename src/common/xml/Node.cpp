#include <cstdlib>
#include <cstring>

#include "common/OutOfMemory.h"
#include "common/XmlNode.h"
#include "common/xml/LibXml.h"
#include "common/xml/Xml.h"

namespace vyr {

using xml::AsName;
using xml::AsNode;
using xml::AsText;

namespace {

/// False when memory is out.
bool Append(xmlBufferPtr out, const xmlChar* text)
{
    return !text || xmlBufferCat(out, text) == 0;
}

/// Appends what the nodes of an attribute's value stand for. xmlGetProp copies all that it has for every
/// entity reference anew, which makes a value of many references quadratic. False when memory is out.
bool AppendValue(xmlBufferPtr out, xmlDocPtr doc, const xmlNode* node)
{
    bool whole = true;
    for (; node && whole; node = node->next) {
        if (node->type != XML_ENTITY_REF_NODE) {
            if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE) {
                whole = Append(out, node->content);
            }
        } else if (const xmlEntityPtr entity = xmlGetDocEntity(doc, node->name)) {
            whole = AppendValue(out, doc, entity->children);
        } else {
            whole = Append(out, node->content);
        }
    }
    return whole;
}

/// The value of an attribute of several nodes; null when memory is out.
xmlChar* AttributeValue(const xmlAttr* attribute)
{
    xmlBufferPtr buffer = xmlBufferCreate();
    if (!buffer) {
        return nullptr;
    }
    xmlBufferSetAllocationScheme(buffer, XML_BUFFER_ALLOC_DOUBLEIT);
    const bool whole = AppendValue(buffer, attribute->doc, attribute->children);
    xmlChar* value = whole ? xmlBufferDetach(buffer) : nullptr;
    xmlBufferFree(buffer);
    return value || !whole ? value : xmlStrdup(AsName(""));
}

/// A text that `make` has libxml2 make, to be freed with xmlFree; throws when memory was out on the way. Newer
/// libxml2 has no word of that, but null in place of a text that must be.
template <class TMake>
const char* Made(bool mustBe, TMake make)
{
    const xml::CErrorsToLog errors;
    xmlChar* text = make();
    if (errors.MemoryOut() || (mustBe && !text)) {
        xmlFree(text);
        throw std::bad_alloc();
    }
    return AsText(text);
}

}  // namespace

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
        return {Made(true, [&] { return AttributeValue(attribute); }), true};
    }
    if (!element->doc || !element->doc->intSubset) {
        return {nullptr, false};
    }
    // What its declaration says.
    const xmlAttr* declared = xmlHasProp(element, AsName(name));
    const bool hasDefault = declared && declared->type == XML_ATTRIBUTE_DECL;
    return {hasDefault ? AsText(reinterpret_cast<const xmlAttribute*>(declared)->defaultValue) : nullptr, false};
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
    return {Made(element->type == XML_ELEMENT_NODE, [&] { return xmlNodeGetContent(element); }), true};
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

void* NodeDocument(void* node)
{
    return AsNode(node)->doc;
}

const char* NodeName(void* node)
{
    return AsText(AsNode(node)->name);
}

namespace xml {

void* RootElement(void* document)
{
    return xmlDocGetRootElement(AsDoc(document));
}

void* FirstChild(void* node)
{
    return AsNode(node)->children;
}

void* NextSibling(void* node)
{
    return AsNode(node)->next;
}

char* NewText(const char* text)
{
    const std::size_t size = std::strlen(text) + 1;
    void* copy = xmlMalloc(size);  // xmlStrdup would write to the standard error stream when memory is out
    return copy ? static_cast<char*>(std::memcpy(copy, text, size)) : nullptr;
}

void FreeText(char* text)
{
    if (text) {
        xmlFree(text);
    }
}

}  // namespace xml

}  // namespace vyr
