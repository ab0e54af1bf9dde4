#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <zlib.h>

#include <vector>

#include "Bench.h"

IParse::SItem Item(const std::string& table)
{
    const unsigned int size = static_cast<unsigned int>(table.size());
    return {reinterpret_cast<const unsigned char*>(table.data()), size, size * 8, 0, true};
}

/// What libxml2 and zlib need for the same bytes, reading nothing.
void Floor(const std::string& table)
{
    static std::vector<char> room(524288);
    const char* text = table.data() + 4;
    int size = static_cast<int>(table.size()) - 4;
    if (table[4] == '\x1F') {
        z_stream stream{};
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text));
        stream.avail_in = static_cast<uInt>(size);
        stream.next_out = reinterpret_cast<Bytef*>(room.data());
        stream.avail_out = static_cast<uInt>(room.size());
        inflateInit2(&stream, 47);
        inflate(&stream, Z_FINISH);
        text = room.data();
        size = static_cast<int>(stream.total_out);
        inflateEnd(&stream);
    }
    xmlFreeDoc(xmlParseMemory(text, size));
}

void FloorDocument(const std::string& document)
{
    xmlFreeDoc(xmlParseMemory(document.data(), static_cast<int>(document.size())));
}

void Register(const std::string& name, void (*run)(const std::string&), const std::string& table)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [run, table](benchmark::State& state) {
                                     for (auto _ : state) {
                                         run(table);
                                     }
                                 })
        ->Repetitions(5)
        ->ReportAggregatesOnly();
}
