#pragma once

#include <cstddef>

namespace vyr::xml {

/// What the texts and attributes of a document with entities may expand to, in bytes and in references.
constexpr std::size_t k_maxExpansion = 524288;

/// False when those of a parsed document, null: none, would expand to more.
bool ExpandsWithinLimit(void* document);

}  // namespace vyr::xml
