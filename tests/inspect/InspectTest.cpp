#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "GuideObjects.h"
#include "Markup.h"
#include "MmtCaptures.h"
#include "Packets.h"
#include "support/Gzip.h"

namespace {

using namespace packets;

struct SResult {
    std::string out;
    std::string err;
    int status = -1;
};

std::string ReadFile(const std::string& name)
{
    std::ifstream file(name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

/// A file of the test's own, gone with it.
class CTemporary {
  public:
    explicit CTemporary(const std::string& bytes = {}) : m_name(testing::TempDir() + "vyr-inspect-XXXXXX")
    {
        close(mkstemp(m_name.data()));
        std::ofstream(m_name, std::ios::binary) << bytes;
    }
    ~CTemporary() { std::remove(m_name.c_str()); }
    CTemporary(const CTemporary&) = delete;
    CTemporary& operator=(const CTemporary&) = delete;
    const std::string& Name() const { return m_name; }

  private:
    std::string m_name;
};

std::string Command(const std::string& arguments)
{
    return "cd '" VYR_TEST_DATA "' && exec '" VYR_INSPECT "' " + arguments;
}

/// Runs the tool among the test data, with `input` on standard input.
SResult Inspect(const std::string& arguments, const std::string& input = {})
{
    const CTemporary in(input);
    const CTemporary err;
    SResult result;
    FILE* pipe = popen(Command(arguments + " < '" + in.Name() + "' 2> '" + err.Name() + "'").c_str(), "r");
    char chunk[4096];
    for (std::size_t count = 0; (count = fread(chunk, 1, sizeof chunk, pipe)) > 0;) {
        result.out.append(chunk, count);
    }
    const int status = pclose(pipe);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.err = ReadFile(err.Name());
    return result;
}

std::string Service(int id, const std::string& attributes = {})
{
    return "<Service serviceId=\"" + std::to_string(id) + "\" serviceCategory=\"4\" " + attributes + "/>";
}

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
    return capture.Bytes();
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
    return capture.Bytes();
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

const std::string k_lineup = "lls/lineup-bsid2090-slt.bin";

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
        {"three-services", "pcap/gpac-a2-multi-service.pcap", 0},
        {"three-services-json", "--json pcap/gpac-a2-multi-service.pcap", 0},
        {"accented-name", "pcap/gpac-a12-nonascii-name.pcap", 0},
        {"not-well-formed", "pcap/gpac-a13-unescaped-name.pcap", 1},
        {"two-captures", "pcap/gpac-a8-nrt-files.pcap pcap/gpac-a12-nonascii-name.pcap", 1},
        {"raw-tables", raw, 1},
        {"raw-tables-json", "--json " + raw, 1},
        {"lenient", k_lineup, 1},
        {"strict", "--strict " + k_lineup, 1},
        {"broadband", "--set db/menu/broadcasting/atsc3_bb_option=1 " + k_lineup, 1},
        {"quiet", "--quiet " + k_lineup, 1},
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
        {"uncompressed", "pcap/gpac-a3-nozip-split.pcap", 1},
        {"protected-json", "--json pcap/gpac-a6-protected.pcap", 0},
        {"session", "--route 239.255.9.1:9000 pcap/gpac-a9-route-only.pcap", 0},
        {"broken-usbd", "--route 225.1.1.0:6000 --route 1.2.3.4:5 pcap/gpac-a13-unescaped-name.pcap", 1},
        {"signalling-files", sls, 0},
        {"every-document", "-", 0, EveryDocument()},
        {"every-document-json", "--json -", 0, EveryDocument()},
        {"single-efdt", "-", 0,
         "\xEF\xBB\xBF<EFDT tsi='3' version='1'><FDT-Instance><File TOI='1'/></FDT-Instance></EFDT>"},
        {"list-changes", "-", 1, ListChanges()},
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
        const std::string file = std::string(VYR_TEST_DATA "/inspect/") + golden.name + ".txt";
        const SResult result = Inspect(golden.arguments, golden.input);
        EXPECT_EQ(result.status, golden.status);
        EXPECT_EQ(result.err, "");
        if (std::getenv("VYR_RECORD") != nullptr) {
            std::ofstream(file, std::ios::binary) << result.out;
        }
        EXPECT_EQ(result.out, ReadFile(file));
    }
}

std::vector<nlohmann::json> Lines(const std::string& text)
{
    std::vector<nlohmann::json> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(nlohmann::json::parse(line));
    }
    return lines;
}

/// The table in a file of its own, as the tool shows it; `json` gets its line.
std::string Shown(unsigned id, const std::string& xml, nlohmann::json& json)
{
    const std::string table = Number(id, 1) + std::string("\0\0\1", 3) + xml;
    json = Lines(Inspect("--json -", table).out).front();
    const std::string text = Inspect("-", table).out;
    return text.substr(0, text.find("\n\n"));
}

TEST(Inspect, TimesAreWhatTheBroadcastSays)
{
    const struct {
        const char *attributes, *headline;
        nlohmann::json json;
    } k_times[] = {
        {"", "no times", {}},
        {"currentUtcOffset='0' ptpPrepend='0' leap59='false' dsStatus='0' dsDayOfMonth='0' dsHour='0'",
         "TAI-UTC 0 s",
         {{"currentUtcOffset", 0},
          {"ptpPrepend", 0},
          {"leap59", false},
          {"dsStatus", false},
          {"dsDayOfMonth", 0},
          {"dsHour", 0}}},
        {"dsStatus='1' leap61='true' dsDayOfMonth='14'",
         "daylight saving, leap second ahead, daylight saving changes on day 14",
         {{"leap61", true}, {"dsStatus", true}, {"dsDayOfMonth", 14}}},
        {"utcLocalOffset='PT16H'", "local time UTC+16", {{"utcLocalOffsetSeconds", 57600}}},
        {"utcLocalOffset='-PT16H'", "local time UTC-16", {{"utcLocalOffsetSeconds", -57600}}},
        {"utcLocalOffset='-PT960M1S'",
         "local time \"-PT960M1S\" (to a receiver UTC-16:00:01, which no zone has)",
         {{"utcLocalOffsetSeconds", -57601}}},
        {"utcLocalOffset='PT19H'",
         "local time \"PT19H\" (to a receiver UTC+19, which no zone has)",
         {{"utcLocalOffset", "PT19H"}, {"utcLocalOffsetSeconds", 68400}, {"utcLocalOffsetHours", 19.0}}},
        {"utcLocalOffset='P1D'", "local time \"P1D\" (to a receiver UTC+0)", {{"utcLocalOffsetSeconds", 0}}},
        {"utcLocalOffset='5'", "local time \"5\" (to a receiver UTC+0)", {{"utcLocalOffsetSeconds", 0}}},
    };
    nlohmann::json json;
    for (const auto& test : k_times) {
        const std::string text = Shown(3, std::string("<SystemTime ") + test.attributes + "/>", json);
        EXPECT_EQ(text, std::string("-: SystemTime (3) version 1 group 0: new, ") + test.headline);
        for (const char* key :
             {"currentUtcOffset", "ptpPrepend", "leap59", "leap61", "dsStatus", "dsDayOfMonth", "dsHour"}) {
            EXPECT_EQ(json.contains(key), test.json.contains(key)) << key << " of " << test.attributes;
        }
        for (const auto& [key, value] : test.json.items()) {
            EXPECT_EQ(json[key], value) << key;
        }
    }
    const struct {
        const char *zone, *content, *text;
        nlohmann::json replacement;
    } k_certificates[] = {
        {"Europe/Berlin",
         "<CertReplacement NextCert='n' NextCertFrom='2027-07-01T12:00:00Z' CurrentCertUntil='2027-01-15T12:00:00Z'/>",
         "next certificate: n, from 2027-07-01T12:00:00Z, the current one until 2027-01-15T12:00:00Z\n",
         {{"NextCert", "n"}, {"NextCertFrom", "2027-07-01T12:00:00Z"}, {"CurrentCertUntil", "2027-01-15T12:00:00Z"}}},
        {"Europe/Berlin",
         "<CertReplacement NextCertFrom='2027-03-28T00:59:59Z' NextCert='n'/>",
         "next certificate: n, from 2027-03-28T00:59:59Z\n",
         {{"NextCert", "n"}, {"NextCertFrom", "2027-03-28T00:59:59Z"}}},
        {"Europe/Berlin",
         "<CertReplacement NextCertFrom='2027-03-28T01:00:00Z'/>",
         "next certificate: from 2027-03-28T01:00:00Z\n",
         {{"NextCertFrom", "2027-03-28T01:00:00Z"}}},
        {"America/New_York",
         "<CertReplacement CurrentCertUntil='2027-07-01T08:00:00-04:00' NextCert='n'/>",
         "next certificate: n, the current one until 2027-07-01T12:00:00Z\n",
         {{"NextCert", "n"}, {"CurrentCertUntil", "2027-07-01T12:00:00Z"}}},
        {"UTC0",
         "<CertReplacement CurrentCertUntil='1970-01-01T00:00:00Z' NextCertFrom='soon'/>",
         "next certificate: from \"soon\" (no time), the current one until 1970-01-01T00:00:00Z\n",
         {{"NextCertFrom", "soon"}, {"CurrentCertUntil", "1970-01-01T00:00:00Z"}}},
        {"UTC0", "<CertReplacement NextCert='n'/>", "next certificate: n\n", {{"NextCert", "n"}}},
        {"UTC0", "<CertReplacement/>", nullptr, {}},
        {"UTC0", "<ToBeSignedData OCSPRefresh='PT2147483647S'/>", "renewed every 2147483647 s\n", {}},
        {"UTC0",
         "<ToBeSignedData OCSPRefresh='PT2147483648S'/>",
         "renewed every \"PT2147483648S\" (to a receiver -2147483648 s)\n",
         {}},
        {"UTC0", "<ToBeSignedData OCSPRefresh='P1D'/>", "renewed every \"P1D\" (to a receiver 0 s)\n", {}},
        {"UTC0", "<ToBeSignedData OCSPRefresh='PT0S'/>", "renewed every 0 s\n", {}},
        {"UTC0", "<ToBeSignedData/>", nullptr, {}},
    };
    for (const auto& test : k_certificates) {
        setenv("TZ", test.zone, 1);
        const std::string text =
            Shown(6, std::string("<CertificationData>") + test.content + "</CertificationData>", json) + '\n';
        EXPECT_EQ(json.value("CertReplacement", nlohmann::json()), test.replacement) << test.content;
        EXPECT_NE(text.find(test.text != nullptr ? test.text : "group 0: new, 0 certificates, 0 OCSP responses\n-:"),
                  std::string::npos)
            << text;
        EXPECT_EQ(json.contains("OCSPRefreshSeconds"), std::strstr(test.content, "OCSPRefresh") != nullptr);
    }
    unsetenv("TZ");
}

TEST(Inspect, WhatTheBroadcastDoesNotGiveIsNotShown)
{
    const std::string full =
        "<Service serviceId='1' serviceCategory='0' sltSvcSeqNum='0' majorChannelNo='0' minorChannelNo='0' "
        "protected='false' hidden='1' hideInGuide='true' broadbandAccessRequired='false' configuration='Broadband'>"
        "<BroadcastSvcSignaling slsProtocol='0' slsMajorProtocolVersion='0' slsMinorProtocolVersion='0' "
        "slsDestinationIpAddress='0.0.0.0' slsDestinationUdpPort='0'/></Service>";
    const std::string bare = "<Service serviceId='2'><BroadcastSvcSignaling/></Service>";
    const std::vector<nlohmann::json> lines = Lines(Inspect("--json -", Slt(full + bare, 1)).out);
    for (const char* key :
         {"sltSvcSeqNum", "protected", "majorChannelNo", "minorChannelNo", "serviceCategory", "hidden", "hideInGuide",
          "broadbandAccessRequired", "configuration", "slsProtocol", "slsMajorProtocolVersion",
          "slsMinorProtocolVersion", "slsDestinationIpAddress", "slsDestinationUdpPort"}) {
        EXPECT_TRUE(lines[1].contains(key)) << key;
        EXPECT_FALSE(lines[2].contains(key)) << key;
    }
    EXPECT_EQ(lines[1]["hidden"], true);
    const std::string text = Inspect("-", Slt(full + bare, 1)).out;
    EXPECT_NE(text.find("  1   0.0      -     0         0         0.0.0.0:0    -       hidden, hideInGuide, "
                        "configuration Broadband\n  2   -        -     -         -         -            -\n"),
              std::string::npos)
        << text;

    const std::string usbd = "<BundleDescriptionROUTE><UserServiceDescription serviceId='1' ";
    const struct {
        const char *attribute, *headline;
        nlohmann::json status;
    } k_statuses[] = {{"", "service 1\n", nullptr},
                      {"serviceStatus='1'", "service 1, active\n", true},
                      {"serviceStatus='true'", "service 1, active (to a receiver off)\n", true},
                      {"serviceStatus='0'", "service 1, off\n", false}};
    for (const auto& test : k_statuses) {
        const std::string document = usbd + test.attribute + "/></BundleDescriptionROUTE>";
        EXPECT_NE(Inspect("-", document).out.find(test.headline), std::string::npos) << test.attribute;
        const nlohmann::json json = Lines(Inspect("--json -", document).out)[0]["BundleDescriptionROUTE"];
        EXPECT_EQ(json.value("serviceStatus", nlohmann::json()), test.status);
    }
    const nlohmann::json flows =
        Lines(Inspect("--json -",
                      "<S-TSID><RS><LS tsi='1' startTime='2027-07-01T12:00:00+02:00' endTime='soon'>"
                      "<SrcFlow rt='false'><ContentInfo><MediaInfo startUp='0'/></ContentInfo></SrcFlow>"
                      "<SrcFlow><ContentInfo><MediaInfo/></ContentInfo></SrcFlow></LS></RS></S-TSID>")
                  .out)[0]["S-TSID"]["RS"][0]["LS"][0];
    EXPECT_TRUE(flows["startTime"] == "2027-07-01T10:00:00Z" && flows["endTime"] == "soon");
    EXPECT_TRUE(flows["SrcFlow"][0]["rt"] == false &&
                flows["SrcFlow"][0]["ContentInfo"]["MediaInfo"]["startUp"] == false);
    EXPECT_FALSE(flows["SrcFlow"][1].contains("rt") ||
                 flows["SrcFlow"][1]["ContentInfo"]["MediaInfo"].contains("startUp"));
}

TEST(Inspect, AnInstantReadsTheSameEverywhere)
{
    const CTemporary page;
    CCapture capture(1, 65535, true);
    const std::string bytes = capture.AddLls(Slt(Service(1), 1)).Bytes();
    std::string odd = bytes;
    odd.replace(28, 4, Number(999999999, 4));  // the nanoseconds of the packet
    EXPECT_NE(Inspect("--html '" + page.Name() + "' -", odd).out.find("packet 1, 2027-01-15T08:00:00.999999999Z  SLT"),
              std::string::npos);
    EXPECT_NE(ReadFile(page.Name()).find("datetime=\"2027-01-15T08:00:00.999999999Z\">08:00:00.999999999<"),
              std::string::npos);
    EXPECT_EQ(Lines(Inspect("--json -", odd).out)[0]["source"]["time"], "2027-01-15T08:00:00.999999999Z");
}

TEST(Inspect, EveryJsonLineStandsAlone)
{
    for (const SGolden& golden : Goldens()) {
        SCOPED_TRACE(golden.name);
        const SResult result = Inspect("--json " + golden.arguments, golden.input);
        const std::vector<nlohmann::json> lines = Lines(result.out);
        ASSERT_FALSE(lines.empty());
        for (const nlohmann::json& line : lines) {
            EXPECT_EQ(line["schema_version"], 1);
            EXPECT_TRUE(line["type"] == "summary" || line["source"].contains("file")) << line;
        }
        EXPECT_EQ(lines.back()["type"] == "summary", golden.arguments.find("--quiet") == std::string::npos);
    }
}

TEST(Inspect, EveryInputHasAPage)
{
    for (const SGolden& golden : Goldens()) {
        SCOPED_TRACE(golden.name);
        const CTemporary page("left from before");
        const SResult result = Inspect("--html '" + page.Name() + "' " + golden.arguments, golden.input);
        EXPECT_EQ(result.status, golden.status);
        EXPECT_TRUE(result.out == ReadFile(std::string(VYR_TEST_DATA "/inspect/") + golden.name + ".txt"));
        const std::string html = ReadFile(page.Name());
        EXPECT_EQ(html.compare(0, 15, "<!DOCTYPE html>"), 0);
        EXPECT_EQ(MarkupFault(html), "");
        EXPECT_EQ(html.find("No problems found") != std::string::npos, golden.status == 0);
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
    linear.replace(linear.find("\"4\""), 3, "\"1\"");
    const std::string stsid =
        Lct({1, 0, -1, true}, "<S-TSID><RS><LS tsi='20'><SrcFlow rt='false'/></LS></RS></S-TSID>\n");
    CCapture capture(1);
    capture.AddLls(Slt(linear, 1)).AddSession(stsid, 6001).AddLls(Slt(linear + RouteService(2, 6001), 2));
    capture.AddSession(stsid, 6001).AddSession(Lct({1, 0, -1, true, 20}, guide::WholeUnit()), 6001);
    const nlohmann::json summary = Lines(Inspect("--json -", capture.Bytes()).out).back();
    EXPECT_EQ(summary["guide"]["new"], 1);
    EXPECT_EQ(summary["signalling"]["new"], 1) << "nothing is reported anew";
}

TEST(Inspect, APageThatCannotBeWritten)
{
    const std::string lineup = ReadFile(VYR_TEST_DATA "/" + k_lineup);
    EXPECT_EQ(Inspect("--html missing/page.html " + k_lineup).status, 2);
    EXPECT_EQ(Inspect("--html missing/page.html " + k_lineup).out, "") << "told before the work";
    EXPECT_EQ(Inspect("--html missing/page.html " + k_lineup).err,
              "vyr-atsc30-inspect: missing/page.html: No such file or directory\n");
    EXPECT_EQ(Inspect("--html /dev/full " + k_lineup).status, 2);
    EXPECT_NE(Inspect("--html /dev/full " + k_lineup).out, "");
    const CTemporary input(lineup);
    EXPECT_EQ(Inspect("--html '" + input.Name() + "' '" + input.Name() + "'").status, 2);
    EXPECT_EQ(Inspect("--html /dev/stdin -", lineup).status, 2) << "nor what comes in";
    EXPECT_EQ(ReadFile(input.Name()), lineup) << "an input is never written over";
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

TEST(Inspect, InputsThatAreNone)
{
    const struct {
        const char* name;
        std::string arguments;
        std::string input;
        int status;
        std::string err;
        std::string code;
    } cases[] = {
        {"empty", "-", "", 1, "-: is empty", "input-empty"},
        {"three bytes", "-", "\x01\x01\x01", 1,
         "-: not a capture, not an LLS table, not signalling and not a service guide", "input-unknown"},
        {"unknown table", "-", "\x07\x01\x01\x01", 1,
         "-: not a capture, not an LLS table, not signalling and not a service guide", "input-unknown"},
        {"text", "inspect/cut.txt", "", 1,
         "inspect/cut.txt: not a capture, not an LLS table, not signalling and not a service guide", "input-unknown"},
        {"other XML", "-", "<SLT/>", 1, "-: not a capture, not an LLS table, not signalling and not a service guide",
         "input-unknown"},
        {"damaged gzip", "-", "\x1F\x8B\x08?", 1,
         "-: not a capture, not an LLS table, not signalling and not a service guide", "input-unknown"},
        {"too much signalling", "-", std::string(1048577, ' '), 1,
         "-: larger than any signalling: more than 1048576 bytes", "input-too-large"},
        {"directory", "inspect", "", 2, "inspect: is a directory", "input-directory"},
        {"missing", "missing.pcap", "", 2, "missing.pcap: No such file or directory", "input-missing"},
        {"hostile name", "'\x1B[2J'", "", 2, "\\x1B[2J: No such file or directory", "input-missing"},
        {"no unit", "-", std::string(1048577, '\0'), 1,
         "-: not a capture, not an LLS table, not signalling and not a service guide", "input-unknown"},
        {"too large unit", "-", std::string(8388609, '\0'), 1,
         "-: larger than any delivery unit: more than 8388608 bytes", "input-too-large"},
        {"too large", "-", std::string(1048577, '\x01'), 1, "-: larger than any LLS table: more than 1048576 bytes",
         "input-too-large"},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        const SResult text = Inspect(test.arguments, test.input);
        EXPECT_EQ(text.status, test.status);
        EXPECT_EQ(text.out, "");
        EXPECT_EQ(text.err, "vyr-atsc30-inspect: " + test.err + '\n');
        const SResult json = Inspect("--json " + test.arguments, test.input);
        EXPECT_EQ(json.status, test.status);
        EXPECT_EQ(json.err, text.err);
        const std::vector<nlohmann::json> lines = Lines(json.out);
        ASSERT_EQ(lines.size(), 2u);
        EXPECT_EQ(lines[0]["type"], "fault");
        EXPECT_EQ(lines[0]["code"], test.code);
        EXPECT_EQ(lines[1]["faultsByCode"][test.code], 1);
    }
    EXPECT_EQ(Inspect("-", std::string(1048576, '\xFF')).status, 0) << "the largest raw table";
    EXPECT_EQ(Inspect("missing " + k_lineup).status, 2) << "a fault hides no failure";
    EXPECT_NE(Inspect("missing " + k_lineup).out.find("KLAS"), std::string::npos);
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
        EXPECT_EQ(lines[0]["type"] == "fault" ? "unknown" : lines[0]["type"], test.type);
        EXPECT_EQ(lines[0].value("parsed", true), test.parsed);
        EXPECT_EQ(lines.back()["rawMessages"], test.type == std::string("message") ? 1 : 0);
    }
}

TEST(Inspect, UsageErrors)
{
    EXPECT_EQ(Inspect("").status, 2);
    for (const char* arguments :
         {"--nonsense", "--lls 1.2.3.4", "--lls 1.2.3:5", "--lls 1.2.3.4:0", "--lls 1.2.3.4:65536", "--route 1.2.3.4:x",
          "--mmtp 1", "--set a", "--set =1", "--set a=1x", "--log loud"}) {
        const SResult result = Inspect(std::string(arguments) + " pcap/gpac-a2-multi-service.pcap");
        EXPECT_EQ(result.status, 2) << arguments;
        EXPECT_EQ(result.out, "") << arguments;
        EXPECT_NE(result.err, "") << arguments;
    }
    EXPECT_EQ(Inspect("--lls 1.2.3.4:65535 --quiet pcap/gpac-a2-multi-service.pcap").status, 1);
    EXPECT_EQ(Inspect("--version").status, 0);
    EXPECT_NE(Inspect("--version").out.find("libvyr-atsc30-parser"), std::string::npos);
}

TEST(Inspect, GuideAndManPageKnowEveryOption)
{
    const SResult help = Inspect("--help");
    EXPECT_EQ(help.status, 0);
    const std::string guide = ReadFile(VYR_DOCS "/inspect.md");
    const std::string manual = std::regex_replace(ReadFile(VYR_DOCS "/vyr-atsc30-inspect.1"), std::regex("\\\\-"), "-");
    const std::regex option("--[a-z-]+");
    int options = 0;
    for (std::sregex_iterator at(help.out.begin(), help.out.end(), option), end; at != end; ++at, ++options) {
        EXPECT_NE(guide.find(at->str()), std::string::npos) << at->str();
        EXPECT_NE(manual.find(at->str()), std::string::npos) << at->str();
    }
    EXPECT_GE(options, 10);
    const std::string readme = ReadFile(VYR_DOCS "/../README.md");
    // The screen that the README shows: what stands between its lines of dots is what the tool writes.
    const std::string screen = ReadFile(VYR_TEST_DATA "/inspect/three-services.txt");
    const std::string begin = "$ scripts/demo\n";
    std::size_t at = readme.find(begin) + begin.size();
    const std::size_t end = readme.find("```", at);
    std::size_t found = 0;
    int parts = 0;
    for (; at < end; ++parts) {
        const std::size_t dots = std::min(readme.find("  \u2026\n", at), end);
        const std::string part = readme.substr(at, dots - at);
        found = screen.find(part, found);
        ASSERT_NE(found, std::string::npos) << part;
        EXPECT_EQ(found == 0, parts == 0) << "the first part is the beginning";
        found += part.size();
        at = dots + std::string("  \u2026\n").size();
    }
    EXPECT_GE(parts, 2);
    EXPECT_EQ(found, screen.size()) << "the last part is the end";
}

TEST(Inspect, GuideInLocalTimeWithNamesOfGenres)
{
    const CTemporary genres(
        "<!-- --><ClassificationScheme><Term termID='2'>\n <Name>News at night</Name>\n</Term></ClassificationScheme>");
    setenv("TZ", "XYZ-3", 1);
    const SResult local = Inspect("--local-time --genres '" + genres.Name() + "' -", guide::WholeUnit());
    const SResult utc = Inspect("-", guide::WholeUnit());
    unsetenv("TZ");
    EXPECT_NE(local.out.find("Sunday 2026-11-22 (XYZ)\n"), std::string::npos);
    EXPECT_NE(local.out.find("\n      01:30  03:30     Late news"), std::string::npos) << "midnight is elsewhere";
    EXPECT_NE(local.out.find("News at night"), std::string::npos);
    EXPECT_EQ(utc.out, ReadFile(VYR_TEST_DATA "/inspect/guide-unit.txt"));
    const SResult none = Inspect("--genres missing.xml -", guide::WholeUnit());
    EXPECT_EQ(none.status, 2);
    EXPECT_EQ(none.err, "vyr-atsc30-inspect: missing.xml: not a classification scheme\n");
}

TEST(Inspect, LogAndProgressGoToStandardError)
{
    const std::string capture = "pcap/gpac-a13-unescaped-name.pcap";
    const SResult plain = Inspect(capture);
    const SResult log = Inspect("--log debug " + capture);
    EXPECT_EQ(log.out, plain.out);
    EXPECT_NE(log.err.find("[TCParseLLS::Parse] TableId[1]"), std::string::npos);
    EXPECT_EQ(Inspect("--log info " + capture).err, "");
    EXPECT_NE(Inspect("--strict --log error " + k_lineup).err.find("protected1"), std::string::npos);
    const SResult progress = Inspect("--progress pcap/gpac-a2-multi-service.pcap");
    EXPECT_NE(progress.err.find("64 packets"), std::string::npos);
    EXPECT_EQ(Inspect("--progress --quiet pcap/gpac-a2-multi-service.pcap").err, "");
}

TEST(Inspect, AReaderThatHasGoneIsNoError)
{
    const CTemporary err;
    const CTemporary status;
    // The reader is gone before the first line is written.
    const std::string command = "cd '" VYR_TEST_DATA "'; (sleep 0.2; '" VYR_INSPECT
                                "' pcap/gpac-a2-multi-service.pcap 2> '" +
                                err.Name() + "'; echo $? > '" + status.Name() + "') | true";
    EXPECT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(ReadFile(err.Name()), "");
    EXPECT_EQ(ReadFile(status.Name()), "0\n");
    EXPECT_EQ(Inspect("pcap/gpac-a2-multi-service.pcap > /dev/full").status, 2);
}

TEST(Inspect, AStreamIsReportedAsItComes)
{
    const CTemporary fifo;
    const CTemporary page;
    std::remove(fifo.Name().c_str());
    ASSERT_EQ(mkfifo(fifo.Name().c_str(), 0600), 0);
    // One interrupt, to the tool alone: a second one could meet the leak check at its end.
    const std::string command = "timeout --foreground --preserve-status -s INT 2 '" VYR_INSPECT "' --html '" +
                                page.Name() + "' - < '" + fifo.Name() + "'";
    FILE* out = popen(command.c_str(), "r");
    const int in = open(fifo.Name().c_str(), O_WRONLY);
    const std::string bytes = CCapture(1).AddLls(Slt(Service(1), 1)).Bytes();
    ASSERT_EQ(write(in, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    pollfd ready = {fileno(out), POLLIN, 0};
    EXPECT_EQ(poll(&ready, 1, 1500), 1) << "the table comes while the stream goes on";
    std::string text;
    for (int c = 0; (c = fgetc(out)) != EOF;) {
        text += static_cast<char>(c);
    }
    close(in);
    EXPECT_EQ(pclose(out), 0);
    EXPECT_NE(text.find("SLT (1) version 1 group 0: new"), std::string::npos);
    EXPECT_NE(text.find("\nsummary\n"), std::string::npos) << "an interrupt ends the input, not the report";
    EXPECT_EQ(MarkupFault(ReadFile(page.Name())), "");
    EXPECT_NE(ReadFile(page.Name()).find("<h3>bsid 5, 224.0.23.60:4937 group 0 "), std::string::npos);
}

}  // namespace
