// Inputs without end through parsers that live on: every kind of entry takes its input and one that is cut, in turn,
// and is destroyed and created again every thousand inputs, as what some of them hold piles up until then. Tells the
// memory of the process when 1 % of the inputs have come, and after all of them.
// Usage: vyr-bench-soak [INPUTS], of each kind, 1,000,000 unless said.
#include <malloc.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "entries/Entries.h"
#include "platform/BaseParser.h"
#include "platform/Platform.h"

namespace {

/// kB of memory that the process has.
long Resident()
{
    malloc_trim(0);  // what is free and only kept is none of the parser's
    std::ifstream file("/proc/self/status");
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("VmRSS:", 0) == 0) {
            return std::strtol(line.c_str() + 6, nullptr, 10);
        }
    }
    return 0;
}

/// False: the parser does not take its input any more.
bool Soak(const SEntryKind& kind, long inputs)
{
    const SEntry entry = kind.make();
    const std::string whole = entry.input();
    const std::string cut = whole.substr(0, whole.size() * 9 / 10);
    long early = 0, taken = 0;
    for (long i = 0; i < inputs; ++i) {
        if (i % 1000 == 0) {
            entry.take(whole);
            if (i != 0) {
                entry.destroy();
            }
            if (!entry.create()) {
                return false;
            }
        }
        std::string input = i % 2 == 0 ? whole : cut;
        if (kind.name.rfind("lls_", 0) == 0 && entry.mayLose) {
            input[3] = static_cast<char>(i / 2);  // a table of the version that came last is not parsed
        }
        entry.take(input);
        taken += entry.parse();
        early = i == inputs / 100 ? Resident() : early;
    }
    entry.destroy();
    std::printf("%-36s %9ld %9ld %9ld\n", kind.name.c_str(), taken, early, Resident());
    std::fflush(stdout);
    return taken > 0;
}

}  // namespace

void _TCParserAssert(const char* /*expression*/, const char* /*file*/, unsigned /*line*/) {}

int main(int argc, char** argv)
{
    const long inputs = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 1000000;
    const SPlatform platform = {[](int, const char*, const char*, va_list) {}, nullptr};
    SetPlatform(&platform);
    SetLogPriority(LOG_PRIORITY_ERROR);
    SetFileRoot("/nowhere");
    std::printf("%-36s %9s %9s %9s\n", "inputs of", "parsed", "kB at 1%", "kB at all");
    bool good = inputs >= 100;
    for (const auto& family : {LlsEntries(), RouteEntries(), MmtEntries(), GuideEntries()}) {
        for (const SEntryKind& kind : family) {
            good = good && Soak(kind, inputs);
        }
    }
    return good ? 0 : 1;
}
