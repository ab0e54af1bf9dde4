// Runs the benchmarks and tells their times as ratios: against the floor of the same run, per byte, and for
// ten times the size; and how many objects a run allocates (by operator new, so that what libxml2 and zlib
// allocate is not counted).
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <new>
#include <string>
#include <vector>

#include "Bench.h"
#include "platform/Platform.h"

namespace {

std::uint64_t g_allocations = 0;

class CRatios : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median") {
                const std::string name = run.run_name.function_name;
                m_times.emplace_back(name, run.GetAdjustedCPUTime());
                m_byName[name] = run.GetAdjustedCPUTime();
            }
        }
    }

    void Print() const
    {
        std::printf("\n%-36s %12s %10s %10s %12s %22s\n", "benchmark", "ns", "of floor", "ns/byte", "allocations",
                    "for 10x, per element");
        for (const auto& [name, time] : m_times) {
            std::printf("%-36s %12.0f", name.c_str(), time);
            const std::size_t first = name.find('/');
            const std::size_t second = name.find('/', first + 1);
            const std::string floor = name.substr(0, first) + "/floor" + name.substr(second);
            const auto found = m_byName.find(floor);
            if (found != m_byName.end() && floor != name) {
                std::printf(" %10.2f", time / found->second);
            } else {
                std::printf(" %10s", "");
            }
            if (const auto facts = Facts().find(name); facts != Facts().end()) {
                std::printf(" %10.3f %12llu", time / static_cast<double>(facts->second.bytes),
                            static_cast<unsigned long long>(facts->second.allocations));
            } else {
                std::printf(" %10s %12s", "", "");
            }
            const auto tenth = name.back() == '0' ? m_byName.find(name.substr(0, name.size() - 1)) : m_byName.end();
            if (tenth != m_byName.end()) {
                std::printf(" %22.2f", time / tenth->second / 10);
            }
            std::printf("\n");
        }
    }

  private:
    std::vector<std::pair<std::string, double>> m_times;
    std::map<std::string, double> m_byName;
};

}  // namespace

std::map<std::string, SFacts>& Facts()
{
    static std::map<std::string, SFacts> facts;
    return facts;
}

std::uint64_t Allocations()
{
    return g_allocations;
}

void* operator new(std::size_t size)
{
    ++g_allocations;
    void* block = std::malloc(size == 0 ? 1 : size);
    if (!block) {
        throw std::bad_alloc();
    }
    return block;
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept
{
    std::free(block);
}

int main(int argc, char** argv)
{
    SetLogPriority(LOG_PRIORITY_SILENT);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    CRatios ratios;
    benchmark::RunSpecifiedBenchmarks(&ratios);
    ratios.Print();
    PrintAttacks();
    return 0;
}
