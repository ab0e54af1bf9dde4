#include "LibraryPort.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Text.h"
#include "platform/BaseParser.h"

namespace vyr::inspect {

namespace {

constexpr std::size_t k_maxAssertions = 16;
constexpr char k_failedCheck[] = "_CHECK FAIL: ";
constexpr char k_unknownTag[] = "Description TAG [";
constexpr char k_nextDocument[] = "[CSLSManager::Parse] PARSE ";

ELogPriority g_lowest = LOG_PRIORITY_SILENT;
std::map<std::string, int> g_settings;
CRefusalListener* g_listener = nullptr;
std::vector<SAssertion> g_assertions;

bool TellsOfRefusal(const char* format)
{
    return std::strstr(format, "[Xml Error Info]") != nullptr || std::strstr(format, "refused: ") != nullptr ||
           std::strstr(format, "XML Create Fail") != nullptr || std::strstr(format, "_CHECK FAIL") != nullptr ||
           std::strstr(format, k_nextDocument) != nullptr || std::strstr(format, k_unknownTag) != nullptr ||
           (std::strstr(format, "::Parse] ") != nullptr && std::strstr(format, "ERROR") != nullptr) ||
           std::strstr(format, "uncompress Fail") != nullptr || std::strstr(format, "content is not whole") != nullptr;
}

void Log(int priority, const char*, const char* format, va_list arguments)
{
    const bool heard = g_listener != nullptr && TellsOfRefusal(format);
    const bool shown = priority >= g_lowest;
    if (!heard && !shown) {
        return;
    }
    char message[4096];
    std::vsnprintf(message, sizeof message, format, arguments);
    if (heard) {
        g_listener->Hear(message);
    }
    if (shown) {
        std::fprintf(stderr, "%s\n", Printable(message).c_str());
    }
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

std::string After(const std::string& text, const char* mark)
{
    const std::size_t at = text.find(mark);
    return at == std::string::npos ? std::string() : text.substr(at + std::strlen(mark));
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

CRefusalListener::CRefusalListener()
{
    g_listener = this;
    SetLogPriority(LOG_PRIORITY_DEBUG);
}

CRefusalListener::~CRefusalListener()
{
    g_listener = nullptr;
    SetLogPriority(g_lowest);
}

/// libxml2 tells one error in several messages; its pieces are put together again.
void CRefusalListener::Hear(const std::string& message)
{
    const std::string xmlError = After(message, "[Xml Error Info]");
    const std::string next = After(message, k_nextDocument);
    if (!next.empty()) {
        m_current = &m_heard[next.substr(0, next.find(" buf1"))];
    } else if (const std::string tag = After(message, k_unknownTag); !tag.empty()) {
        if (m_unknownTags.size() < k_maxTags) {
            m_unknownTags.insert(static_cast<unsigned>(std::strtoul(tag.c_str(), nullptr, 10)));
        }
    } else if (message.find("[Xml Error Info]") != std::string::npos) {
        if (m_current->xmlErrors.size() + xmlError.size() <= k_maxText) {
            m_current->xmlErrors += xmlError;
        }
    } else if (message.find("_CHECK FAIL") != std::string::npos) {
        // A descriptor that is not known ends its loop, and nothing else.
        if (message.find("MMTDescFactory") != std::string::npos) {
            return;
        }
        m_current->failedCheck.append(message + '\n', 0,
                                      k_maxText - std::min(k_maxText, m_current->failedCheck.size()));
    } else {
        m_current->refusal = After(message, " > ");
    }
}

std::string CRefusalListener::FailedStep() const
{
    // "... _CHECK FAIL: src/mmt/msg/MMTMsgPa:90, p_tbl->Parse(item)", and maybe more behind it.
    const std::string check = After(m_current->failedCheck, k_failedCheck);
    const std::size_t comma = check.find(", ");
    const std::string step =
        comma != std::string::npos ? check.substr(comma + 2, check.find('\n', comma) - comma - 2) : "";
    return step.empty() ? std::string() : step + " at " + check.substr(0, comma);
}

bool CRefusalListener::Failed(const std::string& document) const
{
    const auto heard = m_heard.find(document);
    return heard != m_heard.end() && !heard->second.failedCheck.empty();
}

std::string CRefusalListener::Reason(const std::string& document) const
{
    const auto entry = m_heard.find(document);
    if (entry == m_heard.end()) {
        return {};
    }
    const SHeard& heard = entry->second;
    // "Entity: line 3: parser error : xmlParseEntityRef: no name\n", then the offending line.
    const std::size_t line = heard.xmlErrors.find("line ");
    const std::size_t error = heard.xmlErrors.find("error : ", line);
    if (line != std::string::npos && error != std::string::npos) {
        const std::string where = heard.xmlErrors.substr(line, heard.xmlErrors.find(':', line) - line);
        const std::size_t what = error + std::strlen("error : ");
        return where + ": " + heard.xmlErrors.substr(what, heard.xmlErrors.find('\n', what) - what);
    }
    const std::string refused = After(heard.refusal, "refused: ");
    if (!refused.empty()) {
        return refused;
    }
    if (!heard.refusal.empty()) {
        return heard.refusal;
    }
    return heard.failedCheck.find("m_ProcessParse") != std::string::npos ? "its root element belongs to another table"
                                                                         : std::string();
}

std::vector<SAssertion> TakeAssertions()
{
    std::vector<SAssertion> taken;
    taken.swap(g_assertions);
    return taken;
}

}  // namespace vyr::inspect

void _TCParserAssert(const char* expression, const char* file, unsigned line)
{
    vyr::inspect::HearAssertion(expression, file, line);
}
