#include "lls/ParseAEAT.h"

#include "support/ParserTest.h"
#include "support/Show.h"
#include "support/Tables.h"

SHOW(SParseAEAT::SText, s.text, s.lang)
SHOW(SParseAEAT::SLocation, s.location, s.type)
SHOW(SParseAEAT::SLiveMedia, s.bsid, s.serviceId, s.serviceNames)
SHOW(SParseAEAT::SMedia, s.lang, s.mediaDesc, s.mediaType, s.url, s.alternateUrl, s.contentType, s.contentLength,
     s.mediaAssoc)
SHOW(SParseAEAT::SAEAInfo, s.aeaId, s.issuer, s.audience, s.aeaType, s.retAEAId, s.effective, s.expires, s.eventCode,
     s.eventCodeType, s.eventDescs, s.locations, s.liveMedia, s.texts, s.media, s.priority, s.wakeup)

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
    EXPECT_EQ(Join(m_parser.GetAEAId(0, a, b), a, b), "1|id|ret");
    EXPECT_EQ(Join(m_parser.GetAEAIssuer(0, a), a), "1|is");
    EXPECT_EQ(Join(m_parser.GetAEAAudience(0, audience), audience), Join(1, AEA_AUDIENCE_PUBLIC));
    EXPECT_EQ(Join(m_parser.GetAEAType(0, type), type), Join(1, AEA_TYPE_UPDATE));
    EXPECT_EQ(Join(m_parser.GetAEAPriority(0, priority), priority), "1|4");
    EXPECT_TRUE(m_parser.AEAWakeup(0));
    EXPECT_EQ(Join(m_parser.GetAEATimeInfo(0, a, b), a, b), "1|2027-01-01T00:00:00Z|later");
    EXPECT_EQ(Join(m_parser.GetAEAEventCode(0, a, b), a, b), "1|EVI|SAME");
    EXPECT_EQ(m_parser.AEAEventDescCount(0), 2);
    EXPECT_EQ(
        Show(Last()),
        "id|is|1|2|ret|2027-01-01T00:00:00Z|later|EVI|SAME|[Evacuate|en Evacuar|es]|[1|2 2|4 3|0]|4464|1|[attr|en |]|"
        "[Go now.|en]|[en|b||u|au|image/png|1|as ||||||0|]|4|1");
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
    std::string given;
    for (const auto& c : k_cases) {
        SCOPED_TRACE(c.attributes);
        FeedXml(m_parser, std::string("<AEAT><AEA ") + c.attributes + "><Location " + c.location + "/></AEA></AEAT>");
        EXPECT_EQ(Join(Last().audience, Last().aeaType, Last().wakeup), Join(c.audience, c.type, c.wakeup));
        EXPECT_EQ(Last().locations.at(0).type, c.kind);
        EXPECT_EQ(Last().priority, 0);
        given += Join(m_parser.Given(m_parser.AEACount() - 1)->wakeup) + ' ';
    }
    EXPECT_EQ(given, "- - 1 - ");
    EXPECT_EQ(m_parser.Given(4), nullptr);
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
        EXPECT_EQ(Join(m_parser.GetAEA(i)->texts, m_parser.GetAEA(i)->liveMedia), "[]|-");
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
        EXPECT_EQ(Join(m_parser.GetAEAId(index, a, b), m_parser.GetAEAIssuer(index, a),
                       m_parser.GetAEAAudience(index, audience), m_parser.AEAWakeup(index),
                       m_parser.GetAEATimeInfo(index, a, b), m_parser.GetAEAEventCode(index, a, b),
                       m_parser.AEAEventDescCount(index), m_parser.GetAEA(index)),
                  "0|0|0|0|0|0|0|-");
    }
    EXPECT_EQ(Join(a, b, audience), Join("kept", "kept", AEA_AUDIENCE_PRIVATE));
    EXPECT_FALSE(m_parser.Create(nullptr));
    EXPECT_EQ(TakeAssertions(), "!m");
}

}  // namespace
