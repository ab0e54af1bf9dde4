#pragma once

#include "Api.h"

/// The three functions of the base parser library, libvyr-parser. The stand-in built with this
/// library returns from the first (or aborts when VYR_ASSERT_ABORT=1 is in the environment) and
/// prints nothing; a program that defines the symbols itself replaces them, also one that is built with hidden
/// visibility, if it includes this header.
extern "C" {

/// Assertion sink: told of every misuse and broken precondition, after the error line in the log.
/// The library goes on with the neutral result when it returns. `file` is the source path below
/// `src/` without its ending, such as "src/common/XML".
VYR_API void _TCParserAssert(const char* expression, const char* file, unsigned line);

/// Debug printer of a signalling text of `length` bytes.
VYR_API void PrintSignalMessage(char* text, int length);

/// Debug printer of an XML text of `length` bytes.
VYR_API void PrintXmlFormat(char* text, int length);
}
