#include "base/Limits.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "GuideObjects.h"
#include "MmtCaptures.h"
#include "Tool.h"
#include "base/Json.h"
#include "base/Text.h"
#include "model/Allowance.h"

namespace {

using namespace packets;
using namespace vyr::inspect;
using nlohmann::json;

std::string Times(std::size_t count, const std::string& text)
{
    std::string all;
    for (std::size_t i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

std::string Table(unsigned id, unsigned version, const std::string& xml)
{
    return Number(id, 1) + Number(0, 2) + Number(version, 1) + Gzip(xml);
}

std::string ServiceList(std::size_t count)
{
    std::string services;
    for (std::size_t i = 0; i < count; ++i) {
        services += Service(static_cast<int>(i + 1), "majorChannelNo='7' minorChannelNo='1'");
    }
    return "<SLT bsid='1'>" + services + "</SLT>";
}

std::string Alerts(std::size_t count)
{
    return "<AEAT>" + Times(count, "<AEA/>") + "</AEAT>";
}

/// Service lists of empty services, compressed, in one signed multi-table.
std::string MultiTable(unsigned tables)
{
    std::string body = Number(tables, 1);
    for (unsigned i = 0; i < tables; ++i) {
        const std::string table = Gzip("<SLT bsid='1'>" + Times(1500 + i, "<Service/>") + "</SLT>");
        body += Number(1, 1) + Number(i, 1) + Number(table.size(), 2) + table;
    }
    return Number(0xFE, 1) + Number(0, 2) + Number(1, 1) + body + Number(4, 2) + "sign";
}

std::string EachVersion(const std::string& payload, unsigned tableId, unsigned count)
{
    CCapture capture(1);
    for (unsigned i = 0; i < count; ++i) {
        capture.AddLls(Number(tableId, 1) + Number(0, 2) + Number(i % 256, 1) + payload);
    }
    return capture.Bytes();
}

/// A table of assets, each with many descriptors.
std::string MmtAssets(unsigned assets, unsigned descriptors)
{
    CMmtBuilder b;
    b.Put(8, 0xFC).Open(8).Put("p").Close().Put(16, 0).Put(8, assets);
    for (unsigned i = 0; i < assets; ++i) {
        b.Put(8, 0).Put("urn ").Open(32).Put("v").Close().Put("hev1").Put(8, 0).Put(8, 0);
        b.Open(16).Put(Times(descriptors, MmtCri(1))).Close();
    }
    return MmtMessage(0x20, 16, MmtTable(0x20, b.Bytes()));
}

std::string Bombs(unsigned count)
{
    std::vector<std::pair<int, std::string>> fragments;
    for (unsigned i = 0; i < count; ++i) {
        const std::string id = std::to_string(i);
        fragments.emplace_back(1, "<Service id='" + id + "' version='1'/>");
        fragments.emplace_back(2, "<Content id='" + id + "' version='1'/>");
    }
    return Gzip(guide::Unit(fragments));
}

std::size_t Bound(std::size_t received)
{
    return 1048576 + 64 * received;
}

/// Sums what lines of JSON say they left out of the records of a type.
std::uint64_t LeftOut(const std::vector<json>& lines, const char* type)
{
    std::uint64_t sum = 0;
    for (const json& line : lines) {
        sum += line["type"] == "leftOut" ? line["records"].value(type, 0u) : 0;
    }
    return sum;
}

std::size_t CountOf(const std::vector<json>& lines, const char* type)
{
    return static_cast<std::size_t>(
        std::count_if(lines.begin(), lines.end(), [&](const json& line) { return line["type"] == type; }));
}

TEST(Limits, NoReportOutgrowsWhatWasReceived)
{
    const std::size_t document = 120000;
    const auto sized = [&](const std::string& element) { return Times(document / element.size(), element); };
    CCapture multi(1);
    multi.AddLls(MultiTable(12));
    CCapture sessions(1);
    std::string services;
    for (int i = 0; i < 1500; ++i) {
        services += MmtService(i + 1, 1000);
    }
    sessions.AddSession("x", 9).AddLls(Table(1, 1, "<SLT bsid='5'>" + services + "</SLT>"));
    CCapture changing(1);
    for (unsigned i = 0; i < 60; ++i) {
        changing.AddLls(Table(4, i, "<AEAT>" + Times(900, "<AEA issuer='" + std::to_string(i) + "'/>") + "</AEAT>"));
    }
    const struct {
        const char* name;
        std::string input;
        bool cut;  ///< it is longer without limits
    } cases[] = {
        {"alerts that change", changing.Bytes(), true},
        {"service lists in a multi-table", multi.Bytes(), true},
        {"listed services", Table(1, 1, ServiceList(6000)), true},
        {"alerts", Table(4, 1, Alerts(20000)), true},
        {"alerts with parts",
         Table(4, 1, "<AEAT><AEA><AEAText/>" + Times(9000, "<Media/><Location/>") + "</AEA></AEAT>"), true},
        {"screens",
         Table(5, 1,
               "<OnscreenMessageNotification>" + Times(20000, "<KeepScreenClear/>") + "</OnscreenMessageNotification>"),
         true},
        {"regions",
         Table(2, 1, "<RatingRegionTables>" + Times(20000, "<RatingRegionTable/>") + "</RatingRegionTables>"), true},
        {"one long text", Table(4, 1, "<AEAT><AEA issuer='" + std::string(400000, '\'' + 1) + "'/></AEAT>"), true},
        {"sets",
         Gzip("<MPD xmlns='urn:mpeg:dash:schema:mpd:2011'><Period>" + sized("<AdaptationSet/>") + "</Period></MPD>"),
         true},
        {"runs",
         Gzip("<MPD xmlns='urn:mpeg:dash:schema:mpd:2011'><Period><AdaptationSet><SegmentTemplate><SegmentTimeline>" +
              sized("<S d='1'/>") +
              "</SegmentTimeline></SegmentTemplate><Representation/></AdaptationSet></Period></MPD>"),
         true},
        {"sessions", Gzip("<S-TSID>" + sized("<RS><LS tsi='1'/></RS>") + "</S-TSID>"), true},
        {"files", Gzip("<EFDT><FDT-Instance>" + sized("<File TOI='1'/>") + "</FDT-Instance></EFDT>"), true},
        {"assets", MmtAssets(250, 10), false},
        {"descriptors", MmtAssets(1, 3000), true},
        {"the same fault of each packet", EachVersion("<SLT>", 1, 9000), true},
        {"unknown tables", EachVersion(std::string(60000, '\xFF'), 77, 3), true},
        {"guide", Bombs(4000), true},
        {"services that are not signalled", sessions.Bytes(), true},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        const CTemporary input(test.input);
        const CTemporary page;
        const std::string file = '\'' + input.Name() + '\'';
        const SResult text = Inspect(file + " --html '" + page.Name() + '\'');
        const std::string asJson =
            "--ignore guide-title-language --json ";  // which is not judged where titles were cut
        const SResult lines = Inspect(asJson + file);
        EXPECT_LE(text.out.size(), Bound(test.input.size()));
        EXPECT_LE(lines.out.size(), Bound(test.input.size()));
        EXPECT_LE(ReadFile(page.Name()).size(), Bound(test.input.size()));
        EXPECT_NE(text.out.find("\nsummary\n"), std::string::npos);
        json summary = LastLine(lines.out);
        EXPECT_EQ(summary["type"], "summary");
        const SResult whole = Inspect("--no-limit --full " + asJson + file);
        EXPECT_EQ(whole.out.size() > lines.out.size(), test.cut) << whole.out.size() << ' ' << lines.out.size();
        EXPECT_EQ(whole.status, lines.status);
        summary.erase("leftOut");
        EXPECT_EQ(LastLine(whole.out), summary) << "the counts are exact";
    }
}

TEST(Limits, ListsAreShownUpToTheirLimit)
{
    const struct {
        const char* name;
        std::function<std::string(std::size_t)> input;
        std::size_t limit;
        const char* type;     ///< of the record
        const char* list;     ///< in it
        const char* leftOut;  ///< in its "leftOut"
        const char* line;     ///< of the text, that tells of one more
    } cases[] = {
        {"alerts", [](std::size_t count) { return Table(4, 1, Alerts(count)); }, 1000, "table", "AEA", "AEA",
         "\n  and 1 more\n"},
        {"files",
         [](std::size_t count) {
             return "<EFDT><FDT-Instance>" + Times(count, "<File TOI='1'/>") + "</FDT-Instance></EFDT>";
         },
         1000, "signalling", "/EFDT/FDT-Instance/File", "", "\n  and 1 more\n"},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        for (const std::size_t more : {0u, 1u}) {
            const std::string input = test.input(test.limit + more);
            const json record = Lines(Inspect("--json -", input).out).at(0);
            const json::json_pointer list(*test.list == '/' ? test.list : std::string("/") + test.list);
            EXPECT_EQ(record[list].size(), test.limit);
            const json& owner = record[list.parent_pointer()];
            EXPECT_EQ(owner.contains("leftOut"), more != 0);
            EXPECT_EQ(owner.value(json::json_pointer("/leftOut/" + list.back()), 0u), more);
            EXPECT_EQ(Inspect("-", input).out.find(test.line) != std::string::npos, more != 0);
            EXPECT_EQ(Lines(Inspect("--no-limit --json -", input).out).at(0)[list].size(), test.limit + more);
        }
    }
}

/// Services that are listed and services that are not count together.
TEST(Limits, ServicesAreShownUpToTheirLimit)
{
    for (const std::size_t more : {0u, 1u}) {
        std::string list = ServiceList(999 + more);
        list.insert(list.find("<Service"), "<Service serviceId='2000' serviceCategory='1'/>");
        const std::string input = Table(1, 1, list);
        const std::vector<json> lines = Lines(Inspect("--json -", input).out);
        EXPECT_EQ(CountOf(lines, "service"), 1000u);
        EXPECT_EQ(lines[0]["services"], 999 + more);
        EXPECT_EQ(lines[0]["servicesDropped"], 1);
        EXPECT_EQ(lines[0].value(json::json_pointer("/leftOut/service"), 0u), more);
        EXPECT_EQ(lines.back()["services"], 999 + more);
        const std::string text = Inspect("-", input).out;
        EXPECT_NE(text.find(std::to_string(1000 + more) + " services, 1 of them not listed"), std::string::npos);
        EXPECT_EQ(text.find("\n  and 1 more\n") != std::string::npos, more != 0);
    }
}

/// Of the LCT sessions of a guide the first are followed, and it is told how many are not.
TEST(Limits, GuideSessionsAreFollowedUpToTheirLimit)
{
    for (const unsigned more : {0u, 1u}) {
        std::string stsid = "<S-TSID><RS>";
        for (unsigned tsi = 1; tsi <= 256 + more; ++tsi) {
            stsid += "<LS tsi='" + std::to_string(tsi) +
                     "'><SrcFlow rt='false'><EFDT><FDT-Instance><File TOI='1' Content-Location='u' "
                     "Content-Type='application/vnd.oma.bcast.sgdu'/></FDT-Instance></EFDT></SrcFlow></LS>";
        }
        stsid += "</RS></S-TSID>\n";
        CCapture capture(1);
        capture.AddLls(Slt(MmtService(1, 6001, 1), 1));
        for (std::size_t at = 0; at < stsid.size(); at += 30000) {
            capture.AddSession(
                Lct({1, static_cast<std::uint32_t>(at), static_cast<int>(stsid.size())}, stsid.substr(at, 30000)),
                6001);
        }
        const std::string unit = guide::Unit({{1, guide::k_service2}});
        capture.AddSession(Lct({1, 0, static_cast<int>(unit.size()), false, 256 + more}, unit), 6001);
        const json summary = Lines(Inspect("--json -", capture.Bytes()).out).back();
        EXPECT_EQ(summary["findings"].value("guide-too-large", 0u), more) << summary;
        EXPECT_EQ(summary["guide"]["fragments"], 1 - more) << "of the last one";
    }
}

/// Of more sessions than the library holds something for, each is as it was when it comes again.
TEST(Limits, SignallingOfSessionsIsKnownBeyondWhatIsHeld)
{
    constexpr unsigned k_sessions = 66;
    std::string list;
    CCapture capture(1);
    for (unsigned i = 1; i <= k_sessions; ++i) {
        list += MmtService(static_cast<int>(i), 6000 + i, 1);
    }
    capture.AddLls(Slt(list, 1));
    for (unsigned round = 1; round <= 3; ++round) {
        for (unsigned i = 1; i <= k_sessions; ++i) {
            const std::string usbd = "<BundleDescriptionROUTE><UserServiceDescription serviceId='" + std::to_string(i) +
                                     "'><Name>" + std::to_string(round / 2) +
                                     "</Name></UserServiceDescription></BundleDescriptionROUTE>\n";
            capture.AddSession(Lct({1 + round / 2, 0, static_cast<int>(usbd.size())}, usbd), 6000 + i);
        }
    }
    const json summary = Lines(Inspect("--json -", capture.Bytes()).out).back();
    EXPECT_EQ(summary["servicesSignalled"], k_sessions);
    for (const char* status : {"new", "changed", "repeated"}) {
        EXPECT_EQ(summary["signalling"][status], k_sessions) << status;
    }
}

TEST(Limits, FindingsThatAreAlikeAreToldTogether)
{
    const std::string table = "\x01";  // too short
    for (const unsigned count : {3u, 4u, 5u}) {
        CCapture capture(1);
        for (unsigned i = 0; i < count; ++i) {
            capture.AddLls(table);
        }
        const std::string once = "LLS table of 1 byte, shorter than its header [table-too-short]";
        const SResult text = Inspect("--quiet -", capture.Bytes());
        std::size_t told = 0;
        for (std::size_t at = 0; (at = text.out.find(once, at)) != std::string::npos; ++at) {
            ++told;
        }
        EXPECT_EQ(told, std::min(count, 4u));
        EXPECT_EQ(text.out.find(once + " (and 1 more like it)\n") != std::string::npos, count == 5) << text.out;
        const std::vector<json> lines = Lines(Inspect("--json -", capture.Bytes()).out);
        EXPECT_EQ(lines.back()["findings"]["table-too-short"], count) << "the summary is exact";
        EXPECT_EQ(lines[lines.size() - 2].value("count", 1u), count == 5 ? 2u : 1u);
        EXPECT_EQ(text.status, 1);
    }
    CCapture live(1);
    for (unsigned i = 0; i < 340; ++i) {
        live.AddLls(table);
    }
    std::vector<unsigned> counts;
    for (const json& line : Lines(Inspect("--json -", live.Bytes()).out)) {
        counts.push_back(line["type"] == "finding" && line["rule"] == "table-too-short" ? line.value("count", 1u) : 0);
    }
    EXPECT_EQ(counts, std::vector<unsigned>({1, 1, 1, 30, 0, 0, 0, 307, 0})) << "also while the input goes on";
    const CTemporary one(Table(1, 1, "<SLT>"));
    const CTemporary other(Table(1, 1, "<SLT>"));
    const std::string two = " '" + one.Name() + "' '" + other.Name() + '\'';
    EXPECT_EQ(Inspect("--quiet" + Times(3, two)).out.find("more like it"), std::string::npos) << "of an input each";
}

/// What does not fit is counted, and told as soon as there is room again.
TEST(Limits, RecordsThatDoNotFitAreCounted)
{
    CCapture capture(1);
    capture.AddLls(MultiTable(12));
    const std::string crowded = capture.Bytes();
    capture.AddSession(std::string(60000, 'x'), 9).AddLls(Slt(Service(77), 200, 9));
    for (const bool room : {false, true}) {
        const std::vector<json> lines = Lines(Inspect("--json -", room ? capture.Bytes() : crowded).out);
        const std::vector<json> whole = Lines(Inspect("--json --no-limit -", room ? capture.Bytes() : crowded).out);
        EXPECT_GT(LeftOut(lines, "service"), 1000u);
        EXPECT_EQ(CountOf(lines, "table") + LeftOut(lines, "table"), CountOf(whole, "table"));
        EXPECT_EQ(lines.back()["leftOut"]["service"], LeftOut(lines, "service"));
        EXPECT_EQ(CountOf(whole, "leftOut"), 0u);
        const auto last =
            std::find_if(lines.rbegin(), lines.rend(), [](const json& line) { return line["type"] == "service"; });
        EXPECT_EQ((*last)["serviceId"] == 77, room);
    }
}

TEST(Limits, AllowancesAreConstantAndMultiple)
{
    CAllowance allowance(10, 3);
    EXPECT_EQ(allowance.Room(), 10u);
    allowance.Received(2);
    allowance.Spend(15);
    EXPECT_EQ(allowance.Room(), 1u);
    allowance.Spend(2);
    EXPECT_EQ(allowance.Room(), 0u) << "not less than none";
    LiftLimits();
    EXPECT_EQ(allowance.Room(), static_cast<std::size_t>(-1));
    LiftLimits(false);
}

TEST(Limits, TextsAndJsonAreCutWhole)
{
    const std::string text = "one\ntwo\n" + std::string(80, 'x') + '\n';
    EXPECT_EQ(FirstLines(text, text.size()), text);
    EXPECT_EQ(FirstLines(text, text.size() - 1), "one\ntwo\n  and 1 line more\n");
    EXPECT_EQ(FirstLines(text, 64 + 4), "one\n  and 2 lines more\n");
    EXPECT_EQ(FirstLines(text, 64 + 3), "");
    EXPECT_EQ(Clipped("a\u00E9", 2), "a\u2026") << "no half character";
    TJson object = {{"list", {1, 2, 3}}, {"inner", {{"text", std::string(128, 'x')}}}, {"lists", {{1, 2, 3}}}};
    const TJson whole = object;
    EXPECT_FALSE(CutJson(object, 3));
    EXPECT_EQ(object, whole);
    EXPECT_TRUE(CutJson(object, 2));
    EXPECT_TRUE(CutJson(object, 1));
    EXPECT_EQ(object["list"], TJson({1}));
    EXPECT_EQ(object["leftOut"], TJson({{"list", 2}, {"lists", 2}})) << "once more adds up";
    EXPECT_EQ(object["inner"]["text"], std::string(64, 'x'));
    EXPECT_EQ(object["inner"]["leftOut"]["text"], 64u);
}

}  // namespace
