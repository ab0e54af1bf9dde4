#pragma once

#include <utility>
#include <vector>

#include "esg/ESGContentFragment.h"
#include "esg/ESGElement/Icon.h"
#include "esg/ESGElement/Text.h"
#include "esg/ESGScheduleFragment.h"
#include "esg/ESGServiceFragment.h"
#include "esg/SGDDParse.h"
#include "support/Recorder.h"
#include "support/Show.h"

// The guide's elements: how the record of each shows, and under it what its class makes of an element. Every class
// with cases here is tested by ESGElementTest.

struct SDocument {
    explicit SDocument(const std::string& text)
    {
        EXPECT_EQ(Each({xml.Create(text.data(), static_cast<int>(text.size()), false), xml.MoveRoot(&root)}), "11")
            << text;
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
    EXPECT_EQ(CRecorder::TakeAssertions(), "!m");
    element.Destroy();
    EXPECT_EQ(element.State(), nullptr);
    return once;
}

/// What one class makes of its element.
class CElementCases {
  public:
    using TCase = std::pair<const char*, const char*>;  // text and record

    CElementCases(const char* name, const char* root, std::string (*parsed)(const std::string& text),
                  const char* ofEmpty, std::vector<TCase> list)
        : className(name), element(root), parse(parsed), empty(ofEmpty), cases(std::move(list))
    {
        All().push_back(this);
    }

    static std::vector<const CElementCases*>& All()
    {
        static std::vector<const CElementCases*> s_all;
        return s_all;
    }

    std::string className;
    std::string element;
    std::string (*parse)(const std::string& text);
    const char* empty;  // the record of an element without anything
    std::vector<TCase> cases;
};

SHOW(SESGMediaInfo, s.mimeType, s.width, s.height, s.dataSize)

SHOW(SESGMedia, s.content, static_cast<const SESGMediaInfo&>(s))

SHOW(CSpokenText::SSpeechInfo, s.content, s.contentType, s.contentEnc)
SHOW(CSpokenText::SSpokenText, s.text, s.lang, s.content, s.speechInfoURIs, s.speechInfos)
inline const CElementCases g_name("CName", "Name", Parsed<CName>, "-|-||[]|[]",
                                  {{"<x:Name xmlns:x='u' text='t' lang='en'>N<!-- -->M</x:Name>", "t|en|NM|[]|[]"}});
inline const CElementCases g_description(
    "CDescription", "Description", Parsed<CDescription>, "-|-||[]|[]",
    {{"<Description><SpeechInfoURI Content-type='a' Content-enc='b'/><SpeechInfo Content-type='c' "
      "Content-enc='d'/><SpeechInfo/></Description>",
      "-|-||[|a|b]|[|c|d |-|-]"}});

SHOW(CLanguageTag::SLanguageTag, s.content, s.languageSDPTag)
inline const CElementCases g_textLanguage("CTextLanguage", "TextLanguage", Parsed<CTextLanguage>, "|-",
                                          {{"<TextLanguage languageSDPTag='a'>b</TextLanguage>", "b|a"}});
inline const CElementCases g_audioLanguage("CAudioLanguage", "AudioLanguage", Parsed<CAudioLanguage>, "|-",
                                           {{"<AudioLanguage languageSDPTag='a'>b</AudioLanguage>", "b|a"}});

SHOW(CGenre::SGenre, s.type, s.href, s.content, s.index, s.name)

SHOW(CIcon::SIcon, s.link, s.description, s.uri, s.uriType, s.mimeType, s.size, s.language, s.iconUri)
inline const CElementCases g_icon(
    "CIcon", "Icon", Parsed<CIcon>, "-|-|-|-|-|0|-|-",
    {{"<Icon uri='a' uriType='b' MIMEType='c' size='4' language='d' iconUri='e'><Link>f</Link><Description>g"
      "</Description></Icon>",
      "f|g|a|b|c|4|d|e"}});

SHOW(CText::SText, s.link, s.description, s.textString, s.uri, s.uriType, s.language)
inline const CElementCases g_text(
    "CText", "Text", Parsed<CText>, "-|-|-|-|-|-",
    {{"<Text uri='a' uriType='b' language='c'><Link>d</Link><Description>e</Description><TextString>f</TextString>"
      "<TextString>g</TextString></Text>",
      "d|e|g|a|b|c"}});

SHOW(CPreviewDesc::SPreviewDesc, s.content, s.lang, s.linkUri, s.uriType)
inline const CElementCases g_previewDesc(
    "CPreviewDesc", "PreviewDescription", Parsed<CPreviewDesc>, "|-|-|-",
    {{"<PreviewDescription lang='a' linkUri='b' uriType='c'>d</PreviewDescription>", "d|a|b|c"}});

SHOW(CPreviewData::SPreviewData, s.previewContents, s.previewIcons, s.descriptions, s.usage, s.media)
inline const CElementCases g_previewData(
    "CPreviewData", "Preview", Parsed<CPreviewData>, "[]|[]|[]|0|-|0|0|0",
    {{"<Preview usage='1' MIMEType='m'><PreviewContent MIMEType='a' width='2' height='3' dataSize='4'>b"
      "</PreviewContent><PreviewIcon width='5' height='6' dataSize='7'/><Description lang='c'>d</Description>"
      "<PreviewDescription linkUri='e' uriType='f'/></Preview>",
      "[b|a|2|3|4]|[|-|5|6|7]|[{d|c|-|-} {|-|e|f}]|1|m|0|0|0"}});

SHOW(CPresentationWindow::SPresentationWindow, s.id, s.startTime, s.endTime, s.startTimeElement, s.endTimeElement,
     s.duration)
inline const CElementCases g_presentationWindow(
    "CPresentationWindow", "PresentationWindow", Parsed<CPresentationWindow>, "-|0|0|0|0|0",
    {{"<PresentationWindow id='a' startTime='3981234567' endTime='4294967295'><StartTime>3981234568</StartTime>"
      "<EndTime>3981234569</EndTime><Duration>1800</Duration></PresentationWindow>",
      "a|3981234567|4294967295|3981234568|3981234569|1800"}});

SHOW(CPopularity::SPopularity, s.rating, s.noOfViews, s.noOfDiscussions, s.samplingDate)
inline const CElementCases g_popularity(
    "CPopularity", "Popularity", Parsed<CPopularity>, "0|0|0|0",
    {{"<Popularity rating='1' noOfViews='2' noOfDiscussions='3' samplingDate='2026-01-31T20:15:07Z'/>",
      "1|2|3|1769890507"}});

SHOW(CFreshness::SFreshness, s.broadcastDate, s.releaseDate)
inline const CElementCases g_freshness(
    "CFreshness", "Freshness", Parsed<CFreshness>, "0|0",
    {{"<Freshness broadcastDate='2040-02-29T00:00:00Z' releaseDate='2000-01-01T00:00:00Z' "
      "releastDate='1970-01-01T00:00:01Z'/>",
      "2214086400|1"},
     {"<Freshness broadcastDate='2040-02-29' releastDate='2026-13-01T00:00:00Z'/>", "0|0"}});

SHOW(CTermsOfUse::STermsOfUse, s.type, s.id, s.userConsentRequired, s.countries, s.language, s.termsOfUseText)
inline const CElementCases g_termsOfUse(
    "CTermsOfUse", "TermsOfUse", Parsed<CTermsOfUse>, "0|-|0|[]|-|-",
    {{"<TermsOfUse type='1' id='a' userConsentRequired='true'><Country>b</Country><Country>c</Country><Language>d"
      "</Language><TermsOfUseText>e</TermsOfUseText></TermsOfUse>",
      "1|a|1|[b c]|d|e"},
     {"<TermsOfUse userConsentRequired='trueX'/>", "0|-|0|[]|-|-"}});

SHOW(CTargetUserProfile::STargetUserProfile, s.attributeName, s.attributeValue)
inline const CElementCases g_targetUserProfile("CTargetUserProfile", "TargetUserProfile", Parsed<CTargetUserProfile>,
                                               "-|-",
                                               {{"<TargetUserProfile attributeName='a' attributeValue='b'/>", "a|b"}});

SHOW(CCellTargetArea::SCell, s.value, s.pp2CellIDs)
SHOW(CCellTargetArea::SCellTargetArea, s.type, s.value, s.cells)
inline const CElementCases g_cellTargetArea(
    "CCellTargetArea", "CellTargetArea", Parsed<CCellTargetArea>, "0|-|[]",
    {{"<CellTargetArea type='1' value='v'><CellArea value='a'><PP2CellID>b</PP2CellID><PP2CellID>c</PP2CellID>"
      "</CellArea><CellArea/><PP2CellID>d</PP2CellID></CellTargetArea>",
      "1|v|[a|[b c] -|[d]]"},
     {"<CellTargetArea><PP2CellID>d</PP2CellID><PP2CellID>e</PP2CellID></CellTargetArea>", "0|-|[-|[d e]]"}});

SHOW(CBroadcastArea::SArea, s.cc, s.mcc, s.nameArea, s.zipCodes, s.cellTargetArea)
SHOW(CBroadcastArea::SBroadcastArea, s.polarity, s.names.cc, s.names.mcc, s.names.nameArea, s.p_area)
inline const CElementCases g_broadcastArea(
    "CBroadcastArea", "BroadcastArea", Parsed<CBroadcastArea>, "0|-|-|-|-",
    {{"<BroadcastArea polarity='true' mcc='x'><TargetArea cc='old'><ZipCode>0</ZipCode></TargetArea><TargetArea "
      "cc='a' name_area='b'><ZipCode>1</ZipCode><ZipCode>2</ZipCode><CellTargetArea type='1'/><CellTargetArea "
      "type='3'><CellArea value='c'/></CellTargetArea></TargetArea></BroadcastArea>",
      "1|-|x|-|a|-|b|[1 2]|{3|-|[c|[]]}"},
     {"<BroadcastArea polarity='1' cc='a'><ZipCode>1</ZipCode><CellTargetArea/></BroadcastArea>",
      "0|a|-|-|-|-|-|[1]|{0|-|[]}"}});

SHOW(CComponent::SComponentItem, s.content, s.language)
SHOW(CComponent::SComponent, s.language, s.videoComponents, s.audioComponents, s.ccComponents, s.appComponents)
inline const CElementCases g_component(
    "CComponent", "Components", Parsed<CComponent>, "-|[]|[]|[]|[]",
    {{"<Components language='z'><VideoComponent>a</VideoComponent><AudioComponent language='b'>c</AudioComponent>"
      "<AudioComponent/><CCComponent language='d'/><AppComponent language='e'/></Components>",
      "z|[a|-]|[c|b |-]|[|d]|[|e]"}});

SHOW(CContentAdvRatings::SRatingText, s.content, s.lang)
SHOW(CContentAdvRatings::SRating, s.ratingDimension, s.hasDimension, s.ratingDimVal, s.ratingValueStrings)
SHOW(CContentAdvRatings::SContentAdvRatings, s.lang, s.regionIdentifier, s.ratedDimensions, s.ratingDescriptions,
     s.ratings)
inline const CElementCases g_contentAdvRatings(
    "CContentAdvRatings", "ContentAdvisoryRatings", Parsed<CContentAdvRatings>, "-|0|0|[]|[]",
    {{"<ContentAdvisoryRatings><RegionIdentifier>1</RegionIdentifier><RatedDimensions>2</RatedDimensions>"
      "<RatingDescription lang='a'>b</RatingDescription><RatingDimVal><RatingDimension>0</RatingDimension>"
      "<RatingValueString lang='c'>d</RatingValueString><RatingValueString>e</RatingValueString></RatingDimVal>"
      "<RatingDimVal><RatingValueString>f</RatingValueString><RatingDimension>5</RatingDimension></RatingDimVal>"
      "</ContentAdvisoryRatings>",
      "-|1|2|[b|a]|[0|1|-|[d|c e|-] 5|1|-|[f|-]]"},
     {"<ContentAdvisoryRatings lang='z'><RatingDimension>3</RatingDimension><RatingDimVal>4</RatingDimVal>"
      "<RatingValueString>a</RatingValueString><RatingDimension>6</RatingDimension><RatingDimVal>7</RatingDimVal>"
      "</ContentAdvisoryRatings>",
      "z|0|0|[]|[3|1|4|[a|-] 6|1|7|[]]"}});

SHOW(CContentPrivateExt::SContentPrivateExt, s.media, s.capabilities, s.comp, s.contentIcons, s.previews)
inline const CElementCases g_contentPrivateExt(
    "CContentPrivateExt", "PrivateExt", Parsed<CContentPrivateExt>, "-|0|0|0|-|-|[]|[]",
    {{"<PrivateExt MIMEType='z'><Capabilities>a</Capabilities><Components><AppComponent/></Components><Components/>"
      "<ContentIcon dataSize='1'>b</ContentIcon><ContentIcon MIMEType='c'/><Preview usage='2'/><Preview/>"
      "</PrivateExt>",
      "z|0|0|0|a|{-|[]|[]|[]|[]}|[b|-|0|0|1 |c|0|0|0]|[{[]|[]|[]|2|-|0|0|0} {[]|[]|[]|0|-|0|0|0}]"}});

SHOW(CATSC3ServiceExt::SATSC3ServiceExt, s.media, s.majorChannelNum, s.minorChannelNum, s.icons)
inline const CElementCases g_serviceExt(
    "CATSC3ServiceExt", "ATSC3ServiceExtension", Parsed<CATSC3ServiceExt>, "-|0|0|0|0|0|[]",
    {{"<ATSC3ServiceExtension width='9'><MajorChannelNum>1</MajorChannelNum><MinorChannelNum>2</MinorChannelNum>"
      "<Icon MIMEType='a' width='3' height='4' dataSize='5'>b</Icon><Icon/></ATSC3ServiceExtension>",
      "-|9|0|0|1|2|[b|a|3|4|5 |-|0|0|0]"}});

SHOW(CESGTransport::SESGTransport, s.ipAddress, s.port, s.srcIpAddress, s.transmissionSessionID, s.hasFDT)
inline const CElementCases g_transport(
    "CESGTransport", "Transport", Parsed<CESGTransport>, "-|0|-|0|0",
    {{"<Transport ipAddress='a' port='1' srcIpAddress='b' transmissionSessionID='4294967294' hasFDT='true'/>",
      "a|1|b|4294967294|1"}});

SHOW(CGroupingCri::SGroupingCri, s.startTime, s.endTime, s.type, s.href, s.genre, s.idRef, s.serviceCriteria)
inline const CElementCases g_groupingCri(
    "CGroupingCri", "GroupingCriteria", Parsed<CGroupingCri>, "0|0|-|-|-|-|-",
    {{"<GroupingCriteria><TimeGroupingCriteria startTime='3981234567' endTime='3981234568'/><GenreGroupingCriteria "
      "type='a' href='b'>c</GenreGroupingCriteria><BSMSelector idRef='d'/><ServiceCriteria>e</ServiceCriteria>"
      "</GroupingCriteria>",
      "3981234567|3981234568|a|b|c|d|e"},
     {"<GroupingCriteria startTime='1' endTime='2' type='a' href='b' idRef='c'><TimeGroupingCriteria startTime='3'/>"
      "</GroupingCriteria>",
      "3|2|a|b|-|c|-"}});

SHOW(CFragment::SFragment, s.transportID, s.id, s.validFrom, s.validTo, s.fragmentEncoding, s.fragmentType, s.idRef,
     s.startTime, s.endTime)
inline const CElementCases g_fragment(
    "CFragment", "Fragment", Parsed<CFragment>, "0|-|0|0|0|0|-|0|0",
    {{"<Fragment transportID='4294967293' id='a' validFrom='3981234567' validTo='3981234568' fragmentEncoding='1' "
      "fragmentType='2' startTime='9'><GroupingCriteria><TimeGroupingCriteria startTime='3' endTime='4'/>"
      "<BSMSelector idRef='b'/></GroupingCriteria></Fragment>",
      "4294967293|a|3981234567|3981234568|1|2|b|3|4"}});

SHOW(CScheduleContentRef::SScheduleContentRef, s.idRef, s.contentLocation, s.presentationWindows)
inline const CElementCases g_scheduleContentRef(
    "CScheduleContentRef", "ContentReference", Parsed<CScheduleContentRef>, "-|-|[]",
    {{"<ContentReference idRef='a' contentLocation='b'><PresentationWindow id='c'/><PresentationWindow/>"
      "</ContentReference>",
      "a|b|[{c|0|0|0|0|0} {-|0|0|0|0|0}]"}});

SHOW(CSGDeliveryUnit::SSGDeliveryUnit, s.transportObjectID, s.versionIDLength, s.contentLocation, s.validFrom,
     s.validTo, s.fragments)
inline const CElementCases g_deliveryUnit(
    "CSGDeliveryUnit", "ServiceGuideDeliveryUnit", Parsed<CSGDeliveryUnit>, "0|0|-|0|0|[]",
    {{"<ServiceGuideDeliveryUnit transportObjectID='4294967295' versionIDLength='1' contentLocation='a' "
      "validFrom='3981234567' validTo='3981234568'><Fragment/></ServiceGuideDeliveryUnit>",
      "4294967295|1|a|3981234567|3981234568|[{0|-|0|0|0|0|-|0|0}]"}});

SHOW(CDescriptorEntry::SDescriptorEntry, s.type, s.groupingCri, s.transport, s.alternativeAccessURLs, s.deliveryUnits)
inline const CElementCases g_descriptorEntry(
    "CDescriptorEntry", "DescriptorEntry", Parsed<CDescriptorEntry>, "0|-|-|[]|[]",
    {{"<DescriptorEntry type='1'><GroupingCriteria idRef='old'/><GroupingCriteria/><Transport port='2'/>"
      "<AlternativeAccessURL>a</AlternativeAccessURL><AlternativeAccessURL>b</AlternativeAccessURL>"
      "<ServiceGuideDeliveryUnit versionIDLength='3'><Fragment id='c'/><Fragment id='d'/></ServiceGuideDeliveryUnit>"
      "<ServiceGuideDeliveryUnit/></DescriptorEntry>",
      "1|{0|0|-|-|-|-|-}|{-|2|-|0|0}|[a b]|[{0|3|-|0|0|[{0|c|0|0|0|0|-|0|0} {0|d|0|0|0|0|-|0|0}]} {0|0|-|0|0|[]}]"}});
