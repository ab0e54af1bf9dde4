#pragma once

#include <atomic>
#include <cstddef>

#include "platform/BaseParser.h"
#include "platform/Platform.h"

// The one way to log and to fail. VYR_CHECK and VYR_ASSERT are conditions: true when all is well,
// else they have logged and are false. Their text is given, not taken from the code: it is what the
// log shows, and a search for a logged text ends at its line.

namespace vyr {

/// Where a message comes from.
struct SHere {
    const char* file;  ///< path below src/, without ending
    const char* function;
    int line;

    /// The function and line that call the function whose default argument this is, see VYR_CALLER.
    static constexpr SHere Caller(const char* file, const char* function = __builtin_FUNCTION(),
                                  int line = __builtin_LINE())
    {
        return {file, function, line};
    }
};

/// Where "src/common/XML" begins in "…/src/common/XML.cpp".
constexpr std::size_t SourceBegin(const char* file)
{
    std::size_t begin = 0;
    for (std::size_t i = 0; file[i] != '\0'; ++i) {
        if (file[i] == 's' && file[i + 1] == 'r' && file[i + 2] == 'c' && file[i + 3] == '/' &&
            (i == 0 || file[i - 1] == '/')) {
            begin = i;
        }
    }
    return begin;
}

/// And how long it is, the ending left out.
constexpr std::size_t SourceLength(const char* file)
{
    file += SourceBegin(file);
    std::size_t length = 0;
    std::size_t end = 0;
    for (; file[length] != '\0'; ++length) {
        if (file[length] == '/') {
            end = 0;
        } else if (file[length] == '.') {
            end = length;
        }
    }
    return end != 0 ? end : length;
}

/// That path, of its own length: nothing of the folder it was compiled in is left.
template <std::size_t N>
struct SSourcePath {
    char text[N + 1] = {};

    constexpr explicit SSourcePath(const char* file)
    {
        file += SourceBegin(file);
        for (std::size_t i = 0; i < N; ++i) {
            text[i] = file[i];
        }
    }
};

// The file being compiled, not this header: a mechanism of a shared header speaks for its user.
[[maybe_unused]] static constexpr SSourcePath<SourceLength(__BASE_FILE__)> k_source(__BASE_FILE__);

extern std::atomic<int> g_lowestPriority;

/// Whether messages of this priority are shown.
inline bool LogEnabled(ELogPriority priority)
{
    return priority >= g_lowestPriority.load(std::memory_order_relaxed);
}

/// Hands a message to the platform, behind the prefix "tag: function(line) > "; callers ask
/// LogEnabled first.
void Print(ELogPriority priority, const SHere& here, const char* format, ...) __attribute__((format(printf, 3, 4)));
/// Logs the "_CHECK FAIL" line and keeps the step for LastFailure; false.
bool CheckFailed(const SHere& here, const char* text);
/// The same of a step whose failure costs nothing but itself: it is only logged.
bool StepFailed(const SHere& here, const char* text);
/// Logs the "ASSERT!" line and tells the assertion sink; false.
bool AssertFailed(const SHere& here, const char* text);
/// In a handler: logs a line when the exception says that memory is out, without allocating; throws any other
/// exception on.
void HandleOutOfMemory(const SHere& here);
/// Integer setting of the platform.
bool GetSetting(const char* key, int* value);

}  // namespace vyr

// Last parameter of a helper that speaks for its caller; nothing is given for it at the call.
#define VYR_CALLER const ::vyr::SHere& here = ::vyr::SHere::Caller(::vyr::k_source.text)

#define VYR_HERE (::vyr::SHere{::vyr::k_source.text, __func__, __LINE__})

#define VYR_LOG(priority, ...)                             \
    do {                                                   \
        if (::vyr::LogEnabled(priority)) {                 \
            ::vyr::Print(priority, VYR_HERE, __VA_ARGS__); \
        }                                                  \
    } while (0)

// The same of a dump, which has asked LogEnabled once for all its lines.
#define VYR_DUMP(...) ::vyr::Print(LOG_PRIORITY_DEBUG, VYR_HERE, __VA_ARGS__)

#define VYR_CHECK(expression, text) ((expression) ? true : ::vyr::CheckFailed(VYR_HERE, text))

#define VYR_ASSERT(expression, text) ((expression) ? true : ::vyr::AssertFailed(VYR_HERE, text))

// The same with the line that the message must name.
#define VYR_CHECK_AT(line, expression, failed) \
    ((expression) ? true : ::vyr::CheckFailed({::vyr::k_source.text, __func__, line}, failed))

#define VYR_ASSERT_AT(line, expression, failed) \
    ((expression) ? true : ::vyr::AssertFailed({::vyr::k_source.text, __func__, line}, failed))
