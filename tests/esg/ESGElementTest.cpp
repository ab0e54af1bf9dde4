#include "esg/Elements.h"

namespace {

using ESGElementTest = CRecorder;

TEST_F(ESGElementTest, EveryAttributeAndChild)
{
    for (const CElementCases* c : CElementCases::All()) {
        for (const auto& [text, record] : c->cases) {
            EXPECT_EQ(c->parse(text), record) << text;
        }
        EXPECT_EQ(c->parse("<" + c->element + "/>"), c->empty) << c->className;
        s_log.clear();
        EXPECT_EQ(c->parse("<Other/>"), "failed") << c->className;
        EXPECT_EQ(Logged("[" + c->className + "::m_Process] Root node is not " + c->element), 1);
        EXPECT_EQ(Logged("_CHECK FAIL: src/esg/ESGElement/" + c->className.substr(1) + ":"), 2);
        EXPECT_EQ(Logged("[" + c->className + "::Create]"), 1);
        EXPECT_EQ(Logged("[" + c->className + "::Destroy]"), 1);
    }
}

TEST_F(ESGElementTest, NameWithTextIgnoresItsSpeech)
{
    EXPECT_EQ(Parsed<CName>("<Name>N<SpeechInfo Content-type='a'/></Name>"), "-|-|N|[]|[]");
    EXPECT_EQ(Parsed<CName>("<Name> <SpeechInfo Content-type='a'/></Name>"), "-|-| |[]|[]");
    EXPECT_EQ(Parsed<CName>("<Name><SpeechInfo>spoken</SpeechInfo></Name>"), "-|-|spoken|[]|[]");
}

TEST_F(ESGElementTest, Misuse)
{
    SDocument document("<Name/>");
    {
        CName name;
        EXPECT_FALSE(name.Parse());
        name.Destroy();
        EXPECT_FALSE(name.Create(nullptr, document.root));
        EXPECT_FALSE(name.Create(document.xml.Doc(), nullptr));
        EXPECT_EQ(name.State(), nullptr);
        EXPECT_TRUE(name.Create(document.xml.Doc(), document.root));
        EXPECT_FALSE(name.Create(document.xml.Doc(), document.root));
        EXPECT_EQ(s_assertions.back().file, "src/esg/ESGElement/Name");
        EXPECT_EQ(TakeAssertions(), "m; m; doc; node; !m");
        name.Destroy();
    }
    auto* undone = new CName;
    undone->Create(document.xml.Doc(), document.root);
    const CName::SName* state = undone->State();
    delete undone;
    delete state;  // what the destructor does not free
    EXPECT_EQ(TakeAssertions(), "!m");
}

}  // namespace
