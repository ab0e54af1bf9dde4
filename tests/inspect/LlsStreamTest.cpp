// Several broadcasts on one address of LLS: which table is taken for whose, and what is said of it.
#include <gtest/gtest.h>

#include "MadeBroadcast.h"
#include "Tool.h"

namespace {

using namespace packets;

/// One table of LLS, in version 1 always: what is of another broadcast breaks rules where it is taken for the same.
struct SEvent {
    unsigned second;
    char sender;
    unsigned port;
    unsigned bsid;  ///< of a list; 0: a system time, by which senders differ
    bool isSigned = false;
};

std::string Capture(const std::vector<SEvent>& events)
{
    CCapture capture(1);
    for (const SEvent& event : events) {
        const std::string bsid = std::to_string(event.bsid);
        const std::string table =
            event.bsid == 0 ? "<SystemTime currentUtcOffset=\"37\" utcLocalOffset=\"-PT" +
                                  std::to_string(event.sender - 'a' + 5) + "H\" dsStatus=\"false\"/>"
                            : "<SLT bsid=\"" + bsid +
                                  "\"><Service serviceId=\"1\" sltSvcSeqNum=\"0\" protected=\"false\" hidden=\"false\" "
                                  "broadbandAccessRequired=\"false\" majorChannelNo=\"7\" minorChannelNo=\"1\" "
                                  "serviceCategory=\"1\" shortServiceName=\"S" +
                                  bsid +
                                  "\"><BroadcastSvcSignaling slsProtocol=\"1\" slsDestinationIpAddress=\"239.255.7.1\" "
                                  "slsDestinationUdpPort=\"5000\"/></Service></SLT>";
        SIpv4 fields;
        fields.source = 0x0A000000u + static_cast<unsigned char>(event.sender);
        const std::string id = Number(event.bsid == 0 ? 3 : 1, 1);
        const std::string inside = Number(1, 1) + id + Number(1, 1) + Number(table.size(), 2) + table + Number(0, 2);
        const std::string lls =
            (event.isSigned ? Number(0xFE, 1) : id) + Number(0, 2) + Number(1, 1) + (event.isSigned ? inside : table);
        capture.At(event.second, 1000).Add(Ethernet(Ipv4(Udp(lls, 4937, event.port), fields)));
    }
    return capture.Bytes();
}

/// Each table with its stream behind the address, and the first letter of its status; what is gone with it; and
/// findings of rules that compare.
std::string Told(const std::string& capture)
{
    const std::map<std::string, std::string> k_rules = {
        {"several-broadcasts", "several"},  {"changed-without-version", "WITHOUT"}, {"daylight-saving", "DAYLIGHT"},
        {"sequence-unchanged", "SEQUENCE"}, {"service-id-twice", "TWICE"},          {"session-shared", "SHARED"},
    };
    const auto stream = [](const nlohmann::json& record) {
        const std::string name = record["stream"];
        return name.substr(std::min(name.find(' '), name.size()));
    };
    std::string told;
    for (const nlohmann::json& line : Lines(Inspect("--json -", capture).out)) {
        if (line["type"] == "table") {
            told += (line["LLS_table_id"] == 1   ? "L"
                     : line["LLS_table_id"] == 3 ? "T"
                                                 : "S") +
                    stream(line) + ' ' + line["status"].get<std::string>().substr(0, 1) + ", ";
            for (const nlohmann::json& gone : line.value("listsGone", nlohmann::json::array())) {
                told += "gone" + stream(gone) + ", ";
            }
        } else if (line["type"] == "finding" && k_rules.count(line["rule"]) != 0) {
            told += k_rules.at(line["rule"]) + ", ";
        }
    }
    return told;
}

TEST(LlsStream, EachBroadcastIsForItself)
{
    const struct {
        const char* name;
        std::vector<SEvent> events;
        const char* told;
    } k_cases[] = {
        {"one", {{0, 'a', 1, 5}, {0, 'a', 1, 0}, {1, 'a', 1, 5}, {1, 'a', 1, 0}}, "L n, T n, L r, T r, "},
        {"one that sends each table from a port of its own",
         {{0, 'a', 9, 0}, {0, 'a', 1, 5}, {1, 'a', 9, 0}, {1, 'a', 8, 5}},
         "T n, L n, T r, L r, "},
        {"one whose time another machine sends: it waits for that one's list, and no longer than it is due",
         {{0, 'a', 1, 5}, {0, 'b', 1, 0}, {3, 'a', 1, 5}, {4, 'b', 1, 0}, {6, 'a', 1, 5}, {6, 'b', 1, 0}},
         "L n, L r, L r, T n, T r, T r, "},
        {"the same, at the end of the input", {{0, 'a', 1, 5}, {0, 'b', 1, 0}}, "L n, T n, "},
        {"one from two machines",
         {{0, 'a', 1, 5}, {0, 'b', 1, 5}, {1, 'b', 1, 0}, {2, 'a', 1, 5}, {2, 'b', 1, 0}},
         "L n, L r, T n, L r, T r, "},
        {"one whose time comes first, from a machine that has its list as well",
         {{0, 'b', 1, 0}, {0, 'a', 1, 5}, {1, 'b', 1, 5}, {1, 'b', 1, 0}, {2, 'b', 1, 0}},
         "T n, L bsid 5 n, L bsid 5 r, gone, T bsid 5 n, T bsid 5 r, "},
        {"one that gets another bsid, and another",
         {{0, 'a', 1, 5}, {1, 'a', 1, 6}, {2, 'a', 1, 6}, {3, 'a', 1, 7}},
         "L n, L c, WITHOUT, L r, L c, WITHOUT, "},
        {"two",
         {{0, 'a', 1, 5},
          {0, 'b', 1, 6},
          {0, 'a', 1, 0},
          {0, 'b', 1, 0},
          {1, 'a', 1, 5},
          {1, 'b', 1, 6},
          {1, 'a', 2, 0},
          {1, 'b', 2, 0}},
         "L n, L bsid 6 n, T n, T bsid 6 n, several, L r, L bsid 6 r, T r, T bsid 6 r, "},
        {"two, whose times come before their lists",
         {{0, 'b', 1, 0}, {0, 'a', 1, 5}, {0, 'a', 1, 0}, {1, 'b', 1, 6}, {1, 'b', 1, 0}, {2, 'a', 1, 5}},
         "T n, L bsid 5 n, T bsid 5 n, L n, T r, several, L bsid 5 r, "},
        {"two, and the time of the second between their lists",
         {{0, 'a', 1, 5}, {0, 'a', 1, 0}, {0, 'b', 1, 0}, {1, 'b', 1, 6}, {1, 'b', 1, 0}},
         "L n, T n, L bsid 6 n, T bsid 6 n, T bsid 6 r, "},
        {"two whose lists are signed",
         {{0, 'a', 1, 5, true}, {0, 'b', 1, 6, true}, {1, 'a', 1, 5, true}, {1, 'b', 1, 6, true}},
         "S n, L n, S bsid 6 n, L bsid 6 n, several, S r, L r, S bsid 6 r, L bsid 6 r, "},
        {"three",
         {{0, 'a', 1, 5}, {0, 'b', 1, 6}, {0, 'c', 1, 7}, {1, 'a', 1, 5}, {1, 'b', 1, 6}, {1, 'c', 1, 7}},
         "L n, L bsid 6 n, L bsid 7 n, several, L r, several, L bsid 6 r, L bsid 7 r, "},
        {"two from one socket, once the first comes again",
         {{0, 'a', 1, 5}, {1, 'a', 1, 6}, {2, 'a', 1, 5}, {3, 'a', 1, 6}, {4, 'a', 1, 5}},
         "L n, L c, WITHOUT, several, L c, WITHOUT, L bsid 6 n, L r, "},
        {"two, the second of which has a list after its time has waited long enough",
         {{0, 'a', 1, 5}, {0, 'b', 1, 0}, {6, 'a', 1, 5}, {7, 'b', 1, 6}, {7, 'b', 1, 0}, {8, 'a', 1, 5}},
         "L n, L r, T n, L bsid 6 n, T bsid 6 n, several, L r, "},
        {"one socket, whose first bsid comes again soon",
         {{0, 'a', 1, 5}, {1, 'a', 1, 6}, {15, 'a', 1, 5}},
         "L n, L c, WITHOUT, several, L c, WITHOUT, "},
        {"the same, later", {{0, 'a', 1, 5}, {1, 'a', 1, 6}, {16, 'a', 1, 5}}, "L n, L c, WITHOUT, L c, WITHOUT, "},
        {"one after another: the first is over when three of its lists are missing",
         {{0, 'a', 1, 5}, {0, 'a', 1, 0}, {1, 'b', 1, 6}, {15, 'b', 1, 6}, {16, 'b', 1, 6}, {17, 'a', 1, 5}},
         "L n, T n, L bsid 6 n, L bsid 6 r, several, L bsid 6 r, gone, L n, "},
    };
    for (const auto& test : k_cases) {
        EXPECT_EQ(Told(Capture(test.events)), test.told) << test.name;
    }
}

/// Behind the eighth, lists are taken for those of the first: no sender makes followers without end.
TEST(LlsStream, HoldsABoundedNumberOfBroadcasts)
{
    std::vector<SEvent> events;
    std::string told;
    for (unsigned bsid = 1; bsid <= 9; ++bsid) {
        events.push_back({0, static_cast<char>('a' + bsid), 1, bsid});
        told += bsid == 1 ? "L n, " : bsid == 9 ? "several, L c, WITHOUT, " : "L bsid " + std::to_string(bsid) + " n, ";
    }
    EXPECT_EQ(Told(Capture(events)), told);
    // As many tables of senders without a list wait.
    events = {{0, 'a', 1, 5}};
    for (unsigned i = 0; i < 17; ++i) {
        events.push_back({1, static_cast<char>('c' + i % 3), i, 0});
    }
    events.push_back({1, 'a', 1, 5});
    EXPECT_EQ(Told(Capture(events)).substr(0, 15), "L n, T n, L r, ");
}

/// Their ids and channels may be the same.
TEST(LlsStream, VerdictsSayOfWhichListTheyAre)
{
    const std::string text = Inspect("-", Capture({{0, 'a', 1, 5}, {0, 'b', 1, 6}})).out;
    const std::string why = "cannot be told from this capture: it has the LLS alone, and no session of a service\n";
    EXPECT_EQ(text.substr(text.rfind("\n\n") + 2),
              "-: services\n"
              "  id  channel  name  list                             verdict\n"
              "  1   7.1      S5    224.0.23.60:4937 group 0         " +
                  why + "  1   7.1      S6    224.0.23.60:4937 bsid 6 group 0  " + why);
}

/// Two whole broadcasts, whose services have the same id and channel: what is wrong with the one of the second concerns
/// no other.
TEST(LlsStream, FaultsAreThoseOfOneBroadcast)
{
    const struct {
        const char* name;
        std::function<void(SBroadcast&)> change;
        std::function<bool(const SSent&)> sent;
        const char* verdict;
    } k_cases[] = {
        {"sound", [](SBroadcast&) {}, [](const SSent&) { return true; }, "plays"},
        {"no MPD", [](SBroadcast& b) { b.mpd.clear(); }, [](const SSent&) { return true; },
         "does not play: the channel is listed and shows nothing: receivers do not learn what to play (service 1 has a "
         "USBD and an S-TSID, and no MPD)"},
        {"no signalling", [](SBroadcast&) {}, [](const SSent& sent) { return sent.kind != SSent::SIGNALLING; },
         "does not play: the channel is listed and shows nothing (no signalling of service 1: none of 96 packets to "
         "239.255.7.2:5000 carries source data of TSI 0)"},
        {"no sound", [](SBroadcast&) {}, [](const SSent& sent) { return sent.lct.tsi != 20; },
         "plays, but there is no sound"},
        {"a channel that there is not",
         [](SBroadcast& b) { b.services = With(b.services, "ChannelNo=\"1\"", "ChannelNo=\"1000\""); },
         [](const SSent&) { return true; }, nullptr},
    };
    for (const auto& test : k_cases) {
        SBroadcast first;
        SBroadcast second;
        second.services = With(With(second.services, "NEWS", "ESG"), "239.255.7.1", "239.255.7.2");
        second.stsid = With(second.stsid, "239.255.7.1", "239.255.7.2");
        test.change(second);
        second.change = [&test](SSent& sent) {
            sent.source = 0xC000020B;
            if (sent.table == 1) {
                sent.data = With(With(sent.data, "bsid=\"5\"", "bsid=\"6\""), "192.0.2.10", "192.0.2.11");
            }
            sent.destination = sent.kind == SSent::LLS ? k_lls : k_session + 1;
            return test.sent(sent);
        };
        second.stsid = With(second.stsid, "192.0.2.10", "192.0.2.11");
        CCapture capture(1);
        for (unsigned round = 0; round < first.rounds; ++round) {
            first.Round(capture, round);
            second.Round(capture, round);
        }
        const std::string text = Inspect("-", capture.Bytes()).out;
        const std::string verdicts = text.substr(text.rfind("\n\n") + 2);
        EXPECT_NE(verdicts.find("NEWS  224.0.23.60:4937 group 0         plays\n"), std::string::npos)
            << test.name << '\n'
            << verdicts;
        EXPECT_EQ(verdicts.find("NEWS  224.0.23.60:4937 group 0         plays, "), std::string::npos) << test.name;
        const std::string other = test.verdict != nullptr ? test.verdict : "does not play: receivers do not list it";
        EXPECT_NE(verdicts.find("ESG   224.0.23.60:4937 bsid 6 group 0  " + other), std::string::npos)
            << test.name << '\n'
            << verdicts;
    }
}

/// What is over is gone from a report that is compared with, too.
TEST(LlsStream, AReportIsReadAsItWasWritten)
{
    const std::string capture = Capture({{0, 'a', 1, 5}, {1, 'b', 1, 6}, {16, 'b', 1, 6}});
    const CTemporary before(Inspect("--json -", capture).out);
    EXPECT_NE(ReadFile(before.Name()).find("listsGone"), std::string::npos);
    std::string told;
    for (const nlohmann::json& line : Lines(Inspect("--json --baseline '" + before.Name() + "' -", capture).out)) {
        told += line["type"] == "difference" ? line.dump() : "";
    }
    EXPECT_EQ(told, "");
}

/// A list is looked at for its bsid before it is parsed: the library's log has each thing once.
TEST(LlsStream, TheLogTellsOfAListOnce)
{
    CCapture capture(1);
    capture.AddLls("\1" + std::string(2, '\0') + "\1<SLT bsid='5'><Service/>");
    const std::string log = Inspect("--log debug -", capture.Bytes()).err;
    const std::size_t told = log.find("Premature end of data");
    EXPECT_NE(told, std::string::npos);
    EXPECT_EQ(log.find("Premature end of data", told + 1), std::string::npos) << log;
}

}  // namespace
