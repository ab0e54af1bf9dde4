#include <benchmark/benchmark.h>

#include "Bench.h"
#include "common/ChannelMap.h"
#include "lls/ParseSLT.h"

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

void ParseSlt(const std::string& table)
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

namespace {

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
        ->ComputeStatistics("least", Least)
        ->ReportAggregatesOnly();
    Register("repeat/floor/gzip/" + std::to_string(services), Floor, MakeSlt(services, true));
}

const bool g_registered = [] {
    for (const bool gzip : {true, false}) {
        for (const int services : {1, 10, 100, 1000}) {
            const std::string end = std::string(gzip ? "/gzip/" : "/plain/") + std::to_string(services);
            Register("slt/floor" + end, Floor, MakeSlt(services, gzip));
            Register("slt/parse" + end, ParseSlt, MakeSlt(services, gzip));
        }
    }
    for (const int services : {1, 10, 100, 1000, 1500}) {
        RegisterRepeat(services);
    }
    return true;
}();

}  // namespace
