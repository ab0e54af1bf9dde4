#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <zlib.h>

#include <vector>

#include "Bench.h"
#include "common/ChannelMap.h"
#include "lls/ParseSLT.h"

std::string Gzip(const std::string& text)
{
    z_stream stream{};
    deflateInit2(&stream, 9, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY);
    std::string out(deflateBound(&stream, text.size()) + 64, '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = static_cast<uInt>(out.size());
    deflate(&stream, Z_FINISH);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return out;
}

std::string MakeSlt(int services, bool gzip, unsigned char version)
{
    std::string xml =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<SLT "
        "xmlns=\"tag:atsc.org,2016:XMLSchemas/ATSC3/Delivery/SLT/1.0/\" "
        "bsid=\"2090\">\n";
    for (int i = 0; i < services; ++i) {
        const std::string n = std::to_string(i);
        xml += "<Service serviceId=\"" + std::to_string(5001 + i) +
               "\" sltSvcSeqNum=\"0\" protected=\"false\" majorChannelNo=\"" + std::to_string(1 + i / 999) +
               "\" minorChannelNo=\"" + std::to_string(1 + i % 999) + "\" serviceCategory=\"1\" shortServiceName=\"S" +
               n + "\" hidden=\"false\" broadbandAccessRequired=\"false\">" +
               "<BroadcastSvcSignaling slsProtocol=\"1\" slsDestinationIpAddress=\"239.255." + std::to_string(i / 250) +
               "." + std::to_string(i % 250) +
               "\" slsDestinationUdpPort=\"5000\" slsSourceIpAddress=\"192.0.2.10\"/></Service>\n";
    }
    xml += "</SLT>\n";
    return std::string("\1\1\0", 3) + static_cast<char>(version) + (gzip ? Gzip(xml) : xml);
}

namespace {

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

/// From nothing to services in the channel map, and back to nothing.
void Parse(const std::string& table)
{
    CChannelMap map;
    map.Create();
    CParseSLT slt;
    slt.Create(&map, nullptr);
    IParse::SItem item = Item(table);
    slt.Parse(&item);
    benchmark::DoNotOptimize(slt.ServiceCount());
    slt.Destroy();
    map.Destroy();
}

void Register(const std::string& name, void (*run)(const std::string&), int services, bool gzip)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [run, services, gzip](benchmark::State& state) {
                                     const std::string table = MakeSlt(services, gzip);
                                     for (auto _ : state) {
                                         run(table);
                                     }
                                 })
        ->Repetitions(5)
        ->ReportAggregatesOnly();
}

/// The next version of the table that a parser holds: every service found, removed as an equal one and
/// offered to the map again.
void RegisterRepeat(int services)
{
    benchmark::RegisterBenchmark(("repeat/parse/gzip/" + std::to_string(services)).c_str(),
                                 [services](benchmark::State& state) {
                                     std::string table = MakeSlt(services, true);
                                     CChannelMap map;
                                     map.Create();
                                     CParseSLT slt;
                                     slt.Create(&map, nullptr);
                                     for (auto _ : state) {
                                         IParse::SItem item = Item(table);
                                         slt.Parse(&item);
                                         ++table[3];
                                     }
                                     slt.Destroy();
                                     map.Destroy();
                                 })
        ->Repetitions(5)
        ->ReportAggregatesOnly();
    Register("repeat/floor/gzip/" + std::to_string(services), Floor, services, true);
}

const bool g_registered = [] {
    for (const bool gzip : {true, false}) {
        for (const int services : {1, 10, 100, 1000}) {
            const std::string end = std::string(gzip ? "/gzip/" : "/plain/") + std::to_string(services);
            Register("slt/floor" + end, Floor, services, gzip);
            Register("slt/parse" + end, Parse, services, gzip);
        }
    }
    for (const int services : {1, 10, 100, 1000, 1500}) {
        RegisterRepeat(services);
    }
    return true;
}();

}  // namespace
