#include <gtest/gtest.h>

#include "Broadcast.h"

namespace {

using namespace packets;

/// A second service, of video alone on TSI 10 of port 5001: the same media as the first one's.
void AddSecond(SBroadcast& b)
{
    b.services += With(
        With(With(b.services, "serviceId=\"1\"", "serviceId=\"2\""), "minorChannelNo=\"1\"", "minorChannelNo=\"2\""),
        "Port=\"5000\"", "Port=\"5001\"");
}

/// Sends another service list in the first two rounds.
auto FirstList(const std::string& part, const std::string& other)
{
    return [=](SBroadcast& b) {
        b.change = [=](SSent& sent) {
            if (sent.round < 2 && sent.kind == SSent::LLS && sent.table == 1) {
                sent.data = With(sent.data, part, other);
                sent.data[3] = '\0';  // LLS_table_version
            }
            return true;
        };
    };
}

/// Sends signalling with another text in the first two rounds.
auto FirstSignalling(const std::string& part, const std::string& other)
{
    return [=](SBroadcast& b) {
        b.change = [object = Gzip(With(b.Package(), part, other))](SSent& sent) {
            if (sent.round < 2 && sent.kind == SSent::SIGNALLING) {
                sent.lct.toi = 7;
                sent.lct.length = static_cast<int>(object.size());
                sent.lct.close = true;
                sent.data = object;
                return sent.lct.start == 0;
            }
            return true;
        };
    };
}

auto Drop(std::function<bool(const SSent&)> which)
{
    return [=](SBroadcast& b) { b.change = [=](SSent& sent) { return !which(sent); }; };
}

TEST(Verdicts, WhetherAServicePlays)
{
    const auto ofTsi = [](const SSent& sent, unsigned tsi) { return sent.kind >= SSent::INIT && sent.lct.tsi == tsi; };
    const auto list = [](const std::string& part, const std::string& other) {
        return [=](SBroadcast& b) { b.services = With(b.services, part, other); };
    };
    const struct {
        const char* name;
        const char* verdict;
        const char* cause;  ///< its begin
        std::function<void(SBroadcast&)> change;
        const char* withoutBroadband = "";
        const char* options = "";
    } cases[] = {
        {"sound", "plays", "", [](SBroadcast&) {}},
        {"not listed", "does-not-play", "receivers do not list it: minorChannelNo 1000",
         list("ChannelNo=\"1\"", "ChannelNo=\"1000\"")},
        {"broadband", "plays", "", list("Required=\"false\"", "Required=\"true\""), "does-not-play",
         "--set db/menu/broadcasting/atsc3_bb_option=1"},
        {"no address", "does-not-play",
         "the channel is listed and shows nothing (service 1: slsDestinationIpAddress is not",
         list("239.255.7.1", "none")},
        {"the LLS alone", "cannot-tell", "it has the LLS alone",
         Drop([](const SSent& s) { return s.kind != SSent::LLS; })},
        {"the LLS, and the network's own traffic", "cannot-tell", "it has the LLS alone",
         [](SBroadcast& b) {
             b.change = [](SSent& s) {
                 if (s.kind != SSent::LLS) {  // discovery of devices
                     s.datagram = "M-SEARCH * HTTP/1.1\r\n\r\n";
                     s.destination = 0xEFFFFFFA;
                     s.port = 1900;
                 }
                 return true;
             };
         }},
        {"all to other addresses", "does-not-play",
         "the channel is listed and shows nothing (no signalling of service 1: no packets",
         [](SBroadcast& b) {
             b.change = [](SSent& s) {
                 s.port += s.kind != SSent::LLS ? 1 : 0;
                 return true;
             };
         }},
        {"no signalling", "does-not-play",
         "the channel is listed and shows nothing (no signalling of service 1: none of",
         Drop([](const SSent& s) { return s.kind == SSent::SIGNALLING; })},
        {"no signalling, in 4 s", "cannot-tell", "it ends too soon behind the service list",
         [](SBroadcast& b) {
             b.rounds = 4;
             b.change = [](SSent& s) { return s.kind != SSent::SIGNALLING; };
         }},
        {"no signalling, listed 4 s before the end", "cannot-tell", "it ends too soon behind the service list",
         Drop([](const SSent& s) { return s.kind == SSent::SIGNALLING || (s.table == 1 && s.round < 8); })},
        {"signalling alone", "cannot-tell", "it has signalling alone",
         Drop([](const SSent& s) { return s.kind >= SSent::INIT; })},
        {"ends behind the signalling", "cannot-tell", "it ends too soon",
         [](SBroadcast& b) { b.change = [](SSent& s) { return s.kind != SSent::SIGNALLING || s.round >= 10; }; }},
        {"no sound", "plays-but", "there is no sound", Drop([=](const SSent& s) { return ofTsi(s, 20); })},
        {"no picture", "plays-but", "there is no picture", Drop([=](const SSent& s) { return ofTsi(s, 10); })},
        {"neither, and media of others", "does-not-play", "neither picture nor sound is sent",
         [=](SBroadcast& b) {
             b.change = [=](SSent& s) {
                 s.port = ofTsi(s, 10) ? 5009 : s.port;
                 return !ofTsi(s, 20);
             };
         }},
        {"one piece broken", "plays-but", "the picture breaks up: 1 of ", Drop([=](const SSent& s) {
             return s.kind == SSent::MEDIA && ofTsi(s, 10) && s.round == 5 && s.lct.start == 0;
         })},
        {"most pieces broken", "does-not-play", "8 of ", Drop([=](const SSent& s) {
             return s.kind == SSent::MEDIA && ofTsi(s, 10) && s.round >= 2 && s.round < 10 && s.lct.start == 0;
         })},
        {"pieces cut by the capture", "cannot-tell", "packets of it were cut", [](SBroadcast& b) { b.cutTo = 1000; }},
        {"in packets with compressed headers", "cannot-tell", "not all of it was received",
         [](SBroadcast& b) {
             b.alp = true;
             b.change = [](SSent& s) { return s.compressed = s.kind != SSent::LLS, true; };
         }},
        {"while something else is in such", "plays", "",
         [](SBroadcast& b) {
             b.alp = true;
             b.change = [](SSent& s) { return s.compressed = s.table == 3, true; };
         }},
        {"cut, and not listed", "does-not-play", "receivers do not list it: minorChannelNo 1000",
         [=](SBroadcast& b) {
             list("ChannelNo=\"1\"", "ChannelNo=\"1000\"")(b);
             b.cutTo = 1000;
         }},
        {"no address of the media", "plays", "",
         [](SBroadcast& b) { b.stsid = With(b.stsid, " dIpAddr=\"239.255.7.1\" dPort=\"5000\"", ""); }},
        {"no port", "plays", "", [](SBroadcast& b) { b.stsid = With(b.stsid, " dPort=\"5000\"", ""); }},
        {"on an address that was not captured", "cannot-tell", "the service's picture and sound may be among",
         [](SBroadcast& b) { b.stsid = With(b.stsid, "239.255.7.1", "239.255.9.9"); }},
        {"nothing but what is of no broadcast", "cannot-tell", "it has signalling alone",
         [=](SBroadcast& b) {
             b.change = [=](SSent& s) {
                 s.destination = ofTsi(s, 10) ? k_session + 0x100 : s.destination;
                 return !ofTsi(s, 20);
             };
         }},
        {"sound for later", "plays", "",
         [=](SBroadcast& b) {
             b.stsid = With(b.stsid, "<LS tsi=\"20\"", "<LS startTime=\"2027-01-15T10:00:00Z\" tsi=\"20\"");
             b.change = [=](SSent& s) { return !ofTsi(s, 20); };
         }},
        {"sound stops", "plays-but", "there is no sound any more",
         [=](SBroadcast& b) {
             b.rounds = 30;
             b.change = [=](SSent& s) { return !ofTsi(s, 20) || s.round < 10; };
         }},
        {"for as long as a segment may be", "plays", "",
         [=](SBroadcast& b) {
             b.rounds = 20;
             b.change = [=](SSent& s) { return !ofTsi(s, 20) || s.round < 10; };
         }},
        {"picture and sound stop", "does-not-play", "neither picture nor sound is sent any more",
         [=](SBroadcast& b) {
             b.rounds = 30;
             b.change = [=](SSent& s) { return s.kind < SSent::INIT || s.round < 10; };
         }},
        {"of which something may come late", "plays", "",
         [=](SBroadcast& b) {
             b.rounds = 30;
             b.change = [=](SSent& s) { return !ofTsi(s, 20) || s.round < 2 || s.round == 20; };
         }},
        {"other sound in its place", "plays", "",
         [=](SBroadcast& b) {
             b.rounds = 30;
             b.stsid = With(b.stsid, "</RS>", SBroadcast::Lct(21, "a", "audio", " lang=\"en\"", 50) + "</RS>");
             b.change = [=](SSent& s) {
                 s.lct.tsi = ofTsi(s, 20) && s.round >= 10 ? 21 : s.lct.tsi;
                 return true;
             };
         }},
        {"an S-TSID that never parses", "does-not-play", "receivers go on without its S-TSID",
         [](SBroadcast& b) { b.stsid = With(b.stsid, "</RS>", ""); }},
        {"an MPD that never parses", "does-not-play", "receivers go on without its MPD",
         [](SBroadcast& b) { b.mpd = With(b.mpd, "</Period>", ""); }},
        {"no LCT session", "does-not-play", "its S-TSID announces no LCT session",
         [](SBroadcast& b) { b.stsid = "<S-TSID><RS/></S-TSID>"; }},
        {"none, and broadband", "plays", "",
         [](SBroadcast& b) {
             b.stsid = "<S-TSID><RS/></S-TSID>";
             b.usbd = With(b.usbd, "</DeliveryMethod>",
                           "<UnicastAppService><BasePattern>v</BasePattern><BasePattern>a</BasePattern>"
                           "</UnicastAppService></DeliveryMethod>");
         }},
        {"no signalling, and nobody wants to hear it", "does-not-play", "the channel is listed and shows nothing",
         Drop([](const SSent& s) { return s.kind == SSent::SIGNALLING; }), "", "--ignore no-signalling"},
        {"or takes it for a note", "does-not-play", "the channel is listed and shows nothing",
         Drop([](const SSent& s) { return s.kind == SSent::SIGNALLING; }), "", "--severity no-signalling=note"},
        {"not listed, mended", "plays", "", FirstList("ChannelNo=\"1\"", "ChannelNo=\"1000\"")},
        {"of no protocol, mended", "plays", "", FirstList("slsProtocol=\"1\"", "slsProtocol=\"7\"")},
        {"a long name, mended", "plays", "", FirstList("NEWS", "NEWSNEWS")},
        {"a document that does not parse, mended", "plays", "", FirstSignalling("</Period>", "")},
        {"protected", "plays-but", "only where it can be unlocked: it is protected; and receivers say",
         list("protected=\"false\"", "protected=\"true\"")},
        {"protected, and no sound", "plays-but",
         "only where it can be unlocked: it is protected; and there is no sound",
         [=](SBroadcast& b) {
             list("protected=\"false\"", "protected=\"true\"")(b);
             b.change = [=](SSent& s) { return !ofTsi(s, 20); };
         }},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        SBroadcast broadcast;
        test.change(broadcast);
        const SResult result = Inspect(std::string("--json ") + test.options + " -", broadcast.Bytes());
        nlohmann::json verdict;
        for (const nlohmann::json& line : Lines(result.out)) {
            verdict = line["type"] == "verdict" ? line : verdict;
        }
        ASSERT_FALSE(verdict.is_null());
        EXPECT_EQ(verdict["verdict"], test.verdict) << verdict;
        EXPECT_EQ(verdict.value("cause", "").rfind(test.cause, 0), 0u) << verdict;
        EXPECT_EQ(verdict.contains("withoutBroadband") ? verdict["withoutBroadband"]["verdict"] : "",
                  test.withoutBroadband);
    }
}

TEST(Verdicts, EachServiceHasItsOwn)
{
    SBroadcast broadcast;
    AddSecond(broadcast);
    const SResult result = Inspect("-", broadcast.Bytes());
    EXPECT_EQ(result.out.substr(result.out.rfind("\n\n") + 2),
              "-: services\n"
              "  id  channel  name  verdict\n"
              "  1   7.1      NEWS  plays\n"
              "  2   7.2      NEWS  does not play: the channel is listed and shows nothing (no signalling of service "
              "2: no packets to "
              "239.255.7.1:5001 from 192.0.2.10)\n");
}

/// What came in packets with compressed headers may be of any session.
TEST(Verdicts, NothingCameOrNothingThatCanBeRead)
{
    for (const bool compressed : {true, false}) {
        SBroadcast broadcast;
        broadcast.alp = true;
        broadcast.change = [=](SSent& sent) {
            sent.compressed = compressed && sent.kind != SSent::LLS;
            return compressed || sent.kind == SSent::LLS;
        };
        const std::string text = Inspect("-", broadcast.Bytes()).out;
        EXPECT_EQ(text.find("nothing that can be read") != text.npos, compressed) << text;
        EXPECT_EQ(text.find("nothing came") != text.npos, !compressed) << text;
    }
}

/// Two services on one address and port, with the same TSIs: what another source sends is none of theirs.
TEST(Verdicts, SourcesOfOneAddressAreApart)
{
    SBroadcast first;
    const std::string other = With(With(With(first.services, "serviceId=\"1\"", "serviceId=\"2\""),
                                        "minorChannelNo=\"1\"", "minorChannelNo=\"2\""),
                                   "192.0.2.10", "192.0.2.11");
    first.services += other;
    SBroadcast second;
    second.usbd = With(second.usbd, "serviceId=\"1\"", "serviceId=\"2\"");
    second.stsid = With(second.stsid, "192.0.2.10", "192.0.2.11");
    second.change = [](SSent& sent) {
        sent.source = 0xC000020B;
        return sent.kind != SSent::LLS && sent.lct.tsi != 20;
    };
    CCapture capture(1);
    for (unsigned round = 0; round < first.rounds; ++round) {
        first.Round(capture, round);
        second.Round(capture, round);
    }
    const SResult result = Inspect("-", capture.Bytes());
    EXPECT_EQ(result.out.substr(result.out.rfind("\n\n") + 2),
              "-: services\n"
              "  id  channel  name  verdict\n"
              "  1   7.1      NEWS  plays\n"
              "  2   7.2      NEWS  plays, but there is no sound\n");
}

}  // namespace
