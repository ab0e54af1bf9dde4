#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "common/xml/Refusal.h"
#include "platform/Log.h"

// What the rest of the library has of this folder, which alone knows libxml2. Documents and nodes are untyped
// handles; common/XmlNode.h reads nodes.

namespace vyr::xml {

/// Frees a document.
struct SFreeDocument {
    void operator()(void* document) const;
};
using TDocument = std::unique_ptr<void, SFreeDocument>;

// Parsing does what libxml2 does by default, whatever the process has set globally, and reports errors to XmlError.
// Null: the document is not well-formed. Memory that is out throws, as the document may be cut then.

/// Parses a document in memory; `form` as RefusalOf tells, `zeroBehind` when a zero byte is behind it.
TDocument ParseText(const char* text, std::size_t size, ETextForm form, bool zeroBehind);
TDocument ParseFile(const char* name);

/// Hears a message of libxml2's, of which several make the first fault of a document: LastFailure tells it when the
/// document is not taken.
void HearPiece(const char* format, const char* piece);

/// Decodes a document from a named encoding to UTF-8 as libxml2 would, up to the first byte it cannot.
/// False when the encoding is not known.
bool DecodeXml(const char* encoding, const char* data, std::size_t size, std::string* out);

/// What the texts and attributes of a document with entities may expand to, in bytes and in references.
constexpr std::size_t k_maxExpansion = 524288;
/// False when those of a parsed document, null: none, would expand to more.
bool ExpandsWithinLimit(void* document);

/// The document's root element; null: none.
void* RootElement(void* document);
/// First child and next sibling of any kind; null: none.
void* FirstChild(void* node);
void* NextSibling(void* node);

/// Copy of a text by libxml2's allocator, which FreeText frees; null: memory is out.
char* NewText(const char* text);
void FreeText(char* text);
/// New array of `length` bytes and `zeros` zero bytes; null: memory is out.
char* NewCopy(const char* text, std::size_t length, std::size_t zeros = 1);

/// Serialises a document: a new array of `*size` bytes and a zero byte; null, and 0, when memory is out.
char* DumpDocument(void* document, int* size);
/// Serialises a node and what is below it, without formatting: the same.
char* DumpNode(void* node, int* size, VYR_CALLER);

}  // namespace vyr::xml
