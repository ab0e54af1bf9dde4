#include "common/ChannelMap.h"

#include <benchmark/benchmark.h>

#include <string>

#include "Bench.h"

namespace {

void Fill(CChannelMap& map, int services)
{
    for (int i = 0; i < services; ++i) {
        map.AddService(nullptr, 1, i, 1 + i / 999, 1 + i % 999, 0, 0, 0, false, nullptr);
    }
}

const bool g_registered = [] {
    for (const int services : {1, 10, 100, 1000}) {
        benchmark::RegisterBenchmark(("map/add/" + std::to_string(services)).c_str(),
                                     [services](benchmark::State& state) {
                                         for (auto _ : state) {
                                             CChannelMap map;
                                             map.Create();
                                             Fill(map, services);
                                             map.Destroy();
                                         }
                                     })
            ->Repetitions(5)
            ->ComputeStatistics("least", Least)
            ->ReportAggregatesOnly();
        benchmark::RegisterBenchmark(("map/offer-again/" + std::to_string(services)).c_str(),
                                     [services](benchmark::State& state) {
                                         CChannelMap map;
                                         map.Create();
                                         Fill(map, services);
                                         for (auto _ : state) {
                                             Fill(map, services);
                                         }
                                         map.Destroy();
                                     })
            ->Repetitions(5)
            ->ComputeStatistics("least", Least)
            ->ReportAggregatesOnly();
    }
    return true;
}();

}  // namespace
