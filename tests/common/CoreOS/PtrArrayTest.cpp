#include "common/CoreOS/PtrArray.h"

#include "support/Recorder.h"
#include "support/Show.h"

namespace {

std::vector<void*> g_removed;

void Remove(void* context, void* element)
{
    EXPECT_EQ(context, &g_removed);
    g_removed.push_back(element);
}

class PtrArrayTest : public CRecorder {
  protected:
    void SetUp() override
    {
        CRecorder::SetUp();
        g_removed.clear();
    }

    void Fill(int n)
    {
        for (int i = 0; i < n; ++i) {
            EXPECT_TRUE(m_array.Add(m_things + i));
        }
    }

    std::vector<int> Held() const
    {
        std::vector<int> held;
        void* p = nullptr;
        for (int i = 0; m_array.GetAt(i, &p); ++i) {
            held.push_back(p ? static_cast<int>(static_cast<const char*>(p) - m_things) : -1);
        }
        return held;
    }

    char m_things[32];
    CCPtrArray m_array{Remove, &g_removed};
};

TEST_F(PtrArrayTest, GrowsPastTheInlineSlotsAndInsertsInOrder)
{
    EXPECT_FALSE(m_array.GetAt(0, nullptr));
    Fill(4);
    EXPECT_TRUE(m_array.Insert(0, m_things + 20));
    EXPECT_TRUE(m_array.Insert(5, m_things + 21));
    EXPECT_TRUE(m_array.Insert(2, nullptr));
    EXPECT_EQ(Held(), (std::vector<int>{20, 0, -1, 1, 2, 3, 21}));
    for (int i = 7; i < 13; ++i) {
        m_array.Add(m_things + i);
    }
    EXPECT_EQ(m_array.Size(), 13);
    EXPECT_EQ(m_array.Data(12), m_things + 12);
    EXPECT_EQ(m_array.ValidCount(), 0);
}

TEST_F(PtrArrayTest, SetFillsWithNullAndReplaces)
{
    EXPECT_TRUE(m_array.Set(9, m_things));
    EXPECT_EQ(m_array.Size(), 10);
    EXPECT_EQ(m_array.Data(8), nullptr);
    EXPECT_EQ(m_array.ValidCount(), 1);
    EXPECT_TRUE(m_array.Set(9, m_things + 1));
    EXPECT_EQ(g_removed, std::vector<void*>{m_things});
    EXPECT_EQ(m_array.ValidCount(), 1);
    EXPECT_TRUE(m_array.Set(2, nullptr));
    EXPECT_EQ(m_array.ValidCount(), 2);
    EXPECT_EQ(m_array.Size(), 10);
    EXPECT_TRUE(m_array.RemoveAt(9));
    EXPECT_EQ(m_array.ValidCount(), 2);
    EXPECT_TRUE(m_array.RemoveAll());
    EXPECT_EQ(m_array.ValidCount(), 0);
    EXPECT_EQ(g_removed.size(), 2u);  // null slots are passed over
}

TEST_F(PtrArrayTest, RemovalCallsBackForNullAndClosesTheGap)
{
    Fill(3);
    m_array.Add(nullptr);
    EXPECT_TRUE(m_array.RemoveAt(3));
    EXPECT_TRUE(m_array.RemoveAt(0));
    EXPECT_EQ(g_removed, (std::vector<void*>{nullptr, m_things}));
    EXPECT_EQ(Held(), (std::vector<int>{1, 2}));
    // The slots given up are empty again.
    EXPECT_TRUE(m_array.Set(3, m_things + 9));
    EXPECT_EQ(Held(), (std::vector<int>{1, 2, -1, 9}));
    EXPECT_EQ(m_array.RemoveIf([](void*, int index) { return index != 1; }, nullptr), 3);
    EXPECT_EQ(Held(), std::vector<int>{2});
    EXPECT_EQ(g_removed.size(), 5u);
}

TEST_F(PtrArrayTest, MisuseIsAssertedAndChangesNothing)
{
    EXPECT_TRUE(m_array.RemoveAll());
    EXPECT_EQ(m_array.Data(0), nullptr);
    EXPECT_FALSE(m_array.RemoveAt(0));
    EXPECT_EQ(TakeAssertions(), "0 <= index && index < m_size; 0 <= index && index < m_size");
    Fill(2);
    EXPECT_FALSE(m_array.RemoveAt(-1));
    EXPECT_FALSE(m_array.Insert(3, m_things));
    EXPECT_FALSE(m_array.Set(-1, m_things));
    EXPECT_FALSE(m_array.Set(0x7FFFFFFF, m_things));
    EXPECT_EQ(s_assertions.size(), 4u);
    EXPECT_EQ(s_assertions[0].file, "src/common/CoreOS/PtrArray");
    s_assertions.clear();
    EXPECT_EQ(Held(), (std::vector<int>{0, 1}));

    {
        CCPtrArray borrowed(nullptr, nullptr);
        for (int i = 0; i < 6; ++i) {
            borrowed.Add(m_things);
        }
        EXPECT_FALSE(borrowed.RemoveAll());
        EXPECT_EQ(borrowed.Size(), 6);
        EXPECT_EQ(TakeAssertions(), "m_callback.cbRemove");
        EXPECT_TRUE(borrowed.RemoveAt(0));
    }
    EXPECT_EQ(TakeAssertions(), "m_callback.cbRemove");
}

/// On both sides of 1,024 slots, where the steps begin to double; and a far index.
TEST_F(PtrArrayTest, LongListsKeepEveryElement)
{
    std::vector<char> things(5000);
    for (const int from : {0, 1019, 1020, 1028, 2056}) {
        CCPtrArray array(CCPtrArray::DummyCallback, nullptr);
        for (int i = 0; i < from; ++i) {
            array.Add(&things[static_cast<std::size_t>(i)]);
        }
        EXPECT_EQ(Each({array.Set(3000, &things[3000]), array.Insert(0, &things[4000]), array.Set(4500, &things[1])}),
                  "111");
        EXPECT_EQ(array.Size(), 4501);
        EXPECT_EQ(array.ValidCount(), 2);
        for (int i = 0; i < 4501; ++i) {
            const int held = i == 0 ? 4000 : i <= from ? i - 1 : i == 3001 ? 3000 : i == 4500 ? 1 : -1;
            ASSERT_EQ(array.Data(i), held < 0 ? nullptr : &things[static_cast<std::size_t>(held)]) << from << " " << i;
        }
        EXPECT_EQ(Each({array.RemoveAll(), array.Add(things.data()), array.Size() == 1}), "111");
    }
}

TEST_F(PtrArrayTest, IsNotChangedByItsOwnCallback)
{
    static CCPtrArray* s_array = nullptr;
    static std::string s_told;
    s_told.clear();
    CCPtrArray array(
        [](void* things, void* element) {
            s_told += std::to_string(static_cast<char*>(element) - static_cast<char*>(things)) +
                      Each({s_array->Add(nullptr), s_array->Insert(0, nullptr), s_array->Set(0, nullptr),
                            s_array->RemoveAt(0), s_array->RemoveAll(), s_array->Data(0) != nullptr}) +
                      ' ';
        },
        m_things);
    s_array = &array;
    EXPECT_EQ(Each({array.Add(m_things), array.Add(m_things + 1), array.Add(m_things + 2)}), "111");
    EXPECT_EQ(Each({array.RemoveAt(1), array.Set(1, m_things + 3), array.Size() == 2, array.RemoveAll()}), "1111");
    EXPECT_EQ(s_told, "1000001 2000001 0000001 3000001 ");
    EXPECT_EQ(s_assertions.size(), 4u * 5u);
    s_assertions.clear();
}

}  // namespace
