#pragma once

#include <cstddef>

#include "platform/Log.h"

namespace vyr::xml {

/// New array of `length` bytes and `zeros` zero bytes; null: memory is out.
char* NewCopy(const char* text, std::size_t length, std::size_t zeros = 1);

/// Serialises a document: a new array of `*size` bytes and a zero byte; null, and 0, when memory is out.
char* DumpDocument(void* document, int* size);
/// Serialises a node and what is below it, without formatting: the same.
char* DumpNode(void* node, int* size, VYR_CALLER);

}  // namespace vyr::xml
