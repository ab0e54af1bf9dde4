#include "lls/ParseSystemTime.h"

#include "support/ParserTest.h"
#include "support/Show.h"
#include "support/Tables.h"

namespace {

class ParseSystemTimeTest : public TParserTest<CParseSystemTime, 7> {
  protected:
    void SetUp() override
    {
        TParserTest::SetUp();
        ASSERT_EQ(Each({m_parser.Start(this), m_parser.Stop()}), "11");
    }

    /// All values after a table of these attributes.
    std::string After(const std::string& attributes)
    {
        EXPECT_TRUE(FeedXml(m_parser, "<SystemTime " + attributes + "/>"));
        return State();
    }

    std::string State() const
    {
        const CParseSystemTime::SSystemTime& t = *m_parser.State();
        EXPECT_EQ(Join(t.currentUtcOffset, t.utcLocalOffset, t.dsStatus),
                  Join(m_parser.CurrUtcOffset(), m_parser.UtcLocalOffset(), m_parser.DsStatus()));
        char text[128];
        std::snprintf(text, sizeof text, "%d ptp %d leap %d%d local %d ds %d day %d hour %d", t.currentUtcOffset,
                      t.ptpPrepend, t.leap59, t.leap61, t.utcLocalOffset, t.dsStatus, t.dsDayOfMonth, t.dsHour);
        return text;
    }
};

TEST_F(ParseSystemTimeTest, WhatEachTableLeaves)
{
    EXPECT_EQ(State(), "0 ptp 0 leap 00 local 0 ds 0 day 0 hour 0");
    EXPECT_EQ(m_parser.State()->groupId, 7);
    static const struct {
        const char *attributes, *state;
    } k_tables[] = {
        {"currentUtcOffset='37' ptpPrepend='65537' leap59='true' utcLocalOffset='-PT5H' dsDayOfMonth='31' dsHour='24'",
         "37 ptp 1 leap 10 local -18000 ds 0 day 31 hour 24"},
        {"leap59='false' dsDayOfMonth='32' dsHour='25'", "0 ptp 0 leap 10 local -18000 ds 0 day 31 hour 24"},
        {"leap61='trueish' dsStatus='true' dsDayOfMonth='0' dsHour='-1' utcLocalOffset='PT30M'",
         "0 ptp 0 leap 11 local 1800 ds 1 day 31 hour 24"},
        {"leap61='TRUE' dsStatus='1' dsDayOfMonth='1'", "0 ptp 0 leap 11 local 1800 ds 1 day 1 hour 0"},
    };
    for (const auto& table : k_tables) {
        EXPECT_EQ(After(table.attributes), table.state) << table.attributes;
    }
    EXPECT_EQ(Logged("[CParseSystemTime::Parse] utcLocalOffset.String():-PT5H"), 1);
    EXPECT_EQ(Logged("[CParseSystemTime::Parse] CurrentUtcOffset:37 utcLocalOffset:-18000"), 1);
}

template <class T>
std::string Text(const std::optional<T>& value)
{
    return value ? std::to_string(*value) : "-";
}

// What one table gives is neither folded nor kept for the next.
TEST_F(ParseSystemTimeTest, WhatEachTableGives)
{
    static const struct {
        const char *attributes, *given;
    } k_tables[] = {
        {"", "- ptp - leap -- local - ds - day - hour -"},
        {"currentUtcOffset='0' ptpPrepend='0' leap59='false' leap61='0' utcLocalOffset='PT0S' dsStatus='false' "
         "dsDayOfMonth='0' dsHour='0'",
         "0 ptp 0 leap 00 local PT0S=0.000000 ds 0 day 0 hour 0"},
        {"currentUtcOffset=' +37 ' ptpPrepend='65537' leap59='1' leap61=' true ' utcLocalOffset='P1D' dsStatus='1' "
         "dsDayOfMonth='32' dsHour='-1'",
         "37 ptp 65537 leap 11 local P1D=86400.000000 ds 1 day 32 hour -1"},
        {"currentUtcOffset='37s' ptpPrepend='99999999999999999999' leap59='trueish' leap61='TRUE' utcLocalOffset='5' "
         "dsStatus='' dsDayOfMonth='' dsHour='+-1'",
         "- ptp - leap -- local 5=- ds - day - hour -"},
    };
    const auto given = [this] {
        const CParseSystemTime::SGiven& g = *m_parser.Given();
        const std::string local =
            g.utcLocalOffset ? g.utcLocalOffset->text + "=" + Text(g.utcLocalOffset->seconds) : "-";
        return Text(g.currentUtcOffset) + " ptp " + Text(g.ptpPrepend) + " leap " + Text(g.leap59) + Text(g.leap61) +
               " local " + local + " ds " + Text(g.dsStatus) + " day " + Text(g.dsDayOfMonth) + " hour " +
               Text(g.dsHour);
    };
    for (const auto& table : k_tables) {
        After(table.attributes);
        EXPECT_EQ(given(), table.given);
    }
    FeedXml(m_parser, "<SLT currentUtcOffset='1'/>");
    EXPECT_EQ(given(), k_tables[3].given);
    EXPECT_EQ(CParseSystemTime().Given(), nullptr);
}

TEST_F(ParseSystemTimeTest, FailuresChangeNothing)
{
    const std::string state = After("currentUtcOffset='37' dsHour='5'");
    FeedXml(m_parser, "<SLT currentUtcOffset='1'/>");
    FeedXml(m_parser, "<SystemTime currentUtcOffset='1'>");
    EXPECT_EQ(State(), state);
    EXPECT_EQ(Logged(", m_ProcessParseSystemTime(root)"), 1);
    EXPECT_EQ(Logged(", m->xml.Create((const char*)buffer, size, t_DecompressLLS())"), 1);
    EXPECT_EQ(
        ChangingPrefixes(m_parser, "<SystemTime dsStatus='true' currentUtcOffset='3'/>", [this] { return State(); }),
        0);

    CParseSystemTime other;
    EXPECT_EQ(other.State(), nullptr);
    EXPECT_EQ(Join(other.DsStatus(), other.CurrUtcOffset(), other.Stop()), "0|0|0");
    EXPECT_TRUE(FeedXml(other, "<SystemTime/>"));
    EXPECT_FALSE(m_parser.Create(1));
    EXPECT_EQ(s_assertions.back().file, "src/lls/ParseSystemTime");
    EXPECT_EQ(TakeAssertions(), "m; m; m; m; !m");
}

TEST_F(ParseSystemTimeTest, RealTables)
{
    EXPECT_TRUE(Feed(m_parser, ReadData("lls/gpac-a1-single-service-systemtime.bin")));
    EXPECT_FALSE(Feed(m_parser, ReadData("lls/gpac-a1-single-service-systemtime.bin")));
    EXPECT_EQ(State(), "37 ptp 0 leap 00 local 68400 ds 0 day 0 hour 0");
    m_parser.SkipCheckVersion(3, 0, true);  // the next one repeats its header
    EXPECT_TRUE(Feed(m_parser, ReadData("lls/gpac-a2-multi-service-systemtime.bin")));
    EXPECT_EQ(m_parser.UtcLocalOffset(), 19800);
}

}  // namespace
