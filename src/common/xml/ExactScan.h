#pragma once

#include <cstddef>
#include <string_view>

namespace vyr::xml {

/// The exact scan of a document in UTF-8, from behind its XML declaration at `begin`. Null, or the reason to
/// refuse it.
const char* ScanExactly(std::string_view text, std::size_t begin);

}  // namespace vyr::xml
