#include "common/CoreOS/StringHash.h"

#include "support/Recorder.h"
#include "support/Show.h"

namespace {

class StringHashTest : public CRecorder {
  protected:
    void TearDown() override
    {
        while (m_hash.FlagCreate() && m_hash.SetPosition(CCStringHash::POS_HEAD, 0)) {
            m_hash.Remove();
        }
        if (m_hash.FlagCreate()) {
            m_hash.Destroy();
        }
        CRecorder::TearDown();
    }

    /// Keys from first to last, in the list's order.
    std::string Walk()
    {
        std::string keys;
        bool more = m_hash.SetPosition(CCStringHash::POS_HEAD, 0);
        while (more) {
            keys += static_cast<char*>(m_hash.Key());
            more = m_hash.SetPosition(CCStringHash::POS_CURRENT, 1);
        }
        return keys;
    }

    CCStringHash m_hash;
};

// One-letter keys hash to their code: with 5 buckets "d" 100 is in bucket 0, "i" 105 too, "e" in 1 …
TEST_F(StringHashTest, ListRunsByBucketNewestFirst)
{
    ASSERT_TRUE(m_hash.Create(5, ~0u));
    for (const char* key : {"g", "d", "i", "n", "e", "h"}) {
        EXPECT_TRUE(m_hash.Add(key, key));
        EXPECT_STREQ(static_cast<char*>(m_hash.Data()), key);
    }
    EXPECT_EQ(Walk(), "nidegh");
    EXPECT_EQ(m_hash.Count(), 6);
}

TEST_F(StringHashTest, TableSizeIsTheNextPrime)
{
    // In 11 buckets "a" (97) and "l" (108) share one, and the newer comes first; in 10 they would not.
    static const struct {
        unsigned int size;
        const char *first, *second, *walk;
    } k_cases[] = {{10, "a", "l", "la"}, {1, "a", "c", "ca"},  {13, "a", "n", "na"}, {2, "a", "c", "ca"},
                   {3, "a", "d", "da"},  {10, "l", "b", "lb"}, {4, "a", "f", "fa"}};
    for (const auto& c : k_cases) {
        SCOPED_TRACE(c.size);
        CCStringHash& hash = m_hash;
        ASSERT_TRUE(hash.Create(c.size, ~0u));
        hash.Add(c.first, nullptr);
        hash.Add(c.second, nullptr);
        EXPECT_EQ(Walk(), c.walk);
        TearDown();
    }
}

TEST_F(StringHashTest, CursorAfterFailedLookups)
{
    ASSERT_TRUE(m_hash.Create(5, ~0u));
    m_hash.Add("d", "first");
    m_hash.Add("e", nullptr);
    m_hash.Add("d", "second");
    EXPECT_TRUE(m_hash.Find("d"));
    EXPECT_STREQ(static_cast<char*>(m_hash.Data()), "second");
    EXPECT_FALSE(m_hash.Find("i"));  // bucket occupied: the cursor stays
    EXPECT_STREQ(static_cast<char*>(m_hash.Key()), "d");
    EXPECT_FALSE(m_hash.Find(nullptr));
    EXPECT_STREQ(static_cast<char*>(m_hash.Key()), "d");
    EXPECT_FALSE(m_hash.Find("f"));  // bucket empty: no cursor
    EXPECT_EQ(m_hash.Key(), nullptr);
    EXPECT_EQ(m_hash.Data(), nullptr);
    EXPECT_FALSE(m_hash.SetPosition(CCStringHash::POS_CURRENT, 0));
    EXPECT_FALSE(m_hash.SetPosition(CCStringHash::POS_CURRENT, 1));
    EXPECT_EQ(TakeAssertions(), "m->cur; m->cur");
    // The fast path must not take an older duplicate for the newest when it is the current one.
    EXPECT_TRUE(m_hash.SetPosition(CCStringHash::POS_HEAD, 1));
    EXPECT_TRUE(m_hash.Find("d"));
    EXPECT_STREQ(static_cast<char*>(m_hash.Data()), "first");
}

TEST_F(StringHashTest, RemovalWhileWalking)
{
    ASSERT_TRUE(m_hash.Create(5, ~0u));
    for (const char* key : {"d", "i", "n", "e", "h"}) {
        m_hash.Add(key, nullptr);
    }
    ASSERT_EQ(Walk(), "nideh");
    // Out of the middle of a run, then its start, then the list's end.
    EXPECT_TRUE(m_hash.Find("i"));
    EXPECT_TRUE(m_hash.Remove());
    EXPECT_EQ(m_hash.Key(), nullptr);
    EXPECT_FALSE(m_hash.Remove());
    EXPECT_EQ(TakeAssertions(), "m->cur != NULL && m->cur != &m->dummy");
    EXPECT_TRUE(m_hash.SetPosition(CCStringHash::POS_CURRENT, 1));
    EXPECT_STREQ(static_cast<char*>(m_hash.Key()), "d");
    EXPECT_TRUE(m_hash.Find("n"));
    EXPECT_TRUE(m_hash.Remove());
    EXPECT_FALSE(m_hash.SetPosition(CCStringHash::POS_CURRENT, -1));
    EXPECT_TRUE(m_hash.Find("d"));
    EXPECT_TRUE(m_hash.Find("h"));
    EXPECT_TRUE(m_hash.Remove());
    EXPECT_FALSE(m_hash.SetPosition(CCStringHash::POS_CURRENT, 1));
    EXPECT_TRUE(m_hash.SetPosition(CCStringHash::POS_CURRENT, -1));
    EXPECT_STREQ(static_cast<char*>(m_hash.Key()), "e");
    EXPECT_EQ(Walk(), "de");
}

TEST_F(StringHashTest, Positions)
{
    ASSERT_TRUE(m_hash.Create(5, ~0u));
    EXPECT_FALSE(m_hash.SetPosition(CCStringHash::POS_HEAD, -1));  // empty: not even asserted
    for (const char* key : {"d", "e", "f"}) {
        m_hash.Add(key, nullptr);
    }
    static const struct {
        CCStringHash::EPosState state;
        int index;
        const char* key;
    } k_cases[] = {{CCStringHash::POS_HEAD, 2, "f"},     {CCStringHash::POS_HEAD, 3, nullptr},
                   {CCStringHash::POS_CURRENT, -2, "d"}, {CCStringHash::POS_CURRENT, -1, nullptr},
                   {CCStringHash::POS_CURRENT, 0, "d"},  {CCStringHash::POS_TAIL, 0, "f"},
                   {CCStringHash::POS_TAIL, -1, "e"},    {CCStringHash::POS_TAIL, -3, nullptr}};
    std::string key;
    for (const auto& c : k_cases) {
        SCOPED_TRACE(testing::Message() << c.state << ' ' << c.index);
        EXPECT_EQ(m_hash.SetPosition(c.state, c.index), c.key != nullptr);
        key = c.key ? c.key : key;
        EXPECT_EQ(static_cast<char*>(m_hash.Key()), key);
    }
    EXPECT_FALSE(m_hash.SetPosition(CCStringHash::POS_HEAD, -1));
    EXPECT_FALSE(m_hash.SetPosition(CCStringHash::POS_TAIL, 1));
    EXPECT_EQ(TakeAssertions(), "index >= 0; index <= 0");
    EXPECT_TRUE(m_hash.SetPosition(static_cast<CCStringHash::EPosState>(3), 7));
    EXPECT_EQ(static_cast<char*>(m_hash.Key()), key);
}

TEST_F(StringHashTest, LifecycleAndFixedKeys)
{
    EXPECT_EQ(Join(m_hash.Add("a", nullptr), m_hash.Find("a"), m_hash.Remove(), m_hash.Count()), "0|0|0|0");
    m_hash.Destroy();
    EXPECT_EQ(TakeAssertions(), "m; m; m; m; m");
    ASSERT_TRUE(m_hash.Create(7, 2));
    EXPECT_FALSE(m_hash.Create(7, 2));
    EXPECT_TRUE(m_hash.Add("a\0", "zero"));
    EXPECT_TRUE(m_hash.Add("abX", "ab"));
    EXPECT_TRUE(m_hash.Find("abY"));
    EXPECT_TRUE(m_hash.Find("a\0"));
    EXPECT_STREQ(static_cast<char*>(m_hash.Data()), "zero");
    m_hash.Destroy();
    EXPECT_EQ(m_hash.Count(), 2);
    EXPECT_EQ(TakeAssertions(), "!m; m->size == 0");
}

}  // namespace
