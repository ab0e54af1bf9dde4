// A parser per thread, and stores that threads share: for the thread sanitizer, and quick without it.
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

#include "common/ChannelMap.h"
#include "common/RSAT.h"
#include "esg/ESGFragmentMap.h"
#include "esg/ESGServiceFragment.h"
#include "esg/GenreNameParse.h"
#include "esg/SGDUParse.h"
#include "esg/SGResponse.h"
#include "lls/LLSSMTParser.h"
#include "lls/ParseAEAT.h"
#include "lls/ParseCDT.h"
#include "lls/ParseOnscreenNoti.h"
#include "lls/ParseRRT.h"
#include "lls/ParseSLT.h"
#include "lls/ParseSystemTime.h"
#include "lls/RRTMap.h"
#include "mmt/desc/MMTUsbd.h"
#include "mmt/msg/MMTMsgFactory.h"
#include "mmt/table/MMTTblFactory.h"
#include "route/SLS/EFDT.h"
#include "route/SLS/MPD.h"
#include "route/SLS/ROUTEUsbd.h"
#include "route/SLS/STSID.h"
#include "route/SLSManager.h"
#include "support/Recorder.h"
#include "support/Seed.h"

namespace {

bool Feed(IParse& parser, const std::string& bytes)
{
    const unsigned int size = static_cast<unsigned int>(bytes.size());
    IParse::SItem item = {reinterpret_cast<const unsigned char*>(bytes.data()), size, size * 8, 0, true};
    return parser.Parse(&item);
}

template <class TParser>
void Table(const char* seed, const std::function<bool(TParser&)>& create)
{
    const std::string bytes = Seed(seed, 1);
    TParser parser;
    EXPECT_TRUE(create(parser) && Feed(parser, bytes)) << seed;
    parser.Destroy();
}

template <class TParser>
void Document(const char* seed, std::size_t skip)
{
    const std::string text = Seed(seed, skip);
    TParser parser;
    XMLBase& base = parser;
    EXPECT_TRUE(base.Create() && base.Parse(text.data(), static_cast<unsigned int>(text.size()), true)) << seed;
    base.Destroy();
}

void Lls()
{
    CChannelMap map;
    ASSERT_TRUE(map.Create());
    Table<CParseSLT>("lls_slt/strict-gzip", [&map](CParseSLT& slt) { return slt.Create(&map, nullptr); });
    map.GetServiceList(
        [](void* handle, void* service) {
            std::string text;
            static_cast<CChannelMap*>(handle)->GetGlobalServiceId(service, text);
        },
        &map);
    map.Destroy();
    const auto plain = [](auto& parser) { return parser.Create(); };
    Table<CParseSystemTime>("lls_tables/system-time", [](CParseSystemTime& time) { return time.Create(1); });
    Table<CParseRRT>("lls_tables/rrt", plain);
    Table<CParseAEAT>("lls_tables/aeat", [](CParseAEAT& aeat) { return aeat.Create(nullptr); });
    Table<CParseCDT>("lls_tables/cdt", plain);
    Table<CParseOnscreenNoti>("lls_tables/onscreen", plain);
    Table<CLLSSMTParser>("lls_tables/signed-multi-table", plain);
}

void Route()
{
    Document<CSTSID>("route_documents/stsid", 1);
    Document<CROUTEUsbd>("route_documents/usbd", 1);
    Document<CEFDT>("route_documents/real-fdt", 1);
    Document<CRSAT>("route_documents/rsat", 1);
    Document<CMPD>("mpd/template-timeline", 0);
    const std::string package = Seed("sls_manager/every-kind", 1);
    CSLSManager manager;
    ASSERT_TRUE(manager.Create(nullptr));
    manager.Parse(reinterpret_cast<const unsigned char*>(package.data()), static_cast<unsigned int>(package.size()),
                  nullptr, false);
    EXPECT_NE(manager.Usbd(), nullptr);
    manager.Destroy();
}

void Mmt()
{
    for (const char* seed : {"pa", "mpi-with-mp", "dci", "cri", "ac", "ls", "signed-mpt", "atsc-usbd-gzip"}) {
        const std::string bytes = Seed(std::string("mmt_message/") + seed, 0);
        const auto message = CMMTMsgFactory::CreateMessage(reinterpret_cast<const unsigned char*>(bytes.data()),
                                                           static_cast<unsigned int>(bytes.size()));
        ASSERT_TRUE(message && Feed(*message, bytes)) << seed;
        message->GetDescriptors([](void*, CMMTDesc*) {}, nullptr);
        message->Process();
    }
    Document<CMMTUsbd>("mmt_usbd/every-element", 1);
}

void Guide()
{
    const std::string unit = Seed("esg_sgdu/gzip", 1);
    CSGDUParse sgdu;
    ASSERT_TRUE(sgdu.Create());
    sgdu.SetCompress(true);
    EXPECT_TRUE(Feed(sgdu, unit));
    sgdu.Destroy();
    Document<CSGResponse>("esg_documents/response", 1);
    const std::string text =
        "<Service id='s'><Genre>urn:x:1</Genre><Genre>urn:x:2.7</Genre><Genre>urn:x:3</Genre></Service>";
    CESGServiceFragment service;
    ASSERT_TRUE(service.Create() && service.Parse(text.data(), static_cast<unsigned int>(text.size())));
    const auto& genres = service.State()->genres;
    EXPECT_STREQ(genres[0]->State()->name, "One");
    EXPECT_STREQ(genres[1]->State()->name, "Two");
    EXPECT_EQ(genres[2]->State()->name, nullptr);
    service.Destroy();
}

void Stores()
{
    CRRTMap ratings;
    CESGFragmentMap fragments;
    ASSERT_TRUE(ratings.Create() && fragments.Create());
    char text[] = "text";
    EXPECT_TRUE(ratings.Add(1, 2) && ratings.SetDimension(1, 3, true) && ratings.SetRatingVal(1, 4) &&
                ratings.SetRatingValAbbrev(1, text, text) && ratings.SetRegionIdText(1, text, text));
    EXPECT_TRUE(fragments.Add("a") && fragments.isExisted("a") && fragments.Remove("a"));
    ratings.Destroy();
    fragments.Destroy();
}

class ThreadsTest : public CRecorder {
  protected:
    // With a zone named, the C library writes nothing at mktime; it does so under a lock that the sanitizer
    // does not see.
    void SetUp() override
    {
        CRecorder::SetUp();
        const char* zone = std::getenv("TZ");
        m_zone = zone ? zone : "";
        setenv("TZ", "UTC0", 1);
        tzset();
    }

    void TearDown() override
    {
        m_zone.empty() ? unsetenv("TZ") : setenv("TZ", m_zone.c_str(), 1);
        tzset();
        CRecorder::TearDown();
    }

  private:
    std::string m_zone;
};

TEST_F(ThreadsTest, AParserPerThreadAndStoresThatAreShared)
{
    const std::filesystem::path root = VYR_TEST_SCRATCH "/threads";
    std::filesystem::create_directories(root / "opt/data");
    std::ofstream(root / "opt/data/genre-cs.xml")
        << "<ClassificationScheme><Term termID='1'><Name>One</Name></Term><Term termID='2'><Name>Two</Name></Term>"
           "</ClassificationScheme>";
    SetFileRoot(root.c_str());
    SGenreNameParse::refMap.clear();
    SetLogPriority(LOG_PRIORITY_SILENT);  // the recorder itself takes no lock
    CChannelMap map;                      // stores that others share must not end with the first of them
    CRRTMap ratings;
    ASSERT_TRUE(map.Create() && ratings.Create());
    static void (*const k_families[])() = {Lls, Route, Mmt, Guide, Stores};
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < 4; ++t) {
        threads.emplace_back([t] {
            for (std::size_t i = 0; i < 4 * std::size(k_families); ++i) {
                k_families[(i + t) % std::size(k_families)]();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    SetFileRoot(nullptr);
    SGenreNameParse::refMap.clear();
    map.Destroy();
    ratings.Destroy();
}

/// Services come, change, are listed and go on all threads at once, with callbacks that come and go.
TEST_F(ThreadsTest, TheChannelMapIsShared)
{
    SetLogPriority(LOG_PRIORITY_SILENT);
    CChannelMap first;
    ASSERT_TRUE(first.Create());
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t] {
            CChannelMap map;
            ASSERT_TRUE(map.Create());
            const CChannelMap::SCallback callback = {nullptr, [](void*, void*) {}};
            for (int i = 0; i < 200; ++i) {
                map.SetCallback(i % 2 == 0 ? &callback : nullptr);
                void* own = map.AddService(&map, 1, i, t, 3, 4, 5, 6, false, nullptr);
                void* shared = map.AddService(nullptr, 1, 7, 3, 4, 5, 6, 7, false, nullptr);
                EXPECT_TRUE(own && shared && map.SetServiceName(own, "name", 4) && map.SetServiceName(shared, "n", 1));
                int count = 0;
                map.GetServiceList([](void* user, void*) { ++*static_cast<int*>(user); }, &count);
                EXPECT_GT(count, 0);
                EXPECT_TRUE(map.RemoveService(own));
            }
            map.Destroy();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    int count = 0;
    first.GetServiceList([](void* user, void*) { ++*static_cast<int*>(user); }, &count);
    EXPECT_EQ(count, 1);
    first.Destroy();
}

}  // namespace
