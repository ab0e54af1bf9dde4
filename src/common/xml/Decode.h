#pragma once

#include <cstddef>
#include <string>

namespace vyr::xml {

/// Decodes a document from a named encoding to UTF-8 as libxml2 would, up to the first byte it cannot.
/// False when the encoding is not known.
bool DecodeXml(const char* encoding, const char* data, std::size_t size, std::string* out);

}  // namespace vyr::xml
