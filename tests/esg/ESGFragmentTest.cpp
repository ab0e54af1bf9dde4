#include <filesystem>
#include <fstream>

#include "esg/ESGContentFragment.h"
#include "esg/ESGScheduleFragment.h"
#include "esg/ESGServiceFragment.h"
#include "esg/Elements.h"
#include "esg/GenreNameParse.h"
#include "support/ParserTest.h"
#include "support/Programs.h"
#include "support/Show.h"

SHOW(CESGServiceFragment::SESGServiceFragment, s.ns, s.id, s.version, s.validFrom, s.validTo, s.globalServiceID,
     s.weight, s.emergency, s.serviceType, s.names, s.descriptions, s.audioLanguages, s.textLanguages,
     s.contentAdvRatings, s.targetProfiles, s.genres, s.broadcaseArea, s.serviceExt)
SHOW(CESGContentFragment::SESGContentFragment, s.ns, s.id, s.version, s.validFrom, s.validTo, s.globalContentID,
     s.baseCID, s.serviceRefId, s.serviceRefWeight, s.names, s.descriptions, s.audioLanguages, s.textLanguages,
     s.length, s.contentAdvRatings, s.targetProfiles, s.genres, s.termsOfUses, s.popularity, s.freshness, s.contentExt)
SHOW(CESGScheduleFragment::SESGScheduleFragment, s.ns, s.id, s.version, s.validFrom, s.validTo, s.serviceRefId,
     s.contentRefs, s.termsOfUses)

namespace {

/// The tests' own folder in place of the root of the file system, gone at the end; no genre names at first.
class ESGFragmentTest : public CRecorder {
  protected:
    void SetUp() override
    {
        CRecorder::SetUp();
        SetFileRoot(m_root.Name().c_str());
        SGenreNameParse::refMap.clear();
    }

    void TearDown() override
    {
        SetFileRoot(nullptr);
        SGenreNameParse::refMap.clear();
        CRecorder::TearDown();
    }

    std::string Write(const std::string& path, const std::string& text)
    {
        const std::string file = m_root.Name() + path;
        std::filesystem::create_directories(std::filesystem::path(file).parent_path());
        std::ofstream(file) << text;
        return file;
    }

    const CTemporaryFolder m_root;
};

TEST_F(ESGFragmentTest, Service)
{
    SCreated<CESGServiceFragment> fragment;
    ASSERT_TRUE(ParseXml(
        fragment,
        "<e:Service xmlns:e='u:esg' id='a' version='2' validFrom='3981234567' validTo='3981234568' "
        "globalServiceID='urn:one' weight='65535' emergency='-1'><ServiceType>5</ServiceType><Name>b</Name>"
        "<Name>c</Name><Description>d</Description><AudioLanguage languageSDPTag='e'/><TextLanguage "
        "languageSDPTag='f'/><ContentAdvisoryRatings><RatedDimensions>6</RatedDimensions></ContentAdvisoryRatings>"
        "<TargetUserProfile attributeName='g'/><Genre type='h' href='i'>j:7</Genre><BroadcastArea/>"
        "<BroadcastArea polarity='true'/><PrivateExt><Other/><ATSC3ServiceExtension><MajorChannelNum>8"
        "</MajorChannelNum></ATSC3ServiceExtension><ATSC3ServiceExtension/></PrivateExt><PrivateExt/></e:Service>"));
    const auto& s = *fragment.State();
    // There is no file of names for the genre.
    EXPECT_EQ(Show(s),
              "u:esg|a|2|3981234567|3981234568|urn:one|65535|1|5|[{-|-|b|[]|[]} {-|-|c|[]|[]}]|[{-|-|d|[]|[]}]|[{|e}]|"
              "[{|f}]|[{-|0|6|[]|[]}]|[{g|-}]|[{h|i|j:7|7|-}]|{1|-|-|-|-}|{-|0|0|0|8|0|[]}");
    EXPECT_EQ(Logged("[CBroadcastArea::Destroy]"), 1);  // the first is let go

    // Required: the next one adds to it; one that fails leaves it.
    ASSERT_TRUE(ParseXml(fragment, "<Service id='z' emergency='0'><ServiceType/><Name/></Service>"));
    EXPECT_EQ(TakeAssertions(), "content != nullptr");
    EXPECT_EQ(Join(s.ns, s.globalServiceID, s.emergency, s.names.size(), s.broadcaseArea), "-|-|0|3|{1|-|-|-|-}");
    EXPECT_FALSE(ParseXml(fragment, "<Service id='y'"));
    EXPECT_STREQ(s.id.get(), "z");
    EXPECT_FALSE(ParseXml(fragment, "<Service><Name/></Service>"));
    EXPECT_EQ(Join(s.id, s.names.size()), "-|3");
    EXPECT_EQ(Logged("_CHECK FAIL: src/esg/ESGServiceFragment:"), 2);
}

TEST_F(ESGFragmentTest, Content)
{
    SCreated<CESGContentFragment> fragment;
    ASSERT_TRUE(ParseXml(
        fragment,
        "<Content id='a' version='1' validFrom='2' validTo='4294967295' globalContentID='b' baseCID='c'>"
        "<ServiceReference idRef='d' weight='3'/><Name>e</Name><Description>f</Description><AudioLanguage/>"
        "<AudioLanguage/><TextLanguage/><Length>1800</Length><Length/><ContentAdvisoryRatings/><TargetUserProfile "
        "attributeValue='g'/><Genre>4</Genre><TermsOfUse id='h'/><Popularity rating='5'/><Popularity rating='6'/>"
        "<Freshness/><Freshness releastDate='1970-01-01T00:00:09Z'/><PrivateExt/><PrivateExt><Capabilities>i"
        "</Capabilities></PrivateExt></Content>"));
    const auto& s = *fragment.State();
    EXPECT_EQ(Show(s),
              "-|a|1|2|4294967295|b|c|d|3|[{-|-|e|[]|[]}]|[{-|-|f|[]|[]}]|[{|-} {|-}]|[{|-}]|1800|[{-|0|0|[]|[]}]|"
              "[{-|g}]|[{-|-|4|4|-}]|[{0|h|0|[]|-|-}]|{6|0|0|0}|{0|9}|{-|0|0|0|i|-|[]|[]}");
    EXPECT_EQ(Join(Logged("[CPopularity::Destroy]"), Logged("[CFreshness::Destroy]"),
                   Logged("[CContentPrivateExt::Destroy]")),
              "1|1|1");

    ASSERT_TRUE(
        ParseXml(fragment, "<Content id=''><ServiceReference idRef='x'/><ServiceReference weight='1'/></Content>"));
    EXPECT_EQ(fragment.State()->serviceRefId, nullptr);
    EXPECT_EQ(Logged("[CESGContentFragment::sm_CbServiceReferenceEntry] serviceRef Id is NULL!!"), 1);
}

TEST_F(ESGFragmentTest, Schedule)
{
    SCreated<CESGScheduleFragment> fragment;
    ASSERT_TRUE(ParseXml(fragment,
                         "<Schedule id='a' version='1' validFrom='2' validTo='3'><ServiceReference idRef='b'/>"
                         "<ContentReference idRef='c'><PresentationWindow startTime='3981234567'/></ContentReference>"
                         "<ContentReference idRef='d'/><TermsOfUse id='e'/></Schedule>"));
    const auto& s = *fragment.State();
    EXPECT_EQ(Show(s), "-|a|1|2|3|b|[{c|-|[{-|3981234567|0|0|0|0}]} {d|-|[]}]|[{0|e|0|[]|-|-}]");
    const auto duration = [](const auto& reference) {
        return Show(reference->State()->presentationWindows.front()->Given()->duration);
    };
    EXPECT_EQ(duration(s.contentRefs.front()), "-");
    ASSERT_TRUE(
        ParseXml(fragment,
                 "<Schedule id='a'><ServiceReference idRef='b'/><ContentReference idRef='c'><PresentationWindow "
                 "duration=' 60 '/>"
                 "</ContentReference></Schedule>"));
    EXPECT_EQ(duration(fragment.State()->contentRefs.back()), "60");
    ASSERT_TRUE(ParseXml(fragment, "<Schedule id='a'><ServiceReference/></Schedule>"));
    EXPECT_EQ(Logged("[CESGScheduleFragment::sm_CbServiceReferenceEntry] serviceRef Id is NULL!!"), 1);
}

template <class TFragment>
void ExpectRefused(const std::string& className, const std::string& element)
{
    {
        TFragment fragment;
        EXPECT_FALSE(ParseXml(fragment, "<a/>"));
        fragment.Destroy();
        EXPECT_EQ(fragment.State(), nullptr);
        ASSERT_TRUE(fragment.Create());
        EXPECT_FALSE(fragment.Create());
        EXPECT_FALSE(fragment.Parse(nullptr, 9));
        EXPECT_FALSE(fragment.Parse(nullptr));
        EXPECT_FALSE(fragment.Parse("/no/such/file"));
        for (const std::string text :
             {"<X id='a'/>", "<x id='a'/>", "", "<X", "<Service/>", "<Content/>", "<Schedule/>"}) {
            EXPECT_FALSE(ParseXml(fragment, text)) << text;
        }
        EXPECT_TRUE(ParseXml(fragment, "<!-- --><" + element + " id='a'/>"));
        fragment.Destroy();
    }
    std::string asserted;
    for (const SAssertion& assertion : CRecorder::s_assertions) {
        asserted += assertion.expression + "; ";
        EXPECT_EQ(assertion.file, "src/esg/" + className.substr(1));
    }
    CRecorder::s_assertions.clear();
    EXPECT_EQ(asserted, "m; m; !m; buffer; filename; ");
}

TEST_F(ESGFragmentTest, Refused)
{
    ExpectRefused<CESGServiceFragment>("CESGServiceFragment", "Service");
    ExpectRefused<CESGContentFragment>("CESGContentFragment", "Content");
    ExpectRefused<CESGScheduleFragment>("CESGScheduleFragment", "Schedule");
    EXPECT_EQ(Logged("m_ProcessESGScheduleFragment(root)"), 5);
    EXPECT_EQ(Logged("m->xml.Create(buffer, len)"), 6);
    EXPECT_EQ(Logged("m->xml.Create(filename)"), 3);
    EXPECT_EQ(Logged("[CESGScheduleFragment::Parse]"), 2);  // of the service's files
}

TEST_F(ESGFragmentTest, PreviewOverridesTheServiceId)
{
    const std::string text = "<Service id='a' globalServiceID='urn:mine'/>";
    const std::string file = Write("/fragment.xml", text);
    SCreated<CESGServiceFragment> fragment;
    ASSERT_TRUE(fragment.Parse(file.c_str()));
    EXPECT_STREQ(fragment.State()->globalServiceID.get(), "urn:mine");
    Write("/bin/preview", "");
    const int next = dup(0);
    close(next);
    ASSERT_TRUE(ParseXml(fragment, text));
    EXPECT_EQ(dup(0), next) << "a file stays open";
    close(next);
    EXPECT_STREQ(fragment.State()->globalServiceID.get(), "urn:atsc:serviceid:sbs_uhd");
    SetFileRoot(nullptr);
    ASSERT_TRUE(ParseXml(fragment, text));
    EXPECT_STREQ(fragment.State()->globalServiceID.get(), "urn:mine");
}

TEST_F(ESGFragmentTest, MatchCallbacks)
{
    SCreated<CESGServiceFragment> service;
    SCreated<CESGContentFragment> content;
    SCreated<CESGScheduleFragment> schedule;
    EXPECT_EQ(CESGServiceFragment::sm_CbGlobalServiceId(&service, "", 0), 0);  // no id is no match
    EXPECT_FALSE(service.State()->sltMatch);
    ASSERT_TRUE(ParseXml(service, "<Service id='a' globalServiceID='urn:one'/>"));
    ASSERT_TRUE(ParseXml(content, "<Content id='a'><ServiceReference idRef='s1'/></Content>"));
    ASSERT_TRUE(ParseXml(schedule, "<Schedule id='a'><ServiceReference idRef='s1'/></Schedule>"));
    EXPECT_EQ(CESGServiceFragment::sm_CbGlobalServiceId(&service, "urn:two", 7), 0);
    EXPECT_FALSE(service.State()->sltMatch);
    EXPECT_EQ(CESGServiceFragment::sm_CbGlobalServiceId(&service, "urn:two", 4), 0);
    EXPECT_TRUE(service.State()->sltMatch);
    EXPECT_EQ(CESGServiceFragment::sm_CbGlobalServiceId(&service, "urn:one1", 8), 0);
    EXPECT_TRUE(service.State()->sltMatch);
    EXPECT_EQ(Logged("[CESGServiceFragment::sm_CbGlobalServiceId] Unmatch globalServiceId"), 3);
    for (const char* id : {"s2", "s1"}) {
        EXPECT_EQ(CESGContentFragment::sm_CbFragServiceId(&content, id, 2), 0);
        EXPECT_EQ(CESGScheduleFragment::sm_CbFragServiceId(&schedule, id, 2), 0);
        EXPECT_EQ(Join(content.State()->serviceMatch, schedule.State()->serviceMatch), id[1] == '1' ? "1|1" : "0|0");
    }
    EXPECT_EQ(Logged("[CESGScheduleFragment::sm_CbFragServiceId] Unmatch FragServiceId"), 2);
    EXPECT_EQ(CESGContentFragment::sm_CbFragServiceId(nullptr, "a", 1), 0);
    EXPECT_EQ(CESGContentFragment::sm_CbFragServiceId(&schedule, "s1", 2), 0);  // of another class
    EXPECT_EQ(CESGContentFragment::sm_CbFragServiceId(&content, nullptr, 1), 0);
    EXPECT_EQ(CESGContentFragment::sm_CbFragServiceId(&content, "s1", -1), 0);
    EXPECT_EQ(TakeAssertions(), "fragment; fragment; id; length >= 0");
    ASSERT_TRUE(ParseXml(service, "<Service id='a'/>"));
    EXPECT_FALSE(service.State()->sltMatch);
    CESGServiceFragment empty;  // never created: nothing to note anything in
    CESGScheduleFragment bare;
    CESGServiceFragment::sm_CbGetSltService(&service, &empty);
    CESGScheduleFragment::sm_CbGetSltService(&service, &bare);
    EXPECT_EQ(Join(CESGServiceFragment::sm_CbGlobalServiceId(&empty, "u", 1),
                   CESGScheduleFragment::sm_CbFragServiceId(&bare, "s", 1)),
              "0|0");
    EXPECT_EQ(Each({!empty.State(), !bare.State(), !CPresentationWindow().Given()}), "111");
    EXPECT_EQ(TakeAssertions(), "m; m");
}

TEST_F(ESGFragmentTest, GenreNames)
{
    Write("/opt/data/genre-cs.xml",
          "<ClassificationScheme uri='u'>\n <Term termID='3.1'><Name>three</Name>\n  <Name>trois</Name></Term>"
          "<Term termID='3.2'><Name>later</Name></Term><Term><Name>none</Name></Term><Term termID=''><Name>empty"
          "</Name></Term><Term termID='4'><Definition/><Name>four</Name></Term><Term "
          "termID='5'>\n<Name>five</Name></Term><Term termID='6'><![CDATA[x]]><Name>six</Name></Term><Term termID='7'>"
          "<?Name?></Term><Term termID='7'><Name>seven</Name></Term><TermX termID='12'>"
          "<NameX>twelve</NameX></TermX><Other termID='6'><Name>six</Name></Other></ClassificationScheme>");
    SCreated<CESGServiceFragment> fragment;
    ASSERT_TRUE(
        ParseXml(fragment,
                 "<Service id='a'><Genre>urn:cs:3</Genre><Genre>urn:cs:12</Genre><Genre>12.9</Genre><Genre>12:</Genre>"
                 "<Genre>:4</Genre><Genre/></Service>"));
    EXPECT_EQ(Show(fragment.State()->genres),
              "[{-|-|urn:cs:3|3|three} {-|-|urn:cs:12|12|twelve} {-|-|12.9|12|twelve} {-|-|12:|0|-} {-|-|:4|4|-} "
              "{-|-||0|-}]");
    EXPECT_EQ(SGenreNameParse::refMap.size(), 3u);
    EXPECT_STREQ(SGenreNameParse::refMap.at(7).get(), "");
    EXPECT_EQ(Logged("[CGenre::t_ProcessGenreName] Index = [12], Name = [twelve]"), 2);
    EXPECT_EQ(Logged("[CGenreNameParse::Parse] Genre Map exsits."), 4);  // read once, then found filled

    SCreated<CGenreNameParse> names;
    EXPECT_TRUE(
        ParseXml(names, "<ClassificationScheme><Term termID='99'><Name>n</Name></Term></ClassificationScheme>"));
    EXPECT_TRUE(names.Parse("/no/such/file"));
    EXPECT_EQ(SGenreNameParse::refMap.count(99), 0u);
}

TEST_F(ESGFragmentTest, AFileOfGenresWithoutNamesIsReadOnce)
{
    SCreated<CESGServiceFragment> fragment;
    const std::string text = "<Service id='a'><Genre>1</Genre><Genre>1</Genre><Genre>1</Genre></Service>";
    EXPECT_TRUE(ParseXml(fragment, text));
    EXPECT_EQ(Logged(", m->xml.Create(filePath)"), 1) << "asked for once per fragment";
    Write("/opt/data/genre-cs.xml", "<ClassificationScheme>");
    EXPECT_TRUE(ParseXml(fragment, text));
    EXPECT_EQ(Logged(", m->xml.Create(filePath)"), 2);
    Write("/opt/data/genre-cs.xml",
          "<ClassificationScheme><Term termID='1'><Name>n</Name></Term></ClassificationScheme>");
    EXPECT_TRUE(ParseXml(fragment, text));
    EXPECT_STREQ(fragment.State()->genres.at(6)->State()->name, "n");
}

TEST_F(ESGFragmentTest, ReplacesItsRecordWhenToldTo)
{
    SCreated<CESGServiceFragment> fragment;
    for (const bool replace : {false, true}) {
        fragment.SetReplace(replace);
        EXPECT_TRUE(ParseXml(fragment, "<Service id='a' weight='3'><Name>1</Name></Service>"));
        EXPECT_TRUE(ParseXml(fragment, "<Service id='b'><Name>2</Name><Name>3</Name></Service>"));
        EXPECT_EQ(fragment.State()->names.size(), replace ? 2u : 3u);
        EXPECT_FALSE(ParseXml(fragment, "<Service><Name>4</Name></Service>"));
        EXPECT_FALSE(ParseXml(fragment, "<Service"));
        EXPECT_STREQ(fragment.State()->id.get(), replace ? "b" : nullptr);
        EXPECT_EQ(fragment.State()->names.size(), replace ? 2u : 3u);
    }
}

TEST_F(ESGFragmentTest, GenreSchemeBesideTheRootOrMissing)
{
    {
        SCreated<CGenreNameParse> names;
        EXPECT_FALSE(ParseXml(names, "<Other><ClassificationScheme/></Other>"));
        EXPECT_EQ(Logged("t_Process(root)"), 1);
        EXPECT_FALSE(ParseXml(names, "<Other"));
        EXPECT_FALSE(names.Parse("/no/such/file"));
        // An empty scheme is read, and leaves the next one to be read.
        EXPECT_TRUE(ParseXml(names, "<ClassificationScheme/>"));
        EXPECT_TRUE(
            ParseXml(names, "<ClassificationScheme><Term termID='-1'><Name>n</Name></Term></ClassificationScheme>"));
        EXPECT_STREQ(SGenreNameParse::refMap.at(-1).get(), "n");
        EXPECT_FALSE(names.Create());
        EXPECT_FALSE(names.Parse(nullptr));
        EXPECT_FALSE(names.Parse(nullptr, 1));
        EXPECT_EQ(TakeAssertions(), "!m; filePath");
        EXPECT_EQ(Logged(", buffer"), 1);
    }
    CGenreNameParse names;
    EXPECT_FALSE(names.Parse("x"));
    EXPECT_FALSE(names.Parse("x", 1));
    names.Destroy();
    EXPECT_EQ(TakeAssertions(), "m; m; m");
}

}  // namespace
