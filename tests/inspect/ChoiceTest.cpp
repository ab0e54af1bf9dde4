#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "MmtCaptures.h"
#include "RouteBroadcast.h"
#include "model/Choice.h"

namespace {

using namespace packets;
using nlohmann::json;

constexpr char k_two[] =
    "<Service serviceId='2' serviceCategory='1' majorChannelNo='5' minorChannelNo='2' protected='false' "
    "shortServiceName='Tw&#xF3; B'><BroadcastSvcSignaling slsProtocol='1' slsDestinationIpAddress='239.255.7.1' "
    "slsDestinationUdpPort='7002'/></Service>";

/// Service 1 is sound; service 2 is not signalled on 239.255.7.1:7002; an alert that should wake receivers, and does
/// not.
std::string TwoServices()
{
    SBroadcast broadcast;
    broadcast.services += k_two;
    broadcast.more = [](unsigned second, CCapture& capture) {
        capture.AddLls(Number(0x04000001, 4) +
                       "<AEAT><AEA aeaId='A' aeaType='alert' audience='public' priority='4' "
                       "wakeup='false'/></AEAT>");
        if (second > 0) {
            capture.AddSession(Lct({second, 0, 4, false, 30}, "data"), 7002);
        }
    };
    return broadcast.Bytes();
}

/// What a report tells of, each once: tables by their names, services, verdicts, sessions of signalling and delivery,
/// rules.
struct STold {
    std::set<std::string> what;
    int status = 0;

    bool operator==(const STold& other) const { return what == other.what && status == other.status; }
};

std::ostream& operator<<(std::ostream& out, const STold& told)
{
    for (const std::string& each : told.what) {
        out << '"' << each << "\", ";
    }
    return out << "status " << told.status;
}

STold Told(const SResult& result)
{
    STold told;
    told.status = result.status;
    for (const json& line : Lines(result.out)) {
        const std::string type = line["type"];
        for (const char* key : {"LLS_table_idName", "session", "serviceId", "service", "rule"}) {
            const bool named = (type == "finding") == (key == std::string("rule"));
            const bool listed = type != "service" || key != std::string("LLS_table_idName");
            if (line.contains(key) && named && listed && type != "summary") {
                told.what.insert(type + ' ' +
                                 (line[key].is_string() ? line[key].get<std::string>() : line[key].dump()));
            }
        }
    }
    return told;
}

TEST(Choice, TellsOfWhatIsChosenAlone)
{
    const std::string capture = TwoServices();
    const STold one = {
        {"table SLT", "service 1", "signalling 239.255.7.1:7001", "delivery 239.255.7.1:7001", "verdict 1"}, 0};
    const STold two = {{"table SLT", "service 2", "delivery 239.255.7.1:7002", "verdict 2", "finding no-signalling"},
                       1};
    const STold alerts = {{"table AEAT", "finding alert-without-wakeup"}, 0};
    const std::set<std::string> rest = {"delivery 224.0.23.60:4937"};
    const auto both = [](STold a, const STold& b, const std::set<std::string>& more = {}) {
        a.what.insert(b.what.begin(), b.what.end());
        a.what.insert(more.begin(), more.end());
        a.status = std::max(a.status, b.status);
        return a;
    };
    const struct {
        std::string choice;
        STold told;
        std::string err;
    } cases[] = {
        {"", both(one, both(two, alerts), rest), ""},
        {"--service 1", one, ""},
        {"--service 0x1", one, ""},
        {"--service 5-1", one, ""},
        {"--service 5.1", one, ""},
        {"--service ONE", one, ""},
        {"--service 2", two, ""},
        {"--service 'tw\xC3\xB3 b'", two, ""},
        {"--service 1 --service 5.2", both(one, two), ""},
        {"--service On", {}, "--service On"},
        {"--service 5.3", {}, "--service 5.3"},
        {"--service 51", {}, "--service 51"},
        {"--service 1 --service 3", one, "--service 3"},
        {"--table aeat", alerts, ""},
        {"--table 4", alerts, ""},
        {"--table AEAT --service one", both(one, alerts), ""},
        {"--table slt", {{"table SLT", "service 1", "service 2"}, 0}, ""},
        {"--table rrt", {}, "--table rrt"},
        {"--session 239.255.7.1:7001",
         {{"signalling 239.255.7.1:7001", "delivery 239.255.7.1:7001", "verdict 1"}, 0},
         ""},
        {"--session 239.255.7.1:7002", {{"delivery 239.255.7.1:7002", "verdict 2", "finding no-signalling"}, 1}, ""},
        {"--session 224.0.23.60:4937",
         {{"table SLT", "service 1", "service 2", "table AEAT", "delivery 224.0.23.60:4937"}, 0},
         ""},
        {"--session 239.255.7.1:7003", {}, "--session 239.255.7.1:7003"},
    };
    const STold all = Told(Inspect("--json -", capture));
    for (const auto& test : cases) {
        SCOPED_TRACE(test.choice);
        const SResult result = Inspect("--json " + test.choice + " -", capture);
        STold told = Told(result);
        told.what.erase("finding session-not-announced");
        EXPECT_EQ(told, test.told);
        EXPECT_EQ(result.err, test.err.empty() ? "" : "vyr-atsc30-inspect: " + test.err + ": nothing of it came\n");
        for (const std::string& what : Told(result).what) {
            EXPECT_EQ(all.what.count(what), 1u) << what;
        }
    }
}

TEST(Choice, FindingsOfTheInputAsAWholeStay)
{
    const std::string capture = TwoServices();
    const SResult cut = Inspect("--json --service 1 -", capture.substr(0, capture.size() - 3));
    EXPECT_EQ(cut.status, 1);
    EXPECT_EQ(Told(cut).what.count("finding capture-damaged"), 1u);
    EXPECT_EQ(Told(cut).what.count("finding no-signalling"), 0u);
    // A list that does not parse may be the one of the service; an alert table that does not is another matter.
    for (const auto& [table, counts] : {std::pair(0x01000001u, 1), std::pair(0x04000001u, 0)}) {
        const std::string broken = CCapture(1).AddLls(Number(table, 4) + "<SLT>").Bytes();
        const SResult result = Inspect("--json --service 1 -", broken);
        EXPECT_EQ(Told(result).what.count("finding table-not-parsed"), static_cast<std::size_t>(counts)) << table;
    }
}

TEST(Choice, AServiceStaysChosen)
{
    const auto slt = [](const std::string& name, int id, unsigned version) {
        return Slt("<Service serviceId='" + std::to_string(id) + "' serviceCategory='4' shortServiceName='" + name +
                       "'/><Service serviceId='7' serviceCategory='4' shortServiceName='B" + name + "'/>",
                   version);
    };
    CCapture capture(1);
    capture.AddLls(slt("ONE", 1, 1)).AddLls(slt("TWO", 1, 2)).AddLls(slt("TWO", 2, 3)).AddLls(slt("ONE", 3, 4));
    std::vector<std::string> told;
    for (const json& line : Lines(Inspect("--json --full --service one -", capture.Bytes()).out)) {
        if (line["type"] == "service") {
            told.push_back(line["serviceId"].dump() + ' ' + line["shortServiceName"].get<std::string>());
        } else if (line["type"] == "table") {
            told.push_back("list of " + line["services"].dump());
        }
    }
    EXPECT_EQ(told, (std::vector<std::string>{"list of 1", "1 ONE", "list of 1", "1 TWO", "list of 0", "list of 1",
                                              "3 ONE"}));
    // The next input knows nothing of it.
    const CTemporary first(capture.Bytes());
    const CTemporary second(CCapture(1).AddLls(slt("TWO", 1, 1)).Bytes());
    const std::string both = Inspect("--json --service one " + first.Name() + ' ' + second.Name()).out;
    EXPECT_EQ(both.find(second.Name() + "\",\"packet\""), std::string::npos);
}

TEST(Choice, ExtractionIsOfWhatIsChosen)
{
    const CTemporaryFolder folder;
    Inspect("--extract " + folder.Of("out") + " --service 2 --table 4 -", TwoServices());
    std::map<std::string, int> types;
    for (const json& line : Lines(ReadFile(folder.Of("out/index.jsonl")), "extracted")) {
        ++types[line["type"].get<std::string>() + ' ' + line.value("LLS_table_idName", "")];
    }
    EXPECT_EQ(types, (std::map<std::string, int>{{"table SLT", 2}, {"table AEAT", 2}}));
}

TEST(Choice, Times)
{
    // One packet each quarter of a second from 2027-01-15T08:00:00Z on.
    CCapture capture(1);
    for (unsigned version = 0; version < 8; ++version) {
        capture.AddLls(Slt(Service(6), version));
    }
    const struct {
        std::string window;
        std::string packets;
    } cases[] = {
        {"", "12345678"},
        {"--from 2027-01-15T08:00:00.5Z", "345678"},
        {"--from 2027-01-15T08:00:00.500000001Z", "45678"},
        {"--until 2027-01-15T08:00:00.5Z", "12"},
        {"--until 2027-01-15T08:00:00.500000001Z", "123"},
        {"--from +0.25 --until +1", "234"},
        {"--from +1", "5678"},
        {"--from 2027-01-15T09:00:01+01:00 --until +1.25", "5"},
        {"--from +2", ""},
        {"--until +0", ""},
    };
    for (const auto& test : cases) {
        std::string packets;
        const std::vector<json> lines = Lines(Inspect("--json " + test.window + " -", capture.Bytes()).out);
        for (const json& line : lines) {
            packets += line["type"] == "table" ? line["source"]["packet"].dump() : "";
        }
        EXPECT_EQ(packets, test.packets) << test.window;
        EXPECT_EQ(lines.back()["packets"], test.packets.size()) << test.window;
    }
    for (const char* wrong : {"", "1", "+", "+x", "+1.", "+1.5x", "+-1", "2027-01-15", "2027-01-15T08:00:00",
                              "2027-01-15T08:00:00.Z", "yesterday", "+99999999999"}) {
        EXPECT_FALSE(vyr::inspect::CWindow::Read(wrong)) << wrong;
    }
}

TEST(Choice, NamesOfTables)
{
    using vyr::inspect::FindTable;
    const std::map<std::string, int> cases = {{"SLT", 1},
                                              {"slt", 1},
                                              {"rrt", 2},
                                              {"SystemTime", 3},
                                              {"system-time", 3},
                                              {"OnscreenMessage", 5},
                                              {"certification-data", 6},
                                              {"multi-table", 0xFE},
                                              {"0xFF", 0xFF},
                                              {"7", 7},
                                              {"256", -1},
                                              {"t", -1},
                                              {"", -1},
                                              {"sltx", -1},
                                              {"-1", -1},
                                              {"e", -1}};
    for (const auto& [text, id] : cases) {
        EXPECT_EQ(FindTable(text).value_or(~0u), static_cast<unsigned>(id)) << text;
    }
    for (const char* usage : {"--table none", "--session 1.2.3.4", "--from now", "--until 5"}) {
        EXPECT_EQ(Inspect(usage + (' ' + k_lineup)).status, 2) << usage;
    }
}

}  // namespace
