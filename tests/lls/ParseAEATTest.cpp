#include "lls/ParseAEAT.h"

#include "support/ParserTest.h"
#include "support/Tables.h"

namespace {

class ParseAEATTest : public TParserTest<CParseAEAT, nullptr> {
  protected:
    const SParseAEAT::SAEAInfo& Last() { return *m_parser.GetAEA(m_parser.AEACount() - 1); }
};

const char k_alert[] =
    "<AEAT><AEA aeaId='id' issuer='is' audience='publicly' aeaType='update' retAEAId='ret' priority='4' wakeup='true'>"
    "<Header effective='2027-01-01T00:00:00Z' expires='later'><EventCode type='SAME'>EVI</EventCode>"
    "<EventDesc lang='en'>Evacuate</EventDesc><EventDesc lang='es'>Evacuar</EventDesc>"
    "<Location type='SGCX'>1</Location><Location type='circle'>2</Location><Location>3</Location></Header>"
    "<AEAText lang='en'>Go now.</AEAText>"
    "<LiveMedia bsid='1' serviceId='2'><ServiceName ServiceName='dropped'/></LiveMedia>"
    "<LiveMedia bsid='70000' serviceId='65537'><ServiceName ServiceName='attr' "
    "lang='en'>text</ServiceName><ServiceName/></LiveMedia>"
    "<Media lang='en' mediaDesc='a' mediaType='b' url='u' alternateUrl='au' contentType='image/png' "
    "contentLength='4294967297' mediaAssoc='as'/><Media mediaDesc='a'/></AEA></AEAT>";

TEST_F(ParseAEATTest, EverythingOfAnAlert)
{
    ASSERT_TRUE(FeedXml(m_parser, k_alert));
    ASSERT_EQ(m_parser.AEACount(), 1);
    std::string a, b;
    EAEAAudience audience = AEA_AUDIENCE_UNKNOWN;
    EAEAType type = AEA_TYPE_UNKNOWN;
    EAEAPriority priority{};
    EXPECT_TRUE(m_parser.GetAEAId(0, a, b) && a == "id" && b == "ret");
    EXPECT_TRUE(m_parser.GetAEAIssuer(0, a) && a == "is");
    EXPECT_TRUE(m_parser.GetAEAAudience(0, audience) && audience == AEA_AUDIENCE_PUBLIC);
    EXPECT_TRUE(m_parser.GetAEAType(0, type) && type == AEA_TYPE_UPDATE);
    EXPECT_TRUE(m_parser.GetAEAPriority(0, priority) && priority == 4);
    EXPECT_TRUE(m_parser.AEAWakeup(0));
    EXPECT_TRUE(m_parser.GetAEATimeInfo(0, a, b) && a == "2027-01-01T00:00:00Z" && b == "later");
    EXPECT_TRUE(m_parser.GetAEAEventCode(0, a, b) && a == "EVI" && b == "SAME");
    EXPECT_EQ(m_parser.AEAEventDescCount(0), 2);
    const SParseAEAT::SAEAInfo& alert = Last();
    EXPECT_TRUE(alert.eventDescs[1].text == "Evacuar" && alert.eventDescs[1].lang == "es");
    ASSERT_EQ(alert.locations.size(), 3u);
    EXPECT_TRUE(alert.locations[0].type == AEA_LOCATION_SGC && alert.locations[0].location == "1");
    EXPECT_TRUE(alert.locations[1].type == AEA_LOCATION_CIRCLE && alert.locations[2].type == AEA_LOCATION_UNKNOWN);
    ASSERT_EQ(alert.texts.size(), 1u);
    EXPECT_TRUE(alert.texts[0].text == "Go now." && alert.texts[0].lang == "en");
    ASSERT_TRUE(alert.liveMedia);
    EXPECT_TRUE(alert.liveMedia->bsid == 4464 && alert.liveMedia->serviceId == 1);
    ASSERT_EQ(alert.liveMedia->serviceNames.size(), 2u);
    EXPECT_TRUE(alert.liveMedia->serviceNames[0].text == "attr" && alert.liveMedia->serviceNames[1].text.empty());
    ASSERT_EQ(alert.media.size(), 2u);
    EXPECT_TRUE(alert.media[0].mediaDesc == "b" && alert.media[0].mediaType.empty() &&
                alert.media[1].mediaDesc.empty());
    EXPECT_TRUE(alert.media[0].contentLength == 1 && alert.media[0].alternateUrl == "au" &&
                alert.media[0].mediaAssoc == "as");
    for (const char* line :
         {"[CParseAEAT::m_ProcessParseAEAT] Name[AEA]", "[CParseAEAT::sm_CbHeader] EventCode",
          "[CParseAEAT::t_Parse] AEA Table size[1]", "AEA Info RET ID[ret], PRIORITY[4], WAKEUP[1]",
          "LOCATION[2], LOCATIONTYPE[4]", "mediaLang[en], mediaType[], url[u]",
          "alternateUrl[au], contentType[image/png], length[1], ASSOC[as]", "NAME[attr], LANG[en]"}) {
        EXPECT_EQ(Logged(line), 1) << line;
    }
    EXPECT_EQ(ChangingPrefixes(m_parser, k_alert, [this] { return m_parser.AEACount(); }), 0);
}

TEST_F(ParseAEATTest, WordsAreMatchedByTheirBeginning)
{
    static const struct {
        const char *attributes, *location;
        int audience, type, kind;
        bool wakeup;
    } k_cases[] = {{"", "", 0, 0, 0, false},
                   {"audience='restricted' aeaType='alerted' wakeup='trueX'", "type='FIPS'", 2, 1, 1, true},
                   {"audience='private' aeaType='cancel' wakeup='1'", "type='polygon'", 3, 3, 3, false},
                   {"audience='publi' aeaType='Alert' wakeup='True'", "type='fips'", 0, 0, 0, false}};
    for (const auto& c : k_cases) {
        SCOPED_TRACE(c.attributes);
        FeedXml(m_parser, std::string("<AEAT><AEA ") + c.attributes + "><Location " + c.location + "/></AEA></AEAT>");
        EXPECT_TRUE(Last().audience == c.audience && Last().aeaType == c.type && Last().wakeup == c.wakeup);
        EXPECT_EQ(Last().locations.at(0).type, c.kind);
        EXPECT_EQ(Last().priority, 0);
    }
    EXPECT_EQ(m_parser.AEACount(), 4);  // tables pile up
}

TEST_F(ParseAEATTest, ElementsOutsideTheirParents)
{
    FeedXml(m_parser, "<AEAT/>");
    EXPECT_EQ(m_parser.AEACount(), 0);
    FeedXml(m_parser,
            "<AEAT><Header effective='x'><EventDesc/><AEA aeaId='inner'/></Header><Location/><AEAText/><Media/>"
            "<EventCode/><LiveMedia><ServiceName/><AEA aeaId='live'><ServiceName ServiceName='none'/></AEA></LiveMedia>"
            "<AEA aeaId='outer'><AEA aeaId='nested'/><AEAText>late</AEAText></AEA></AEAT>");
    std::string ids, id, ret;
    for (int i = 0; m_parser.GetAEAId(i, id, ret); ++i) {
        ids += id + " ";
        EXPECT_TRUE(m_parser.GetAEA(i)->texts.empty() && !m_parser.GetAEA(i)->liveMedia);
    }
    EXPECT_EQ(ids, "inner live nested outer ");
}

TEST_F(ParseAEATTest, BadIndexRootAndMisuse)
{
    FeedXml(m_parser, "<AEA/>");
    EXPECT_EQ(Logged(", m_ProcessParseAEAT(root)"), 1);
    FeedXml(m_parser, k_alert);
    std::string a = "kept", b = "kept";
    EAEAAudience audience = AEA_AUDIENCE_PRIVATE;
    for (const int index : {-1, 1}) {
        EXPECT_FALSE(m_parser.GetAEAId(index, a, b) || m_parser.GetAEAIssuer(index, a) ||
                     m_parser.GetAEAAudience(index, audience) || m_parser.AEAWakeup(index) ||
                     m_parser.GetAEATimeInfo(index, a, b) || m_parser.GetAEAEventCode(index, a, b) ||
                     m_parser.AEAEventDescCount(index) || m_parser.GetAEA(index));
    }
    EXPECT_TRUE(a == "kept" && b == "kept" && audience == AEA_AUDIENCE_PRIVATE);
    {
        CParseAEAT other;
        EXPECT_FALSE(other.AEACount() || other.GetAEA(0) || m_parser.Create(nullptr));
        other.Destroy();
    }
    EXPECT_EQ(TakeAssertions(), "m; m; !m; m");
}

}  // namespace
