#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "GuideObjects.h"
#include "Markup.h"
#include "MmtCaptures.h"
#include "Packets.h"
#include "Tool.h"
#include "support/Gzip.h"
#include "support/Places.h"

namespace {

using namespace packets;

/// Everything that a stream can do to its tables.
std::string Changes()
{
    CCapture capture(1);
    capture.AddLls(Slt(Service(1), 1)).AddLls(Slt(Service(1), 1)).AddLls(Slt(Service(2), 1));
    capture.AddLls(Slt(Service(2), 2)).AddLls(Slt(Service(2) + Service(3), 3)).AddLls(Slt(Service(3), 255, 4, 2));
    capture.AddLls(Slt(Service(2) + Service(3), 3, 0, 2)).AddLls(Slt("<Service", 4)).AddLls(Slt("<Service", 4));
    capture.AddLls("\x01\x05").AddLls(std::string("\x01\x06\x00\x01", 4)).AddLls(std::string("\x07\x00\x00\x01?", 5));
    capture.AddLls(std::string("\x01\x07\x00\x01", 4) + "<AEAT/>");
    capture.AddLls(std::string("\x01\x08\x00\x01\x1f\x8b\x08\x00\xff\xff\xff\xff", 12));
    return capture.Bytes();
}

/// Values that use what the samples do not have, some of them hostile.
std::string Peculiar()
{
    const std::string table =
        "<SLT bsid=\"5\" sltCapabilities=\"caps\"><SLTInetUrl urlType=\"2\">http://esg.example/</SLTInetUrl>"
        "<SLTInetUrl>no type</SLTInetUrl>"
        "<Service serviceId=\"1\" serviceCategory=\"9\" shortServiceName=\"&#x9b;&#x202e;\" drmSystemID=\"drm\" "
        "protected=\"true\" svcCapabilities=\"c\" globalServiceID=\"urn:g\" sltSvcSeqNum=\"7\">"
        "<SimulcastTSID simulcastMajorChannelNo=\"8\" simulcastMinorChannelNo=\"9\" SimulcastTSID=\"10\"/>"
        "<BroadcastSvcSignaling slsProtocol=\"3\" slsMajorProtocolVersion=\"1\" slsMinorProtocolVersion=\"2\" "
        "slsDestinationIpAddress=\"none\" slsDestinationUdpPort=\"70000\" slsSourceIpAddress=\"10.0.0.1\"/>"
        "<SvcInetUrl urlType=\"1\">http://sls.example/</SvcInetUrl></Service>"
        "<Service serviceId=\"2\" serviceCategory=\"1\" majorChannelNo=\"999\" minorChannelNo=\"1000\"/>"
        "<Service serviceId=\"3\" serviceCategory=\"4\"/><Service serviceId=\"3\" serviceCategory=\"4\"/></SLT>";
    return CCapture(1).AddLls(std::string("\x01\x00\x00\x01", 4) + table).Bytes();
}

/// One of each table besides the SLT, and what can be wrong with those that carry signatures.
std::string OtherTables()
{
    const auto table = [](int id, const std::string& payload) {
        return Number(static_cast<unsigned>(id), 1) + std::string("\0\0\1", 3) + payload;
    };
    const std::string alert =
        "<AEAT><AEA aeaId='WX.7' issuer='NWS' audience='public' aeaType='update' retAEAId='WX.6' priority='4' "
        "wakeup='true'>"
        "<Header effective='2027-01-15T12:30:45Z' expires='2027-01-15T13:30:45Z'><EventCode type='SAME'>EVI</EventCode>"
        "<EventDesc lang='en'>Evacuate now</EventDesc><EventDesc lang='es'>Evacuar ya</EventDesc>"
        "<Location type='FIPS'>006109</Location><Location type='circle'>38,-120 5</Location></Header>"
        "<AEAText lang='en'>Leave the area.</AEAText><AEAText lang='es'>Abandone la zona.</AEAText>"
        "<LiveMedia bsid='801' serviceId='1001'><ServiceName ServiceName='News' lang='en'/></LiveMedia>"
        "<Media lang='en' mediaType='map' url='http://a/m.png' contentType='image/png' "
        "contentLength='2048'/><Media/></AEA>"
        "<AEA aeaId='WX.8'/></AEAT>";
    const std::string ratings =
        "<RatingRegionTables><RatingRegionTable regionIdentifier='1'><RegionIdText>US</RegionIdText>"
        "<Dimension dimensionLevels='2' dimensionGraduated='true'><DimensionTitle>TV</DimensionTitle>"
        "<Rating "
        "ratingValue='1'><RatingValueAbbrev>G</RatingValueAbbrev><RatingValueString>General</RatingValueString></"
        "Rating>"
        "<Rating "
        "ratingValue='2'><RatingValueAbbrev>MA</RatingValueAbbrev><RatingValueString>Mature</RatingValueString></"
        "Rating>"
        "</Dimension><Dimension><DimensionTitle>Empty</DimensionTitle></Dimension></RatingRegionTable></"
        "RatingRegionTables>";
    const std::string time =
        "<SystemTime currentUtcOffset='37' utcLocalOffset='-PT5H30M' dsStatus='true' leap59='true' "
        "dsDayOfMonth='14' dsHour='2'/>";
    const std::string screen =
        "<OnscreenMessageNotification><KeepScreenClear bsid='5' serviceId='2' serviceIdRange='3' "
        "notificationDuration='PT1M' kscFlag='true' version='1'/><KeepScreenClear/>"
        "</OnscreenMessageNotification>";
    const std::string certificates =
        "<CertificationData><ToBeSignedData OCSPRefresh='PT1H'><Certificates>!</Certificates>"
        "<Certificates>AAAA</Certificates></ToBeSignedData>";
    const std::string service = Slt(Service(6), 1).substr(4);
    const std::string multi = std::string("\2\1\7", 3) + Number(static_cast<unsigned>(service.size()), 2) + service +
                              std::string("\xFE\1\0\0\0\2xx", 8);
    CCapture capture(1);
    capture.AddLls(table(4, alert)).AddLls(table(2, ratings)).AddLls(table(3, time)).AddLls(table(5, screen));
    capture.AddLls(table(6, certificates + "<CMSSignedData>AAAA</CMSSignedData></CertificationData>"));
    capture.AddLls(table(6, certificates + "</CertificationData>")).AddLls(table(6, "<SLT/>"));
    capture.AddLls(table(0xFE, multi)).AddLls(table(0xFE, multi.substr(0, 20))).AddLls(table(0xFF, "user"));
    return capture.Bytes();
}

std::string RouteService(int id, unsigned port, const std::string& source = {})
{
    return "<Service serviceId=\"" + std::to_string(id) +
           "\" serviceCategory=\"4\"><BroadcastSvcSignaling slsProtocol=\"1\" slsDestinationIpAddress=\"" +
           (port != 0 ? "239.255.7.1" : "none") + "\" slsDestinationUdpPort=\"" + std::to_string(port) + "\"" +
           (source.empty() ? "" : " slsSourceIpAddress=\"" + source + '"') + "/></Service>";
}

std::string Usbd(int id)
{
    return "<BundleDescriptionROUTE><UserServiceDescription serviceId='" + std::to_string(id) +
           "'/></BundleDescriptionROUTE>\n";
}

/// Services whose signalling comes, and services whose signalling does not, for every reason there is.
std::string Unsignalled()
{
    const std::string whole = Usbd(1);
    const std::string stsid = "<S-TSID></S-TSID>\n";
    const int size = static_cast<int>(whole.size());
    std::string services;
    for (int id = 1; id <= 10; ++id) {
        services += RouteService(id, 6000 + static_cast<unsigned>(id));
    }
    services += RouteService(11, 6011, "10.0.0.1") + RouteService(12, 0) + RouteService(13, 6001, "192.0.2.10") +
                RouteService(14, 6014) + RouteService(15, 6001);
    CCapture capture(1);
    capture.AddSession(Lct({1, 0, size}, whole), 6001).AddLls(Slt(services, 1));
    // Service 1 and its repeats; from the source that service 13 names they are of service 13.
    capture.AddSession(Lct({1, 0, size}, whole), 6001).AddSession(Lct({1, 0, size}, whole), 6001);
    // Nothing for service 2.
    capture.AddSession(Lct({1, 9, size}, whole.substr(9)), 6003).AddSession(Lct({2}, whole.substr(0, 5)), 6003);
    capture.AddSession("no LCT packet", 6004).AddSession("\x12", 6004);
    capture.AddSession(Lct({1, 0, size, false, 10}, whole), 6005);
    capture.AddSession(Lct({1, 0, size, false, 0, 0x10A0}, whole), 6005);
    capture.AddSession(Lct({1, 0, 6}, "binary"), 6006);
    capture.AddSession(Lct({1, 0, 4}, "\x1F\x8B\x08?"), 6007);
    capture.AddSession(Lct({1, 0, -1, true}, "<S-TSID></a></S-TSID><RSAT></RSAT>\n<MPD>"), 6008);
    capture.AddSession(Lct({1, 0, -1, true}, Usbd(99)), 6009);
    capture.AddSession(Lct({1, 0, -1, true}, stsid), 6010).AddSession(Lct({2, 0, -1, true}, Usbd(10)), 6010);
    capture.AddSession(Lct({2, 0, -1, true}, Usbd(10)), 6010).AddSession(Lct({3, 0, -1, true}, Usbd(10)), 6010);
    capture.AddSession(Lct({1, 0, size}, whole), 6011);
    capture.AddSession(Lct({1, 9000000, -1}, whole), 6014);
    return capture.At(5250000).AddLls(Slt(services, 1)).Bytes();
}

/// Service lists that come, change and go under the signalling of service 1.
std::string ListChanges()
{
    const std::string object = Lct({1, 0, -1, true}, Usbd(1));
    CCapture capture(1);
    const auto send = [&](const std::string& services, unsigned version) {
        capture.AddLls(Slt(services, version)).AddSession(object, 6001);
    };
    send(RouteService(1, 6001), 1);
    send(RouteService(2, 6002) + RouteService(1, 6001), 2);
    send(RouteService(2, 6002), 3);
    send(RouteService(1, 6001) + Service(3), 4);
    capture.AddLls(Slt(RouteService(5, 6001), 1, 9, 2));
    send(Service(3), 5);
    return capture.Bytes();
}

/// A guide that comes whole, comes again and changes, beside one that does not come.
std::string GuideCapture()
{
    const auto object = [](unsigned toi, const std::string& bytes, unsigned tsi = 20) {
        return Lct({toi, 0, -1, true, tsi}, bytes);
    };
    const std::string list =
        "<Service serviceId='2' serviceCategory='1' globalServiceID='urn:x:2' majorChannelNo='9' minorChannelNo='3'/>" +
        RouteService(4, 6004) + RouteService(5, 6005);
    const std::string stsid =
        "<S-TSID><RS><LS tsi='20'><SrcFlow rt='false'><EFDT tsi='20'><FDT-Instance "
        "Content-Type='application/vnd.oma.bcast.sgdu'><File Content-Location='g.sgdu' TOI='1'/>"
        "<File Content-Location='g.sgdu' TOI='2'/><File Content-Location='g.sgdd' TOI='3' "
        "Content-Type='application/vnd.oma.bcast.sgdd+xml'/><File Content-Location='i.png' TOI='4' "
        "Content-Type='image/png'/><File Content-Location='no.sgdu' TOI='5'/></FDT-Instance></EFDT></SrcFlow></LS>"
        "<LS tsi='21'><SrcFlow rt='true'/></LS></RS><RS dPort='7004'><LS tsi='22'><SrcFlow/></LS></RS></S-TSID>\n";
    CCapture capture(1);
    capture.AddLls(Slt(list, 1)).AddSession(object(1, stsid, 0), 6004).AddSession(object(1, Usbd(4), 0), 6005);
    capture.AddSession(object(2, "<S-TSID></S-TSID>\n", 0), 6005);
    const std::string unit = Gzip(guide::WholeUnit());
    capture.AddSession(Lct({1, 0, static_cast<int>(unit.size()), false, 20}, unit.substr(0, 100)), 6004);
    capture.AddSession(Lct({1, 100, -1, true, 20}, unit.substr(100)), 6004)
        .AddSession(object(3, guide::k_descriptor), 6004);
    capture.AddSession(object(4, "png"), 6004)
        .AddSession(object(5, "unit"), 6004)
        .AddSession(object(1, unit, 21), 6004);
    capture.AddSession(object(1, guide::Unit({{2, guide::Fragment("Content", "c9", 1)}}), 22), 7004);
    capture.AddSession(object(1, unit), 6004).AddSession(object(1, unit), 6004);
    const std::string newer = guide::Fragment("Content", "c2", 2, guide::Text("Name", "en", "Snow"));
    const std::string same = guide::Fragment("Content", "c9", 1, guide::Text("Name", "en", "Talk"));
    capture.AddSession(object(2, guide::Unit({{2, newer}, {2, same}, {1, guide::k_service1}})), 6004);
    capture.AddSession(object(1, unit), 6004);
    return capture.At(5000000).AddLls(Slt(list, 1)).Bytes();
}

/// One of each document, with what the samples do not have.
std::string EveryDocument()
{
    return "Content-type: multipart/related; boundary=x\r\n\r\n--x\r\n"
           "<e:metadataEnvelope xmlns:e='urn:e'><e:item metadataURI='a' version='7' contentType='t'/><e:item/><!-- -->"
           "</e:metadataEnvelope>\r\n--x\r\n"
           "<bundleDescriptionROUTE><userServiceDescription globalServiceID='urn:g' serviceId='5' serviceStatus='1'>"
           "<name lang='en'>A</name><name>B</name><serviceLanguage>en</serviceLanguage><deliveryMethod>"
           "<broadcastAppService><basePattern>b1</basePattern><basePattern>&#x9b;2J</basePattern></broadcastAppService>"
           "<unicastAppService><basePattern>u</basePattern></unicastAppService></deliveryMethod>"
           "<serviceLinkage bsid='3' LLSGroupId='1' serviceId='6' serviceCategory='1' linkageType='2' "
           "activationTime='2027-01-01T00:00:00Z' deActivationTime='2027-02-01T00:00:00Z' svcCapabilities='c' "
           "linkageData='d'/></userServiceDescription></bundleDescriptionROUTE>\r\n--x\r\n"
           "<S-TSID><RS><LS tsi='1' startTime='2027-01-01T00:00:00Z' endTime='2027-02-01T00:00:00Z'/>"
           "<LS tsi='2' bw='9'><SrcFlow rt='false' minBuffSize='8'><EFDT tsi='2' idRef='i' version='3' "
           "maxExpiresDelta='4' maxTransportSize='5'><FileTemplate>f$TOI$</FileTemplate><FDT-Instance Expires='6' "
           "Content-Type='ct' Content-Encoding='ce' efdtVersion='7' appContextIdList='x y' maxExpiresDelta='11' "
           "maxTransportSize='12' fileTemplate='g$TOI$'><File Content-Location='l' "
           "TOI='8' Transfer-Length='9' Content-Length='10' Content-Type='ft' Content-Encoding='fe' "
           "appContextIdList='z'/><File/></FDT-Instance></EFDT><ContentInfo><AEAMedia AEAId='aea'/>"
           "<MediaInfo startUp='true' lang='de' contentType='audio' repId='r'>"
           "<ContentRating value='V'/><ContentRating schemeIdUri='s' value='W'/>"
           "</MediaInfo></ContentInfo><Payload codePoint='128' formatId='1' frag='0' order='true' srcFecPayloadId='1'/>"
           "<Payload formatId='9'/></SrcFlow></LS></RS></S-TSID>\r\n--x\r\n"
           "<MPD mediaPresentationDuration='PT9M56.46S'><UTCTiming schemeIdUri='urn:u' value='http://t/'/>"
           "<SupplementalProperty schemeIdUri='urn:m'/><EssentialProperty schemeIdUri='urn:e'/>"
           "<BaseURL availabilityTimeOffset='INF'>b</BaseURL><BaseURL>c</BaseURL><Period duration='PT7.987664396S'>"
           "<SupplementalProperty schemeIdUri='urn:p'/><SegmentTemplate availabilityTimeOffset='1.5' "
           "availabilityTimeComplete='false'/><AdaptationSet><SupplementalProperty schemeIdUri='urn:s' value='v'/>"
           "<BaseURL availabilityTimeOffset='0.25'>d</BaseURL><Representation>"
           "<AudioChannelConfiguration schemeIdUri='urn:mpeg:mpegB:cicp:ChannelConfiguration' value='6'/>"
           "<AudioChannelConfiguration schemeIdUri='urn:o' value='2'/></Representation></AdaptationSet></Period></MPD>"
           "\r\n--x\r\n"
           "<ApplicationList>\r\n<a/></ApplicationList>\r\n<HELD></HELD>\r\n"
           "<RSAT timestamp='2027-01-01T00:00:00Z' RSATInetURL='http://r/'><Service preferred='true' "
           "majorChannelNo='7' "
           "minorChannelNo='1' frequency='593' broadcastType='ATSC3' validUntil='2028-01-01T00:00:00Z'>"
           "<Update majorChannelNo='8' validFrom='2028-01-01T00:00:00Z'/></Service><Service/></RSAT>\r\n--x--";
}

struct SGolden {
    const char* name;
    std::string arguments;
    int status;
    std::string input = {};
};

std::vector<SGolden> Goldens()
{
    const std::string raw =
        "lls/gpac-a13-unescaped-name-slt.bin lls/gpac-a2-multi-service-systemtime.bin lls/lineup-bsid10017-slt.bin "
        "lls/openssl-signedmultitable.bin lls/openssl-slt-with-cms.bin lls/recompressed-pigz-zlib-slt.bin "
        "lls/recompressed-plain-slt.bin";
    const std::string sls =
        "route/gpac-a7-hls-sls1.gz route/openssl-smime-signed-sls.mime route/gpac-a1-single-service-sls3-usbd.xml "
        "mpd/eyevinn-multi-drm.mpd mpd/gpac-rating-accessibility.mpd";
    const std::string lls = Slt(Service(1), 1);
    const std::string elsewhere = Ethernet(Ipv4(Udp(lls, 5000)));
    const std::string systemTime = Number(3, 1) + lls.substr(1);
    return {
        {"broadcast", "broadcast.pcap", 1},
        {"three-services", "pcap/gpac-a2-multi-service.pcap", 0},
        {"three-services-json", "--json pcap/gpac-a2-multi-service.pcap", 0},
        {"accented-name", "pcap/gpac-a12-nonascii-name.pcap", 0},
        {"not-well-formed", "pcap/gpac-a13-unescaped-name.pcap", 1},
        {"two-captures", "pcap/gpac-a8-nrt-files.pcap pcap/gpac-a12-nonascii-name.pcap", 1},
        {"raw-tables", raw, 1},
        {"raw-tables-json", "--json " + raw, 1},
        {"lenient", k_lineup, 0},
        {"strict", "--strict " + k_lineup, 0},
        {"broadband", "--set db/menu/broadcasting/atsc3_bb_option=1 " + k_lineup, 0},
        {"quiet", "--quiet " + k_lineup + " -", 1, Peculiar()},
        {"changes", "-", 1, Changes()},
        {"changes-json", "--json -", 1, Changes()},
        {"peculiar", "-", 1, Peculiar()},
        {"peculiar-json", "--json -", 1, Peculiar()},
        {"other-tables", "-", 1, OtherTables()},
        {"other-tables-json", "--json -", 1, OtherTables()},
        {"certificates", "lls/openssl-cdt.bin lls/openssl-signedmultitable.bin", 0},
        {"cut", "-", 1, CCapture(1, 60).AddLls(lls).AddLls(lls).Bytes()},
        {"damaged", "-", 1, CCapture(1).AddLls(lls).AddLls(lls).Bytes().substr(0, 240)},
        {"no-lls", "-", 1, CCapture(1).Add(elsewhere).Add(Ethernet("", {0x0806})).Bytes()},
        {"other-stream", "--lls 224.0.23.60:5000 --lls 224.0.23.60:5001 -", 1, CCapture(1).Add(elsewhere).Bytes()},
        {"no-slt", "-", 1, CCapture(1).AddLls(systemTime).Bytes()},
        {"link-type", "-", 1, CCapture(105).AddLls(lls).Bytes()},
        {"link-types", "-", 1, PcapNg(Ethernet(Ipv4(Udp(lls))), {1, 113})},
        {"uncompressed", "pcap/gpac-a3-nozip-split.pcap", 1},
        {"all-fields", "made/content.xml made/service.xml made/lists.mpd", 0},
        {"all-fields-json", "--json made/content.xml made/service.xml made/lists.mpd", 0},
        {"protected-json", "--json pcap/gpac-a6-protected.pcap", 0},
        {"session", "--route 239.255.9.1:9000 pcap/gpac-a9-route-only.pcap", 0},
        {"broken-usbd", "--route 225.1.1.0:6000 --route 1.2.3.4:5 pcap/gpac-a13-unescaped-name.pcap", 1},
        {"signalling-files", sls, 0},
        {"every-document", "-", 0, EveryDocument()},
        {"every-document-json", "--json -", 0, EveryDocument()},
        {"single-efdt", "-", 0,
         "\xEF\xBB\xBF<EFDT tsi='3' version='1'><FDT-Instance><File TOI='1'/></FDT-Instance></EFDT>"},
        {"list-changes", "-", 0, ListChanges()},
        {"guide-capture", "-", 1, GuideCapture()},
        {"guide-capture-json", "--json -", 1, GuideCapture()},
        {"guide-unit", "-", 1, guide::WholeUnit()},
        {"guide-unit-json", "--json -", 1, Gzip(guide::WholeUnit())},
        {"guide-descriptor", "-", 0, Gzip(guide::k_descriptor)},
        {"guide-response", "-", 0, guide::k_response},
        {"guide-response-json", "--json -", 0, guide::k_response},
        {"guide-fragment", "-", 0, "\xEF\xBB\xBF" + guide::k_content1},
        {"unsignalled", "-", 1, Unsignalled()},
        {"unsignalled-json", "--json --quiet -", 1, Unsignalled()},
        {"messages", "-", 1, EveryMessage()},
        {"messages-json", "--json -", 1, EveryMessage()},
        {"no-messages", "--mmtp 239.255.7.1:6001 --mmtp 1.2.3.4:5 -", 1, NoMessages()},
    };
}

TEST(Inspect, Goldens)
{
    for (const SGolden& golden : Goldens()) {
        SCOPED_TRACE(golden.name);
        const std::string file = DataFile(std::string("inspect/") + golden.name + ".txt");
        const SResult result = Inspect(golden.arguments, golden.input);
        EXPECT_EQ(result.status, golden.status);
        EXPECT_EQ(result.err, "");
        if (std::getenv("VYR_RECORD") != nullptr) {
            std::ofstream(file, std::ios::binary) << result.out;
        }
        EXPECT_EQ(result.out, ReadFile(file));
    }
}

/// A record without what tells of it alone.
nlohmann::json Content(nlohmann::json record)
{
    for (const char* key : {"source", "status", "size", "since", "changes", "intervalSeconds", "encoding", "version",
                            "LLS_table_version", "group_count_minus1", "TOI", "TSI", "gzip", "parsed", "services",
                            "servicesDropped", "servicesUnchanged", "servicesRemoved", "insideSignedMultiTable"}) {
        record.erase(key);
    }
    return record;
}

/// Replaces the changes in the report by what they lead to.
class CReader {
  public:
    /// `place` tells it apart from all but those that it replaces; `whole` is what the record has of it, if anything.
    void Take(const std::string& place, const nlohmann::json& told, const nlohmann::json& source, nlohmann::json whole)
    {
        const auto packet = source.value("packet", 0u);
        if (told.contains("changes")) {
            whole = stands.at({place, told.value("since", 0u)}).patch(told["changes"]);
            ++changes;
        } else if (whole.is_null() && told.contains("since")) {
            whole = stands.at({place, told["since"].get<unsigned>()});
        }
        stands[{place, packet}] = whole;
    }
    void Take(const nlohmann::json& line)
    {
        const auto text = [&](const char* key) { return line.contains(key) ? line[key].dump() + ' ' : " "; };
        const std::string type = line["type"];
        const std::string place = type + text("stream") + text("session") + line["source"].value("file", "");
        if (type == "signalling") {
            for (const nlohmann::json& document : line["documents"]) {
                const std::string name = document["name"];
                Take(place + name, document, line["source"], line.value(name, nlohmann::json()));
            }
        } else if (type == "service") {
            services[place + text("LLS_group_id")].push_back(Content(line));
        } else if (type == "table" && line["status"] != "repeated" && line["LLS_table_id"] != 1) {
            Take(place + text("LLS_table_id") + text("LLS_group_id"), line, line["source"], Content(line));
        } else if (type == "message") {
            Take(place + text("packet_id") + text("message_id"), line, line["source"], Content(line));
        } else if (type == "guideObject") {
            const std::string name = line["name"];
            Take(place + text("Content-Location") + name, line, line["source"], line.value(name, nlohmann::json()));
        }
    }

    std::map<std::pair<std::string, unsigned>, nlohmann::json> stands;
    std::map<std::string, std::vector<nlohmann::json>> services;
    unsigned changes = 0;
};

TEST(Inspect, ChangesLeadToWhatStands)
{
    unsigned changes = 0;
    for (const SGolden& golden : Goldens()) {
        SCOPED_TRACE(golden.name);
        CReader told;
        CReader whole;
        for (const nlohmann::json& line : Lines(Inspect("--json " + golden.arguments, golden.input).out)) {
            line["type"] != "summary" && line["type"] != "finding" ? told.Take(line) : void();
        }
        for (nlohmann::json& line : Lines(Inspect("--json --full " + golden.arguments, golden.input).out)) {
            if (line["type"] == "signalling") {
                for (nlohmann::json& document : line["documents"]) {
                    document.erase("changes");
                    document.erase("since");
                }
            }
            line.erase("changes");
            line["type"] != "summary" && line["type"] != "finding" ? whole.Take(line) : void();
        }
        EXPECT_EQ(told.stands, whole.stands);
        EXPECT_EQ(whole.changes, 0u);
        changes += told.changes;
    }
    EXPECT_GT(changes, 20u);
}

TEST(Inspect, EveryJsonLineStandsAlone)
{
    for (const SGolden& golden : Goldens()) {
        SCOPED_TRACE(golden.name);
        const SResult result = Inspect("--json " + golden.arguments, golden.input);
        const std::vector<nlohmann::json> lines = Lines(result.out);
        ASSERT_FALSE(lines.empty());
        for (const nlohmann::json& line : lines) {
            EXPECT_EQ(line["schema_version"], 3);
            EXPECT_TRUE(line["type"] == "summary" || line["source"].contains("file")) << line;
        }
        EXPECT_EQ(lines.back()["type"], "summary");
    }
}

TEST(Inspect, EveryInputHasAPage)
{
    for (const SGolden& golden : Goldens()) {
        SCOPED_TRACE(golden.name);
        const CTemporary page("left from before");
        const SResult result = Inspect("--html '" + page.Name() + "' " + golden.arguments, golden.input);
        EXPECT_EQ(result.status, golden.status);
        EXPECT_TRUE(result.out == ReadFile(DataFile(std::string("inspect/") + golden.name + ".txt")));
        const std::string html = ReadFile(page.Name());
        EXPECT_EQ(html.compare(0, 15, "<!DOCTYPE html>"), 0);
        EXPECT_EQ(MarkupFault(html), "");
        const nlohmann::json summary = Lines(Inspect("--json " + golden.arguments, golden.input).out).back();
        const bool none = summary["errors"].get<unsigned>() + summary["warnings"].get<unsigned>() == 0;
        EXPECT_EQ(html.find("No problems found") != std::string::npos, none);
    }
    const CTemporary page;
    Inspect("-q --html '" + page.Name() + "' -", Unsignalled());
    const std::string html = ReadFile(page.Name());
    for (const char* part :
         {"<td>239.255.7.1:6001</td>", "<span class=\"badge good\">received</span>",
          "<p><span class=\"badge bad\">missing</span> no signalling of service 2: ", "shown before</a>",
          "<b>MPD</b> <span class=\"badge bad\">did not parse</span>", "<dt>service<wbr>Id</dt><dd>99</dd>"}) {
        EXPECT_NE(html.find(part), std::string::npos) << part;
    }
    CCapture twoLists(1);
    twoLists.AddLls(Slt(RouteService(1, 6001), 1, 0, 2)).AddLls(Slt(RouteService(1, 6002), 1, 1, 2));
    Inspect("-q --html '" + page.Name() + "' -", twoLists.AddSession(Lct({1, 0, -1, true}, Usbd(1)), 6001).Bytes());
    const std::string lists = ReadFile(page.Name());
    EXPECT_LT(lists.find(">received<"), lists.find(">missing<")) << "services of two lists with one id";
    Inspect("-q --html '" + page.Name() + "' -", EveryMessage());
    EXPECT_NE(ReadFile(page.Name()).find("<b>MPT (0x0020)</b> <small> version 8: changed"), std::string::npos);
    Inspect("--html '" + page.Name() + "' lls/openssl-cdt.bin pcap/gpac-a2-multi-service.pcap | true");
    for (const char* part : {"NEWS-1", "NewsHD", "news/video_$TOI$.m4s", "hide<wbr>In<wbr>Guide",
                             "formatId</span> 1 <span class=\"muted\">file<"}) {
        EXPECT_NE(ReadFile(page.Name()).find(part), std::string::npos)
            << part << ": whole, though the reader of the text has gone";
    }
}

TEST(Inspect, AServiceThatBecomesAGuide)
{
    std::string linear = RouteService(1, 6001);
    linear.replace(linear.find("\"4\""), 3, R"("1" majorChannelNo="7" minorChannelNo="1")");
    const std::string stsid =
        Lct({1, 0, -1, true}, "<S-TSID><RS><LS tsi='20'><SrcFlow rt='false'/></LS></RS></S-TSID>\n");
    CCapture capture(1);
    capture.AddLls(Slt(linear, 1)).AddSession(stsid, 6001).AddLls(Slt(linear + RouteService(2, 6001), 2));
    capture.AddSession(stsid, 6001).AddSession(Lct({1, 0, -1, true, 20}, guide::WholeUnit()), 6001);
    const nlohmann::json summary = Lines(Inspect("--json -", capture.Bytes()).out).back();
    EXPECT_EQ(summary["services"], 2);
    EXPECT_EQ(summary["servicesDropped"], 0);
    EXPECT_EQ(summary["guide"]["new"], 1);
    EXPECT_EQ(summary["signalling"]["new"], 1) << "nothing is reported anew";
}

TEST(Inspect, EveryFormOfCapture)
{
    const std::string ip = Ipv4(Udp(Slt(Service(1), 1)));
    const struct {
        const char* name;
        std::string bytes;
        const char* time;
    } cases[] = {
        {"microseconds", CCapture(1).AddLls("").AddLls(Slt(Service(1), 1)).Bytes(), "2027-01-15T08:00:00.250000Z"},
        {"microseconds, little-endian", CCapture(1, 65535, false, true).AddLls("").Add(Ethernet(ip)).Bytes(),
         "2027-01-15T08:00:00.250000Z"},
        {"nanoseconds", CCapture(1, 65535, true).AddLls("").Add(Ethernet(ip)).Bytes(), "2027-01-15T08:00:00.250000Z"},
        {"nanoseconds, little-endian", CCapture(1, 65535, true, true).AddLls("").Add(Ethernet(ip)).Bytes(),
         "2027-01-15T08:00:00.250000Z"},
        {"pcapng", PcapNg(Ethernet(ip)), "1970-01-01T00:00:02.000000Z"},
        {"raw IP", CCapture(101).Add(ip).Bytes(), "2027-01-15T08:00:00.000000Z"},
        {"cooked 2", CCapture(276).Add(Number(0x0800, 2) + std::string(18, '\0') + ip).Bytes(),
         "2027-01-15T08:00:00.000000Z"},
        {"ALP", CCapture(289).Add(Number(ip.size(), 2) + ip).Bytes(), "2027-01-15T08:00:00.000000Z"},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        bool found = false;
        for (const nlohmann::json& line : Lines(Inspect("--json -", test.bytes).out)) {
            if (line["type"] == "service") {
                found = true;
                EXPECT_EQ(line["source"]["time"], test.time);
            }
        }
        EXPECT_TRUE(found);
    }
}

TEST(Inspect, TimesOfEveryInput)
{
    // Two packets in the wrong order, one without a time between them.
    const std::string one = CCapture(1).AddLls(Slt(Service(1), 1)).AddLls(Slt(Service(1), 1)).Bytes();
    const std::string packet = one.substr(24, (one.size() - 24) / 2);
    const std::string untimed = std::string(8, '\0') + packet.substr(8);
    const CTemporary mixed(one.substr(0, 24) + one.substr(24 + packet.size()) + untimed + packet);
    const CTemporary none(one.substr(0, 24) + untimed);
    const CTemporary raw(Slt(Service(1), 1));
    const std::string names = '\'' + mixed.Name() + "' '" + none.Name() + "' '" + raw.Name() + '\'';
    const nlohmann::json summary = Lines(Inspect("--json " + names).out).back();
    const nlohmann::json expected = {
        {{"file", mixed.Name()}, {"first", "2027-01-15T08:00:00.000000Z"}, {"last", "2027-01-15T08:00:00.250000Z"}}};
    EXPECT_EQ(summary["times"], expected);
    EXPECT_NE(Inspect(names).out.find("\n  time      " + mixed.Name() +
                                      ": 2027-01-15T08:00:00.000Z to 2027-01-15T08:00:00.250Z\n"),
              std::string::npos);
    const std::string alone = Inspect("-", one).out;
    EXPECT_NE(alone.find("\n  time      2027-01-15T08:00:00.000Z to"), std::string::npos) << alone;
}

TEST(Inspect, RawMessages)
{
    const std::string mpt = MmtMessage(0x20, 16, MmtMpTable(0x20));
    const std::string clocks = CMmtBuilder().Put(8, 2).Put(MmtCri(1) + MmtCri(2)).Put(std::string(17, 0)).Bytes();
    const std::string ratings = "<RatingRegionTables></RatingRegionTables>";
    const struct {
        const char* name;
        std::string bytes;
        const char* type;
        bool parsed = true;
    } cases[] = {
        {"MP table", mpt, "message"},
        {"package access, of the least id", MmtMessage(0, 32, std::string(1, 0)), "message"},
        {"padding", mpt + std::string(16, 0), "message"},
        {"too much padding", mpt + std::string(17, 0), "unknown"},
        {"cut", mpt.substr(0, mpt.size() - 1), "unknown"},
        {"cut in its length", mpt.substr(0, 4), "unknown"},
        {"of an id that is none", std::string("\0\x21\1\0\1?", 6), "unknown"},
        {"damaged", MmtMessage(0x20, 16, "?"), "message", false},
        {"signed", MmtMessage(0x8101, 32, MmtSigned(mpt)), "message"},
        {"clock relations, a table of id 2 by its first byte", MmtMessage(0x200, 16, MmtTable(0x21, clocks)),
         "message"},
        {"the same, not to its end", MmtMessage(0x200, 16, MmtTable(0x21, clocks)) + "?", "table", false},
        {"licence revocation, which is not supported", MmtMessage(0x20C, 32, "??"), "message"},
        {"ratings", std::string("\2\0\0\1", 4) + ratings, "table"},
        {"ratings whose header fits a message", std::string("\2\0\0\0", 4) + ratings + std::string(20, ' '), "table"},
    };
    ASSERT_EQ(cases[9].bytes.substr(3, 3), std::string("\0<!", 3)) << "it looks like XML, too";
    ASSERT_EQ(cases[13].bytes.size(), 5u + '<');
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        const std::vector<nlohmann::json> lines = Lines(Inspect("--json -", test.bytes).out);
        ASSERT_GE(lines.size(), 2u);
        EXPECT_EQ(lines[0]["type"] == "finding" ? "unknown" : lines[0]["type"], test.type);
        EXPECT_EQ(lines[0].value("parsed", true), test.parsed);
        EXPECT_EQ(lines.back()["rawMessages"], test.type == std::string("message") ? 1 : 0);
    }
}

}  // namespace
