#pragma once

#include <string>

#include "../platform/Api.h"

/// One XML document over libxml2, and the only way to its nodes. Nodes and documents are passed as
/// untyped handles; a node handle lives as long as its document. Documents in memory are parsed with
/// entity substitution, external subsets and validation off.
///
/// Strings that come back as `char*` are new arrays that the caller frees with delete[]; a missing
/// value is a new empty string, never null (null means that memory is out). A `found` pointer may be
/// null. Every operation but Dump asserts that a document is held ("m") and otherwise returns false,
/// null or 0. An object is used by one thread at a time.
class VYR_API CXML {
  public:
    /// Handle of a document.
    typedef void* TDocPtr;

    /// Largest compressed document, and largest document that a compressed one may inflate to: bytes.
    static constexpr int k_maxCompressed = 524288;

    /// Owner of one string that libxml2 allocated.
    class VYR_API CStr {
      public:
        CStr();
        virtual ~CStr();
        CStr(const CStr&) = delete;
        CStr& operator=(const CStr&) = delete;
        /// The string, or null; it lives until the owner dies. Filled again, the owner forgets it without freeing it.
        const char* String() const { return m_str; }

      private:
        friend class CXML;
        char* m_str;
    };

    CXML();
    /// Keeps a document that was not destroyed: Destroy comes first.
    virtual ~CXML();
    CXML(const CXML&) = delete;
    CXML& operator=(const CXML&) = delete;

    /// Parses `length` bytes at `buf` (not kept). `compressed`: a gzip magic at the start is honoured
    /// (inflated to at most k_maxCompressed bytes), and more than k_maxCompressed bytes are refused.
    /// Refused, besides what is not well-formed:
    /// - start tags of more than 1,024 attributes, or so many of nearly as many that comparing the attributes
    ///   of each tag with each other would take more than one such tag and 64 comparisons a byte;
    /// - in the document, more than 256 namespace declarations, 16,384 different names (of references and
    ///   instructions, too), as many identifiers (`xml:id`, or declared as such) or 1,024 catalogs;
    /// - in a document type: parameter entities, more than 256 attributes that could declare namespaces,
    ///   entities that could expand to more than 524,288 bytes or nest deeper than 64, more than 1,024
    ///   enumerated values, more than 1,024 attribute defaults or 4 M bytes of them for all elements (each
    ///   counts 64 more, and one for each of its element's), more than 8 ID attributes of one element;
    /// - documents whose attributes and texts expand to more than 524,288 bytes through entities;
    /// - encodings that do not include ASCII, but for UTF-16.
    ///
    /// The reason is logged. False is failure, and no document is held.
    bool Create(const char* buf, int length, bool compressed);
    /// Parses a file.
    bool Create(const char* filename);
    /// Wraps a document that somebody else owns and keeps alive.
    bool Create(TDocPtr doc);
    /// Frees a document of its own, lets go of a wrapped one.
    void Destroy();

    /// True while a document is held.
    bool FlagCreate() const { return m != nullptr; }
    /// The document's handle.
    TDocPtr Doc() const;

    /// Gives the root element; false without one, `*root` untouched.
    bool MoveRoot(void** root) const;
    /// First child of any kind (text and comments are not skipped); null: none.
    void* MoveChild(void* node) const;
    /// Next sibling of any kind; null: none.
    void* MoveNext(void* node) const;
    /// Local name ("text" for a text node, "comment" for a comment), owned by the document.
    const char* Name(void* node) const;
    /// Namespace URI; `*found` tells whether there is one.
    char* Ns(void* node, bool* found) const;
    /// True when the local name is exactly `name`.
    bool Compare(void* node, const char* name) const;

    /// Attribute by local name, in any namespace or none.
    char* PropStr(void* node, const char* name, bool* found) const;
    /// The same without a copy of ours, into `out`; false when absent, `out` untouched. A string that `out` held
    /// before is then the caller's, to be freed with xmlFree.
    bool PeekPropStr(void* node, const char* name, CStr* out) const;
    /// Attribute as decimal number, leading part of the text, cut to 32 bits; absent: -1.
    int PropInt(void* node, const char* name, bool* found) const;
    /// Attribute as decimal number of 64 bits; absent: -1.
    long long PropLLong(void* node, const char* name, bool* found) const;
    /// True exactly when the attribute's text begins with "true"; `*found` tells of its presence.
    bool PropBool(void* node, const char* name, bool* found) const;
    /// Text of the node and everything below it. The array ends in two zero bytes.
    char* Content(void* node, bool* found) const;

    /// Content as a string; empty when missing.
    std::string getStringContent(void* node, bool* found) const;
    /// PropStr as a string; empty when missing.
    std::string getStringProp(void* node, const char* name, bool* found) const;

    /// Serialises the whole document `doc`: a new zero-terminated array of `*size` bytes, or null.
    char* Dump(TDocPtr doc, int* size) const;
    /// Serialises one element as it stands, without formatting: as Dump.
    char* NodeDump(void* node, int* size) const;

  private:
    struct SXML {
        TDocPtr pdoc;
        bool owned;  // whether Destroy frees the document
    };

    bool m_Adopt(void* doc, const char* text);
    std::string m_charToStringWithDelete(char* text) const;
    SXML m_held;  // what m points to: views are made for every element, and cost no allocation
    SXML* m;
};

/// Error handler given to libxml2: writes its messages to the log at debug priority.
VYR_API void XmlError(void* ctx, const char* format, ...) __attribute__((format(printf, 2, 3)));
