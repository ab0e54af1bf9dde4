// The element-name tables that parsers use: look-ups as a document brings them.
#include <benchmark/benchmark.h>

#include <string>
#include <unordered_map>

#include "common/CoreOS/StringHash.h"

#include "Bench.h"

namespace {

const char* const k_registered[] = {"sltInetUrl", "SLTInetUrl", "Service", "SimulcastTSID", "BroadcastSvcSignaling",
                                    "svcInetUrl", "SvcInetUrl"};
const char* const k_seen[] = {"Service", "BroadcastSvcSignaling", "Service", "BroadcastSvcSignaling", "SvcInetUrl",
                              "Unknown"};

void Finish(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Repetitions(5)->ComputeStatistics("least", Least)->ReportAggregatesOnly();
}

const bool g_registered = [] {
    Finish(benchmark::RegisterBenchmark("hash/floor/find", [](benchmark::State& state) {
        std::unordered_map<std::string, const void*> map;
        for (const char* name : k_registered) {
            map.emplace(name, name);
        }
        for (auto _ : state) {
            for (const char* name : k_seen) {
                benchmark::DoNotOptimize(map.find(name));
            }
        }
    }));
    Finish(benchmark::RegisterBenchmark("hash/ours/find", [](benchmark::State& state) {
        CCStringHash hash;
        hash.Create(7, ~0u);
        for (const char* name : k_registered) {
            hash.Add(name, name);
        }
        for (auto _ : state) {
            for (const char* name : k_seen) {
                benchmark::DoNotOptimize(hash.Find(name));
            }
        }
        while (hash.SetPosition(CCStringHash::POS_HEAD, 0)) {
            hash.Remove();
        }
        hash.Destroy();
    }));
    Finish(benchmark::RegisterBenchmark("hash/create-fill-destroy/7", [](benchmark::State& state) {
        for (auto _ : state) {
            CCStringHash hash;
            hash.Create(7, ~0u);
            for (const char* name : k_registered) {
                hash.Add(name, name);
            }
            while (hash.SetPosition(CCStringHash::POS_HEAD, 0)) {
                hash.Remove();
            }
            hash.Destroy();
        }
    }));
    return true;
}();

}  // namespace
