#include "GuideObjects.h"
#include "RouteBroadcast.h"

namespace {

using TRules = std::vector<std::string>;
using SPart = SBroadcast::SPart;
using packets::CCapture;

bool IsAudio(const SPart& part)
{
    return part.tsi == 20;
}
bool IsInitialization(const SPart& part)
{
    return part.tsi != 0 && part.toi == 99;
}

bool NoAudio(const SPart& part)
{
    return !IsAudio(part);
}

/// Between these seconds, the list has no service.
std::function<void(SBroadcast&)> SignsOff(unsigned from, unsigned to)
{
    return [=](SBroadcast& broadcast) {
        const std::string services = broadcast.services;
        broadcast.change = [=](unsigned second, SBroadcast& now) {
            now.services = second < from || second >= to ? services : "";
            now.listVersion = second < from ? 1 : second < to ? 2 : 3;
        };
    };
}

/// Replaces texts of the documents from a second on.
std::function<void(SBroadcast&)> From(unsigned from, const std::vector<std::pair<std::string, std::string>>& edits)
{
    return [=](SBroadcast& broadcast) {
        broadcast.change = [=](unsigned second, SBroadcast& now) {
            for (std::size_t i = 0; second == from && i < edits.size(); ++i) {
                now.Edit(edits[i].first, edits[i].second);
            }
        };
    };
}

/// Sends an object of TSI 30 in every second.
void SendMore(unsigned second, CCapture& capture)
{
    capture.AddSession(packets::Lct({second + 1, 0, 20, false, 30}, std::string(20, 'x')), 7001);
}

/// Sends audio in one packet of an object, without start_offset: 24 is the size of its first box.
void SendWithoutOffset(unsigned second, CCapture& capture)
{
    capture.AddSession(packets::Lct({second + 1, 24, -1, true, 20}, "styp" + std::string(800, 'm')), 7001);
}

/// A guide beside the media, whose descriptor names the port; something goes to 7005.
void Guide(SBroadcast& broadcast, const std::string& port)
{
    broadcast.Edit("serviceCategory='1'", "serviceCategory='4'");
    broadcast.Edit("</RS>",
                   "<LS tsi='30'><SrcFlow rt='false'><EFDT><FDT-Instance><File TOI='7' Content-Location='g.sgdd' "
                   "Content-Type='application/vnd.oma.bcast.sgdd+xml'/><File TOI='8' Content-Location='g.sgdu' "
                   "Content-Type='application/vnd.oma.bcast.sgdu'/></FDT-Instance></EFDT></SrcFlow></LS></RS>");
    broadcast.more = [port](unsigned, CCapture& capture) {
        const std::string descriptor =
            "<ServiceGuideDeliveryDescriptor xmlns='urn:oma:xml:bcast:sg:sgdd:1.0' id='d' version='1'>"
            "<DescriptorEntry><Transport ipAddress='239.255.7.1' port='" +
            port + "' transmissionSessionID='1'/></DescriptorEntry></ServiceGuideDeliveryDescriptor>";
        const std::string unit = guide::Unit({{1, guide::Fragment("Service", "s1", 1)}});
        capture.AddSession(packets::Lct({7, 0, static_cast<int>(descriptor.size()), false, 30}, descriptor), 7001);
        capture.AddSession(packets::Lct({8, 0, static_cast<int>(unit.size()), false, 30}, unit), 7001);
        capture.AddSession("?", 7005);
    };
}

/// Each breach with what is near to it and none.
const std::vector<SBreach> k_delivery = {
    {"sound", [](SBroadcast&) {}, {}},
    {"audio never comes", Keep(NoAudio), {"session-not-sent"}},
    {"in a capture that cuts packets",
     [](SBroadcast& b) {
         b.cutTo = 2500;
         b.more = [](unsigned, CCapture& capture) { capture.AddSession(std::string(3000, '?'), 7005); };
         b.keep = NoAudio;
     },
     {"packets-cut"}},
    {"in one that cuts the signalling", [](SBroadcast& b) { b.cutTo = 1000; }, {"packets-cut"}},
    {"and the service list", [](SBroadcast& b) { b.cutTo = 300; }, {"packets-cut"}},
    {"in one whose clock was set",
     All(More([](unsigned second, CCapture& capture) {
             capture.At(second + (second == 6 ? 3700 : 0), 40000).AddSession("?", 7001);
         }),
         Keep(NoAudio)),
     {"lct-malformed"}},
    {"audio comes once", Keep([](const SPart& part) { return !IsAudio(part) || part.second == 3; }), {}},
    {"audio stops",
     All(Lasts(30), Keep([](const SPart& part) { return !IsAudio(part) || part.second < 10; })),
     {"session-not-sent"}},
    {"too short to tell", All(Lasts(2), Keep(NoAudio)), {}},
    {"no media was captured at all", Keep([](const SPart& part) { return part.tsi == 0; }), {}},
    {"subtitles may be silent for longer",
     All(Lasts(9), Edits({{"contentType='audio'", "contentType='subtitles'"}, {"audio", "text"}}), Keep(NoAudio)),
     {}},
    {"but not for ever",
     All(Edits({{"contentType='audio'", "contentType='subtitles'"}, {"audio", "text"}}), Keep(NoAudio)),
     {"session-not-sent"}},
    {"on another address of which others came",
     All(Edits({{"<LS tsi='20'", "</RS><RS dPort='7002'><LS tsi='20'"}}), Keep(NoAudio)),
     {"session-not-sent"}},
    {"and it comes there", All(Edits({{"<LS tsi='20'", "</RS><RS dPort='7002'><LS tsi='20'"}}), Audio(7002)), {}},
    {"on another address of which nothing was captured",
     All(Edits({{"<LS tsi='20'", "</RS><RS dIpAddr='239.1.1.1'><LS tsi='20'"}}), Keep(NoAudio)),
     {}},
    {"files that do not come", Edits({{"</RS>", "<LS tsi='30'><SrcFlow rt='false'/></LS></RS>"}}), {"files-not-sent"}},
    {"files that do", All(Edits({{"</RS>", "<LS tsi='30'><SrcFlow rt='false'/></LS></RS>"}}), More(SendMore)), {}},
    {"a TSI that nothing announces", More(SendMore), {"session-not-announced"}},
    {"one that has just begun",
     More([](unsigned second, CCapture& capture) {
         if (second >= 7) {
             SendMore(second, capture);
         }
     }),
     {}},
    {"that the S-TSID before announced",
     [](SBroadcast& b) {
         b.Edit("</RS>", "<LS tsi='30'><SrcFlow rt='false'/></LS></RS>");
         b.more = SendMore;
         b.change = [](unsigned second, SBroadcast& now) {
             if (second == 6) {
                 now.Edit("<LS tsi='30'><SrcFlow rt='false'/></LS>", "");
             }
         };
     },
     {}},
    {"while another service's signalling is missing",
     [](SBroadcast& b) {
         b.services +=
             "<Service serviceId='2' serviceCategory='4'><BroadcastSvcSignaling slsProtocol='1' "
             "slsDestinationIpAddress='239.255.7.1' slsDestinationUdpPort='7009'/></Service>";
         b.more = SendMore;
     },
     {"no-signalling"}},
    {"a session that nothing names",
     More([](unsigned, CCapture& capture) { capture.AddSession("?", 7005); }),
     {"unsignalled-traffic"}},
    {"that the guide's descriptor names", [](SBroadcast& b) { Guide(b, "7005"); }, {}},
    {"another one than the guide's", [](SBroadcast& b) { Guide(b, "7006"); }, {"unsignalled-traffic"}},
    {"more than it has announced", Edits({{"bw='10'", "bw='7'"}}), {"rate-above-bandwidth"}},
    {"within the margin", Edits({{"bw='10'", "bw='8'"}}), {}},
    {"no bandwidth announced", Edits({{"bw='10'", ""}}), {}},
    {"a bandwidth that has just been announced", From(8, {{"bw='10'", "bw='7'"}}), {}},
    {"one that was announced a while ago", All(From(3, {{"bw='10'", "bw='7'"}}), Lasts(12)), {"rate-above-bandwidth"}},
    {"past its end",
     Edits({{"<LS tsi='10'", "<LS endTime='2027-01-15T07:59:50Z' tsi='10'"}}),
     {"session-outside-time"}},
    {"as clocks differ", Edits({{"<LS tsi='10'", "<LS endTime='2027-01-15T08:00:05Z' tsi='10'"}}), {}},
    {"before its begin",
     Edits({{"<LS tsi='10'", "<LS startTime='2027-01-15T08:01:00Z' tsi='10'"}}),
     {"session-outside-time"}},
    {"until its end, when it was announced anew",
     All(Lasts(30), Edits({{"<LS tsi='10'", "<LS endTime='2027-01-15T08:00:10Z' tsi='10'"}}),
         From(9, {{"endTime='2027-01-15T08:00:10Z'", "startTime='2027-01-15T08:00:11Z'"}})),
     {}},
    {"past its end, and something else was announced anew",
     All(Lasts(30), Edits({{"<LS tsi='10'", "<LS endTime='2027-01-15T08:00:10Z' tsi='10'"}}),
         From(9, {{"bw='10'", "bw='11'"}})),
     {"session-outside-time"}},
    {"not sent before its begin",
     All(Edits({{"<LS tsi='20'", "<LS startTime='2027-01-15T08:01:00Z' tsi='20'"}}), Keep(NoAudio)),
     {}},
    {"an EFDT of yesterday", Edits({{"4294944000", "4008902400"}}), {"efdt-expired"}},
    {"one from whose day on each file has a time of its own",
     Edits({{"4294944000'", "4008902400' maxExpiresDelta='60'"}}),
     {}},
    {"one of today", Edits({{"4294944000", "4008988805"}}), {}},
    {"one that never expires", Edits({{"4294944000", "4294967295"}}), {}},
    {"no initialization", Keep([](const SPart& part) { return !IsInitialization(part); }), {"no-initialization"}},
    {"once is enough", Keep([](const SPart& part) { return !IsInitialization(part) || part.second == 9; }), {}},
    {"too short to tell of it", All(Lasts(5), Keep([](const SPart& part) { return !IsInitialization(part); })), {}},
    {"an EFDT that does not name it",
     All(Edits({{"-init.mp4' TOI", "-first.mp4' TOI"}}),
         Keep([](const SPart& part) { return !IsInitialization(part); })),
     {}},
    {"a segment without its middle",
     Keep([](const SPart& part) { return !IsAudio(part) || part.toi != 4 || part.part != 2; }),
     {"objects-incomplete"}},
    {"one cut by the end",
     Keep([](const SPart& part) { return !IsAudio(part) || part.toi != 12 || part.part < 2; }),
     {}},
    {"every second one",
     Keep([](const SPart& part) { return part.tsi == 0 || part.toi % 2 == 0 || part.part != 1; }),
     {"many-objects-incomplete"}},
    {"every second one, with repair",
     All(Keep([](const SPart& part) { return part.tsi == 0 || part.toi % 2 == 0 || part.part != 1; }),
         Edits({{"</RS>", "<LS tsi='30'/></RS>"}}), More([](unsigned second, CCapture& capture) {
             capture.AddSession(packets::Lct({second + 1, 0, -1, false, 30, 0x10A0}, "repair"), 7001);
         })),
     {"objects-incomplete"}},
    {"the begin of every one", All(Keep(NoAudio), More(SendWithoutOffset)), {"many-objects-incomplete"}},
    {"no start_offset",
     All(Keep(NoAudio), More(SendWithoutOffset),
         Edits({{"repId='a'/></ContentInfo>", "repId='a'/></ContentInfo><Payload srcFecPayloadId='0'/>"}})),
     {}},
    {"signalling stays away",
     Keep([](const SPart& part) { return part.tsi != 0 || part.second < 2 || part.second > 6; }),
     {"signalling-interval"}},
    {"for 5 s", Keep([](const SPart& part) { return part.tsi != 0 || part.second < 2 || part.second > 5; }), {}},
    {"at the end", Keep([](const SPart& part) { return part.tsi != 0 || part.second < 6; }), {"signalling-interval"}},
    {"until no list has the service any more",
     All(Keep([](const SPart& part) { return part.second < 3; }), SignsOff(3, 12)),
     {}},
    {"until one has it again",
     All(Keep([](const SPart& part) { return part.second < 3 || part.second >= 10; }), SignsOff(3, 10)),
     {}},
    {"and it stays away then",
     All(Lasts(20), Keep([](const SPart& part) { return part.second < 3; }), SignsOff(3, 5)),
     {"no-signalling", "signalling-interval"}},
    {"a rate that is not the MPD's", Edits({{"'9000'", "'39000'"}}), {"rate-unlike-mpd"}},
    {"a fifth of it", Edits({{"'9000'", "'38000'"}}), {}},
    {"too short for it", All(Edits({{"'9000'", "'39000'"}}), Lasts(10)), {}},
    {"its MPD has just come", From(9, {{"'9000'", "'39000'"}}), {}},
    {"its MPD came long ago", All(Lasts(30), From(9, {{"'9000'", "'39000'"}})), {"rate-unlike-mpd"}},
};

TEST(DeliveryRules, EachHasItsBreachAndItsNearMiss)
{
    ExpectBroken(k_delivery);
}

TEST(DeliveryRules, NothingIsDueOfAServiceThatIsListedNoMore)
{
    SBroadcast broadcast;
    broadcast.seconds = 30;
    broadcast.keep = [](const SPart& part) { return part.second < 10; };
    broadcast.more = [](unsigned, CCapture& capture) { capture.AddSession(packets::Lct({1, 0, -1}, "x"), 7001); };
    broadcast.change = [](unsigned second, SBroadcast& now) { now.services = second < 10 ? now.services : ""; };
    const TRules broken = broadcast.Broken();
    EXPECT_EQ(std::count(broken.begin(), broken.end(), "session-not-sent"), 0) << broadcast.Findings();
}

TEST(DeliveryRules, NamesOfSessionsFlowsAndObjects)
{
    SBroadcast broadcast;
    broadcast.Edit("audio-$TOI$", "audio-$TOI%03d$");
    broadcast.keep = [](const SPart& part) {
        return (part.toi != 4 && part.toi != 99) || part.part != 1 || !IsAudio(part);
    };
    broadcast.more = [](unsigned, CCapture& capture) { capture.AddSession("?", 7005); };
    EXPECT_EQ(broadcast.Broken(), TRules({"objects-incomplete", "unsignalled-traffic"}));
    for (const nlohmann::json& line : broadcast.lines) {
        if (line["type"] == "delivery" && line.value("session", "") == "239.255.7.1:7001") {
            EXPECT_EQ(line["serviceIds"], nlohmann::json({1}));
            EXPECT_EQ(line["flows"][1]["carries"], "video, representation v");
            EXPECT_EQ(line["flows"][2]["serviceIds"], nlohmann::json({1}));
            EXPECT_EQ(line["flows"][2]["objects"]["firstIncomplete"][0]["name"], "audio-004.m4s") << line;
        } else if (line["type"] == "delivery" && line.value("session", "") == "239.255.7.1:7005") {
            EXPECT_EQ(line["named"], false);
        }
    }
}

/// Objects whose packets do not say how long they are are as long as the EFDT says.
TEST(DeliveryRules, FilesAreAsLongAsTheEfdtSays)
{
    const struct {
        const char* attributes;
        std::string objects;
        const char* payload = "";
    } cases[] = {{"Transfer-Length='40'", "2 whole, 10 again"},
                 {"Content-Length='40'", "2 whole, 10 again"},
                 {"Content-Length='41'", "0 whole, 0 again"},
                 {"Content-Length='41' Transfer-Length='40'", "2 whole, 10 again"},
                 {"Content-Length='41' Content-Encoding='gzip'", "0 whole, 0 again"},
                 {"Content-Length='40'", "2 whole, 10 again", "<Payload formatId='1' srcFecPayloadId='1'/>"},
                 {"Content-Length='40'", "0 whole, 0 again", "<Payload formatId='2'/>"},
                 {"Content-Length='39' Transfer-Length='40'", "2 whole, 10 again", "<Payload formatId='2'/>"}};
    for (const auto& test : cases) {
        SBroadcast broadcast;
        const auto file = [&](const char* toi) {
            return "<File TOI='" + std::string(toi) + "' Content-Location='f' " + test.attributes + "/>";
        };
        broadcast.Edit("</RS>", "<LS tsi='30'><SrcFlow rt='false'><EFDT><FDT-Instance>" + file("2") + file("3") +
                                    "</FDT-Instance></EFDT>" + test.payload + "</SrcFlow></LS></RS>");
        broadcast.more = [](unsigned second, CCapture& capture) {
            capture.AddSession(packets::Lct({2 + second % 2, 0, -1, false, 30}, std::string(40, 'x')), 7001);
        };
        broadcast.Broken();
        std::string objects;
        for (const nlohmann::json& line : broadcast.lines) {
            for (const nlohmann::json& flow : line.value("flows", nlohmann::json::array())) {
                const nlohmann::json& all = flow["TSI"] == 30 ? flow["objects"] : nlohmann::json();
                const auto count = [&](const char* name) { return std::to_string(all.value(name, 0)); };
                objects += all.is_null() ? "" : count("whole") + " whole, " + count("repeats") + " again";
            }
        }
        EXPECT_EQ(objects, test.objects) << test.attributes << test.payload;
    }
}

TEST(DeliveryRules, OfManySessionsThatNothingNamesTheFirst)
{
    SBroadcast broadcast;
    broadcast.more = [](unsigned, CCapture& capture) {
        for (unsigned port = 8000; port < 8020; ++port) {
            capture.AddSession("?", port);
        }
    };
    broadcast.Broken();
    std::vector<std::string> messages;
    for (const nlohmann::json& line : broadcast.lines) {
        if (line["type"] == "finding") {
            messages.push_back(line["message"]);
        }
    }
    ASSERT_EQ(messages.size(), 17u);
    EXPECT_EQ(messages.back(), "nothing names 4 more sessions either, of 48 packets and 48 bytes");
}

}  // namespace
