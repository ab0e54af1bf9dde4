// Runs the benchmarks and tells their least times as ratios: against the floor of the same run, per byte, and for
// ten times the size; and how many objects a run allocates (by operator new, so that what libxml2 and zlib
// allocate is not counted).
#include <benchmark/benchmark.h>

#include <algorithm>
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
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "least") {
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
            if (const double ratio = m_Ratio(name, time); ratio > 0) {
                std::printf(" %10.2f", ratio);
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
        m_PrintKinds();
    }

  private:
    /// The time as a ratio of its floor; 0: it has none.
    double m_Ratio(const std::string& name, double time) const
    {
        const std::size_t first = name.find('/');
        const std::size_t second = name.find('/', first + 1);
        const std::string floor = name.substr(0, first) + "/floor" + name.substr(second);
        const auto found = m_byName.find(floor);
        return found != m_byName.end() && floor != name ? time / found->second : 0;
    }

    /// What the real documents of each kind cost.
    void m_PrintKinds() const
    {
        std::map<std::string, std::vector<std::pair<double, std::string>>> kinds;
        for (const auto& [name, time] : m_times) {
            const double ratio = m_Ratio(name, time);
            if (name.compare(0, 5, "real-") == 0 && ratio > 0) {
                kinds[name.substr(0, name.find('/'))].emplace_back(ratio, name.substr(name.rfind('/') + 1));
            }
        }
        for (auto& [kind, ratios] : kinds) {
            std::sort(ratios.begin(), ratios.end());
            const std::size_t count = ratios.size();
            if (kind == kinds.begin()->first) {
                std::printf("\n%-20s %10s %14s %10s\n", "kind", "documents", "median ratio", "worst");
            }
            std::printf("%-20s %10zu %14.2f %10.2f %s\n", kind.c_str(), count,
                        (ratios[(count - 1) / 2].first + ratios[count / 2].first) / 2, ratios.back().first,
                        ratios.back().second.c_str());
        }
    }

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
