#include "platform/Platform.h"

#include <syslog.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "common/ChannelMap.h"
#include "common/Version.h"
#include "common/XML.h"
#include "esg/SGDUParse.h"
#include "lls/ParseSLT.h"
#include "support/Places.h"
#include "support/Programs.h"
#include "support/Show.h"
#include "support/Tables.h"

namespace {

using PlatformTest = CRecorder;

// The one setting that is read lets a service through that needs broadband.
TEST_F(PlatformTest, DefaultSettingsComeFromTheFile)
{
    auto file = std::make_unique<CTemporary>();
    const std::string key = "db/menu/broadcasting/atsc3_bb_option";
    SetLogPriority(LOG_PRIORITY_SILENT);
    SetPlatform(nullptr);
    ASSERT_EQ(setenv("VYR_SETTINGS", file->Name().c_str(), 1), 0);
    CChannelMap map;
    map.Create();
    const std::string table =
        "\1\1\1\1<SLT><Service protected='false' hidden='false' broadbandAccessRequired='true' serviceCategory='1' "
        "majorChannelNo='1' minorChannelNo='1'/></SLT>";
    static const struct {
        const char* line;
        int services;
    } k_cases[] = {{"=1\n", 1},
                   {" = 7 \r\n", 1},
                   {"=0\n", 0},
                   {"=1x\n", 0},
                   {"=\n", 0},
                   {"x=1\n", 0},
                   {"\n", 0},
                   {"=1", 1},
                   {"=99999999999999999999\n", 0},
                   {"=4294967297\n", 0},
                   {"=-4294967295\n", 0}};
    for (const auto& c : k_cases) {
        file->Write("# settings\nother=1\n" + key + c.line);
        CParseSLT slt;
        slt.Create(&map, nullptr);
        EXPECT_TRUE(Feed(slt, table));
        EXPECT_EQ(slt.ServiceCount(), c.services) << c.line;
        slt.Destroy();
    }
    file.reset();
    CParseSLT slt;
    slt.Create(&map, nullptr);
    EXPECT_EQ(Each({Feed(slt, table), slt.ServiceCount() == 0}), "11");  // without a file
    slt.Destroy();
    map.Destroy();
    unsetenv("VYR_SETTINGS");
}

/// What goes to the system's log by default; it can be had on stderr beside it.
TEST_F(PlatformTest, TheSystemsLogIsNotFlooded)
{
    SetPlatform(nullptr);
    openlog(nullptr, LOG_PERROR, LOG_USER);
    testing::internal::CaptureStderr();
    CChannelMap map;
    map.Create();
    void* const service = map.AddService(nullptr, 1, 2, 3, 4, 5, 6, 7, false, nullptr);
    for (int i = 0; i < 150; ++i) {
        map.SetSource(service, 0x0A000001);
    }
    map.Destroy();
    std::string shown = testing::internal::GetCapturedStderr();
    std::size_t lines = 0;
    for (std::size_t at = 0; (at = shown.find("10.0.0.1", at)) != std::string::npos; ++at) {
        ++lines;
    }
    EXPECT_EQ(lines, 100u);
    EXPECT_EQ(shown.find("more lines"), std::string::npos);
    timespec second = {1, 50000000};
    nanosleep(&second, nullptr);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(map.RemoveService(nullptr));
    shown = testing::internal::GetCapturedStderr();
    EXPECT_NE(shown.find("SetSource("), std::string::npos) << shown;
    EXPECT_NE(shown.find(" > 50 more lines within a second"), std::string::npos) << shown;
    closelog();
    TakeAssertions();
}

/// What is shown at first is what the environment says when a program starts: runs this test in processes of its own.
TEST(PlatformStartTest, ThePriorityIsThatOfTheEnvironment)
{
    if (std::getenv("VYR_TEST_STARTED")) {
        openlog(nullptr, LOG_PERROR, LOG_USER);
        std::string shown;
        for (const int level : {LOG_DEBUG, LOG_INFO, LOG_ERR}) {
            setlogmask(LOG_MASK(level));  // the system's log shows what it is told at this level alone
            testing::internal::CaptureStderr();
            CSGDUParse unit;
            CXML().Create("", 0, false);
            EXPECT_EQ(Each({unit.Create(), unit.Create()}), "10");
            unit.Destroy();
            shown += testing::internal::GetCapturedStderr().empty() ? "-" : std::to_string(level);
        }
        std::printf("shown: %s\n", shown.c_str());
        return;
    }
    const std::string self = std::filesystem::read_symlink("/proc/self/exe").string();
    static const struct {
        std::string set, shown;
    } k_cases[] = {{"VYR_LOG=debug", "763"},  {"VYR_LOG=info", "-63"},  {"VYR_LOG=error", "--3"},
                   {"VYR_LOG=silent", "---"}, {"VYR_LOG=Debug", "-63"}, {"", "-63"}};
    for (const auto& c : k_cases) {
        const std::string command = "unset VYR_LOG; VYR_TEST_STARTED=1 " + c.set + " " + k_emulator + " '" + self +
                                    "' --gtest_filter=PlatformStartTest.*";
        const auto [said, status] = Shell(command);
        EXPECT_EQ(status, 0) << said;
        EXPECT_NE(said.find("shown: " + c.shown + '\n'), std::string::npos) << c.set << '\n' << said;
    }
}

TEST_F(PlatformTest, TheVersionIsANumberOfThreeParts)
{
    int parts[3] = {-1, -1, -1}, read = 0;
    EXPECT_EQ(std::sscanf(GetLibraryVersion(), "%d.%d.%d%n", parts, parts + 1, parts + 2, &read), 3);
    EXPECT_EQ(GetLibraryVersion()[read], '\0');
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
