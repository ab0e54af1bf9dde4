// Bytes through one entry of the library, which the first byte picks: two objects make the same of them, in what they
// return, hold and log, with an object of another kind in between.
// Sources: src/lls src/route src/mmt src/esg
#include <cstdarg>
#include <cstdio>
#include <string>

#include "Fuzz.h"
#include "entries/Entries.h"
#include "platform/BaseParser.h"
#include "platform/Failure.h"
#include "platform/Platform.h"

namespace {

std::string* g_log = nullptr;

/// Without the addresses in it.
std::string Plain(std::string line)
{
    for (std::size_t at = 0; (at = line.find("0x", at)) != std::string::npos; at += 2) {
        line.erase(at + 2, line.find_first_not_of("0123456789abcdefx", at + 2) - at - 2);
    }
    return line;
}

void Log(int priority, const char* /*tag*/, const char* format, va_list arguments)
{
    char text[2048];
    std::vsnprintf(text, sizeof text, format, arguments);
    *g_log += std::to_string(priority) + Plain(text) + "\n";
}

/// All that can be seen of a new object that takes the bytes.
std::string Seen(const SEntryKind& kind, const std::string& bytes)
{
    std::string log;
    g_log = &log;
    const SEntry entry = kind.makeOf(bytes);
    if (!entry.create()) {
        return log;
    }
    const bool parsed = entry.parse();
    log += parsed ? "parsed\n" : "failed\n";
    // A descriptor by itself adds to what was left before.
    const bool own = kind.name.rfind("mmt_descriptors/", 0) != 0;
    if (const SFailure* failure = own && !parsed ? LastFailure() : nullptr) {
        log += failure->step + ("|" + Plain(failure->detail)) + std::to_string(failure->documentLine) + "\n";
    }
    if (parsed) {
        const std::string digest = entry.digest();
        log += digest + "\n";
    }
    entry.parse();
    entry.destroy();
    return log;
}

const TEntryKinds& Kinds()
{
    static const TEntryKinds s_kinds = [] {
        TEntryKinds kinds;
        for (const auto& family : {LlsEntries(), RouteEntries(), MmtEntries(), GuideEntries()}) {
            kinds.insert(kinds.end(), family.begin(), family.end());
        }
        for (const SEntryKind& kind : kinds) {
            Seen(kind, std::string(8, '\0'));  // what is made, and told, once in a process
        }
        return kinds;
    }();
    return s_kinds;
}

}  // namespace

void _TCParserAssert(const char* expression, const char* /*file*/, unsigned line)
{
    *g_log += expression + std::to_string(line) + "\n";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const SPlatform platform = {Log, nullptr};
    SetPlatform(&platform);
    SetLogPriority(LOG_PRIORITY_DEBUG);
    SetFileRoot("/nowhere");
    CScript script(data, size);
    const std::size_t picked = script.Byte() % Kinds().size();
    const std::vector<unsigned char> rest = script.Rest();
    const std::string bytes(rest.begin(), rest.end());
    const std::string first = Seen(Kinds()[picked], bytes);
    Seen(Kinds()[(picked + 1) % Kinds().size()], bytes);
    const std::string second = Seen(Kinds()[picked], bytes);
    if (first != second) {
        std::size_t at = 0;
        while (first[at] == second[at]) {
            ++at;
        }
        at -= at < 200 ? at : 200;
        std::fprintf(stderr, "%s: %.400s\nis not: %.400s\n", Kinds()[picked].name.c_str(), first.c_str() + at,
                     second.c_str() + at);
    }
    Require(first == second);
    return 0;
}
