#include "lls/ParseLLS.h"

#include "support/Recorder.h"
#include "support/Show.h"

namespace {

class CTable : public TCParseLLS {
  public:
    void Destroy() override {}
    bool t_Parse(IParse::SItem* item) override
    {
        EXPECT_EQ(Join(item->valid, item->bitpos, item->bitsize), Join(1, 0, item->size * 8));
        m_payloads.emplace_back(item->buffer, item->buffer + item->size);
        return false;  // what the table's parser says does not matter
    }

    std::vector<std::string> m_payloads;
};

class ParseLLSTest : public CRecorder {
  protected:
    bool Parse(const std::string& bytes, unsigned int bitpos = 0)
    {
        const std::vector<unsigned char> block = Exact(bytes);
        const unsigned int size = static_cast<unsigned int>(block.size());
        IParse::SItem item = {block.data(), size, size * 8, bitpos, true};
        const bool isNew = m_table.Parse(&item);
        EXPECT_EQ(item.bitpos, bitpos);
        return isNew;
    }

    bool Check(const std::string& bytes)
    {
        const std::vector<unsigned char> block = Exact(bytes);
        m_xml = "untouched";
        m_cms = "untouched";
        return m_table.CheckCMS(block.data(), static_cast<int>(block.size()), m_xml, m_cms);
    }

    CTable m_table;
    std::string m_xml, m_cms;
};

TEST_F(ParseLLSTest, ATableIsNewUnlessAllFourHeaderBytesRepeat)
{
    EXPECT_TRUE(Parse("\1\2\3\4payload"));
    EXPECT_FALSE(Parse("\1\2\3\4payload"));
    for (const char* changed : {"\2\2\3\4", "\2\3\3\4", "\2\3\4\4", "\2\3\4\5"}) {
        EXPECT_TRUE(Parse(changed)) << testing::PrintToString(changed);
        EXPECT_FALSE(Parse(changed));
    }
    // Only one header is remembered.
    EXPECT_TRUE(Parse("\1\2\3\4again"));
    EXPECT_EQ(m_table.m_payloads.size(), 6u);
    EXPECT_EQ(m_table.m_payloads.front(), "payload");
    EXPECT_EQ(m_table.m_payloads.back(), "again");
    EXPECT_TRUE(Parse("xx\1\2\3\7tail", 23));  // a cursor inside a byte counts from that byte
    EXPECT_EQ(m_table.m_payloads.back(), "tail");
    EXPECT_EQ(Logged("[TCParseLLS::t_CheckVersion] TableId[1] GroupId[2] GroupCountMinus1[3] TableVersion[4]"), 3);
    EXPECT_EQ(Logged("[TCParseLLS::Parse] TableId[1] groupId[2] groupCount[3] TableVersion[4], valid[0]"), 1);
}

TEST_F(ParseLLSTest, AFreshParserHasSeenAllOnes)
{
    EXPECT_FALSE(Parse("\xFF\xFF\xFF\xFF"));
    EXPECT_TRUE(m_table.m_payloads.empty());
    m_table.SkipCheckVersion(0xFF, 0xFF, true);
    EXPECT_FALSE(Parse("\xFF\xFF\xFF\xFF"));
}

TEST_F(ParseLLSTest, SkippedIdsLetRepeatsThrough)
{
    m_table.SkipCheckVersion(1, 7, true);
    EXPECT_EQ(Logged("[TCParseLLS::SkipCheckVersion] TableId[1] GroupId[7] skip[1]"), 1);
    for (const char* header : {"\1\2\1\1", "\3\7\1\1"}) {
        EXPECT_EQ(Each({Parse(header), Parse(header), Parse(header)}), "111");
    }
    EXPECT_TRUE(Parse("\3\2\1\1"));
    EXPECT_FALSE(Parse("\3\2\1\1"));
    m_table.SkipCheckVersion(3, 2, false);
    EXPECT_FALSE(Parse("\3\2\1\1"));
    EXPECT_TRUE(Parse("\1\2\1\1"));
    EXPECT_FALSE(Parse("\1\2\1\1"));
}

TEST_F(ParseLLSTest, ShortItemsAreNotTables)
{
    EXPECT_FALSE(Parse("\1\2\3"));
    EXPECT_FALSE(Parse("\1\2\3\4", 8));
    EXPECT_FALSE(Parse("\1\2\3\4", 800));
    EXPECT_FALSE(m_table.Parse(nullptr));
    EXPECT_EQ(s_assertions.size(), 4u);
    s_assertions.clear();
    EXPECT_TRUE(Parse("\1\2\3\4"));
    EXPECT_EQ(m_table.m_payloads, std::vector<std::string>{""});
}

TEST_F(ParseLLSTest, CheckCMSCutsTheElementOut)
{
    const std::string header = "\1\2\3\4";
    const std::string value(17, 'v');
    const std::string text = "<SLT><a/><CMSSignedData>" + value + "</CMSSignedData></SLT>";
    for (const std::string& payload :
         {text, Gzip(text), text + std::string("\0<CMSSignedData", 15), Gzip(text) + "more"}) {
        EXPECT_TRUE(Check(header + payload));
        EXPECT_EQ(m_xml, "<SLT><a/></SLT>");
        EXPECT_EQ(m_cms, ">" + value + "</CMSSignedDat");
    }
    EXPECT_EQ(Logged("[TCParseLLS::CheckCMS] TableId[1] GroupId[2] length["), 4);
    EXPECT_EQ(Logged("[TCParseLLS::CheckCMS]find start cms signed data !!!!!"), 4);
    EXPECT_EQ(Logged("[TCParseLLS::CheckCMS] cmsLength[48]"), 4);
    EXPECT_EQ(Logged("[TCParseLLS::CheckCMS] CMSDataSize[32], data[>vvvvvvvvvvvvvvvvv</CMSSignedDat]"), 4);
}

TEST_F(ParseLLSTest, CheckCMSRefusals)
{
    const auto element = [](std::size_t n) { return "<CMSSignedData" + std::string(n, 'x') + "</CMSSignedData>"; };
    std::string bomb = Gzip(std::string(524289 - element(40).size(), ' ') + element(40));
    const struct {
        std::string payload;
        bool separated;
        int errors, lines;
    } cases[] = {
        {"", false, 0, 1},
        {"\x1F", false, 0, 1},
        {"<SLT/>", false, 0, 1},
        {"<CMSSignedData>", false, 1, 3},
        {"</CMSSignedData><CMSSignedData>", false, 1, 3},
        {element(16), false, 1, 5},
        {element(17), true, 0, 4},
        {std::string("\0", 1) + element(40), false, 0, 1},
        {Gzip(element(40)).substr(0, 30), false, 0, 1},
        {bomb, false, 0, 1},
        {Gzip(std::string(524288 - element(40).size(), ' ') + element(40)), true, 0, 4},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.payload.substr(0, 40));
        s_log.clear();
        EXPECT_EQ(Check("\1\1\1\1" + c.payload), c.separated);
        EXPECT_EQ(Logged("[TCParseLLS::CheckCMS]cms signed data parsing ERROR!!!!!"), c.errors);
        EXPECT_EQ(static_cast<int>(s_log.size()), c.lines);
        EXPECT_EQ(m_xml == "untouched" && m_cms == "untouched", !c.separated);
    }
    EXPECT_FALSE(Check("\1\1\1"));
    EXPECT_FALSE(m_table.CheckCMS(nullptr, 100, m_xml, m_cms));
    EXPECT_EQ(TakeAssertions(), "length >= 4; data");
}

}  // namespace
