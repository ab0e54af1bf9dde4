#pragma once

#include <cstddef>
#include <memory>

namespace vyr::xml {

/// Frees a document.
struct SFreeDocument {
    void operator()(void* document) const;
};
using TDocument = std::unique_ptr<void, SFreeDocument>;

// Parsing does what libxml2 does by default, whatever the process has set globally, and reports errors to XmlError.
// Null: the document is not well-formed. Memory that is out throws, as the document may be cut then.

/// Parses a document in memory; `plain` as RefusalOf tells, `zeroBehind` when a zero byte is behind it.
TDocument ParseText(const char* text, std::size_t size, bool plain, bool zeroBehind);
TDocument ParseFile(const char* name);

}  // namespace vyr::xml
