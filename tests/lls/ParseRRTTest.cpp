#include "lls/ParseRRT.h"

#include "lls/RRTMap.h"
#include "support/ParserTest.h"
#include "support/Show.h"
#include "support/Tables.h"

namespace {

class ParseRRTTest : public TParserTest<CParseRRT> {
  protected:
    void SetUp() override
    {
        TParserTest::SetUp();
        const CParseRRT::SCallback callback = {&m_results,
                                               [](void* user, int result) { *static_cast<int*>(user) += result; }};
        ASSERT_EQ(Each({m_parser.SetCallback(&callback), m_parser.Start(this), m_parser.Stop()}), "111");
    }

    int m_results = 0;
};

const char k_table[] =
    "<RatingRegionTables><RatingRegionTable regionIdentifier='1'><RegionIdText lang='ko'>first</RegionIdText>"
    "<Other/><RegionIdText>US</RegionIdText>"
    "<Dimension dimensionLevels='2' dimensionGraduated='true'><DimensionTitle>TV</DimensionTitle>"
    "<Rating "
    "ratingValue='1'><RatingValueAbbrev>G</RatingValueAbbrev><RatingValueString>TV-G</RatingValueString></Rating>"
    "<Rating ratingValue='-2'><RatingValueString lang='fr'>TV-MA</RatingValueString></Rating></Dimension>"
    "<Dimension dimensionGraduated='true '/></RatingRegionTable>"
    "<RatingRegionTable/></RatingRegionTables>";

TEST_F(ParseRRTTest, RegionsDimensionsAndRatings)
{
    ASSERT_TRUE(FeedXml(m_parser, k_table));
    EXPECT_EQ(m_results, 1);
    ASSERT_EQ(m_parser.numOfRatingRegionTable(), 2u);
    unsigned int number = 9;
    bool graduated = false;
    std::string text;
    EXPECT_EQ(Join(m_parser.GetRegionIdentifier(0, number), number), "1|1");
    EXPECT_EQ(Join(m_parser.GetRegionIdentifier(1, number), number), "1|0");
    EXPECT_EQ(Join(m_parser.GetRegionIdText(0, text), text), "1|US");
    EXPECT_EQ(m_parser.numOfDimension(0), 2u);
    EXPECT_EQ(m_parser.numOfDimension(1), 0u);
    EXPECT_EQ(Join(m_parser.GetDimensionLevels(0, 0, number), number), "1|2");
    EXPECT_EQ(Join(m_parser.GetDimensionGraduated(0, 0, graduated), graduated), "1|1");
    EXPECT_EQ(Join(m_parser.GetDimensionGraduated(0, 1, graduated), graduated), "1|0");
    EXPECT_EQ(Join(m_parser.GetDimensionTitle(0, 0, text), text), "1|TV");
    EXPECT_EQ(m_parser.numOfRating(0, 0), 2u);
    EXPECT_EQ(m_parser.numOfRating(0, 1), 0u);
    EXPECT_EQ(Join(m_parser.GetRatingValue(0, 0, 1, number), number), Join(1, 0xFFFFFFFE));
    EXPECT_EQ(Join(m_parser.GetRatingValueAbbrev(0, 0, 0, text), text), "1|G");
    EXPECT_EQ(Join(m_parser.GetRatingValueString(0, 0, 1, text), text), "1|TV-MA");

    EXPECT_EQ(m_parser.GetRegion(0)->text.lang, "en");  // of the last text, not of the one that said "ko"
    EXPECT_EQ(m_parser.GetRegion(0)->dimensions[0].ratings[1].text.lang, "fr");
    EXPECT_EQ(m_parser.GetRegion(2), nullptr);
    EXPECT_EQ(Join(m_parser.Given(0, 0)->dimensionGraduated, m_parser.Given(0, 1)->dimensionGraduated), "1|1");
    EXPECT_EQ(Join(m_parser.Given(0, 2) == nullptr, m_parser.Given(1, 0) == nullptr, m_parser.Given(2, 0) == nullptr),
              "1|1|1");

    // The next table adds its regions.
    ASSERT_TRUE(
        FeedXml(m_parser, "<RatingRegionTables><RatingRegionTable regionIdentifier='5'/></RatingRegionTables>"));
    EXPECT_EQ(m_parser.numOfRatingRegionTable(), 3u);
    EXPECT_EQ(Join(m_parser.GetRegionIdentifier(2, number), number), "1|5");
    EXPECT_TRUE(m_parser.SetCallback(nullptr));
    EXPECT_EQ(ChangingPrefixes(m_parser, k_table, [this] { return m_parser.numOfRatingRegionTable(); }), 0);
    EXPECT_EQ(m_results, 2);
}

TEST_F(ParseRRTTest, BadIndicesSayWhichLevelFailed)
{
    ASSERT_TRUE(FeedXml(m_parser, k_table));
    unsigned int number = 77;
    std::string text = "kept";
    bool flag = true;
    EXPECT_EQ(
        Join(m_parser.GetRegionIdentifier(2, number), m_parser.GetRegionIdText(2, text), m_parser.numOfDimension(2)),
        "0|0|0");
    EXPECT_EQ(Logged("[CParseRRT::GetRegionIdentifier] index error rrt index[2] total[2] !!!"), 3);
    EXPECT_EQ(Join(m_parser.GetDimensionLevels(0, 5, number), m_parser.GetDimensionGraduated(0, 5, flag),
                   m_parser.numOfRating(0, 5)),
              "0|0|0");
    EXPECT_EQ(Logged("[CParseRRT::GetDimensionLevels] index error dimension index[5] total[2] !!!"), 3);
    EXPECT_EQ(Join(m_parser.GetRatingValue(0, 0, 2, number), m_parser.GetRatingValueString(0, 0, 2, text)), "0|0");
    EXPECT_EQ(Logged("[CParseRRT::GetDimensionLevels] index error rating index[2] total[2] !!!"), 2);
    // All-ones is an unchecked level, and still names nothing.
    EXPECT_EQ(
        Join(m_parser.GetDimensionLevels(0, 0xFFFFFFFF, number), m_parser.GetRatingValue(0, 0, 0xFFFFFFFF, number)),
        "0|0");
    EXPECT_EQ(TakeAssertions(), "index < list.size(); index < list.size()");
    EXPECT_EQ(Join(number, text, flag), "77|kept|1");
}

TEST_F(ParseRRTTest, MisplacedElementsAndBadRoot)
{
    ASSERT_TRUE(FeedXml(m_parser,
                        "<RatingRegionTables><RegionIdText>a</RegionIdText><Dimension/><Rating/><DimensionTitle/>"
                        "<RatingValueAbbrev/><RatingValueString/></RatingRegionTables>"));
    EXPECT_EQ(TakeAssertions(), "m->region; m->region; m->dimension; m->dimension; m->rating; m->rating");
    FeedXml(m_parser, "<RatingRegionTable/>");
    EXPECT_EQ(Logged(", m_ProcessParseRRT(root)"), 1);
    EXPECT_EQ(m_parser.numOfRatingRegionTable(), 0u);
    EXPECT_EQ(m_results, 1);
}

class RRTMapTest : public CRecorder {
  protected:
    static char* Text(const char* text) { return const_cast<char*>(text); }

    /// The abbreviation found, or "-".
    static std::string Rating(CRRTMap& map, unsigned int key, unsigned int dimension, const char* first,
                              const char* second)
    {
        std::string found = "-";
        const bool hit = map.GetProgramRating(
            key, dimension, Text(first), Text(second),
            [](void* user, char* text) { *static_cast<std::string*>(user) = text; }, &found);
        EXPECT_EQ(hit, found != "-");
        return found;
    }
};

TEST_F(RRTMapTest, RatingsAreFoundByDimensionAndBothTexts)
{
    CRRTMap map;
    CRRTMap second;
    ASSERT_EQ(Each({map.Create(), second.Create()}), "11");
    EXPECT_EQ(Each({map.Add(1, 10), map.Add(1, 99), map.SetRegionIdText(1, Text("en"), Text("US"))}), "111");
    for (unsigned int dimension = 0; dimension < 2; ++dimension) {
        EXPECT_EQ(Each({second.SetDimension(1, dimension, true), map.SetDimTitle(1, Text("en"), Text("title"))}), "11");
        for (unsigned int value = 0; value < 2; ++value) {
            const std::string name = std::to_string(dimension) + std::to_string(value);
            EXPECT_TRUE(map.SetRatingVal(1, value));
            EXPECT_TRUE(map.SetRatingValAbbrev(1, Text("en"), Text(("A" + name).c_str())));
            EXPECT_TRUE(map.SetRatingValAbbrev(1, Text("ko"), Text(("K" + name).c_str())));
            EXPECT_TRUE(map.SetRatingValStr(1, Text("en"), Text(("R" + name).c_str())));
            EXPECT_TRUE(map.SetRatingValStr(1, Text("ko"), Text(("S" + name).c_str())));
            EXPECT_TRUE(map.SetRatingValStr(1, Text("fr"), Text(("T" + name).c_str())));
        }
    }
    EXPECT_EQ(Rating(second, 1, 1, "en", "R11"), "A11");
    EXPECT_EQ(Rating(second, 1, 0, "ko", "S00"), "K00");
    // The store's own text, where it was, whatever joins the region later.
    char* texts[2] = {};
    for (char*& text : texts) {
        EXPECT_TRUE(map.GetProgramRating(
            1, 1, Text("en"), Text("R11"), [](void* user, char* found) { *static_cast<char**>(user) = found; }, &text));
        EXPECT_EQ(Each({map.SetRatingValAbbrev(1, Text("fr"), Text("F")), map.SetDimension(1, 9, true)}), "11");
        EXPECT_TRUE(map.SetRatingVal(1, 9));
    }
    EXPECT_EQ(texts[0], texts[1]);
    EXPECT_STREQ(texts[0], "A11");
    EXPECT_EQ(Rating(second, 1, 0, "en", "R11"), "-");
    EXPECT_EQ(Rating(second, 1, 1, "ko", "R11"), "-");
    EXPECT_EQ(Rating(second, 1, 2, "en", "R11"), "-");
    EXPECT_EQ(Rating(second, 1, 1, "fr", "T10"), "-");  // no third abbreviation
    EXPECT_EQ(TakeAssertions(), "abbreviation");
    EXPECT_EQ(Rating(second, 257, 1, "en", "R11"), "-");
    EXPECT_EQ(TakeAssertions(), "region");
    map.Destroy();
    EXPECT_EQ(Rating(second, 1, 1, "en", "R11"), "A11");
    EXPECT_TRUE(second.Remove(1));
    second.Destroy();
    ASSERT_TRUE(map.Create());
    EXPECT_FALSE(map.Remove(1));
    EXPECT_EQ(TakeAssertions(), "region");
    map.Destroy();
}

TEST_F(RRTMapTest, PreconditionsAreAsserted)
{
    CRRTMap map;
    ASSERT_TRUE(map.Create());
    EXPECT_EQ(Each({map.Create(), map.SetRegionIdText(3, Text("a"), Text("b")), map.SetDimension(3, 1, true)}), "000");
    EXPECT_EQ(TakeAssertions(), "!m; region; region");
    map.Add(3, 1);
    EXPECT_EQ(Each({map.SetDimTitle(3, Text("a"), Text("b")), map.SetRatingVal(3, 1),
                    map.SetRegionIdText(3, nullptr, Text("b"))}),
              "000");
    EXPECT_EQ(Logged("[CRRTMapST::SetRegionIdText] Fail to add RegionIdText"), 1);
    map.SetDimension(3, 1, true);
    EXPECT_EQ(Each({map.SetRatingValAbbrev(3, Text("a"), Text("b")), map.SetRatingValStr(3, Text("a"), Text("b"))}),
              "00");
    EXPECT_FALSE(map.GetProgramRating(3, 1, Text("a"), nullptr, nullptr, nullptr));
    EXPECT_EQ(TakeAssertions(), "dimension; dimension; first && second; rating; rating; first && second");
    map.Destroy();
}

}  // namespace
