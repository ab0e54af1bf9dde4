#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <zlib.h>

#include <algorithm>
#include <vector>

#include "Bench.h"

IParse::SItem Item(const std::string& table)
{
    const unsigned int size = static_cast<unsigned int>(table.size());
    return {reinterpret_cast<const unsigned char*>(table.data()), size, size * 8, 0, true};
}

static std::vector<char> g_room(524288);

std::size_t Inflated(const std::string& compressed, std::size_t begin)
{
    z_stream stream{};
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(compressed.data() + begin));
    stream.avail_in = static_cast<uInt>(compressed.size() - begin);
    stream.next_out = reinterpret_cast<Bytef*>(g_room.data());
    stream.avail_out = static_cast<uInt>(g_room.size());
    inflateInit2(&stream, 47);
    inflate(&stream, Z_FINISH);
    inflateEnd(&stream);
    return stream.total_out;
}

void Floor(const std::string& table)
{
    const bool gzip = table[4] == '\x1F';
    const std::size_t size = gzip ? Inflated(table, 4) : table.size() - 4;
    xmlFreeDoc(xmlParseMemory(gzip ? g_room.data() : table.data() + 4, static_cast<int>(size)));
}

void FloorDocument(const std::string& document)
{
    xmlFreeDoc(xmlParseMemory(document.data(), static_cast<int>(document.size())));
}

double Least(const std::vector<double>& times)
{
    return *std::min_element(times.begin(), times.end());
}

void Register(const std::string& name, void (*run)(const std::string&), const std::string& table, double seconds)
{
    auto* registered = benchmark::RegisterBenchmark(name.c_str(),
                                                    [name, run, table](benchmark::State& state) {
                                                        run(table);
                                                        const std::uint64_t before = Allocations();
                                                        run(table);
                                                        Facts()[name] = {table.size(), Allocations() - before};
                                                        for (auto _ : state) {
                                                            run(table);
                                                        }
                                                    })
                           ->Repetitions(seconds > 0 ? 40 : 5)
                           ->ComputeStatistics("least", Least)
                           ->ReportAggregatesOnly();
    if (seconds > 0) {
        registered->MinTime(seconds);
    }
}
