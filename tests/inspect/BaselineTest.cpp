#include "MadeBroadcast.h"
#include "Tool.h"

using namespace packets;

namespace {

/// Two services, to be changed.
SBroadcast Sound()
{
    SBroadcast broadcast;
    const std::string other = With(With(With(broadcast.services, "serviceId=\"1\"", "serviceId=\"2\""), "NEWS", "ESG"),
                                   "minorChannelNo=\"1\"", "minorChannelNo=\"2\"");
    broadcast.services +=
        With(With(other, "serviceCategory=\"1\"", "serviceCategory=\"3\""), "239.255.7.1", "239.255.7.2");
    return broadcast;
}

bool NoAudio(const SSent& sent)
{
    return sent.lct.tsi != 20;
}

}  // namespace

/// Each change with what is told of it, and whether it is worse.
TEST(Baseline, TellsWhatDiffersAndWhatIsWorse)
{
    const auto silent = [](SSent& sent) { return NoAudio(sent); };
    // Subtitles that never come, and another component that does not either.
    const auto subtitled = [](unsigned missing) {
        return [missing](SBroadcast& b) {
            b.stsid = With(b.stsid, "</RS>", SBroadcast::Lct(30, "s", "subtitles", "", 5) + "</RS>");
            b.change = [missing](SSent& sent) { return sent.lct.tsi == 0 || sent.lct.tsi != missing; };
        };
    };
    const struct {
        const char* what;
        std::function<void(SBroadcast&)> before, now;
        std::vector<std::string> told;  ///< "what", and "worse" where it is
        const char* options = "";
        const char* optionsBefore = "";
    } cases[] = {
        {"nothing", [](SBroadcast&) {}, [](SBroadcast&) {}, {}},
        {"longer", [](SBroadcast&) {}, [](SBroadcast& b) { b.rounds = 20; }, {}},
        {"a service is gone",
         [](SBroadcast&) {},
         [](SBroadcast& b) { b.services = SBroadcast().services; },
         {"service-gone worse", "finding-gone"}},
        {"a service is new",
         [](SBroadcast& b) { b.services = SBroadcast().services; },
         [](SBroadcast&) {},
         {"service-new", "finding-new worse"}},
        {"a field differs",
         [](SBroadcast&) {},
         [](SBroadcast& b) { b.services = With(b.services, "NEWS", "NEWS2"); },
         {"service-changed"}},
        {"no sound now",
         [](SBroadcast&) {},
         [=](SBroadcast& b) { b.change = silent; },
         {"verdict worse", "finding-new worse"}},
        {"no sound before", [=](SBroadcast& b) { b.change = silent; }, [](SBroadcast&) {}, {"verdict", "finding-gone"}},
        {"too short to tell",
         [](SBroadcast&) {},
         [](SBroadcast& b) { b.change = [](SSent& sent) { return sent.kind == SSent::LLS; }; },
         {"verdict", "verdict", "finding-new", "finding-gone"}},
        {"a warning",
         [](SBroadcast&) {},
         [](SBroadcast& b) { b.services = With(b.services, "NEWS", "TOOLONGNAME"); },
         {"service-changed", "verdict worse", "finding-new"}},
        {"a warning that counts",
         [](SBroadcast&) {},
         [](SBroadcast& b) { b.services = With(b.services, "NEWS", "TOOLONGNAME"); },
         {"service-changed", "verdict worse", "finding-new worse"},
         "--fail-on warning"},
        {"quietly", [](SBroadcast&) {}, [](SBroadcast&) {}, {}, "-q"},
        {"no sound now, quietly",
         [](SBroadcast&) {},
         [=](SBroadcast& b) { b.change = silent; },
         {"verdict worse", "finding-new worse"},
         "-q"},
        {"no subtitles", subtitled(0), subtitled(0), {}},
        {"no sound besides", subtitled(0), subtitled(20), {"verdict worse"}},
        {"one service", [](SBroadcast&) {}, [](SBroadcast&) {}, {}, "--service NEWS", "--service NEWS"},
        {"another one is gone",
         [](SBroadcast&) {},
         [](SBroadcast& b) { b.services = SBroadcast().services; },
         {},
         "--service NEWS",
         "--service NEWS"},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.what);
        SBroadcast before = Sound(), now = Sound();
        test.before(before);
        test.now(now);
        const CTemporary report(Inspect("--json " + std::string(test.optionsBefore) + " -", before.Bytes()).out);
        const std::string options = std::string(test.options) + " --baseline '" + report.Name() + "' -";
        const SResult result = Inspect("--json " + options, now.Bytes());
        std::vector<std::string> told;
        std::string text;
        for (const nlohmann::json& line : Lines(result.out)) {
            if (line["type"] == "difference") {
                told.push_back(line["what"].get<std::string>() + (line["worse"] == true ? " worse" : ""));
                text += line["text"].get<std::string>() + '\n';
            } else {
                EXPECT_EQ(line["type"], "comparison");
                EXPECT_EQ(line["differences"], test.told.size());
            }
        }
        EXPECT_EQ(told, test.told) << text;
        const bool worse = result.out.find("\"worse\":true") != std::string::npos;
        EXPECT_EQ(result.status, worse ? 1 : 0);
        const SResult people = Inspect(options, now.Bytes());
        EXPECT_EQ(people.status, result.status);
        EXPECT_EQ(people.out.find("nothing differs") != std::string::npos, test.told.empty()) << people.out;
    }
}

/// A list that changed on the way is what it was in the end.
TEST(Baseline, TakesTheListThatHeldAtTheEnd)
{
    SBroadcast broadcast = Sound();
    const std::string both = broadcast.services;
    broadcast.change = [&](SSent& sent) {
        if (sent.table == 1 && sent.round >= 6) {
            sent.data =
                Number(1, 1) + Number(0, 2) + Number(2, 1) + "<SLT bsid=\"5\">" + SBroadcast().services + "</SLT>";
        }
        return true;
    };
    const CTemporary report(Inspect("--json -", broadcast.Bytes()).out);
    SBroadcast now;
    const std::string out = Inspect("--json --baseline '" + report.Name() + "' -", now.Bytes()).out;
    EXPECT_EQ(out.find("service-"), std::string::npos) << out;
}

TEST(Baseline, AReportThatIsNoneOrCut)
{
    const std::string whole = Inspect("--json pcap/gpac-a6-protected.pcap").out;
    const std::string other = "{\"schema_version\":2,\"type\":\"summary\"}\n";
    for (const std::string& bytes :
         {std::string(), std::string("\n"), whole.substr(0, whole.size() - 10), whole.substr(0, whole.find('\n') + 1),
          other, std::string("{\"schema_version\":3,\"type\":\"service\",\"serviceId\":\"x\"}\n") + whole,
          whole + "{\"schema_version\":3,\"type\":\"summary\",\"leftOut\":{\"service\":1}}\n", std::string("[]\n"),
          Inspect("--json -q pcap/gpac-a6-protected.pcap").out,
          Inspect("--json --table SLT pcap/gpac-a6-protected.pcap").out}) {
        const CTemporary report(bytes);
        const SResult result = Inspect("--baseline '" + report.Name() + "' pcap/gpac-a6-protected.pcap");
        EXPECT_EQ(result.status, 2) << bytes.substr(0, 100);
        EXPECT_NE(result.err.find(report.Name()), std::string::npos) << result.err;
        EXPECT_EQ(result.out, "");
    }
    EXPECT_EQ(Inspect("--baseline /nowhere pcap/gpac-a6-protected.pcap").status, 2);
    const CTemporary report(whole);
    EXPECT_EQ(Inspect("--every 1 --baseline '" + report.Name() + "' pcap/gpac-a6-protected.pcap").status, 2);
    EXPECT_EQ(Inspect("--service 1 --baseline '" + report.Name() + "' pcap/gpac-a6-protected.pcap").status, 2);
    EXPECT_EQ(Inspect("--baseline '" + report.Name() + "' pcap/gpac-a6-protected.pcap").status, 0);
}
