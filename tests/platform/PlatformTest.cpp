#include "platform/Platform.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "common/ChannelMap.h"
#include "lls/ParseSLT.h"
#include "support/Tables.h"

namespace {

using PlatformTest = CRecorder;

// The one setting that is read lets a service through that needs broadband.
TEST_F(PlatformTest, DefaultSettingsComeFromTheFile)
{
    const std::string path = std::string(testing::TempDir()) + "vyr-settings.conf";
    const std::string key = "db/menu/broadcasting/atsc3_bb_option";
    SetLogPriority(LOG_PRIORITY_SILENT);
    SetPlatform(nullptr);
    ASSERT_EQ(setenv("VYR_SETTINGS", path.c_str(), 1), 0);
    CChannelMap map;
    map.Create();
    const std::string table =
        "\1\1\1\1<SLT><Service protected='false' hidden='false' broadbandAccessRequired='true' serviceCategory='1' "
        "majorChannelNo='1' minorChannelNo='1'/></SLT>";
    static const struct {
        const char* line;
        int services;
    } k_cases[] = {{"=1\n", 1},  {" = 7 \r\n", 1}, {"=0\n", 0},
                   {"=1x\n", 0}, {"=\n", 0},       {"x=1\n", 0},
                   {"\n", 0},    {"=1", 1},        {"=99999999999999999999\n", 0}};
    for (const auto& c : k_cases) {
        std::ofstream(path) << "# settings\nother=1\n" << key << c.line;
        CParseSLT slt;
        slt.Create(&map, nullptr);
        EXPECT_TRUE(Feed(slt, table));
        EXPECT_EQ(slt.ServiceCount(), c.services) << c.line;
        slt.Destroy();
    }
    map.Destroy();
    std::remove(path.c_str());
    unsetenv("VYR_SETTINGS");
}

TEST_F(PlatformTest, MessagesBelowThePriorityAreNotPrinted)
{
    CChannelMap map;
    SetLogPriority(LOG_PRIORITY_ERROR);
    EXPECT_TRUE(map.Create());
    EXPECT_TRUE(s_log.empty());
    EXPECT_FALSE(map.Create());
    EXPECT_EQ(s_log.size(), 1u);
    SetLogPriority(LOG_PRIORITY_SILENT);
    EXPECT_FALSE(map.Create());
    EXPECT_EQ(s_log.size(), 1u);
    EXPECT_EQ(TakeAssertions(), "!m; !m");  // the sink is told all the same
    const SPlatform none = {nullptr, nullptr};
    SetPlatform(&none);
    SetLogPriority(LOG_PRIORITY_DEBUG);
    map.Destroy();
}

}  // namespace
