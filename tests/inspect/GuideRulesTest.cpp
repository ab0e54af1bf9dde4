#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Findings.h"
#include "GuideObjects.h"
#include "MmtCaptures.h"
#include "Tool.h"

namespace {

using guide::Fragment;
using guide::k_hour;
using guide::Reference;
using guide::Text;
using guide::Window;

constexpr unsigned k_now = 1800000000u + 2208988800u;  ///< NTP seconds of the captures' first packet
constexpr unsigned k_days = 2 * 24 * k_hour;

std::string Service(const std::string& id = "urn:x:2", const std::string& attributes = {}, const char* lang = "en")
{
    return "<Service id='s1' version='1' globalServiceID='" + id + "' " + attributes + "><Name xml:lang='" + lang +
           "'>NEWS</Name></Service>";
}

std::string Content(const std::string& id, const std::string& titles = Text("Name", "en", "Talk"),
                    const std::string& attributes = {})
{
    return "<Content id='" + id + "' version='1' " + attributes + ">" + titles + "</Content>";
}

std::string Schedule(const std::string& references, const std::string& id = "t1", const std::string& attributes = {})
{
    return "<Schedule id='" + id + "' version='1' " + attributes + ">" + Reference("Service", "s1") + references +
           "</Schedule>";
}

/// c1 until `gap` seconds before c2 begins, which ends two days and `later` seconds behind the capture's begin.
std::string Schedule(int gap, int later = 0)
{
    const unsigned middle = k_now + k_hour;
    return Schedule(Reference("Content", "c1", Window(k_now - k_hour, middle - static_cast<unsigned>(gap))) +
                    Reference("Content", "c2", Window(middle, k_now + k_days + static_cast<unsigned>(later))));
}

struct SGuideCase {
    const char* name;
    std::string service = Service();
    std::string schedule = Schedule(0);
    std::vector<std::string> contents = {Content("c1"), Content("c2")};
    std::vector<std::string> again = {};  ///< another unit of schedules, and that it comes a last time
    std::string list =
        "<Service serviceId='2' serviceCategory='1' globalServiceID='urn:x:2' majorChannelNo='9' "
        "minorChannelNo='3'/>";
    unsigned groups = 1;
    int rounds = 2;
    unsigned seconds = 0;  ///< that the capture lasts at least
};

std::string Capture(const SGuideCase& one)
{
    using namespace packets;
    const std::string stsid = "<S-TSID><RS><LS tsi='20'><SrcFlow rt='false'/></LS></RS></S-TSID>\n";
    std::vector<std::pair<int, std::string>> fragments = {{1, one.service}, {3, one.schedule}};
    for (const std::string& content : one.contents) {
        fragments.emplace_back(2, content);
    }
    CCapture capture(1);
    capture.AddLls(Slt(one.list + MmtService(4, 6004, 1), 1, 0, one.groups))
        .AddSession(Lct({1, 0, -1, true}, stsid), 6004);
    unsigned toi = 1;
    for (int round = 0; round < one.rounds; ++round) {
        capture.AddSession(Lct({1, 0, -1, true, 20}, guide::Unit(fragments)), 6004);
        toi = 1;
        for (const std::string& schedule : one.again) {
            capture.AddSession(Lct({++toi, 0, -1, true, 20}, guide::Unit({{3, schedule}})), 6004);
        }
    }
    if (one.seconds != 0) {
        capture.At(one.seconds, 0);
    }
    return capture.AddLls(Slt(one.list + MmtService(4, 6004, 1), 1, 0, one.groups)).Bytes();
}

TEST(GuideRules, EachIsBrokenAlone)
{
    const std::string before = "validTo='" + std::to_string(k_now - 1) + "'";
    const std::string after = "validTo='" + std::to_string(k_now) + "'";
    const std::string es = Text("Name", "es", "Charla");
    const std::string listed = "<Service serviceId='2' serviceCategory='";
    const std::string number = "' globalServiceID='urn:x:2' majorChannelNo='9' minorChannelNo='3'/>";
    const std::string twice = Reference("Content", "c2", Window(k_now + k_hour, k_now + k_days));
    const std::string over = Reference("Content", "c1", Window(k_now + k_hour, k_now + 2 * k_hour));
    const SGuideCase cases[] = {
        {""},
        {"", Service(), Schedule(60)},
        {"guide-hole", Service(), Schedule(61)},
        {"", Service(), Schedule(61), {Content("c1"), Content("c2")}, {}, {}, 1, 1},
        {"guide-overlap", Service(), Schedule(-1)},
        {"", Service(), Schedule(0), {Content("c1"), Content("c2")}, {Schedule(twice, "t2")}},
        {"guide-overlap", Service(), Schedule(0), {Content("c1"), Content("c2")}, {Schedule(over, "t2")}},
        {"", Service(), Schedule(-1), {Content("c1"), Content("c2")}, {}, listed + "4" + number},
        {"guide-hole", Service(), Schedule(61), {Content("c1"), Content("c2")}, {}, listed + "2" + number},
        {"guide-ends-soon", Service(), Schedule(0, -24 * 3600)},
        {"", Service(), Schedule(0, -24 * 3600 + 1)},
        {"guide-without-content", Service(), Schedule(0), {Content("c1")}},
        {"", Service(), Schedule(0), {Content("c1")}, {}, {}, 1, 1},
        {"guide-incomplete", "<Service id='s8" + Service().substr(14)},
        {"", "<Service id='s8" + Service().substr(14), Schedule(0), {Content("c1"), Content("c2")}, {}, {}, 1, 1},
        {"", Service(), Schedule(0), {Content("c1"), Content("c2")}, {}, {}, 1, 0, 600},
        {"guide-incomplete", Service(), Schedule(0), {Content("c1"), Content("c2")}, {}, {}, 1, 0, 601},
        {"guide-expired", Service("urn:x:2", before)},
        {"", Service("urn:x:2", after)},
        {"guide-expired", Service(), Schedule(0), {Content("c1"), Content("c2", es + Text("Name", "en", "T"), before)}},
        {"guide-title-language", Service(), Schedule(0), {Content("c1", es), Content("c2")}},
        {"guide-title-language", Service(), Schedule(0), {Content("c1", ""), Content("c2")}},
        {"",
         Service("urn:x:2", {}, "EN-us"),
         Schedule(0),
         {Content("c1", es + Text("Name", "en", "T")), Content("c2")}},
        {"", Service("urn:x:2", {}, "spa"), Schedule(0), {Content("c1", es), Content("c2", "<Name>T</Name>")}},
        {"guide-service-unknown", Service("urn:x:3")},
        {"", Service("urn:x:3"), Schedule(0), {Content("c1"), Content("c2")}, {}, {}, 2},
    };
    int place = -1;
    for (SGuideCase one : cases) {
        ++place;
        one.list = one.list.empty() ? SGuideCase().list : one.list;
        EXPECT_EQ(Findings(Capture(one), {"guide-"}), Only(one.name)) << "case " << place;
    }
}

}  // namespace
