#pragma once

#include <cstddef>

namespace vyr {

/// Looks for what would cost libxml2 far more time or memory than its bytes are worth, before libxml2
/// sees it: start tags of more than 1,024 attributes (older versions compare each with each), the
/// same hidden in entities, attribute defaults multiplied by many elements, and encodings in which
/// none of this can be told. One linear pass, for most documents one search for "<".
/// Null: the document may be parsed. Else the reason it is refused, for the log. `*plain` tells of a document
/// that may be parsed whether it is UTF-8, has no DTD and no zero byte.
const char* RefusalOf(const char* data, std::size_t size, bool* plain = nullptr);

}  // namespace vyr
