#include "route/SLS/MPD.h"

#include <nlohmann/json.hpp>

#include "support/ParserTest.h"
#include "support/Show.h"

SHOW(SMPDSegmentURL, s.media, s.mediaRange, s.index, s.indexRange)

namespace {

using TJson = nlohmann::json;

class MPDTest : public TParserTest<CMPD> {
  protected:
    void SetUp() override
    {
        TParserTest::SetUp();
        const CMPD::SCallback callback = {this, OnInfo, OnRatings};
        ASSERT_TRUE(m_parser.SetCallback(&callback));
    }

    static void OnInfo(void* context, SMPDInfo* info)
    {
        auto* self = static_cast<MPDTest*>(context);
        ++self->m_reports;
        EXPECT_EQ(info, self->m_parser.GetMPDInfo());
    }

    static void OnRatings(void* context, const CMPD::TRatings& ratings)
    {
        static_cast<MPDTest*>(context)->m_ratings = ratings;
    }

    int m_reports = 0;
    CMPD::TRatings m_ratings;
};

std::string Text(const char* text)
{
    return text ? text : "-";
}

std::string Text(long long number)
{
    return number == -1 ? "-" : std::to_string(number);
}

std::string Wanted(const TJson& element, const char* name, const std::string& absent = "-")
{
    return element.value(name, absent);
}

void CompareCommon(const SMPDCommon& common, const TJson& element, const TJson& above, const std::string& where)
{
    const auto wanted = [&](const char* name) { return Wanted(element, name, Wanted(above, name)); };
    EXPECT_EQ(Text(common.mimeType), wanted("mimeType")) << where;
    EXPECT_EQ(Text(common.codecs), wanted("codecs")) << where;
    EXPECT_EQ(Text(common.width), wanted("width")) << where;
    EXPECT_EQ(Text(common.height), wanted("height")) << where;
    EXPECT_EQ(Text(common.frameRate), wanted("frameRate")) << where;
    EXPECT_EQ(Text(common.sar), wanted("sar")) << where;
    EXPECT_EQ(Text(common.audioSamplingRate), wanted("audioSamplingRate")) << where;
    EXPECT_EQ(Text(common.startWithSAP), wanted("startWithSAP")) << where;
    EXPECT_EQ(Text(common.scanType), wanted("scanType")) << where;
}

TEST_F(MPDTest, PresentationsOfOtherProgramsAsAnotherReaderReadsThem)
{
    const TJson all = TJson::parse(ReadData("mpd/expected.json"));
    ASSERT_GT(all.size(), 30u);
    for (const auto& [name, expected] : all.items()) {
        ASSERT_TRUE(Parse(ReadData("mpd/" + name))) << name;
        const SMPDInfo& info = *m_parser.GetMPDInfo();
        const TJson& decoded = expected["decoded"];
        EXPECT_EQ(info.dynamic, Wanted(decoded["attributes"], "type") == "dynamic") << name;
        EXPECT_EQ(Text(info.profiles), Wanted(decoded["attributes"], "profiles")) << name;
        EXPECT_EQ(info.minBufferTime.has_value(), decoded["attributes"].contains("minBufferTime")) << name;
        EXPECT_EQ(info.publishTime.has_value(), decoded["attributes"].contains("publishTime")) << name;
        ASSERT_EQ(info.periods.size(), decoded["periods"].size()) << name;
        for (std::size_t p = 0; p < info.periods.size(); ++p) {
            const TJson& period = decoded["periods"][p];
            EXPECT_EQ(Text(info.periods[p].id), Wanted(period, "id")) << name;
            ASSERT_EQ(info.periods[p].adaptationSets.size(), period["adaptationSets"].size()) << name;
            for (std::size_t s = 0; s < info.periods[p].adaptationSets.size(); ++s) {
                const SMPDAdaptationSet& set = info.periods[p].adaptationSets[s];
                const TJson& element = period["adaptationSets"][s];
                const std::string where = name + " set " + std::to_string(s);
                CompareCommon(set, element, TJson::object(), where);
                EXPECT_EQ(Text(set.id), Wanted(element, "id")) << where;
                EXPECT_EQ(Text(set.lang), Wanted(element, "lang")) << where;
                EXPECT_EQ(Text(set.contentType), Wanted(element, "contentType")) << where;
                EXPECT_EQ(Text(set.par), Wanted(element, "par")) << where;
                EXPECT_EQ(Text(set.maxWidth), Wanted(element, "maxWidth")) << where;
                EXPECT_EQ(Text(set.maxFrameRate), Wanted(element, "maxFrameRate")) << where;
                EXPECT_EQ(set.roles.size(), element.value("Role", TJson::array()).size()) << where;
                EXPECT_EQ(set.accessibilities.size(), element.value("Accessibility", TJson::array()).size()) << where;
                EXPECT_EQ(set.contentProtections.size(), element.value("ContentProtection", TJson::array()).size());
                ASSERT_EQ(set.representations.size(), element["representations"].size()) << where;
                for (std::size_t r = 0; r < set.representations.size(); ++r) {
                    CompareCommon(set.representations[r], element["representations"][r], element, where);
                    EXPECT_EQ(Text(set.representations[r].id), Wanted(element["representations"][r], "id")) << where;
                    EXPECT_EQ(Text(set.representations[r].bandwidth),
                              Wanted(element["representations"][r], "bandwidth"));
                }
            }
        }
    }
}

TEST_F(MPDTest, TimesProtectionAndPreselections)
{
    ASSERT_TRUE(Parse(ReadData("mpd/gpac-a1-single-service-live.mpd")));
    EXPECT_DOUBLE_EQ(*m_parser.GetMPDInfo()->availabilityStartTime, 1795226543.328);
    EXPECT_DOUBLE_EQ(*m_parser.GetMPDInfo()->timeShiftBufferDepth, 30);
    EXPECT_FALSE(m_parser.GetMPDInfo()->mediaPresentationDuration.has_value());
    EXPECT_DOUBLE_EQ(*m_parser.GetMPDInfo()->periods[0].start, 0);
    EXPECT_TRUE(m_ratings.empty());

    ASSERT_TRUE(Parse(ReadData("mpd/eyevinn-multi-drm.mpd")));
    const SMPDAdaptationSet& set = m_parser.GetMPDInfo()->periods[0].adaptationSets[0];
    ASSERT_EQ(set.contentProtections.size(), 5u);
    EXPECT_STREQ(set.contentProtections[0].defaultKid, "121a0fca-0f1b-475b-8910-297fa8e0a07e");
    ASSERT_EQ(set.contentProtections[1].licenceUrls.size(), 1u);
    EXPECT_STREQ(set.contentProtections[1].licenceUrls[0], "https://clearkey.source.org");
    EXPECT_EQ(set.contentProtections[3].pssh.size(), 1u);
    EXPECT_EQ(std::string(set.contentProtections[4].pssh[0]).substr(0, 12), "AAAATHBzc2gA");

    ASSERT_TRUE(Parse(ReadData("mpd/eyevinn-mpegh-preselection.mpd")));
    const SMPDPeriod& period = m_parser.GetMPDInfo()->periods[0];
    ASSERT_EQ(period.preselections.size(), 3u);
    EXPECT_STREQ(period.preselections[1].id, "1");
    EXPECT_STREQ(period.preselections[0].preselectionComponents, "0");
    EXPECT_EQ(Join(period.preselections[0].roles.size(), period.preselections[2].roles.empty()), "2|1");

    ASSERT_TRUE(Parse(ReadData("mpd/gpac-rating-accessibility.mpd")));
    const CMPD::TRatings rating = {{"tag:atsc.org,2016:XMLSchemas/ATSC3/RRT", "1,'TV-14-D-L-S',{0 'TV-14'}{1 'D'}"}};
    EXPECT_EQ(m_ratings, rating);
    EXPECT_EQ(m_reports, 4);
}

TEST_F(MPDTest, AttributesThatNoSampleHas)
{
    ASSERT_TRUE(Parse(
        "<MPD><Period><AdaptationSet group='1' minBandwidth='2' maxBandwidth='3' minWidth='4' maxWidth='5' "
        "minHeight='6' maxHeight='7' minFrameRate='8' maxFrameRate='9/2' segmentAlignment='false'><Representation "
        "qualityRanking='1' dependencyId='b c'><SegmentList><SegmentURL media='m' mediaRange='0-9' index='i' "
        "indexRange='10-19'/></SegmentList></Representation></AdaptationSet></Period></MPD>"));
    const SMPDAdaptationSet& set = m_parser.GetMPDInfo()->periods[0].adaptationSets[0];
    EXPECT_EQ(Join(set.group, set.minBandwidth, set.maxBandwidth, set.minWidth, set.maxWidth, set.minHeight,
                   set.maxHeight, set.minFrameRate, set.maxFrameRate, set.segmentAlignment),
              "1|2|3|4|5|6|7|8|9/2|false");
    const SMPDRepresentation& representation = set.representations[0];
    EXPECT_EQ(Join(representation.qualityRanking, representation.dependencyId, *representation.segmentList->urls),
              "1|b c|[m|0-9|i|10-19]");
}

TEST_F(MPDTest, SegmentsComeFromTheLevelsAbove)
{
    ASSERT_TRUE(Parse(ReadData("mpd/gpac-a11-many-components-live.mpd")));
    const SMPDAdaptationSet& set = m_parser.GetMPDInfo()->periods[0].adaptationSets[0];
    const SMPDSegmentTemplate& second = *set.representations[1].segmentTemplate;
    EXPECT_STREQ(second.media, "vv2_$Number$.m4s");
    EXPECT_EQ(second.timescale, 12800);
    EXPECT_EQ(second.timeline, set.segmentTemplate->timeline);
    EXPECT_EQ(set.segmentTemplate->media, nullptr);
    EXPECT_EQ(Join(second.timeline->size(), second.timeline->front().d, second.timeline->front().r), "1|12800|6");

    // The list stands behind the representation that has it.
    ASSERT_TRUE(Parse(ReadData("mpd/mpdparser-multiperiod-segment-list.mpd")));
    const SMPDRepresentation& representation = m_parser.GetMPDInfo()->periods[1].adaptationSets[0].representations[0];
    ASSERT_TRUE(representation.segmentList);
    ASSERT_EQ(representation.segmentList->urls->size(), 2u);
    EXPECT_STREQ(representation.segmentList->urls->back().media, "low/segment-2.ts");
    EXPECT_EQ(Join(representation.segmentList->timescale, representation.segmentList->startNumber), "1000|1");
    EXPECT_STREQ(m_parser.GetMPDInfo()->baseUrls[0], "https://www.example.com/base");

    ASSERT_TRUE(
        Parse("<MPD><Period><SegmentTemplate timescale='0' media='p' presentationTimeOffset='5'>"
              "<SegmentTimeline><S d='10' r='2'/><S d='4'/><S t='100' d='1' r='-1'/><S d='3'/>"
              "<S t='9223372036854775806' d='9' r='1'/><S d='1'/><S t='1' d='-5'/><S/>"
              "<S t='2' d='1' r='9223372036854775807'/><S/><S t='3' d='9223372036854775807' r='1'/><S/>"
              "</SegmentTimeline></SegmentTemplate><SegmentList><Initialization sourceURL='i' range='0-1'/>"
              "<SegmentURL media='u'/><SegmentTimeline><S t='8'/></SegmentTimeline></SegmentList>"
              "<AdaptationSet codecs='c' width='4' selectionPriority='6'>"
              "<SegmentList><Initialization range='2-3'/></SegmentList>"
              "<SegmentTemplate startNumber='0' initialization='i'/><BaseURL> b </BaseURL><BaseURL/>"
              "<Representation codecs=''><SegmentList duration='2'><Initialization sourceURL='own'/>"
              "<SegmentURL index='x'/><SegmentTimeline><S t='7'/></SegmentTimeline></SegmentList></Representation>"
              "<Representation><SegmentList/></Representation></AdaptationSet></Period></MPD>"));
    const SMPDAdaptationSet& inner = m_parser.GetMPDInfo()->periods[0].adaptationSets[0];
    const SMPDRepresentation& leaf = inner.representations[0];
    ASSERT_EQ(leaf.segmentTemplate, inner.segmentTemplate);
    EXPECT_EQ(Join(leaf.segmentTemplate->startNumber, leaf.segmentTemplate->presentationTimeOffset,
                   leaf.segmentTemplate->timescale, leaf.segmentTemplate->duration),
              "0|5|1|-1");
    EXPECT_STREQ(leaf.segmentTemplate->media, "p");
    std::vector<long long> starts;
    for (const SMPDSegment& segment : *leaf.segmentTemplate->timeline) {
        starts.push_back(segment.t);
    }
    EXPECT_EQ(starts, (std::vector<long long>{0, 30, 100, -1, 9223372036854775806, -1, 1, -1, 2, -1, 3, -1}));
    const auto list = [](const SMPDSegmentInfo& level) {
        const SMPDSegmentList& l = *level.segmentList;
        return Text(l.initialization) + " " + Text(l.initializationRange) + " " + std::to_string(l.urls->size()) +
               Text(l.urls->at(0).media) + Text(l.urls->at(0).index) + " " + Text(l.duration) + " " +
               Text(l.timeline->at(0).t);
    };
    EXPECT_EQ(list(inner), "- 2-3 1u- - 8");
    EXPECT_EQ(list(leaf), "own - 1-x 2 7");
    EXPECT_EQ(list(inner.representations[1]), list(inner));
    EXPECT_EQ(inner.selectionPriority, 6);
    EXPECT_STREQ(leaf.codecs, "");
    EXPECT_EQ(leaf.width, 4);
    ASSERT_EQ(inner.baseUrls.size(), 1u);
    EXPECT_STREQ(inner.baseUrls[0], "b");
}

TEST_F(MPDTest, AvailabilityTimingAndProperties)
{
    ASSERT_TRUE(
        Parse("<MPD><UTCTiming schemeIdUri='u' value='v' id='i'/><SupplementalProperty "
              "value='m'/><AudioChannelConfiguration/>"
              "<BaseURL availabilityTimeOffset='INF' availabilityTimeComplete='0'>a</BaseURL><BaseURL>b</BaseURL>"
              "<Period><UTCTiming/><SupplementalProperty value='p'/><BaseURL availabilityTimeOffset='nan'>c</BaseURL>"
              "<SegmentTemplate availabilityTimeOffset='1.5' availabilityTimeComplete='false'/><AdaptationSet>"
              "<SupplementalProperty value='s'/><AudioChannelConfiguration schemeIdUri='c' value='2'/>"
              "<SegmentTemplate availabilityTimeOffset='0'/><Representation><AudioChannelConfiguration value='6'/>"
              "<SegmentTemplate "
              "availabilityTimeComplete='true'/></Representation></"
              "AdaptationSet><Preselection><AudioChannelConfiguration value='16'/></Preselection>"
              "</Period></MPD>"));
    const SMPDInfo& info = *m_parser.GetMPDInfo();
    ASSERT_EQ(Join(info.utcTimings.size(), info.supplementalProperties.size()), "1|1");
    EXPECT_EQ(Text(info.utcTimings[0].schemeIdUri) + info.utcTimings[0].value + info.utcTimings[0].id, "uvi");
    ASSERT_EQ(info.baseUrlAvailabilities.size(), 2u);
    EXPECT_EQ(Join(*info.baseUrlAvailabilities[0].timeOffset > 1e300, *info.baseUrlAvailabilities[0].timeComplete),
              "1|0");
    EXPECT_EQ(Join(info.baseUrlAvailabilities[1].timeOffset, info.baseUrlAvailabilities[1].timeComplete), "-|-");
    const SMPDPeriod& period = info.periods[0];
    EXPECT_STREQ(period.supplementalProperties.at(0).value, "p");
    EXPECT_FALSE(period.baseUrlAvailabilities.at(0).timeOffset);
    EXPECT_EQ(period.segmentTemplate->availability.timeOffset, 1.5);
    const SMPDAdaptationSet& set = period.adaptationSets[0];
    EXPECT_STREQ(set.supplementalProperties.at(0).value, "s");
    EXPECT_STREQ(set.audioChannelConfigurations.at(0).value, "2");
    EXPECT_EQ(set.segmentTemplate->availability.timeOffset, 0);
    EXPECT_EQ(set.segmentTemplate->availability.timeComplete, false);  // from above
    const SMPDAvailability& own = set.representations[0].segmentTemplate->availability;
    EXPECT_EQ(Join(own.timeOffset, own.timeComplete), "0|1");
    EXPECT_STREQ(set.representations[0].audioChannelConfigurations.at(0).value, "6");
    EXPECT_STREQ(period.preselections[0].audioChannelConfigurations.at(0).value, "16");
}

TEST_F(MPDTest, ElementsOutOfPlaceAndFailures)
{
    ASSERT_TRUE(
        Parse("<MPD id='1' type='Dynamic' minBufferTime='2s'><AdaptationSet/><Role/><S/><pssh>p</pssh>"
              "<Representation/><SegmentURL/><Rating value='r'/><EssentialProperty value='e'/><BaseURL>u</BaseURL>"
              "<Period><Period/><EssentialProperty/><AdaptationSet><AdaptationSet/><Preselection/><ContentProtection "
              "xmlns:d='u' d:default_KID='k'><ContentProtection/><d:laurl licenseUrl='l'/><cenc:pssh>q</cenc:pssh>"
              "<cenc:pssh> </cenc:pssh><laurl/>"
              "</ContentProtection></AdaptationSet></Period></MPD>"));
    const SMPDInfo& info = *m_parser.GetMPDInfo();
    EXPECT_EQ(Join(info.dynamic, info.minBufferTime.has_value()), "0|0");
    EXPECT_EQ(Logged("[CMPD] minBufferTime[2s] is no time"), 1);
    EXPECT_EQ(Join(info.periods.size(), info.essentialProperties.size(), info.baseUrls.size()), "1|1|1");
    ASSERT_EQ(info.periods[0].adaptationSets.size(), 1u);
    const SMPDAdaptationSet& set = info.periods[0].adaptationSets[0];
    ASSERT_EQ(Join(set.contentProtections.size(), set.representations.empty()), "1|1");
    EXPECT_STREQ(set.contentProtections[0].defaultKid, "k");
    EXPECT_EQ(set.contentProtections[0].licenceUrls.size() + set.contentProtections[0].pssh.size(), 2u);
    EXPECT_STREQ(set.contentProtections[0].licenceUrls.at(0), "l");
    EXPECT_STREQ(set.contentProtections[0].pssh.at(0), "q");
    EXPECT_EQ(m_ratings, (CMPD::TRatings{{"", "r"}}));

    for (const char* text :
         {"<EventStream/>", "<Preselection/>", "<SegmentTemplate/>", "<SegmentList/>", "<ContentProtection/>",
          "<laurl>l</laurl>", "<Period><UTCTiming/></Period>", "<Period><SegmentTimeline/></Period>",
          "<Period><AdaptationSet><EventStream/></AdaptationSet></Period>",
          "<Period><AdaptationSet><Representation><Representation/></Representation></AdaptationSet></Period>",
          "<Period><Preselection><EventStream/></Preselection></Period>",
          "<Period><Preselection><AdaptationSet/></Preselection></Period>",
          "<Period><Preselection><Preselection/></Preselection></Period>",
          "<Period><SegmentTemplate><Initialization/></SegmentTemplate></Period>",
          "<Period><SegmentTemplate><SegmentList/></SegmentTemplate></Period>",
          "<Period><SegmentList><SegmentTemplate/></SegmentList></Period>",
          "<Period><SegmentList><SegmentTimeline><SegmentTimeline/></SegmentTimeline></SegmentList></Period>"}) {
        s_log.clear();
        EXPECT_TRUE(Parse("<MPD>" + std::string(text) + "</MPD>")) << text;
        EXPECT_EQ(Logged(" is out of place"), 1) << text;
    }
    m_reports = 0;
    for (const char* text : {"<Period/>", "<MPD>", "<MPD><Period></MPD>"}) {
        EXPECT_FALSE(Parse(text)) << text;
        EXPECT_EQ(m_parser.GetMPDInfo(), nullptr);
    }
    EXPECT_EQ(m_reports, 0);
    CMPD fresh;
    EXPECT_EQ(Each({fresh.SetCallback(nullptr), fresh.Parse("<MPD/>", 6, false)}), "00");
    EXPECT_EQ(fresh.GetMPDInfo(), nullptr);
    EXPECT_EQ(TakeAssertions(), "m; m != nullptr; m");
}

}  // namespace
