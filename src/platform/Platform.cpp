#include "platform/Platform.h"

#include <syslog.h>

#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/Log.h"
#include "platform/LogRepeats.h"
#include "platform/PlatformFile.h"

namespace {

constexpr char k_tag[] = "VYR_PARSER";

void SystemLog(int priority, const char* /*tag: the format carries it*/, const char* format, va_list arguments)
{
    int level = LOG_DEBUG;
    if (priority >= LOG_PRIORITY_ERROR) {
        level = LOG_ERR;
    } else if (priority >= LOG_PRIORITY_INFO) {
        level = LOG_INFO;
    }
    vsyslog(level, format, arguments);
}

std::int64_t Now()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void ShowSummary(int priority, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    SystemLog(priority, k_tag, format, arguments);
    va_end(arguments);
}

vyr::CLogRepeats g_repeats;

/// Tells the system's log what was not shown, of the places whose second was over at `now`.
void TellRepeats(std::int64_t now)
{
    for (vyr::CLogRepeats::SSummary summary{}; g_repeats.TakeSummary(now, summary);) {
        const vyr::CLogRepeats::SPlace& place = summary.place;
        if (vyr::LogEnabled(place.priority)) {
            ShowSummary(place.priority, "%s: %s(%d) > %u more lines within a second", k_tag, place.function, place.line,
                        summary.more);
        }
    }
}

/// Tells what is left at the end of the program.
struct SAtExit {
    ~SAtExit() { TellRepeats(INT64_MAX); }
} g_atExit;

const char* SkipBlanks(const char* text)
{
    return text + std::strspn(text, " \t");
}

/// One line of the settings file: `key=value`, blanks around both allowed.
bool ReadSetting(const char* line, const char* key, int* value)
{
    const std::size_t length = std::strlen(key);
    line = SkipBlanks(line);
    if (std::strncmp(line, key, length) != 0) {
        return false;
    }
    line = SkipBlanks(line + length);
    if (*line != '=') {
        return false;
    }
    char* end = nullptr;
    errno = 0;
    const long number = std::strtol(line + 1, &end, 10);
    const char* rest = SkipBlanks(end);
    if (end == line + 1 || errno != 0 || number < INT_MIN || number > INT_MAX || *(rest + std::strspn(rest, "\r\n"))) {
        return false;
    }
    *value = static_cast<int>(number);
    return true;
}

bool SettingsFile(const char* key, int* value)
{
    const char* path = std::getenv("VYR_SETTINGS");
    std::FILE* file = std::fopen(path ? path : "/etc/vyr-atsc30.conf", "re");
    if (!file) {
        return false;
    }
    char line[512];
    bool found = false;
    while (!found && std::fgets(line, sizeof line, file)) {
        found = ReadSetting(line, key, value);
    }
    std::fclose(file);
    return found;
}

constexpr SPlatform k_default = {SystemLog, SettingsFile};
SPlatform g_platform = k_default;

std::string& FileRoot()
{
    static std::string s_root;
    return s_root;
}

int PriorityFromEnvironment()
{
    static constexpr struct {
        const char* name;
        ELogPriority priority;
    } k_names[] = {{"debug", LOG_PRIORITY_DEBUG},
                   {"info", LOG_PRIORITY_INFO},
                   {"error", LOG_PRIORITY_ERROR},
                   {"silent", LOG_PRIORITY_SILENT}};
    const char* wanted = std::getenv("VYR_LOG");
    for (const auto& entry : k_names) {
        if (wanted && std::strcmp(wanted, entry.name) == 0) {
            return entry.priority;
        }
    }
    return LOG_PRIORITY_INFO;
}

}  // namespace

namespace vyr {

std::atomic<int> g_lowestPriority{PriorityFromEnvironment()};

void Print(ELogPriority priority, const SHere& here, const char* format, ...)
{
    if (!g_platform.log) {
        return;
    }
    if (g_platform.log == SystemLog) {
        const std::int64_t now = Now();
        TellRepeats(now);
        if (!g_repeats.Admit({here.function, format, here.line, priority}, now)) {
            return;
        }
    }
    char prefixed[512];
    std::snprintf(prefixed, sizeof prefixed, "%s: %s(%d) > %s", k_tag, here.function, here.line, format);
    va_list arguments;
    va_start(arguments, format);
    g_platform.log(priority, k_tag, prefixed, arguments);
    va_end(arguments);
}

bool GetSetting(const char* key, int* value)
{
    return g_platform.getInt && g_platform.getInt(key, value);
}

std::string PlatformFile(const char* path)
{
    return FileRoot() + path;
}

}  // namespace vyr

void SetPlatform(const SPlatform* platform)
{
    TellRepeats(INT64_MAX);
    g_platform = platform ? *platform : k_default;
}

void SetLogPriority(ELogPriority lowest)
{
    vyr::g_lowestPriority.store(lowest, std::memory_order_relaxed);
}

void SetFileRoot(const char* root)
try {
    FileRoot() = root ? root : "";
} catch (...) {
    vyr::HandleOutOfMemory(VYR_HERE);
}
