#include "report/Changes.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "base/Limits.h"
#include "inspect/MmtCaptures.h"
#include "inspect/Tool.h"
#include "support/Gzip.h"
#include "support/Show.h"

namespace {

using namespace vyr::inspect;
using namespace packets;
using TLines = std::vector<std::string>;

TEST(Changes, AreNamedByWhatTheyConcern)
{
    const std::string same(60, 's');
    const std::string text = same + same;
    const struct {
        const char* before;
        const char* after;
        TLines lines;
    } cases[] = {
        {R"({"P":[{"id":"1","R":[{"id":"10","bandwidth":176,"x":1},{"id":"11","bandwidth":1}]}]})",
         R"({"P":[{"id":"1","R":[{"id":"10","bandwidth":352,"x":1},{"id":"11","bandwidth":1}]}]})",
         {"P 1 R 10 bandwidth: 176 -> 352"}},
        {R"({"a":1,"b":[1]})", R"({"b":[1],"a":1})", {}},
        {R"({"a":176})", R"({"a":"176"})", {"a: 176 -> \"176\""}},
        {R"({"a":"","b":null})", R"({"a":"-","b":0})", {"a: \"\" -> \"-\"", "b: null -> 0"}},
        {R"({"a":true,"l":[]})", R"({"a":[true],"m":"x"})", {"a: true -> [true]", "m: added x"}},
        {R"({"a":{"b":{"c":1}},"z":1})",
         R"({"a":{"b":{"d":2}}})",
         {"a b d: added 2", "a b c: removed, was 1", "z: removed, was 1"}},
        {R"({"kind":1,"kindName":"one","Name":"n","other":"x","otherName":"a"})",
         R"({"kind":2,"kindName":"two","Name":"m","other":"x","otherName":"b"})",
         {"kind: 1 -> 2", "Name: n -> m", "otherName: a -> b"}},
        // One more in the middle is no change of those behind it, by name or not; one that only moved is none either.
        {R"({"R":[{"id":1,"v":1},{"id":2,"v":2}]})",
         R"({"R":[{"id":1,"v":1},{"id":9,"v":9},{"id":2,"v":2}]})",
         {"R 9: added (id 9, v 9)"}},
        {R"({"R":[{"v":1},{"v":2},{"w":3}]})", R"({"R":[{"v":1},{"v":9},{"v":2},{"w":3}]})", {"R 1: added (v 9)"}},
        {R"({"R":[{"v":1},{"v":2},{"w":3}]})", R"({"R":[{"v":1},{"w":3}]})", {"R 1: removed, was (v 2)"}},
        {R"({"L":["eng","spa"]})", R"({"L":["fra","eng","spa"]})", {"L: added fra"}},
        {R"({"R":[{"id":1},{"id":2},{"id":3}]})", R"({"R":[{"id":3},{"id":1},{"id":2}]})", {"R: in another order"}},
        {R"({"R":[{"id":1,"v":1},{"id":2}]})",
         R"({"R":[{"id":2},{"id":1,"v":2}]})",
         {"R 1 v: 1 -> 2", "R: in another order"}},
        // Of equal names those that are alike belong together, then the others in order.
        {R"({"S":[{"serviceId":1,"slsProtocol":1}]})",
         R"({"S":[{"serviceId":1,"slsProtocol":2},{"serviceId":1,"slsProtocol":1}]})",
         {"S 1: added (serviceId 1, slsProtocol 2)"}},
        {R"({"S":[{"id":1,"v":1},{"id":1,"v":2},{"id":1,"v":3}]})",
         R"({"S":[{"id":1,"v":3},{"id":1,"v":4}]})",
         {"S 1 v: 1 -> 4", "S 1: removed, was (id 1, v 2)", "S: in another order"}},
        {R"({"L":["a","a"]})", R"({"L":["a"]})", {"L: removed, was a"}},
        {R"({"S":[{"id":1,"v":1}]})",
         R"({"S":[{"id":"1","v":1}]})",
         {"S 1: added (id 1, v 1)", "S 1: removed, was (id 1, v 1)"}},
        {R"({"A":[{"identifier":{"asset_id":"a"},"v":1}]})",
         R"({"A":[{"identifier":{"asset_id":"a"},"v":2}]})",
         {"A (asset_id a) v: 1 -> 2"}},
        {R"({"a":"\u202e"})", R"({"a":"\n"})", {"a: \\u202E -> \\x0A"}},
    };
    for (const auto& test : cases) {
        const TJson before = TJson::parse(test.before);
        const TJson after = TJson::parse(test.after);
        EXPECT_EQ(Differences(before, after).lines, test.lines) << test.before << test.after;
        const TJson patch = ChangesPatch(before, after);
        EXPECT_TRUE(patch.is_null() || before.patch(patch) == after || test.lines.empty()) << patch;
        EXPECT_EQ(patch.is_null(), TJson::diff(before, after).dump().size() > after.dump().size());
    }
    const SDifferences late = Differences({{"a", text + "1"}}, {{"a", text + "2"}});
    EXPECT_EQ(late.lines, TLines({"a: \u2026" + same.substr(0, 24) + "1\" -> \u2026" + same.substr(0, 24) + "2\""}))
        << "where they differ";
}

TEST(Changes, ManyAreCut)
{
    for (const std::size_t count : {100u, 101u, 1000u, 1001u}) {
        TJson before = TJson::array();
        TJson after = TJson::array();
        for (std::size_t i = 0; i < count; ++i) {
            before.push_back({{"id", i}, {"v", 1}});
            after.push_back({{"id", i}, {"v", 2}});
        }
        const CLastShown::SShown last = {std::make_shared<TJson>(TJson{{"R", before}}), 1};
        const TJson now = {{"R", after}};
        const TLines lines = ChangeLines(&last, &now);
        EXPECT_EQ(lines.size(), count == 100 ? 100u : 101u);
        EXPECT_EQ(lines.back(), count == 100 ? "R 99 v: 1 -> 2" : "and " + std::to_string(count - 100) + " more");
        LiftLimits();
        EXPECT_EQ(ChangeLines(&last, &now).size(), count);
        LiftLimits(false);
        // A list that goes away takes a patch as many steps as it had elements, each the longer for it.
        EXPECT_EQ(ChangesPatch({{"R", before}, {"a", std::string(300000, 'a')}},
                               {{"R", TJson::array()}, {"a", std::string(300000, 'a')}})
                      .is_null(),
                  count == 1001);
    }
    EXPECT_EQ(ChangeLines(nullptr, nullptr), TLines({"all of it: there is nothing to compare it with"}));
}

TEST(Changes, WhatWasShownIsKeptWithinALimit)
{
    const auto text = [](std::size_t size) { return std::make_shared<TJson>(TJson{{"t", std::string(size, 't')}}); };
    const SSource source = {"a", 7, {}};
    CLastShown last(10000);
    last.Keep("1", text(4000), source);
    last.Keep("2", text(4000), source);
    const auto has = [&](const char* place) { return last.Find(place) != nullptr; };
    ASSERT_EQ(Join(has("1"), has("2")), "1|1");
    EXPECT_EQ(last.Find("1")->packet, 7u);
    last.Keep("1", text(4001), source);
    EXPECT_EQ(Join(has("1"), has("2")), "1|1") << "one in the place of another";
    last.Keep("3", text(2000), source);
    EXPECT_EQ(Join(has("1"), has("2"), has("3")), "1|0|1") << "the oldest goes";
    last.Keep("1", text(10000), source);
    EXPECT_EQ(Join(has("1"), has("3")), "0|1") << "too large, and its predecessor is none";
    last.Keep("3", nullptr, source);
    EXPECT_EQ(last.Find("3"), nullptr);
    last.Keep("4", text(1), source);
    last.Keep("5", text(1), {"b", 1, {}});
    EXPECT_EQ(Join(has("4"), has("5")), "0|1") << "another input";
}

std::string Mpd(const std::string& id, int bandwidth, const std::string& more = {})
{
    return "<MPD xmlns='urn:mpeg:dash:schema:mpd:2011' id='" + id +
           "'><Period id='p'><AdaptationSet mimeType='video/mp4'>" + more + "<Representation id='v' bandwidth='" +
           std::to_string(bandwidth) + "'/></AdaptationSet></Period></MPD>\n";
}

/// A capture of one service with objects of its signalling.
std::string Session(const std::vector<std::string>& objects)
{
    CCapture capture(1);
    capture.AddLls(Slt(MmtService(1, 6001, 1), 1));
    unsigned toi = 0;
    for (const std::string& object : objects) {
        SLct fields;
        fields.toi = ++toi;
        fields.length = static_cast<int>(object.size());
        fields.close = true;
        capture.AddSession(Lct(fields, object), 6001);
    }
    return capture.Bytes();
}

std::size_t Count(const std::string& text, const std::string& what)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
        ++count;
    }
    return count;
}

TEST(Changes, OfADocumentAreShownInPlaceOfIt)
{
    const std::string stsid = "<S-TSID><RS><LS tsi='1'/></RS></S-TSID>\n";
    const std::string input =
        Session({stsid + Mpd("m", 1), stsid + Mpd("m", 2), stsid + Mpd("m", 1), stsid + Mpd("m", 1, "<!---->"),
                 stsid + "<MPD><a></MPD>\n", stsid + Mpd("m", 3)});
    const CTemporary page;
    const SResult text = Inspect("--html '" + page.Name() + "' -", input);
    const std::string place = "Period p AdaptationSet video/mp4 Representation v bandwidth: ";
    EXPECT_EQ(Count(text.out, "  MPD: "), 1u);
    EXPECT_EQ(Count(text.out, "  S-TSID unchanged\n"), 5u);
    EXPECT_EQ(Count(text.out, "  MPD changed\n    " + place + "1 -> 2\n-: "), 1u);
    EXPECT_EQ(Count(text.out, "  MPD changed\n    " + place + "2 -> 1\n-: "), 1u) << "back again is a change, too";
    EXPECT_EQ(Count(text.out, "  MPD changed\n    nothing that is shown changed\n-: "), 1u);
    EXPECT_EQ(Count(text.out, "  MPD changed: did not parse\n"), 1u);
    EXPECT_EQ(Count(text.out,
                    "  MPD changed: static, 1 period\n    all of it: there is nothing to compare it with\n"
                    "    period p: 1 adaptation set\n"),
              1u);
    const std::string html = ReadFile(page.Name());
    EXPECT_EQ(Count(html, "<li>" + place + "1 -&gt; 2</li>"), 1u);
    EXPECT_EQ(Count(html, "<li>" + place + "2 -&gt; 1</li>"), 1u);
    const SResult full = Inspect("--full -", input);
    EXPECT_EQ(Count(full.out, place), 2u);
    EXPECT_EQ(Count(full.out, "        representation v: "), 5u);

    const auto documents = [](const SResult& result) {
        std::vector<nlohmann::json> shown;
        for (nlohmann::json& line : Lines(result.out)) {
            if (line["type"] == "signalling") {
                shown.push_back(line["documents"][1]);
                shown.back()["whole"] = line.contains("MPD");
                EXPECT_EQ(line.contains("S-TSID"),
                          shown.size() == 1 || line["documents"][0].contains("since") == false);
            }
        }
        return shown;
    };
    const std::vector<nlohmann::json> lines = documents(Inspect("--json -", input));
    const std::vector<nlohmann::json> wholes = documents(Inspect("--json --full -", input));
    ASSERT_EQ(Join(lines.size(), wholes.size()), "6|6");
    const nlohmann::json::json_pointer path("/changes/0/path");
    EXPECT_EQ(lines[1].value(path, ""), "/Period/0/AdaptationSet/0/Representation/0/bandwidth");
    EXPECT_EQ(lines[2].value(path, ""), lines[1].value(path, "x"));
    EXPECT_EQ(lines[3]["changes"], nlohmann::json::array());
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(lines[i].value("since", 0u), i >= 1 && i <= 3 ? i + 1 : 0) << "the packet of the one before";
        EXPECT_EQ(lines[i]["whole"], i == 0 || i == 5);
        EXPECT_EQ(wholes[i]["whole"], i != 4);
        EXPECT_EQ(lines[i].value("changes", nlohmann::json()), wholes[i].value("changes", nlohmann::json()));
    }
}

TEST(Changes, OfAServiceList)
{
    const auto service = [](int id, const std::string& name, int protocol) {
        return "<Service serviceId='" + std::to_string(id) + "' serviceCategory='4' shortServiceName='" + name +
               "'><BroadcastSvcSignaling slsProtocol='" + std::to_string(protocol) + "'/></Service>";
    };
    const std::string input = CCapture(1)
                                  .AddLls(Slt(service(1, "A", 1) + service(2, "B", 1), 1))
                                  .AddLls(Slt(service(2, "B", 1) + service(1, "Z", 1), 2))
                                  .AddLls(Slt(service(2, "B", 1) + service(2, "B", 2) + service(3, "C", 1), 3))
                                  .AddLls(Slt("<a>", 4))
                                  .AddLls(Slt(service(3, "C", 1), 5))
                                  .AddLls(Slt(service(4, "C", 1), 6))
                                  .Bytes();
    const std::string text = Inspect("-", input).out;
    EXPECT_NE(text.find("  service 1 shortServiceName: A -> Z\n  service: in another order\n-: packet 3"),
              std::string::npos);
    EXPECT_NE(text.find("  service 2: added (serviceId 2, listed true, "), std::string::npos);
    EXPECT_NE(text.find("slsProtocol 2, slsProtocolName MMTP)\n  service 3: added "), std::string::npos);
    EXPECT_NE(text.find("\n  service 1: removed, was (serviceId 1, "), std::string::npos);
    EXPECT_NE(text.find("  all of it: there is nothing to compare it with\n  id  channel  name"), std::string::npos);
    struct SShown {
        std::size_t unchanged;
        std::vector<int> removed;
        TLines services;
    };
    std::vector<SShown> shown;
    for (const nlohmann::json& line : Lines(Inspect("--json -", input).out)) {
        if (line["type"] == "table") {
            shown.push_back({line.value("servicesUnchanged", std::size_t{99}),
                             line.value("servicesRemoved", std::vector<int>()),
                             {}});
        } else if (line["type"] == "service") {
            shown.back().services.push_back(std::to_string(line["serviceId"].get<int>()) + ' ' +
                                            line.value("status", "-") + ' ' +
                                            line.value("changes", nlohmann::json()).dump());
        }
    }
    const SShown expected[] = {
        {99, {}, {"1 new null", "2 new null"}},
        {1, {}, {R"(1 changed [{"op":"replace","path":"/shortServiceName","value":"Z"}])"}},
        {99, {}, {"2 - null", "2 - null", "3 - null"}},  // an id that stands twice tells not which
        {99, {}, {}},
        {99, {}, {"3 - null"}},
        {0, {3}, {"4 new null"}},
    };
    ASSERT_EQ(shown.size(), std::size(expected));
    for (std::size_t i = 0; i < shown.size(); ++i) {
        EXPECT_EQ(shown[i].unchanged, expected[i].unchanged) << i;
        EXPECT_EQ(shown[i].removed, expected[i].removed) << i;
        EXPECT_EQ(shown[i].services, expected[i].services) << i;
    }
}

TEST(Changes, WhatWasCutIsShownWholeAgain)
{
    // Lists are cut before they are compared, texts of more than 64,000 bytes when they are written.
    const auto files = [](unsigned count, unsigned version) {
        std::string document = "<EFDT><FDT-Instance>";
        for (unsigned i = 0; i < count; ++i) {
            document += "<File TOI='" + std::to_string(i) + "' Content-Location='" + std::string(4, 'a') +
                        "' Content-Type='" + std::to_string(version) + "'/>";
        }
        return document + "</FDT-Instance></EFDT>\n";
    };
    const std::string longest(64000, 'a');
    const struct {
        std::string first;
        std::string second;
        bool changes;
    } cases[] = {
        {files(1000, 1), "<EFDT " + files(1000, 1).substr(5), true},
        {files(1001, 1), "<EFDT " + files(1001, 1).substr(5), true},
        {files(20, 1), files(20, 2), false},  // longer than the document
        {Mpd(longest, 1), Mpd(longest, 2), true},
        {Mpd(longest + 'a', 1), Mpd(longest + 'a', 2), false},
        {Mpd(longest + 'a', 1), Mpd(longest, 2), false},
        {Mpd("a", 1), Mpd(longest + 'a', 2), false},
    };
    for (const auto& test : cases) {
        nlohmann::json last;
        for (const nlohmann::json& line :
             Lines(Inspect("--json -", Session({Gzip(test.first), Gzip(test.second)})).out)) {
            last = line["type"] == "signalling" ? line : last;
        }
        const nlohmann::json& document = last["documents"][0];
        EXPECT_EQ(document["status"], "changed");
        EXPECT_EQ(document.contains("changes"), test.changes) << test.second.substr(0, 100);
        EXPECT_EQ(last.contains(document["name"].get<std::string>()), !test.changes);
    }
}

/// A patch takes the square of the elements that a list loses: beyond a limit of its own the list comes whole.
TEST(Changes, OfAServiceListTakeNoMoreThanTheyMay)
{
    for (const std::size_t lost : {1000u, 1001u}) {
        const std::string url = "<SLTInetUrl urlType='1'>u</SLTInetUrl>";
        std::string urls;
        for (std::size_t i = 0; i <= lost; ++i) {
            urls += url;
        }
        CCapture capture(1);
        capture.AddLls(Slt(urls + Service(1), 1)).AddLls(Slt(url + Service(1), 2));
        nlohmann::json table;
        for (const nlohmann::json& line : Lines(Inspect("--json --no-limit -", capture.Bytes()).out)) {
            table = line["type"] == "table" ? line : table;
        }
        EXPECT_EQ(table["LLS_table_version"], 2);
        EXPECT_EQ(table.contains("changes"), lost == 1000) << lost;
        EXPECT_EQ(table.contains("servicesUnchanged"), lost == 1000) << lost;
    }
}

}  // namespace
