#include "esg/ESGElement/ESGElement.h"

#include "common/XML.h"
#include "esg/ESGContentFragment.h"
#include "esg/ESGElement/Icon.h"
#include "esg/ESGElement/Text.h"
#include "esg/ESGScheduleFragment.h"
#include "esg/ESGServiceFragment.h"
#include "esg/SGDDParse.h"
#include "support/Recorder.h"

// A record as one text: its values in the order of its fields, "-" for null.

static std::string Show(const TESGText& text)
{
    return text ? text.get() : "-";
}

static std::string Show(long long number)
{
    return std::to_string(number);
}

template <class T>
static std::string Show(const std::vector<T>& list)
{
    std::string all;
    for (const T& entry : list) {
        all += " " + Show(entry);
    }
    return "[" + (all.empty() ? "" : all.substr(1)) + "]";
}

template <class T, class TDelete>
static std::string Show(const std::unique_ptr<T, TDelete>& object)
{
    return object ? Show(*object) : "-";
}

template <class... T>
static std::string Join(const T&... values)
{
    std::string all;
    ((all += "|" + Show(values)), ...);
    return all.substr(1);
}

template <class T>
static auto Show(const T& element) -> decltype(Show(*element.State()))
{
    return "{" + Show(*element.State()) + "}";
}

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

struct SCase {
    std::string className;
    std::string element;
    std::string (*parsed)(const std::string& text);
    std::string text;
    std::string expected;
    std::string empty;
};

std::vector<SCase> g_cases;

/// An element with what comes of it, and of an empty one. To add one, put its record and its cases below the others.
template <class TElement>
struct TCase {
    TCase(const char* className, const char* element, const char* text, const char* expected, const char* empty)
    {
        g_cases.push_back({className, element, Parsed<TElement>, text, expected, empty});
    }
};

}  // namespace

static std::string Show(const SESGMediaInfo& s)
{
    return Join(s.mimeType, s.width, s.height, s.dataSize);
}

static std::string Show(const SESGMedia& s)
{
    return Show(s.content) + "|" + Show(static_cast<const SESGMediaInfo&>(s));
}

static std::string Show(const CSpokenText::SSpeechInfo& s)
{
    return Join(s.content, s.contentType, s.contentEnc);
}

static std::string Show(const CSpokenText::SSpokenText& s)
{
    return Join(s.text, s.lang, s.content, s.speechInfoURIs, s.speechInfos);
}

static const TCase<CName> k_name("CName", "Name", "<x:Name xmlns:x='u' text='t' lang='en'>N<!-- -->M</x:Name>",
                                 "t|en|NM|[]|[]", "-|-||[]|[]");

static const TCase<CDescription> k_description(
    "CDescription", "Description",
    "<Description><SpeechInfoURI Content-type='a' Content-enc='b'/><SpeechInfo Content-type='c' "
    "Content-enc='d'/><SpeechInfo/></Description>",
    "-|-||[|a|b]|[|c|d |-|-]", "-|-||[]|[]");

static std::string Show(const CLanguageTag::SLanguageTag& s)
{
    return Join(s.content, s.languageSDPTag);
}

static const TCase<CTextLanguage> k_textLanguage("CTextLanguage", "TextLanguage",
                                                 "<TextLanguage languageSDPTag='a'>b</TextLanguage>", "b|a", "|-");

static const TCase<CAudioLanguage> k_audioLanguage("CAudioLanguage", "AudioLanguage",
                                                   "<AudioLanguage languageSDPTag='a'>b</AudioLanguage>", "b|a", "|-");

static std::string Show(const CIcon::SIcon& s)
{
    return Join(s.link, s.description, s.uri, s.uriType, s.mimeType, s.size, s.language, s.iconUri);
}

static const TCase<CIcon> k_icon(
    "CIcon", "Icon",
    "<Icon uri='a' uriType='b' MIMEType='c' size='4' language='d' iconUri='e'><Link>f</Link><Description>g"
    "</Description></Icon>",
    "f|g|a|b|c|4|d|e", "-|-|-|-|-|0|-|-");

static std::string Show(const CText::SText& s)
{
    return Join(s.link, s.description, s.textString, s.uri, s.uriType, s.language);
}

static const TCase<CText> k_text(
    "CText", "Text",
    "<Text uri='a' uriType='b' language='c'><Link>d</Link><Description>e</Description><TextString>f</TextString>"
    "<TextString>g</TextString></Text>",
    "d|e|g|a|b|c", "-|-|-|-|-|-");

static std::string Show(const CPreviewDesc::SPreviewDesc& s)
{
    return Join(s.content, s.lang, s.linkUri, s.uriType);
}

static const TCase<CPreviewDesc> k_previewDesc(
    "CPreviewDesc", "PreviewDescription", "<PreviewDescription lang='a' linkUri='b' uriType='c'>d</PreviewDescription>",
    "d|a|b|c", "|-|-|-");

static std::string Show(const CPreviewData::SPreviewData& s)
{
    return Join(s.previewContents, s.previewIcons, s.descriptions, s.usage, s.media);
}

static const TCase<CPreviewData> k_previewData(
    "CPreviewData", "Preview",
    "<Preview usage='1' MIMEType='m'><PreviewContent MIMEType='a' width='2' height='3' dataSize='4'>b"
    "</PreviewContent><PreviewIcon width='5' height='6' dataSize='7'/><Description lang='c'>d</Description>"
    "<PreviewDescription linkUri='e' uriType='f'/></Preview>",
    "[b|a|2|3|4]|[|-|5|6|7]|[{d|c|-|-} {|-|e|f}]|1|m|0|0|0", "[]|[]|[]|0|-|0|0|0");

static std::string Show(const CPresentationWindow::SPresentationWindow& s)
{
    return Join(s.id, s.startTime, s.endTime, s.startTimeElement, s.endTimeElement, s.duration);
}

static const TCase<CPresentationWindow> k_presentationWindow(
    "CPresentationWindow", "PresentationWindow",
    "<PresentationWindow id='a' startTime='3981234567' endTime='4294967295'><StartTime>3981234568</StartTime>"
    "<EndTime>3981234569</EndTime><Duration>1800</Duration></PresentationWindow>",
    "a|3981234567|4294967295|3981234568|3981234569|1800", "-|0|0|0|0|0");

static std::string Show(const CPopularity::SPopularity& s)
{
    return Join(s.rating, s.noOfViews, s.noOfDiscussions, s.samplingDate);
}

static const TCase<CPopularity> k_popularity(
    "CPopularity", "Popularity",
    "<Popularity rating='1' noOfViews='2' noOfDiscussions='3' samplingDate='2026-01-31T20:15:07Z'/>",
    "1|2|3|1769890507", "0|0|0|0");

static std::string Show(const CFreshness::SFreshness& s)
{
    return Join(s.broadcastDate, s.releaseDate);
}

static const TCase<CFreshness> k_freshness(
    "CFreshness", "Freshness",
    "<Freshness broadcastDate='2040-02-29T00:00:00Z' releaseDate='2000-01-01T00:00:00Z' "
    "releastDate='1970-01-01T00:00:01Z'/>",
    "2214086400|1", "0|0");
static const TCase<CFreshness> k_freshness2(
    "CFreshness", "Freshness", "<Freshness broadcastDate='2040-02-29' releastDate='2026-13-01T00:00:00Z'/>", "0|0",
    "0|0");

static std::string Show(const CTermsOfUse::STermsOfUse& s)
{
    return Join(s.type, s.id, s.userConsentRequired, s.countries, s.language, s.termsOfUseText);
}

static const TCase<CTermsOfUse> k_termsOfUse(
    "CTermsOfUse", "TermsOfUse",
    "<TermsOfUse type='1' id='a' userConsentRequired='true'><Country>b</Country><Country>c</Country><Language>d"
    "</Language><TermsOfUseText>e</TermsOfUseText></TermsOfUse>",
    "1|a|1|[b c]|d|e", "0|-|0|[]|-|-");
static const TCase<CTermsOfUse> k_termsOfUse2("CTermsOfUse", "TermsOfUse", "<TermsOfUse userConsentRequired='trueX'/>",
                                              "0|-|0|[]|-|-", "0|-|0|[]|-|-");

static std::string Show(const CTargetUserProfile::STargetUserProfile& s)
{
    return Join(s.attributeName, s.attributeValue);
}

static const TCase<CTargetUserProfile> k_targetUserProfile("CTargetUserProfile", "TargetUserProfile",
                                                           "<TargetUserProfile attributeName='a' attributeValue='b'/>",
                                                           "a|b", "-|-");

static std::string Show(const CCellTargetArea::SCell& s)
{
    return Join(s.value, s.pp2CellIDs);
}

static std::string Show(const CCellTargetArea::SCellTargetArea& s)
{
    return Join(s.type, s.value, s.cells);
}

static const TCase<CCellTargetArea> k_cellTargetArea(
    "CCellTargetArea", "CellTargetArea",
    "<CellTargetArea type='1' value='v'><CellArea value='a'><PP2CellID>b</PP2CellID><PP2CellID>c</PP2CellID>"
    "</CellArea><CellArea/><PP2CellID>d</PP2CellID></CellTargetArea>",
    "1|v|[a|[b c] -|[d]]", "0|-|[]");

static std::string Show(const CBroadcastArea::SArea& s)
{
    return Join(s.cc, s.mcc, s.nameArea, s.zipCodes, s.cellTargetArea);
}

static std::string Show(const CBroadcastArea::SBroadcastArea& s)
{
    return Join(s.polarity, s.names.cc, s.names.mcc, s.names.nameArea, s.p_area);
}

static const TCase<CBroadcastArea> k_broadcastArea(
    "CBroadcastArea", "BroadcastArea",
    "<BroadcastArea polarity='true' mcc='x'><TargetArea cc='old'><ZipCode>0</ZipCode></TargetArea><TargetArea "
    "cc='a' name_area='b'><ZipCode>1</ZipCode><ZipCode>2</ZipCode><CellTargetArea type='1'/><CellTargetArea "
    "type='3'><CellArea value='c'/></CellTargetArea></TargetArea></BroadcastArea>",
    "1|-|x|-|a|-|b|[1 2]|{3|-|[c|[]]}", "0|-|-|-|-");
static const TCase<CBroadcastArea> k_broadcastArea2(
    "CBroadcastArea", "BroadcastArea",
    "<BroadcastArea polarity='1' cc='a'><ZipCode>1</ZipCode><CellTargetArea/></BroadcastArea>",
    "0|a|-|-|-|-|-|[1]|{0|-|[]}", "0|-|-|-|-");

static std::string Show(const CComponent::SComponentItem& s)
{
    return Join(s.content, s.language);
}

static std::string Show(const CComponent::SComponent& s)
{
    return Join(s.language, s.videoComponents, s.audioComponents, s.ccComponents, s.appComponents);
}

static const TCase<CComponent> k_component(
    "CComponent", "Components",
    "<Components language='z'><VideoComponent>a</VideoComponent><AudioComponent language='b'>c</AudioComponent>"
    "<AudioComponent/><CCComponent language='d'/><AppComponent language='e'/></Components>",
    "z|[a|-]|[c|b |-]|[|d]|[|e]", "-|[]|[]|[]|[]");

static std::string Show(const CContentAdvRatings::SRatingText& s)
{
    return Join(s.content, s.lang);
}

static std::string Show(const CContentAdvRatings::SRating& s)
{
    return Join(s.ratingDimension, s.hasDimension, s.ratingDimVal, s.ratingValueStrings);
}

static std::string Show(const CContentAdvRatings::SContentAdvRatings& s)
{
    return Join(s.lang, s.regionIdentifier, s.ratedDimensions, s.ratingDescriptions, s.ratings);
}

static const TCase<CContentAdvRatings> k_contentAdvRatings(
    "CContentAdvRatings", "ContentAdvisoryRatings",
    "<ContentAdvisoryRatings><RegionIdentifier>1</RegionIdentifier><RatedDimensions>2</RatedDimensions>"
    "<RatingDescription lang='a'>b</RatingDescription><RatingDimVal><RatingDimension>0</RatingDimension>"
    "<RatingValueString lang='c'>d</RatingValueString><RatingValueString>e</RatingValueString></RatingDimVal>"
    "<RatingDimVal><RatingValueString>f</RatingValueString><RatingDimension>5</RatingDimension></RatingDimVal>"
    "</ContentAdvisoryRatings>",
    "-|1|2|[b|a]|[0|1|-|[d|c e|-] 5|1|-|[f|-]]", "-|0|0|[]|[]");
static const TCase<CContentAdvRatings> k_contentAdvRatings2(
    "CContentAdvRatings", "ContentAdvisoryRatings",
    "<ContentAdvisoryRatings lang='z'><RatingDimension>3</RatingDimension><RatingDimVal>4</RatingDimVal>"
    "<RatingValueString>a</RatingValueString><RatingDimension>6</RatingDimension><RatingDimVal>7</RatingDimVal>"
    "</ContentAdvisoryRatings>",
    "z|0|0|[]|[3|1|4|[a|-] 6|1|7|[]]", "-|0|0|[]|[]");

static std::string Show(const CContentPrivateExt::SContentPrivateExt& s)
{
    return Join(s.media, s.capabilities, s.comp, s.contentIcons, s.previews);
}

static const TCase<CContentPrivateExt> k_contentPrivateExt(
    "CContentPrivateExt", "PrivateExt",
    "<PrivateExt MIMEType='z'><Capabilities>a</Capabilities><Components><AppComponent/></Components><Components/>"
    "<ContentIcon dataSize='1'>b</ContentIcon><ContentIcon MIMEType='c'/><Preview usage='2'/><Preview/>"
    "</PrivateExt>",
    "z|0|0|0|a|{-|[]|[]|[]|[]}|[b|-|0|0|1 |c|0|0|0]|[{[]|[]|[]|2|-|0|0|0} {[]|[]|[]|0|-|0|0|0}]", "-|0|0|0|-|-|[]|[]");

static std::string Show(const CATSC3ServiceExt::SATSC3ServiceExt& s)
{
    return Join(s.media, s.majorChannelNum, s.minorChannelNum, s.icons);
}

static const TCase<CATSC3ServiceExt> k_aTSC3ServiceExt(
    "CATSC3ServiceExt", "ATSC3ServiceExtension",
    "<ATSC3ServiceExtension width='9'><MajorChannelNum>1</MajorChannelNum><MinorChannelNum>2</MinorChannelNum>"
    "<Icon MIMEType='a' width='3' height='4' dataSize='5'>b</Icon><Icon/></ATSC3ServiceExtension>",
    "-|9|0|0|1|2|[b|a|3|4|5 |-|0|0|0]", "-|0|0|0|0|0|[]");

static std::string Show(const CESGTransport::SESGTransport& s)
{
    return Join(s.ipAddress, s.port, s.srcIpAddress, s.transmissionSessionID, s.hasFDT);
}

static const TCase<CESGTransport> k_eSGTransport(
    "CESGTransport", "Transport",
    "<Transport ipAddress='a' port='1' srcIpAddress='b' transmissionSessionID='4294967294' hasFDT='true'/>",
    "a|1|b|4294967294|1", "-|0|-|0|0");

static std::string Show(const CGroupingCri::SGroupingCri& s)
{
    return Join(s.startTime, s.endTime, s.type, s.href, s.genre, s.idRef, s.serviceCriteria);
}

static const TCase<CGroupingCri> k_groupingCri(
    "CGroupingCri", "GroupingCriteria",
    "<GroupingCriteria><TimeGroupingCriteria startTime='3981234567' endTime='3981234568'/><GenreGroupingCriteria "
    "type='a' href='b'>c</GenreGroupingCriteria><BSMSelector idRef='d'/><ServiceCriteria>e</ServiceCriteria>"
    "</GroupingCriteria>",
    "3981234567|3981234568|a|b|c|d|e", "0|0|-|-|-|-|-");
static const TCase<CGroupingCri> k_groupingCri2(
    "CGroupingCri", "GroupingCriteria",
    "<GroupingCriteria startTime='1' endTime='2' type='a' href='b' idRef='c'><TimeGroupingCriteria startTime='3'/>"
    "</GroupingCriteria>",
    "3|2|a|b|-|c|-", "0|0|-|-|-|-|-");

static std::string Show(const CFragment::SFragment& s)
{
    return Join(s.transportID, s.id, s.validFrom, s.validTo, s.fragmentEncoding, s.fragmentType, s.idRef, s.startTime,
                s.endTime);
}

static const TCase<CFragment> k_fragment(
    "CFragment", "Fragment",
    "<Fragment transportID='4294967293' id='a' validFrom='3981234567' validTo='3981234568' fragmentEncoding='1' "
    "fragmentType='2' startTime='9'><GroupingCriteria><TimeGroupingCriteria startTime='3' endTime='4'/>"
    "<BSMSelector idRef='b'/></GroupingCriteria></Fragment>",
    "4294967293|a|3981234567|3981234568|1|2|b|3|4", "0|-|0|0|0|0|-|0|0");

static std::string Show(const CScheduleContentRef::SScheduleContentRef& s)
{
    return Join(s.idRef, s.contentLocation, s.presentationWindows);
}

static const TCase<CScheduleContentRef> k_scheduleContentRef(
    "CScheduleContentRef", "ContentReference",
    "<ContentReference idRef='a' contentLocation='b'><PresentationWindow id='c'/><PresentationWindow/>"
    "</ContentReference>",
    "a|b|[{c|0|0|0|0|0} {-|0|0|0|0|0}]", "-|-|[]");

static std::string Show(const CSGDeliveryUnit::SSGDeliveryUnit& s)
{
    return Join(s.transportObjectID, s.versionIDLength, s.contentLocation, s.validFrom, s.validTo, s.fragments);
}

static const TCase<CSGDeliveryUnit> k_sGDeliveryUnit(
    "CSGDeliveryUnit", "ServiceGuideDeliveryUnit",
    "<ServiceGuideDeliveryUnit transportObjectID='4294967295' versionIDLength='1' contentLocation='a' "
    "validFrom='3981234567' validTo='3981234568'><Fragment/></ServiceGuideDeliveryUnit>",
    "4294967295|1|a|3981234567|3981234568|[{0|-|0|0|0|0|-|0|0}]", "0|0|-|0|0|[]");

static std::string Show(const CDescriptorEntry::SDescriptorEntry& s)
{
    return Join(s.type, s.groupingCri, s.transport, s.alternativeAccessURLs, s.deliveryUnits);
}

static const TCase<CDescriptorEntry> k_descriptorEntry(
    "CDescriptorEntry", "DescriptorEntry",
    "<DescriptorEntry type='1'><GroupingCriteria idRef='old'/><GroupingCriteria/><Transport port='2'/>"
    "<AlternativeAccessURL>a</AlternativeAccessURL><AlternativeAccessURL>b</AlternativeAccessURL>"
    "<ServiceGuideDeliveryUnit versionIDLength='3'><Fragment id='c'/><Fragment id='d'/></ServiceGuideDeliveryUnit>"
    "<ServiceGuideDeliveryUnit/></DescriptorEntry>",
    "1|{0|0|-|-|-|-|-}|{-|2|-|0|0}|[a b]|[{0|3|-|0|0|[{0|c|0|0|0|0|-|0|0} {0|d|0|0|0|0|-|0|0}]} {0|0|-|0|0|[]}]",
    "0|-|-|[]|[]");

namespace {

TEST_F(ESGElementTest, EveryAttributeAndChild)
{
    for (const SCase& c : g_cases) {
        const std::string& name = c.className;
        EXPECT_EQ(c.parsed(c.text), c.expected) << c.text;
        EXPECT_EQ(c.parsed("<" + c.element + "/>"), c.empty) << name;
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
