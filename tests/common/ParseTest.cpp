#include "common/Parse.h"

#include <memory>

#include "support/Recorder.h"

namespace {

class CReader : public IParse {
  public:
    bool Parse(SItem*) override { return false; }
    using IParse::t_AllocAndCopy;
    using IParse::t_Byte;
    using IParse::t_Value;
    using IParse::t_Value64;
};

class ParseTest : public CRecorder {
  protected:
    IParse::SItem Item(const std::string& bytes, unsigned int bitpos = 0)
    {
        m_bytes = Exact(bytes);
        const unsigned int size = static_cast<unsigned int>(bytes.size());
        return {m_bytes.data(), size, size * 8, bitpos, true};
    }

    CReader m_reader;
    std::vector<unsigned char> m_bytes;
};

TEST_F(ParseTest, ValuesAtAnyBit)
{
    static const struct {
        unsigned int bitpos, bits;
        unsigned int value;
        unsigned long long value64;
    } k_cases[] = {
        {0, 8, 0x81, 0x81},
        {8, 24, 0x234567, 0x234567},
        {0, 32, 0x81234567, 0x81234567},
        {4, 12, 0x123, 0x123},
        {4, 4, 0x1, 0x1},
        {3, 3, 0x0, 0x0},
        {7, 2, 0x2, 0x2},
        {1, 32, 0x02468ACF, 0x02468ACF},
        {0, 0, 0, 0},
        {5, 0, 0, 0},
        // Aligned 40 to 64 bits: the last four bytes; a wider t_Value keeps the low 32 bits of all.
        {0, 40, 0x23456789, 0x23456789},
        {0, 48, 0x456789AB, 0x456789AB},
        {0, 56, 0x6789ABCD, 0x6789ABCD},
        {0, 64, 0x89ABCDEF, 0x89ABCDEF},
        {0, 36, 0x12345678, 0x812345678},
        {4, 64, 0x9ABCDEF1, 0x123456789ABCDEF1},
        {1, 64, 0x13579BDE, 0x02468ACF13579BDE},
    };
    for (const auto& c : k_cases) {
        SCOPED_TRACE(testing::Message() << "bit " << c.bitpos << ", " << c.bits << " bits");
        IParse::SItem item = Item("\x81\x23\x45\x67\x89\xAB\xCD\xEF\x12", c.bitpos);
        EXPECT_EQ(m_reader.t_Value(&item, c.bits), c.value);
        EXPECT_EQ(item.bitpos, c.bitpos + c.bits);
        item.bitpos = c.bitpos;
        EXPECT_EQ(m_reader.t_Value64(&item, c.bits), c.value64);
        EXPECT_EQ(item.bitpos, c.bitpos + c.bits);
        EXPECT_TRUE(item.valid);
    }
}

TEST_F(ParseTest, AFailedReadMovesNothingAndPoisonsTheRest)
{
    IParse::SItem item = Item("abc", 8);
    EXPECT_EQ(m_reader.t_Value(&item, 16), 0x6263u);
    EXPECT_TRUE(item.valid);
    EXPECT_EQ(m_reader.t_Value(&item, 1), 0u);
    EXPECT_FALSE(item.valid);
    EXPECT_EQ(item.bitpos, 24u);
    item.bitpos = 0;
    EXPECT_EQ(m_reader.t_Value(&item, 8), 0u);
    EXPECT_EQ(m_reader.t_Value64(&item, 8), 0u);
    EXPECT_EQ(m_reader.t_Byte(&item, 1), nullptr);
    EXPECT_EQ(m_reader.t_AllocAndCopy(&item, 1), nullptr);
    EXPECT_EQ(item.bitpos, 0u);
    EXPECT_FALSE(item.valid);

    for (const unsigned int bits : {25u, 0xFFFFFFFFu, 0xFFFFFFF8u}) {
        item = Item("abc", 8);
        EXPECT_EQ(m_reader.t_Value64(&item, bits), 0u);
        EXPECT_FALSE(item.valid);
        item = Item("abc", 8);
        EXPECT_EQ(m_reader.t_Value(&item, bits), 0u);
        EXPECT_FALSE(item.valid);
        item = Item("abc", 8);
        EXPECT_EQ(m_reader.t_Byte(&item, bits), nullptr);
        EXPECT_FALSE(item.valid);
        EXPECT_EQ(item.bitpos, 8u);
    }
}

TEST_F(ParseTest, BoundsAreBitsizeForValueAndSizeForTheOthers)
{
    IParse::SItem item = Item("abc");
    item.bitsize = 12;
    EXPECT_EQ(m_reader.t_Value(&item, 13), 0u);
    EXPECT_FALSE(item.valid);
    item.valid = true;
    EXPECT_EQ(m_reader.t_Value64(&item, 24), 0x616263u);
    // A bitsize beyond the bytes must not open them.
    item = Item("abc", 16);
    item.bitsize = 800;
    EXPECT_EQ(m_reader.t_Value(&item, 16), 0u);
    EXPECT_FALSE(item.valid);
}

TEST_F(ParseTest, BytesAndCopies)
{
    IParse::SItem item = Item("xabc", 8);
    const unsigned char* empty = m_reader.t_Byte(&item, 0);
    EXPECT_EQ(empty, m_bytes.data() + 1);
    EXPECT_TRUE(item.valid);
    const std::unique_ptr<unsigned char[]> copy(m_reader.t_AllocAndCopy(&item, 3));
    EXPECT_STREQ(reinterpret_cast<char*>(copy.get()), "abc");
    EXPECT_EQ(item.bitpos, 32u);
    EXPECT_EQ(m_reader.t_AllocAndCopy(&item, 1), nullptr);
    EXPECT_FALSE(item.valid);
}

TEST_F(ParseTest, MisuseIsAsserted)
{
    IParse::SItem item = Item("ab", 3);
    EXPECT_EQ(m_reader.t_Byte(&item, 1), nullptr);
    EXPECT_EQ(m_reader.t_AllocAndCopy(&item, 1), nullptr);
    EXPECT_TRUE(item.valid);
    EXPECT_EQ(TakeAssertions(), "item->bitpos % 8 == 0; item->bitpos % 8 == 0");
    EXPECT_EQ(m_reader.t_Value(nullptr, 1), 0u);
    EXPECT_EQ(s_assertions.back().file, "src/common/Parse");
    EXPECT_EQ(Logged("VYR_PARSER: t_Value("), 1);
    EXPECT_EQ(Logged("> ASSERT!, Func:t_Value, Line:"), 1);
    item.buffer = nullptr;
    EXPECT_EQ(m_reader.t_Value64(&item, 1), 0u);
    EXPECT_EQ(m_reader.t_AllocAndCopy(&item, 1), nullptr);
    EXPECT_EQ(TakeAssertions(), "item; item->buffer; item->buffer");
}

}  // namespace
