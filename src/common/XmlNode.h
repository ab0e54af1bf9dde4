#pragma once

#include <string>

namespace vyr {

/// Text of an attribute or of an element, read where libxml2 holds it when that is one text node, and
/// put together only otherwise. Lives no longer than the document.
class CNodeText {
  public:
    /// The attribute of that local name, in any namespace.
    static CNodeText Attribute(void* node, const char* name);
    /// The text of the node and everything below it.
    static CNodeText Content(void* node);

    CNodeText(const CNodeText&) = delete;
    CNodeText& operator=(const CNodeText&) = delete;
    ~CNodeText();

    /// False: there is no such attribute, no content.
    bool Found() const { return m_text != nullptr; }
    /// The text, zero-terminated; null when not found.
    const char* Text() const { return m_text; }
    /// True when there is text at all: white space is text, an empty string is not.
    bool HasText() const { return m_text && *m_text; }

    /// Decimal number at the start of the text, cut to 32 bits; `absent` when not found.
    int Int(int absent) const;
    /// The same with 64 bits.
    long long LLong(long long absent) const;
    /// True exactly when the text begins with "true".
    bool Bool() const;
    /// Copies the text when found.
    bool CopyTo(std::string& out) const;

  private:
    CNodeText(const char* text, bool owned) : m_text(text), m_owned(owned) {}

    const char* m_text;
    bool m_owned;
};

/// First child that is an element, and the next sibling that is one; null: none.
void* FirstElement(void* node);
void* NextElement(void* node);
/// The first element of that local name among the node and its following siblings; null: none.
void* FindElement(void* node, const char* name);
/// Namespace of an element, as libxml2 holds it; null: none. Elements of one declaration give one address.
const char* NodeNamespace(void* node);
/// The document of a node, as CXML::Doc has it.
void* NodeDocument(void* node);
/// Local name of an element or any other node.
const char* NodeName(void* node);

}  // namespace vyr
