#include "common/ParseXML.h"

#include "support/ParserTest.h"

namespace {

/// A parser of a program's own: takes what has a name other than "bad".
class COwn : public XMLBase {
  public:
    bool Create() override { return true; }
    void Destroy() override { XMLBase::Destroy(); }
    using XMLBase::t_keepsDocument;
    bool Holds() const { return t_xml.FlagCreate(); }

    std::string name;

  private:
    bool m_ProcessParse(void* root) override
    {
        name = t_xml.getStringProp(root, "name", nullptr);
        return name != "bad";
    }
};

using ParseXMLTest = TParserTest<COwn>;

TEST_F(ParseXMLTest, DocumentIsKeptOnRequestAndAfterSuccessOnly)
{
    EXPECT_TRUE(Parse("<t/>"));
    EXPECT_TRUE(m_parser.Holds());
    EXPECT_TRUE(Parse("<t/>"));
    EXPECT_FALSE(Parse("<t name='bad'/>"));
    EXPECT_FALSE(m_parser.Holds());
    EXPECT_EQ(Logged(", m_ProcessParse(root)"), 1);
    m_parser.t_keepsDocument = false;
    EXPECT_TRUE(Parse("<t/>"));
    EXPECT_FALSE(m_parser.Holds());
    EXPECT_FALSE(Parse("<t>"));
    EXPECT_EQ(Logged(", t_xml.Create(buffer, length, compressed)"), 1);
    EXPECT_FALSE(m_parser.XMLBase::Parse("<t/>", 0xFFFFFFFF));
    const std::string gzip = Gzip("<t name='z'/>");
    EXPECT_FALSE(Parse(gzip));
    EXPECT_TRUE(m_parser.XMLBase::Parse(gzip.data(), static_cast<unsigned int>(gzip.size()), true));
    EXPECT_EQ(m_parser.name, "z");
    EXPECT_FALSE(m_parser.XMLBase::Parse(nullptr, 5u, false));
    ASSERT_EQ(s_assertions.size(), 1u);
    EXPECT_EQ(s_assertions[0].file + std::to_string(s_assertions[0].line), "src/common/ParseXML20");
    EXPECT_EQ(TakeAssertions(), "buffer");
    EXPECT_FALSE(m_parser.XMLBase::Parse(static_cast<void*>(nullptr), static_cast<void*>(nullptr)));
    EXPECT_EQ(Logged(", t_xml.Create(doc)"), 1);
    EXPECT_EQ(TakeAssertions(), "docPtr");
}

}  // namespace
