#include "common/XsTime.h"

#include "support/Recorder.h"

namespace {

constexpr double k_untouched = -7;

struct SCase {
    const char* text;
    double seconds;  ///< k_untouched: refused
};

class XsTimeTest : public CRecorder {
  protected:
    static void Check(const SCase& test, bool (*read)(const char*, double&))
    {
        double seconds = k_untouched;
        const bool legal = read(test.text, seconds);
        EXPECT_DOUBLE_EQ(seconds, test.seconds) << test.text;
        EXPECT_EQ(legal, test.seconds != k_untouched) << test.text;
    }
};

TEST_F(XsTimeTest, Durations)
{
    static const SCase k_cases[] = {{"PT2.006S", 2.006},
                                    {"PT0H0M30.000S", 30},
                                    {"P0Y0M0DT0H0M23.960S", 23.96},
                                    {"P1Y2M3DT4H5M6.5S", 31536000 + 2 * 2592000 + 3 * 86400 + 4 * 3600 + 5 * 60 + 6.5},
                                    {"P1M", 2592000},
                                    {"PT1M", 60},
                                    {"-PT0.25S", -0.25},
                                    {" \tP1D\n", 86400},
                                    {"PT0.1234567894S", 0.123456789},
                                    {"PT36H", 129600}};
    for (const SCase& test : k_cases) {
        Check(test, vyr::ReadDuration);
    }
    for (const char* text : {"", "P", "PT", "P1DT", "T1S", "1S", "P1S", "PT1D", "PT1M1H", "PT1S1S", "PT1.5H", "P1.5D",
                             "PT1.S", "PT.5S", "PT1", "+PT1S", "PT-1S", "pt1s", "PT1S x"}) {
        Check({text, k_untouched}, vyr::ReadDuration);
    }
    Check({("PT" + std::string(400, '9') + "S").c_str(), k_untouched}, vyr::ReadDuration);
}

TEST_F(XsTimeTest, DateTimes)
{
    static const SCase k_cases[] = {{"2026-11-21T02:02:23.328Z", 1795226543.328},
                                    {"1970-01-01T00:00:00", 0},
                                    {"1969-12-31T23:59:59.5Z", -0.5},
                                    {"2026-11-21T02:02:23+05:30", 1795226543 - 19800},
                                    {"2026-11-21T02:02:23-14:00", 1795226543 + 50400},
                                    {"2028-02-29T24:00:00Z", 1835481600},
                                    {"2016-12-31T23:59:60Z", 1483228800},
                                    {" 12026-01-01T00:00:00Z ", 317336745600},
                                    {"-0001-01-01T00:00:00Z", -62167219200}};
    for (const SCase& test : k_cases) {
        Check(test, vyr::ReadDateTime);
    }
    for (const char* text :
         {"2026-11-21", "2026-02-29T00:00:00Z", "2026-04-31T00:00:00Z", "2026-13-01T00:00:00Z", "2026-00-01T00:00:00Z",
          "2026-01-00T00:00:00Z", "2026-01-01T24:00:01Z", "2026-01-01T25:00:00Z", "2026-01-01T00:60:00Z",
          "2026-01-01T00:00:61Z", "2026-01-01T00:00:00.Z", "2026-01-01T00:00:00+15:00", "2026-01-01T00:00:00+0100",
          "2026-01-01T00:00:00Zx", "2026-1-1T00:00:00Z", "026-01-01T00:00:00Z", "0000-01-01T00:00:00Z",
          "99999999999-01-01T00:00:00Z", "now"}) {
        Check({text, k_untouched}, vyr::ReadDateTime);
    }
}

}  // namespace
