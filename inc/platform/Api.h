#pragma once

#include <cstddef>

/// Marks what the shared library exports; everything else is hidden.
#define VYR_API __attribute__((visibility("default")))

// Classes hold containers and strings of the standard library, which must be laid out here as in the library
// itself. VYR_LIBCXX and VYR_DEBUG_CONTAINERS come with the library, by its CMake package and pkg-config.
#if defined(_GLIBCXX_USE_CXX11_ABI) && !_GLIBCXX_USE_CXX11_ABI
#error "vyr-atsc30-parser needs the strings and lists of C++11: do not set _GLIBCXX_USE_CXX11_ABI=0"
#endif
#if defined(_LIBCPP_VERSION) != defined(VYR_LIBCXX)
#error "vyr-atsc30-parser was built with another standard library than this program (libc++ or libstdc++)"
#endif
#if defined(_GLIBCXX_DEBUG) != defined(VYR_DEBUG_CONTAINERS)
#error "vyr-atsc30-parser and this program must be built alike with or without _GLIBCXX_DEBUG"
#endif
