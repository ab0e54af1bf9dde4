#include "content/LibraryPort.h"

#include <cstdio>

#include "base/Text.h"
#include "platform/BaseParser.h"

namespace vyr::inspect {

namespace {

constexpr std::size_t k_maxAssertions = 16;

ELogPriority g_lowest = LOG_PRIORITY_SILENT;
std::map<std::string, int> g_settings;
std::vector<SAssertion> g_assertions;

void Log(int priority, const char*, const char* format, va_list arguments)
{
    if (priority < g_lowest) {
        return;
    }
    char message[4096];
    std::vsnprintf(message, sizeof message, format, arguments);
    std::fprintf(stderr, "%s\n", Printable(message).c_str());
}

bool GetInt(const char* key, int* value)
{
    const auto setting = g_settings.find(key);
    if (setting == g_settings.end()) {
        return false;
    }
    *value = setting->second;
    return true;
}

void HearAssertion(const char* expression, const char* file, unsigned line)
{
    if (g_assertions.size() == k_maxAssertions) {
        g_assertions.erase(g_assertions.begin());
    }
    g_assertions.push_back({expression, std::string(file) + ':' + std::to_string(line)});
}

}  // namespace

void InstallPlatform(ELogPriority log, const std::map<std::string, int>& settings)
{
    g_lowest = log;
    g_settings = settings;
    const SPlatform platform = {Log, GetInt};
    SetPlatform(&platform);
    SetLogPriority(log);
}

bool StepFailed(const char* document)
{
    const SFailure* failure = LastFailure(document);
    return failure != nullptr && *failure->step != '\0';
}

std::string Reason(const char* document)
{
    const SFailure* failure = LastFailure(document);
    const EFailure cause = failure != nullptr ? failure->cause : FAILURE_NONE;
    if (cause == FAILURE_NONE || cause == FAILURE_MISUSE) {
        return {};
    }
    if (cause == FAILURE_KIND && failure->detail[0] == '\0') {
        return "its root element belongs to another table";
    }
    return (failure->documentLine > 0 ? "line " + std::to_string(failure->documentLine) + ": " : "") +
           (cause == FAILURE_MEMORY ? "memory is out" : failure->detail);
}

std::string FailedStep()
{
    const SFailure* failure = LastFailure();
    return StepFailed() ? std::string(failure->step) + " at " + failure->source + ':' + std::to_string(failure->line)
                        : std::string();
}

std::vector<SAssertion> TakeAssertions()
{
    std::vector<SAssertion> taken;
    taken.swap(g_assertions);
    return taken;
}

CUnheard::CUnheard() : m_log(g_lowest), m_assertions(TakeAssertions())
{
    g_lowest = LOG_PRIORITY_SILENT;
    SetLogPriority(g_lowest);
}

CUnheard::~CUnheard()
{
    g_lowest = m_log;
    SetLogPriority(g_lowest);
    g_assertions.swap(m_assertions);
}

std::string AssertionText(const SAssertion& assertion)
{
    return "the library asserts \"" + assertion.expression + "\" at " + assertion.place;
}

}  // namespace vyr::inspect

void _TCParserAssert(const char* expression, const char* file, unsigned line)
{
    vyr::inspect::HearAssertion(expression, file, line);
}
