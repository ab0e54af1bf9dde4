#include "support/EsgRecords.h"
#include "support/Recorder.h"

namespace {

using ESGElementTest = CRecorder;

struct SDocument {
    explicit SDocument(const std::string& text)
    {
        EXPECT_TRUE(xml.Create(text.data(), static_cast<int>(text.size()), false) && xml.MoveRoot(&root)) << text;
    }

    ~SDocument() { xml.Destroy(); }

    CXML xml;
    void* root = nullptr;
};

/// Parses the element; "failed" when it cannot be parsed.
template <class TElement>
std::string Parsed(const std::string& text)
{
    SDocument document(text);
    TElement element;
    EXPECT_TRUE(element.Create(document.xml.Doc(), document.root));
    const std::string once = element.Parse() ? Show(*element.State()) : "failed";
    EXPECT_FALSE(element.Parse());  // it has let go of the document
    EXPECT_EQ(CRecorder::s_assertions.size(), 1u);
    CRecorder::s_assertions.clear();
    element.Destroy();
    EXPECT_EQ(element.State(), nullptr);
    return once;
}

TEST_F(ESGElementTest, EveryAttributeAndChild)
{
    static const struct {
        const char* className;
        const char* element;
        std::string (*parsed)(const std::string& text);
        const char* text;
        const char* expected;
        const char* empty;
    } k_cases[] = {
        {"CName", "Name", Parsed<CName>, "<x:Name xmlns:x='u' text='t' lang='en'>N<!-- -->M</x:Name>", "t|en|NM|[]|[]",
         "-|-||[]|[]"},
        {"CDescription", "Description", Parsed<CDescription>,
         "<Description><SpeechInfoURI Content-type='a' Content-enc='b'/><SpeechInfo Content-type='c' "
         "Content-enc='d'/><SpeechInfo/></Description>",
         "-|-||[|a|b]|[|c|d |-|-]", "-|-||[]|[]"},
        {"CIcon", "Icon", Parsed<CIcon>,
         "<Icon uri='a' uriType='b' MIMEType='c' size='4' language='d' iconUri='e'><Link>f</Link><Description>g"
         "</Description></Icon>",
         "f|g|a|b|c|4|d|e", "-|-|-|-|-|0|-|-"},
        {"CText", "Text", Parsed<CText>,
         "<Text uri='a' uriType='b' language='c'><Link>d</Link><Description>e</Description><TextString>f</TextString>"
         "<TextString>g</TextString></Text>",
         "d|e|g|a|b|c", "-|-|-|-|-|-"},
        {"CPreviewData", "Preview", Parsed<CPreviewData>,
         "<Preview usage='1' MIMEType='m'><PreviewContent MIMEType='a' width='2' height='3' dataSize='4'>b"
         "</PreviewContent><PreviewIcon width='5' height='6' dataSize='7'/><Description lang='c'>d</Description>"
         "<PreviewDescription linkUri='e' uriType='f'/></Preview>",
         "[b|a|2|3|4]|[|-|5|6|7]|[{d|c|-|-} {|-|e|f}]|1|m|0|0|0", "[]|[]|[]|0|-|0|0|0"},
        {"CPreviewDesc", "PreviewDescription", Parsed<CPreviewDesc>,
         "<PreviewDescription lang='a' linkUri='b' uriType='c'>d</PreviewDescription>", "d|a|b|c", "|-|-|-"},
        {"CPresentationWindow", "PresentationWindow", Parsed<CPresentationWindow>,
         "<PresentationWindow id='a' startTime='3981234567' endTime='4294967295'><StartTime>3981234568</StartTime>"
         "<EndTime>3981234569</EndTime><Duration>1800</Duration></PresentationWindow>",
         "a|3981234567|4294967295|3981234568|3981234569|1800", "-|0|0|0|0|0"},
        {"CPopularity", "Popularity", Parsed<CPopularity>,
         "<Popularity rating='1' noOfViews='2' noOfDiscussions='3' samplingDate='2026-01-31T20:15:07Z'/>",
         "1|2|3|1769890507", "0|0|0|0"},
        {"CFreshness", "Freshness", Parsed<CFreshness>,
         "<Freshness broadcastDate='2040-02-29T00:00:00Z' releaseDate='2000-01-01T00:00:00Z' "
         "releastDate='1970-01-01T00:00:01Z'/>",
         "2214086400|1", "0|0"},
        {"CFreshness", "Freshness", Parsed<CFreshness>,
         "<Freshness broadcastDate='2040-02-29' releastDate='2026-13-01T00:00:00Z'/>", "0|0", "0|0"},
        {"CTermsOfUse", "TermsOfUse", Parsed<CTermsOfUse>,
         "<TermsOfUse type='1' id='a' userConsentRequired='true'><Country>b</Country><Country>c</Country><Language>d"
         "</Language><TermsOfUseText>e</TermsOfUseText></TermsOfUse>",
         "1|a|1|[b c]|d|e", "0|-|0|[]|-|-"},
        {"CTermsOfUse", "TermsOfUse", Parsed<CTermsOfUse>, "<TermsOfUse userConsentRequired='trueX'/>", "0|-|0|[]|-|-",
         "0|-|0|[]|-|-"},
        {"CTargetUserProfile", "TargetUserProfile", Parsed<CTargetUserProfile>,
         "<TargetUserProfile attributeName='a' attributeValue='b'/>", "a|b", "-|-"},
        {"CTextLanguage", "TextLanguage", Parsed<CTextLanguage>, "<TextLanguage languageSDPTag='a'>b</TextLanguage>",
         "b|a", "|-"},
        {"CAudioLanguage", "AudioLanguage", Parsed<CAudioLanguage>,
         "<AudioLanguage languageSDPTag='a'>b</AudioLanguage>", "b|a", "|-"},
        {"CBroadcastArea", "BroadcastArea", Parsed<CBroadcastArea>,
         "<BroadcastArea polarity='true' mcc='x'><TargetArea cc='old'><ZipCode>0</ZipCode></TargetArea><TargetArea "
         "cc='a' name_area='b'><ZipCode>1</ZipCode><ZipCode>2</ZipCode><CellTargetArea type='1'/><CellTargetArea "
         "type='3'><CellArea value='c'/></CellTargetArea></TargetArea></BroadcastArea>",
         "1|-|x|-|a|-|b|[1 2]|{3|-|[c|[]]}", "0|-|-|-|-"},
        {"CBroadcastArea", "BroadcastArea", Parsed<CBroadcastArea>,
         "<BroadcastArea polarity='1' cc='a'><ZipCode>1</ZipCode><CellTargetArea/></BroadcastArea>",
         "0|a|-|-|-|-|-|[1]|{0|-|[]}", "0|-|-|-|-"},
        {"CCellTargetArea", "CellTargetArea", Parsed<CCellTargetArea>,
         "<CellTargetArea type='1' value='v'><CellArea value='a'><PP2CellID>b</PP2CellID><PP2CellID>c</PP2CellID>"
         "</CellArea><CellArea/><PP2CellID>d</PP2CellID></CellTargetArea>",
         "1|v|[a|[b c] -|[d]]", "0|-|[]"},
        {"CComponent", "Components", Parsed<CComponent>,
         "<Components language='z'><VideoComponent>a</VideoComponent><AudioComponent language='b'>c</AudioComponent>"
         "<AudioComponent/><CCComponent language='d'/><AppComponent language='e'/></Components>",
         "z|[a|-]|[c|b |-]|[|d]|[|e]", "-|[]|[]|[]|[]"},
        {"CContentAdvRatings", "ContentAdvisoryRatings", Parsed<CContentAdvRatings>,
         "<ContentAdvisoryRatings><RegionIdentifier>1</RegionIdentifier><RatedDimensions>2</RatedDimensions>"
         "<RatingDescription lang='a'>b</RatingDescription><RatingDimVal><RatingDimension>0</RatingDimension>"
         "<RatingValueString lang='c'>d</RatingValueString><RatingValueString>e</RatingValueString></RatingDimVal>"
         "<RatingDimVal><RatingValueString>f</RatingValueString><RatingDimension>5</RatingDimension></RatingDimVal>"
         "</ContentAdvisoryRatings>",
         "-|1|2|[b|a]|[0|1|-|[d|c e|-] 5|1|-|[f|-]]", "-|0|0|[]|[]"},
        {"CContentAdvRatings", "ContentAdvisoryRatings", Parsed<CContentAdvRatings>,
         "<ContentAdvisoryRatings lang='z'><RatingDimension>3</RatingDimension><RatingDimVal>4</RatingDimVal>"
         "<RatingValueString>a</RatingValueString><RatingDimension>6</RatingDimension><RatingDimVal>7</RatingDimVal>"
         "</ContentAdvisoryRatings>",
         "z|0|0|[]|[3|1|4|[a|-] 6|1|7|[]]", "-|0|0|[]|[]"},
        {"CContentPrivateExt", "PrivateExt", Parsed<CContentPrivateExt>,
         "<PrivateExt MIMEType='z'><Capabilities>a</Capabilities><Components><AppComponent/></Components><Components/>"
         "<ContentIcon dataSize='1'>b</ContentIcon><ContentIcon MIMEType='c'/><Preview usage='2'/><Preview/>"
         "</PrivateExt>",
         "z|0|0|0|a|{-|[]|[]|[]|[]}|[b|-|0|0|1 |c|0|0|0]|[{[]|[]|[]|2|-|0|0|0} {[]|[]|[]|0|-|0|0|0}]",
         "-|0|0|0|-|-|[]|[]"},
        {"CATSC3ServiceExt", "ATSC3ServiceExtension", Parsed<CATSC3ServiceExt>,
         "<ATSC3ServiceExtension width='9'><MajorChannelNum>1</MajorChannelNum><MinorChannelNum>2</MinorChannelNum>"
         "<Icon MIMEType='a' width='3' height='4' dataSize='5'>b</Icon><Icon/></ATSC3ServiceExtension>",
         "-|9|0|0|1|2|[b|a|3|4|5 |-|0|0|0]", "-|0|0|0|0|0|[]"},
        {"CDescriptorEntry", "DescriptorEntry", Parsed<CDescriptorEntry>,
         "<DescriptorEntry type='1'><GroupingCriteria idRef='old'/><GroupingCriteria/><Transport port='2'/>"
         "<AlternativeAccessURL>a</AlternativeAccessURL><AlternativeAccessURL>b</AlternativeAccessURL>"
         "<ServiceGuideDeliveryUnit versionIDLength='3'><Fragment id='c'/><Fragment id='d'/></ServiceGuideDeliveryUnit>"
         "<ServiceGuideDeliveryUnit/></DescriptorEntry>",
         "1|{0|0|-|-|-|-|-}|{-|2|-|0|0}|[a b]|[{0|3|-|0|0|[{0|c|0|0|0|0|-|0|0} {0|d|0|0|0|0|-|0|0}]} {0|0|-|0|0|[]}]",
         "0|-|-|[]|[]"},
        {"CESGTransport", "Transport", Parsed<CESGTransport>,
         "<Transport ipAddress='a' port='1' srcIpAddress='b' transmissionSessionID='4294967294' hasFDT='true'/>",
         "a|1|b|4294967294|1", "-|0|-|0|0"},
        {"CFragment", "Fragment", Parsed<CFragment>,
         "<Fragment transportID='4294967293' id='a' validFrom='3981234567' validTo='3981234568' fragmentEncoding='1' "
         "fragmentType='2' startTime='9'><GroupingCriteria><TimeGroupingCriteria startTime='3' endTime='4'/>"
         "<BSMSelector idRef='b'/></GroupingCriteria></Fragment>",
         "4294967293|a|3981234567|3981234568|1|2|b|3|4", "0|-|0|0|0|0|-|0|0"},
        {"CGroupingCri", "GroupingCriteria", Parsed<CGroupingCri>,
         "<GroupingCriteria><TimeGroupingCriteria startTime='3981234567' endTime='3981234568'/><GenreGroupingCriteria "
         "type='a' href='b'>c</GenreGroupingCriteria><BSMSelector idRef='d'/><ServiceCriteria>e</ServiceCriteria>"
         "</GroupingCriteria>",
         "3981234567|3981234568|a|b|c|d|e", "0|0|-|-|-|-|-"},
        {"CGroupingCri", "GroupingCriteria", Parsed<CGroupingCri>,
         "<GroupingCriteria startTime='1' endTime='2' type='a' href='b' idRef='c'><TimeGroupingCriteria startTime='3'/>"
         "</GroupingCriteria>",
         "3|2|a|b|-|c|-", "0|0|-|-|-|-|-"},
        {"CScheduleContentRef", "ContentReference", Parsed<CScheduleContentRef>,
         "<ContentReference idRef='a' contentLocation='b'><PresentationWindow id='c'/><PresentationWindow/>"
         "</ContentReference>",
         "a|b|[{c|0|0|0|0|0} {-|0|0|0|0|0}]", "-|-|[]"},
        {"CSGDeliveryUnit", "ServiceGuideDeliveryUnit", Parsed<CSGDeliveryUnit>,
         "<ServiceGuideDeliveryUnit transportObjectID='4294967295' versionIDLength='1' contentLocation='a' "
         "validFrom='3981234567' validTo='3981234568'><Fragment/></ServiceGuideDeliveryUnit>",
         "4294967295|1|a|3981234567|3981234568|[{0|-|0|0|0|0|-|0|0}]", "0|0|-|0|0|[]"},
    };
    for (const auto& c : k_cases) {
        const std::string name = c.className;
        EXPECT_EQ(c.parsed(c.text), c.expected) << c.text;
        EXPECT_EQ(c.parsed("<" + std::string(c.element) + "/>"), c.empty) << name;
        s_log.clear();
        EXPECT_EQ(c.parsed("<Other/>"), "failed") << name;
        EXPECT_EQ(Logged("[" + name + "::m_Process] Root node is not " + c.element), 1);
        EXPECT_EQ(Logged("_CHECK FAIL: src/esg/ESGElement/" + name.substr(1) + ":"), 2);
        EXPECT_TRUE(Logged("[" + name + "::Create]") == 1 && Logged("[" + name + "::Destroy]") == 1) << name;
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
