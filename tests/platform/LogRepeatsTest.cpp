#include "platform/LogRepeats.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "support/Show.h"

namespace {

using CRepeats = vyr::CLogRepeats;
constexpr std::int64_t k_second = CRepeats::k_nanoseconds;
constexpr int k_shown = CRepeats::k_shown;

CRepeats::SPlace Place(int line)
{
    return {"Parse", "text %d", line, LOG_PRIORITY_INFO};
}

/// How many of `count` lines are shown.
int Shown(CRepeats& repeats, const CRepeats::SPlace& place, int count, std::int64_t now)
{
    int shown = 0;
    for (int i = 0; i < count; ++i) {
        shown += repeats.Admit(place, now);
    }
    return shown;
}

TEST(LogRepeatsTest, TheRestOfASecondIsToldOnce)
{
    static CRepeats s_repeats;
    CRepeats::SSummary summary;
    EXPECT_EQ(Shown(s_repeats, Place(1), k_shown, 5), k_shown);
    EXPECT_FALSE(s_repeats.TakeSummary(5 + k_second, summary));  // none too many
    EXPECT_EQ(Shown(s_repeats, Place(1), k_shown + 3, 5 + k_second), k_shown);
    EXPECT_EQ(Shown(s_repeats, Place(2), k_shown + 1, 6 + k_second), k_shown);
    CRepeats::SPlace other = Place(1);
    other.format = "another";
    EXPECT_EQ(Shown(s_repeats, other, k_shown, 7 + k_second), k_shown);
    EXPECT_EQ(Shown(s_repeats, Place(1), 4, 4 + 2 * k_second), 0);
    EXPECT_FALSE(s_repeats.TakeSummary(4 + 2 * k_second, summary));
    ASSERT_TRUE(s_repeats.TakeSummary(5 + 2 * k_second, summary));
    EXPECT_EQ(Join(summary.place.line, summary.more), "1|7");
    EXPECT_FALSE(s_repeats.TakeSummary(5 + 2 * k_second, summary));
    // A second of its own, and the other place's is still told.
    EXPECT_EQ(Shown(s_repeats, Place(1), k_shown + 2, 6 + 2 * k_second), k_shown);
    ASSERT_TRUE(s_repeats.TakeSummary(6 + 2 * k_second, summary));
    EXPECT_EQ(Join(summary.place.line, summary.more), "2|1");
    ASSERT_TRUE(s_repeats.TakeSummary(INT64_MAX, summary));
    EXPECT_EQ(Join(summary.place.line, summary.more), "1|2");
    EXPECT_FALSE(s_repeats.TakeSummary(INT64_MAX, summary));
}

TEST(LogRepeatsTest, MorePlacesThanRoom)
{
    static CRepeats s_repeats;
    constexpr int k_many = 4 * static_cast<int>(CRepeats::k_places);
    long long lines = 0;
    for (int second = 0; second < 2; ++second) {
        for (int line = 0; line < k_many; ++line) {
            lines += Shown(s_repeats, Place(line), k_shown + 1, second * k_second);
        }
    }
    CRepeats::SSummary summary;
    while (s_repeats.TakeSummary(INT64_MAX, summary)) {
        lines += summary.more;
    }
    EXPECT_EQ(lines, 2LL * k_many * (k_shown + 1));
}

TEST(LogRepeatsTest, NothingIsLostBetweenThreads)
{
    static CRepeats s_repeats;
    std::atomic<long long> lines{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&lines] {
            CRepeats::SSummary summary;
            for (int i = 0; i < 5000; ++i) {
                const std::int64_t now = i * (k_second / 1000);
                while (s_repeats.TakeSummary(now, summary)) {
                    lines += summary.more;
                }
                lines += s_repeats.Admit(Place(i % 2), now);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    CRepeats::SSummary summary;
    while (s_repeats.TakeSummary(INT64_MAX, summary)) {
        lines += summary.more;
    }
    EXPECT_EQ(lines, 4 * 5000);
}

}  // namespace
