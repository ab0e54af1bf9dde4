#include <gtest/gtest.h>

#include <string>

#include "Findings.h"
#include "MmtCaptures.h"

namespace {

using namespace packets;

struct SAlertCase {
    const char* broken;
    std::string alerts;
    std::string service = MmtService(4, 6004, 1);
    std::string flow =
        "<SrcFlow><EFDT><FDT-Instance><File TOI='1' Content-Location='m/map.png'/></FDT-Instance></EFDT>"
        "</SrcFlow>";
    std::string later = {};  ///< alerts of a second table
};

std::string Alert(const std::string& attributes, const std::string& expires = "2027-01-15T08:00:00Z",
                  const std::string& url = {})
{
    return "<AEA audience='public' " + attributes + "><Header expires='" + expires + "'/><Media url='" + url +
           "'/></AEA>";
}

/// The capture begins at 2027-01-15T08:00:00Z, and its last table comes 61 seconds later.
std::string Capture(const SAlertCase& one)
{
    const auto table = [](const std::string& alerts, unsigned version) {
        return Number(0x04000000 + version, 4) + "<AEAT>" + alerts + "</AEAT>";
    };
    CCapture capture(1);
    capture.AddLls(Slt(one.service, 1)).AddLls(table(one.alerts, 1));
    capture.AddSession(Lct({1, 0, -1, true}, "<S-TSID><RS><LS tsi='20'>" + one.flow + "</LS></RS></S-TSID>\n"), 6004);
    for (int quarter = 3; quarter < 4 * 61; ++quarter) {
        capture.AddSession(Lct({1, 0, -1, true, 20}, "f"), 6004);
    }
    return capture.AddLls(table(one.later.empty() ? one.alerts : one.later, one.later.empty() ? 1 : 2)).Bytes();
}

TEST(AlertRules, EachIsBrokenAlone)
{
    const std::string alert = "aeaId='a' aeaType='alert' ";
    const std::string first = Alert(alert, "");
    const SAlertCase cases[] = {
        {"alert-expired", Alert(alert)},
        {"alert-expired", Alert(alert, "2027-01-15T10:00:00.9+02:00")},
        {"", Alert(alert, "2027-01-15T08:00:01Z")},
        {"", Alert(alert), SAlertCase().service, {}, Alert(alert, "2027-01-15T09:00:00Z")},
        {"", Alert(alert, "2027-01-15T08:00:00")},
        {"", Alert(alert, "2027-01-15T03:00:01-05:00")},
        {"", Alert("aeaId='a' aeaType='cancel'")},
        {"alert-without-wakeup", Alert(alert + "priority='4'", "")},
        {"", Alert(alert + "priority='4' wakeup='true'", "") + Alert("aeaId='b' priority='3'", "")},
        {"", Alert(alert + "priority='4' wakeup='1'", "")},
        {"alert-without-wakeup", Alert(alert + "priority='4' wakeup='0'", "")},
        {"", Alert("aeaId='a' aeaType='cancel' priority='4'", "")},
        {"alert-reference-unknown", Alert("aeaId='b' aeaType='update' retAEAId='z'", "") + first},
        {"alert-reference-unknown",
         first,
         SAlertCase().service,
         {},
         Alert("aeaId='b' aeaType='cancel' retAEAId='z'", "")},
        {"", first, SAlertCase().service, {}, Alert("aeaId='b' aeaType='cancel' retAEAId='a'", "")},
        {"", Alert("aeaId='b' aeaType='update'", "")},
        {"alert-media-missing", Alert(alert, "", "x/map.png")},
        {"", Alert(alert, "", "m/map.png")},
        {"", Alert(alert, "", "./map.png")},
        {"", Alert(alert, "", "http://a/x.png")},
        {"", Alert(alert, "", "x.png"), SAlertCase().service, "<SrcFlow/>"},
        {"", Alert(alert, "", "x.png"), SAlertCase().service + MmtService(5, 6005)},
        {"", Alert(alert, "", "x.png"), SAlertCase().service,
         "<SrcFlow><EFDT><FDT-Instance fileTemplate='$TOI$.png'/></EFDT></SrcFlow>"},
        {"", Alert(alert, "", "x.png"), SAlertCase().service, {}, first},
    };
    int place = -1;
    for (SAlertCase one : cases) {
        ++place;
        one.flow = one.flow.empty() ? SAlertCase().flow : one.flow;
        EXPECT_EQ(Findings(Capture(one), {"alert-"}), Only(one.broken)) << "case " << place;
    }
}

}  // namespace
