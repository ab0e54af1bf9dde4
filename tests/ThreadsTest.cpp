// A parser per thread, and stores that threads share: for the thread sanitizer, and quick without it.
#include <filesystem>
#include <fstream>
#include <thread>

#include "common/ChannelMap.h"
#include "entries/Entries.h"
#include "esg/ESGServiceFragment.h"
#include "esg/GenreNameParse.h"
#include "lls/RRTMap.h"
#include "support/Programs.h"
#include "support/Services.h"
#include "support/Show.h"

namespace {

void RunAll(const TEntryKinds& kinds)
{
    for (const SEntryKind& kind : kinds) {
        const SEntry entry = kind.make();
        EXPECT_EQ(Each({entry.create(), entry.parse()}), "11") << kind.name;
        entry.digest();
        entry.destroy();
    }
}

void Genres()
{
    const std::string text =
        "<Service id='s'><Genre>urn:x:1</Genre><Genre>urn:x:2.7</Genre><Genre>urn:x:3</Genre></Service>";
    CESGServiceFragment service;
    ASSERT_EQ(Each({service.Create(), service.Parse(text.data(), static_cast<unsigned int>(text.size()))}), "11");
    const auto& genres = service.State()->genres;
    EXPECT_STREQ(genres[0]->State()->name, "One");
    EXPECT_STREQ(genres[1]->State()->name, "Two");
    EXPECT_EQ(genres[2]->State()->name, nullptr);
    service.Destroy();
}

class ThreadsTest : public CRecorder {
  protected:
    // With a zone named, the C library writes nothing at mktime; it does so under a lock that the sanitizer
    // does not see.
    const SZone m_zone{"UTC0"};
};

TEST_F(ThreadsTest, AParserPerThreadAndStoresThatAreShared)
{
    const CTemporaryFolder root;
    std::filesystem::create_directories(root.Of("opt/data"));
    std::ofstream(root.Of("opt/data/genre-cs.xml"))
        << "<ClassificationScheme><Term termID='1'><Name>One</Name></Term><Term termID='2'><Name>Two</Name></Term>"
           "</ClassificationScheme>";
    SetFileRoot(root.Name().c_str());
    SGenreNameParse::refMap.clear();
    SetLogPriority(LOG_PRIORITY_SILENT);  // the recorder itself takes no lock
    CChannelMap map;                      // stores that others share must not end with the first of them
    CRRTMap ratings;
    ASSERT_EQ(Each({map.Create(), ratings.Create()}), "11");
    static void (*const k_families[])() = {[] { RunAll(LlsEntries()); },   [] { RunAll(RouteEntries()); },
                                           [] { RunAll(MmtEntries()); },   [] { RunAll(GuideEntries()); },
                                           [] { RunAll(StoreEntries()); }, Genres};
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
                EXPECT_EQ(Each({map.SetServiceName(own, "name", 4), map.SetServiceName(shared, "n", 1)}), "11");
                EXPECT_FALSE(ServicesOf(map).empty());
                EXPECT_TRUE(map.RemoveService(own));
            }
            map.Destroy();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(ServicesOf(first).size(), 1u);
    first.Destroy();
}

}  // namespace
