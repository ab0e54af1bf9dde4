#include "common/ATSC3TimeUtility.h"

#include <cstdlib>
#include <ctime>

#include "common/EpochTime.h"
#include "support/Recorder.h"

namespace {

using TimeUtilityTest = CRecorder;

TEST_F(TimeUtilityTest, DurationsAreFoldedAsTheyStand)
{
    static const struct {
        const char* text;
        int seconds;
    } k_cases[] = {
        {"PT1H30M", 5400},
        {"-PT10S", -10},
        {"PT5H30M15S", 19815},
        {"p1H", 3600},
        {"-pt1H", -3600},
        {"P1H", 3600},
        {"XP1H", 3600},  // whatever stands before P counts as a sign
        {"+PT1H", 3600},
        {"PP1H", 3600},
        {"-P-1H", ('-' - '0') * 36000 * -1 - 3600},
        {"PT1H2H", 7200},  // the later value stays
        {"PT1M1H1S", 3661},
        {"P1M", 60},  // minutes, before the T too
        {"PT1.5S", 85},
        {"P1DT2H", (((1 * 10 + ('D' - '0')) * 10 + ('T' - '0')) * 10 + 2) * 3600},
        {"PT168H", 604800},
        {"PT4294967297S", 1},
        {"PT99999999999999999999H", static_cast<int>(0x630fffffu * 3600u)},
        {"PT\xE9S", -23 - '0'},
    };
    for (const auto& c : k_cases) {
        EXPECT_EQ(TimeUtility::DurationToSec(c.text), c.seconds) << c.text;
    }
    for (const char* text : {"pt5m", "P", "-P", "PT", "", "-", "-1H", "X1H", "XYP1H"}) {  // units are capitals
        EXPECT_EQ(TimeUtility::DurationToSec(text), 0) << text;
    }
    EXPECT_EQ(TimeUtility::DurationToSec(nullptr), 0);
    EXPECT_EQ(s_assertions.back().file, "src/common/ATSC3TimeUtility");
    EXPECT_EQ(TakeAssertions(), "duration");
}

// Kept in every zone: local standard time for the one, for the other UTC and a second, off by the
// daylight saving that is in effect.
TEST_F(TimeUtilityTest, DateTimesInSeveralZones)
{
    static const struct {
        const char* zone;
        int offset, saving;  // in summer
    } k_zones[] = {
        {"UTC0", 0, 0}, {"XST-5:30", 19800, 0}, {"EST5EDT,M3.2.0,M11.1.0", -18000, 3600}, {"XXX-14", 50400, 0}};
    static const struct {
        const char* text;
        long long utc;
        bool summer;
    } k_times[] = {{"1970-01-01T00:00:00", 0, false},
                   {"2027-01-15T12:30:45Z", 1800016245, false},
                   {"2027-01-15T12:30:45+09:00", 1800016245, false},
                   {"2027-07-15T12:30:45", 1815654645, true},
                   {"2027-13-01T00:00:00", 1830297600, false},
                   {"2040-01-15T12:30:45", 2210243445, false},  // past what 32 bits hold
                   {"1969-12-31T23:59:58", -2, false}};
    for (const auto& zone : k_zones) {
        const SZone set(zone.zone);
        for (const auto& time : k_times) {
            SCOPED_TRACE(testing::Message() << zone.zone << ' ' << time.text);
            EXPECT_EQ(TimeUtility::ConvertDateTime2Epoch(time.text), time.utc - zone.offset);
            EXPECT_EQ(g_EpochTime(time.text), time.utc + 1 + (time.summer ? zone.saving : 0));
        }
    }
}

TEST_F(TimeUtilityTest, AnyTextGivesSomeNumber)
{
    const SZone zone("UTC0");
    // Fields that do not scan are 0: month 0 is the December before, day 0 the day before.
    EXPECT_EQ(TimeUtility::ConvertDateTime2Epoch("2000"), 943920000);
    EXPECT_EQ(g_EpochTime("2000"), 943920001);
    EXPECT_EQ(g_EpochTime("12027-01-15T00:00:00"), 317369491200 + 1);  // the other reads four digits of the year
    EXPECT_EQ(TimeUtility::ConvertDateTime2Epoch("12027-01-15T00:00:00"), TimeUtility::ConvertDateTime2Epoch("1202"));
    for (const char* text : {"", "x", "-2147483648-2147483647-99999999999T9:9:2147483647", "2147483647-1-1T0:0:0"}) {
        g_EpochTime(text);
        TimeUtility::ConvertDateTime2Epoch(text);
    }
    EXPECT_EQ(g_EpochTime(nullptr), -1);
    EXPECT_EQ(TimeUtility::ConvertDateTime2Epoch(nullptr), -1);
    EXPECT_EQ(TakeAssertions(), "dateTime");
    EXPECT_EQ(g_tai + g_UTC + g_Tick, 0u);
}

}  // namespace
