#include "platform/BaseParser.h"

#include <cstdlib>
#include <cstring>

// Weak: in a static library too, a program replaces each by its own.
#define VYR_REPLACEABLE __attribute__((weak))

VYR_REPLACEABLE void _TCParserAssert(const char* /*expression*/, const char* /*file*/, unsigned /*line*/)
{
    const char* abort = std::getenv("VYR_ASSERT_ABORT");
    if (abort && std::strcmp(abort, "1") == 0) {
        std::abort();
    }
}

VYR_REPLACEABLE void PrintSignalMessage(char* /*text*/, int /*length*/) {}

VYR_REPLACEABLE void PrintXmlFormat(char* /*text*/, int /*length*/) {}
