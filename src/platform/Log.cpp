#include "platform/Log.h"

#include <new>
#include <stdexcept>

#include "platform/FailureKeeping.h"

namespace vyr {

bool CheckFailed(const SHere& here, const char* text)
{
    KeepStep(here, text);
    return StepFailed(here, text);
}

bool StepFailed(const SHere& here, const char* text)
{
    if (LogEnabled(LOG_PRIORITY_DEBUG)) {
        Print(LOG_PRIORITY_DEBUG, here, "_CHECK FAIL: %s:%d, %s", here.file, here.line, text);
    }
    return false;
}

bool AssertFailed(const SHere& here, const char* text)
{
    KeepFailure(FAILURE_MISUSE, text);
    if (LogEnabled(LOG_PRIORITY_ERROR)) {
        Print(LOG_PRIORITY_ERROR, here, "ASSERT!, Func:%s, Line:%d, Failed: %s", here.function, here.line, text);
    }
    _TCParserAssert(text, here.file, static_cast<unsigned>(here.line));
    return false;
}

void HandleOutOfMemory(const SHere& here)
{
    try {
        throw;
    } catch (const std::bad_alloc&) {
    } catch (const std::length_error&) {
    }
    KeepStep(here, "out of memory");
    KeepFailure(FAILURE_MEMORY);
    if (LogEnabled(LOG_PRIORITY_ERROR)) {
        Print(LOG_PRIORITY_ERROR, here, "out of memory: %s:%d", here.file, here.line);
    }
}

}  // namespace vyr
