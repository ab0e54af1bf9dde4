#include "lls/LLSSMTParser.h"

#include "support/MmtBuilder.h"
#include "support/ParserTest.h"
#include "support/Show.h"
#include "support/Tables.h"

namespace {

/// Two payloads, "abc" of table 1 and none of table 3, and the signature "SIG!".
const std::string k_table("\2\1\7\0\3abc\3\x9\0\0\0\4SIG!", 18);
const std::string k_signed = k_table.substr(0, 12);

class LLSSMTParserTest : public TParserTest<CLLSSMTParser> {
  protected:
    /// What the getters give: payloads, signature and signed block.
    std::string State()
    {
        std::string all = std::to_string(m_parser.PayloadCount()) + ":";
        unsigned int length = 0, id = 0;
        unsigned char buffer[256] = {};
        for (int i = 0; i < m_held && m_parser.GetPayloadLength(i, length) && m_parser.GetPayload(i, id, buffer); ++i) {
            all += " " + std::to_string(id) + "=" + std::string(buffer, buffer + length);
        }
        const bool sign = m_parser.GetSignatureData(buffer) && m_parser.GetSignatureLength(length);
        all += " sig " + (sign ? std::string(buffer, buffer + length) : "-");
        const bool block = m_parser.GetSignedBlock(buffer) && m_parser.GetSignedBlockLength(length);
        return all + (block && std::string(buffer, buffer + length) == k_signed ? " block" : "");
    }

    int m_held = 2;
};

TEST_F(LLSSMTParserTest, PayloadsSignatureAndSignedBlock)
{
    m_held = 0;
    EXPECT_EQ(State(), "0: sig -");
    m_held = 2;
    const SFed fed(m_parser, k_table);
    EXPECT_EQ(Join(fed.result, fed.item.valid, fed.Cursor()), "1|1|12") << "behind the signed block";
    EXPECT_EQ(State(), "2: 1=abc 3= sig SIG! block");
    EXPECT_EQ(Logged("[CLLSSMTParser::Parse] SMT ID:1 VER:7 LEN:3"), 1);
    EXPECT_EQ(Logged("[CLLSSMTParser::Parse] signatureLength[4]"), 1);
    EXPECT_EQ(Logged("[CLLSSMTParser::GetPayload] index[0], length[3]"), 1);
    EXPECT_TRUE(Feed(m_parser, "head" + k_table + "tail", 32));
    EXPECT_EQ(State(), "2: 1=abc 3= sig SIG! block");
    EXPECT_EQ(Logged("[CLLSSMTParser::Parse] signedBlocklength[12] item size[26]"), 1);

    // Nothing in it: the signed block is the count alone.
    EXPECT_TRUE(Feed(m_parser, std::string("\0\0\0", 3)));
    unsigned int length = 9;
    EXPECT_EQ(Join(m_parser.GetSignedBlockLength(length), length), "1|1");
    EXPECT_EQ(Join(m_parser.GetSignatureLength(length), length), "1|0");
    EXPECT_FALSE(m_parser.GetPayloadLength(0, length));
    EXPECT_EQ(Logged("[CLLSSMTParser::GetPayload] No SMT payload"), 1);
    EXPECT_TRUE(Feed(m_parser, k_table));
    EXPECT_TRUE(Feed(m_parser, k_table, 144));  // nothing behind the cursor
    EXPECT_EQ(Join(m_parser.GetSignedBlockLength(length), length), "1|12");
    EXPECT_FALSE(m_parser.GetPayloadLength(0, length));
    EXPECT_TRUE(Feed(m_parser, k_table));
    EXPECT_EQ(Join(m_parser.GetPayloadLength(2, length), m_parser.GetPayloadLength(-1, length)), "0|0");
    EXPECT_EQ(TakeAssertions(), "smtPayload; smtPayload");
    EXPECT_EQ(Logged("ASSERT!, Func:GetPayloadLength, Line:"), 2);
}

TEST_F(LLSSMTParserTest, EveryPrefix)
{
    for (std::size_t size = 1; size < k_table.size(); ++size) {
        SCOPED_TRACE(size);
        m_held = 2;
        ASSERT_TRUE(Feed(m_parser, k_table));
        EXPECT_FALSE(Feed(m_parser, k_table.substr(0, size)));
        // Payloads before the cut are there; the last signature stays, under the length just read.
        m_held = size < 8 ? 0 : (size < 12 ? 1 : 2);
        const std::string payloads = std::string(m_held > 0 ? " 1=abc" : "") + (m_held > 1 ? " 3=" : "");
        const std::string signature = size < 12 || size >= 14 ? "SIG!" : "";
        EXPECT_EQ(State(), "2:" + payloads + " sig " + signature + " block");
    }
    EXPECT_EQ(Logged("[CLLSSMTParser::Parse] SMT ID:1 VER:7 allocation payload[3] fail !!!"), 3);
    EXPECT_EQ(Logged("[CLLSSMTParser::Parse] Signed Block t_AllocAndCopy Error"), 6);
}

TEST_F(LLSSMTParserTest, LengthsThatOverrun)
{
    // A signature length beyond the data: the old signature is kept, and no byte outside it is given.
    ASSERT_TRUE(Feed(m_parser, k_table));
    EXPECT_FALSE(Feed(m_parser, std::string("\0\xFF\xFFxx", 5)));
    unsigned int length = 0;
    EXPECT_EQ(Join(m_parser.GetSignatureLength(length), length), "1|65535");
    std::vector<unsigned char> buffer(length, '#');
    EXPECT_TRUE(m_parser.GetSignatureData(buffer.data()));
    EXPECT_EQ(std::string(buffer.begin(), buffer.begin() + 5), "SIG!#");

    EXPECT_FALSE(Feed(m_parser, std::string(200, '\xFF')));
    EXPECT_FALSE(m_parser.Parse(nullptr));
    EXPECT_FALSE(Feed(m_parser, k_table, 3));
    EXPECT_EQ(TakeAssertions(), "item; item->bitpos % 8 == 0");
    CLLSSMTParser other;
    EXPECT_EQ(Each({Feed(other, k_table), m_parser.Create()}), "00");
    EXPECT_EQ(Logged("[CLLSSMTParser::Parse] does not exist !!!"), 1);
    EXPECT_EQ(TakeAssertions(), "!m");
}

TEST_F(LLSSMTParserTest, RealTable)
{
    EXPECT_TRUE(Feed(m_parser, ReadData("lls/openssl-signedmultitable.bin"), 32));
    ASSERT_EQ(m_parser.PayloadCount(), 2);
    unsigned int length = 0;
    EXPECT_EQ(Join(m_parser.GetPayloadLength(0, length), length), "1|454");
    EXPECT_EQ(Join(m_parser.GetPayloadLength(1, length), length), "1|128");
    EXPECT_EQ(Join(m_parser.GetSignedBlockLength(length), length), "1|591");
    EXPECT_EQ(Join(m_parser.GetSignatureLength(length), length), "1|2172");
}

}  // namespace
