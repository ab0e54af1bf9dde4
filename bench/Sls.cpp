// Documents of ROUTE service-layer signalling, each on a parser made anew as the SLS manager does, and the
// buffer of a whole service on a manager that lives on.
#include <benchmark/benchmark.h>

#include "Bench.h"
#include "route/SLS/EFDT.h"
#include "route/SLS/MPD.h"
#include "route/SLS/STSID.h"
#include "route/SLSManager.h"

namespace {

std::string N(int number)
{
    return std::to_string(number);
}

std::string MakeFiles(int files)
{
    std::string xml =
        "<FDT-Instance afdt:efdtVersion=\"0\" afdt:fileTemplate=\"video$TOI$.m4s\" Expires=\"4294944000\" "
        "afdt:maxTransportSize=\"45572\">";
    for (int i = 0; i < files; ++i) {
        xml += "<fdt:File Content-Location=\"app/images/picture" + N(i) + ".png\" TOI=\"" + N(i + 1) +
               "\" Content-Length=\"" + N(1000 + i) + "\" Transfer-Length=\"" + N(1000 + i) +
               "\" Content-Type=\"image/png\"/>\n";
    }
    return xml + "</FDT-Instance>";
}

const char k_namespaces[] =
    " xmlns=\"tag:atsc.org,2016:XMLSchemas/ATSC3/Delivery/S-TSID/1.0/\" "
    "xmlns:afdt=\"tag:atsc.org,2016:XMLSchemas/ATSC3/Delivery/ATSC-FDT/1.0/\" "
    "xmlns:fdt=\"urn:ietf:params:xml:ns:fdt\"";

std::string MakeEfdt(int files)
{
    return "<EFDT tsi=\"10\" version=\"1\"" + std::string(k_namespaces) + ">" + MakeFiles(files) + "</EFDT>";
}

std::string MakeStsid(int sessions)
{
    std::string xml = "<S-TSID" + std::string(k_namespaces) +
                      ">\n<RS dIpAddr=\"239.255.7.1\" dPort=\"30100\" sIpAddr=\"192.0.2.10\">\n";
    for (int i = 0; i < sessions; ++i) {
        xml += "<LS tsi=\"" + N(10 * i) + "\" bw=\"100\">\n<SrcFlow rt=\"true\">\n<EFDT>\n" + MakeFiles(1) +
               "\n</EFDT>\n<ContentInfo>\n<MediaInfo repId=\"" + N(i) +
               "\" contentType=\"video\"/>\n</ContentInfo>\n<Payload codePoint=\"128\" formatId=\"1\" frag=\"0\" "
               "order=\"true\"/>\n</SrcFlow>\n</LS>\n";
    }
    return xml + "</RS>\n</S-TSID>";
}

std::string MakeMpd(int representations, int runs)
{
    std::string xml =
        "<MPD xmlns=\"urn:mpeg:dash:schema:mpd:2011\" minBufferTime=\"PT2.000S\" type=\"dynamic\" "
        "availabilityStartTime=\"2026-11-21T02:02:23.328Z\" publishTime=\"2026-11-21T02:02:29.115Z\" "
        "minimumUpdatePeriod=\"PT0H0M2.000S\" timeShiftBufferDepth=\"PT0H0M30.000S\" "
        "profiles=\"urn:mpeg:dash:profile:isoff-live:2011\">\n<Period id=\"P1\" start=\"PT0S\">\n<AdaptationSet "
        "id=\"1\" segmentAlignment=\"true\" maxWidth=\"1920\" maxHeight=\"1080\" maxFrameRate=\"60\" par=\"16:9\" "
        "mimeType=\"video/mp4\" startWithSAP=\"1\">\n<SegmentTemplate media=\"v$RepresentationID$_$Number$.m4s\" "
        "initialization=\"v$RepresentationID$_init.mp4\" timescale=\"12800\" startNumber=\"1\"";
    if (runs == 0) {
        xml += " duration=\"25600\"/>\n";
    } else {
        xml += ">\n<SegmentTimeline>\n";
        for (int i = 0; i < runs; ++i) {
            xml += i == 0 ? "<S t=\"0\" d=\"25600\"/>\n"
                          : "<S d=\"" + N(25600 - i % 2) + "\" r=\"" + N(1 + i % 7) + "\"/>\n";
        }
        xml += "</SegmentTimeline>\n</SegmentTemplate>\n";
    }
    for (int i = 0; i < representations; ++i) {
        xml += "<Representation id=\"" + N(i) + "\" codecs=\"hvc1.2.4.L123.B0\" width=\"" + N(320 + i) +
               "\" height=\"180\" frameRate=\"60\" sar=\"1:1\" bandwidth=\"" + N(91149 + i) +
               "\">\n</Representation>\n";
    }
    return xml + "</AdaptationSet>\n</Period>\n</MPD>";
}

std::string MakeUsbd()
{
    return "<BundleDescriptionROUTE xmlns=\"tag:atsc.org,2016:XMLSchemas/ATSC3/Delivery/ROUTEUSD/1.0/\">\n"
           "<UserServiceDescription serviceId=\"1001\" globalServiceID=\"urn:atsc:service:1001\" serviceStatus=\"1\">\n"
           "<Name lang=\"eng\">ChanOne</Name>\n<DeliveryMethod>\n<BroadcastAppService>\n<BasePattern>v180_dash"
           "</BasePattern>\n<BasePattern>a_en_dash</BasePattern>\n</BroadcastAppService>\n<UnicastAppService>\n"
           "<BasePattern>http://cdn.example/one</BasePattern>\n</UnicastAppService>\n</DeliveryMethod>\n"
           "</UserServiceDescription>\n</BundleDescriptionROUTE>";
}

/// The documents of a linear service: two representations, two LCT sessions.
const std::string g_documents[] = {MakeUsbd(), MakeMpd(2, 0), MakeStsid(2)};

std::string MakePackage()
{
    std::string package = "Content-Type: multipart/related; type=\"application/mbms-envelope+xml\"; boundary=\"B\"\n\n";
    for (const std::string& document : g_documents) {
        package += "--B\nContent-Type: application/xml\nContent-Location: part.xml\n\n<?xml version=\"1.0\"?>\n" +
                   document + "\n\n";
    }
    return package + "--B--\n";
}

template <class TParser>
void RegisterDocument(const std::string& subject, int size, const std::string& document)
{
    Register(subject + "/floor/" + N(size), FloorDocument, document);
    Register(subject + "/parse/" + N(size), ParseDocument<TParser>, document);
}

const bool g_registered = [] {
    Register(
        "sls/floor/3",
        [](const std::string&) {
            for (const std::string& document : g_documents) {
                FloorDocument(document);
            }
        },
        MakePackage());
    benchmark::RegisterBenchmark("sls/parse/3",
                                 [](benchmark::State& state) {
                                     const std::string package = MakePackage();
                                     CSLSManager manager;
                                     manager.Create(nullptr);
                                     for (auto _ : state) {
                                         manager.Parse(reinterpret_cast<const unsigned char*>(package.data()),
                                                       static_cast<unsigned int>(package.size()), nullptr, false);
                                     }
                                     manager.Destroy();
                                 })
        ->Repetitions(5)
        ->ComputeStatistics("least", Least)
        ->ReportAggregatesOnly();
    for (const int size : {1, 10, 100}) {
        RegisterDocument<CSTSID>("stsid", size, MakeStsid(size));
        RegisterDocument<CMPD>("mpd", size, MakeMpd(size, 0));
        RegisterDocument<CEFDT>("efdt", 10 * size, MakeEfdt(10 * size));
    }
    for (const int runs : {100, 1000}) {
        RegisterDocument<CMPD>("timeline", runs, MakeMpd(1, runs));
    }
    return true;
}();

}  // namespace
