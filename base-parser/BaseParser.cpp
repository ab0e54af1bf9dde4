#include "platform/BaseParser.h"

#include <cstdlib>
#include <cstring>

void _TCParserAssert(const char* /*expression*/, const char* /*file*/, unsigned /*line*/)
{
    const char* abort = std::getenv("VYR_ASSERT_ABORT");
    if (abort && std::strcmp(abort, "1") == 0) {
        std::abort();
    }
}

void PrintSignalMessage(char* /*text*/, int /*length*/) {}

void PrintXmlFormat(char* /*text*/, int /*length*/) {}
