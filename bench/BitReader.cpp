#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "common/Parse.h"

#include "Bench.h"

namespace {

constexpr unsigned int k_bytes = 3840;

class CReader : public IParse {
  public:
    bool Parse(SItem*) override { return false; }

    /// Adds up the whole data, read in fields of `bits` from bit `start` on.
    unsigned int Sum(const std::vector<unsigned char>& data, unsigned int start, unsigned int bits)
    {
        SItem item = {data.data(), k_bytes, k_bytes * 8, start, true};
        unsigned int sum = 0;
        for (unsigned int n = (k_bytes * 8 - start) / bits; n > 0; --n) {
            sum += t_Value(&item, bits);
        }
        return sum;
    }
};

/// One pass over the same bytes that only adds up the fields.
unsigned int Floor(const std::vector<unsigned char>& data, unsigned int width)
{
    unsigned int sum = 0;
    for (unsigned int i = 0; i + width <= k_bytes; i += width) {
        unsigned int value = 0;
        for (unsigned int j = 0; j < width; ++j) {
            value = value << 8 | data[i + j];
        }
        sum += value;
        benchmark::DoNotOptimize(sum);
    }
    return sum;
}

const bool g_registered = [] {
    static const std::vector<unsigned char> data(k_bytes, 0x5A);
    for (const unsigned int bits : {8u, 16u, 32u}) {
        const std::string end = "/" + std::to_string(bits) + "bit";
        const auto add = [&end](const char* kind, auto run) {
            benchmark::RegisterBenchmark(("bits/" + std::string(kind) + end).c_str(),
                                         [run](benchmark::State& state) {
                                             for (auto _ : state) {
                                                 benchmark::DoNotOptimize(run());
                                             }
                                         })
                ->Repetitions(5)
                ->ComputeStatistics("least", Least)
                ->ReportAggregatesOnly();
        };
        add("floor", [bits] { return Floor(data, bits / 8); });
        add("aligned", [bits] { return CReader().Sum(data, 0, bits); });
        add("unaligned", [bits] { return CReader().Sum(data, 3, bits); });
        add("odd-width", [bits] { return CReader().Sum(data, 0, bits - 1); });
    }
    return true;
}();

}  // namespace
