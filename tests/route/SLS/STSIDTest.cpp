#include "route/SLS/STSID.h"

#include "route/SLS/ContentInfo.h"
#include "route/SLS/EFDT.h"
#include "route/SLS/LS.h"
#include "route/SLS/MediaInfo.h"
#include "route/SLS/RS.h"
#include "route/SLS/SrcFlow.h"
#include "support/ParserTest.h"
#include "support/Show.h"

namespace {

class STSIDTest : public TParserTest<CSTSID> {
  protected:
    void SetUp() override
    {
        TParserTest::SetUp();
        const CLS::SCallback callback = {this, OnEfdt};
        ASSERT_TRUE(m_parser.SetCallback(&callback));
    }

    /// What the getters give of a session, its first rating included; "-" for what they do not give.
    std::string Session(int i, int j) const
    {
        unsigned int tsi = 7;
        std::string id = "untouched", rating = "-";
        m_parser.GetTSI(i, j, &tsi);
        m_parser.GetContentId(i, j, id);
        m_parser.GetContentRating(i, j, 0, rating);
        return Join(tsi, id, m_parser.GetRT(i, j), m_parser.GetAEAId(i, j), m_parser.NumberOfContentRatings(i, j),
                    rating);
    }

    static void OnEfdt(void* context, unsigned int tsi, SEFDTInfo* info)
    {
        auto* self = static_cast<STSIDTest*>(context);
        self->m_tsis.push_back(tsi);
        self->m_efdts.push_back(info);
    }

    std::vector<unsigned int> m_tsis;
    std::vector<SEFDTInfo*> m_efdts;
};

TEST_F(STSIDTest, Sessions)
{
    ASSERT_TRUE(Parse(ReadData("route/gpac-a1-single-service-sls3-stsid.xml")));
    ASSERT_EQ(Join(m_parser.NumberOfRouteSessions(), m_parser.NumberOfLctSessions(0)), "1|2");
    EXPECT_EQ(m_parser.DIpAddr(0), 0xE1010100u);
    EXPECT_EQ(m_parser.SIpAddr(0), 0xC000020Au);
    EXPECT_EQ(Join(m_parser.DPort(0), m_parser.BsId(0)), "6000|65535");
    EXPECT_EQ(Session(0, 0) + " " + Session(0, 1), "10|1|1||0|- 20|2|1||0|-");
    EXPECT_EQ(m_tsis, (std::vector<unsigned int>{10, 20}));
    EXPECT_EQ(m_parser.GetEFDTInfo(0, 1), m_efdts[1]);
    EXPECT_EQ(m_efdts[0]->fdtGlobal->files.Size(), 1);
    const auto* ls =
        static_cast<const CLS*>(static_cast<const CRS*>(m_parser.State()->routeSessions.Data(0))->State()->ls.Data(0));
    EXPECT_EQ(Join(ls->State()->bw, ls->State()->startTime, ls->State()->givenStartTime != nullptr), "100|-1|0");
    const CSrcFlow::SSrcFlow& flow = *ls->State()->srcFlows.Get(0)->State();
    ASSERT_EQ(flow.payloads.size(), 1u);
    EXPECT_EQ(Join(flow.payloads[0].codePoint, *flow.payloads[0].order, flow.payloads[0].srcFecPayloadId), "128|1|-");
    EXPECT_EQ(Logged("[CRS::m_ProcessParseRS] dest ip = [3774939392]"), 1);
    CLS unread;
    EXPECT_EQ(Each({unread.Create(), unread.TSI() == 0}), "11");
    unread.Destroy();
}

TEST_F(STSIDTest, DefaultsAndQuirks)
{
    ASSERT_TRUE(Parse(
        "<Any><RS bsid='7' sIpAddr='x' dport='4000'><LS/>"
        "<LS tsi='1' bw='5' startTime='1970-01-02T00:00:00Z'><SrcFlow rt='True'><ContentInfo> "
        "a<b>b</b></ContentInfo></SrcFlow></LS>"
        "<LS tsi='2'><SrcFlow rt='true' minBuffSize='9'><ContentInfo>text<AEAMedia AEAId='x'/><AEAMedia/>"
        "<MediaInfo startUp='true' lang='ko' contentType='Audio' repId='r'><ContentRating value='v' schemeIdUri='s'/>"
        "<ContentRating/></MediaInfo></ContentInfo></SrcFlow></LS>"
        "<LS tsi='3'><SrcFlow rt='1'><ContentInfo>t<MediaInfo contentType='subtitles'/></ContentInfo></SrcFlow></LS>"
        "</RS><RS dport='1' dPort='2'/><RS/><rs/></Any>"));
    ASSERT_EQ(Join(m_parser.NumberOfRouteSessions(), m_parser.NumberOfLctSessions(0)), "3|4");
    EXPECT_EQ(m_parser.DPort(0) * 10 + m_parser.DPort(1), 40002);
    EXPECT_EQ(m_parser.DPort(2), 65535);
    EXPECT_EQ(Join(m_parser.BsId(0), m_parser.SIpAddr(0), m_parser.DIpAddr(0)), "65535|4294967295|4294967295");
    EXPECT_EQ(Join(m_parser.State()->routeSessions.Get(0)->Given()->bsid,
                   m_parser.State()->routeSessions.Get(1)->Given()->bsid, CRS().Given() == nullptr),
              "7|-|1");
    // Without a source flow; with it; and with a representation's id, though it is empty.
    EXPECT_EQ(Session(0, 0), "4294967295||0||0|-");
    EXPECT_FALSE(m_parser.GetEFDTInfo(0, 0));
    EXPECT_EQ(Session(0, 1), "1| ab|0||0|-");
    EXPECT_EQ(Session(0, 2), "2|r|1|x|2|v");
    EXPECT_EQ(Session(0, 3), "3||0||0|-");
    std::string text = "untouched";
    EXPECT_EQ(Join(m_parser.GetContentRating(0, 2, 1, text), text), "1|");
    EXPECT_FALSE(m_parser.GetContentRating(0, 2, 2, text));
    EXPECT_EQ(Logged("[CMediaInfo::GetContentRating] ContentRating index:2 not found."), 1);
    EXPECT_EQ(Logged("[CMediaInfo::GetContentRating] No ContentRating Information."), 1);
    EXPECT_EQ(Logged("[CMediaInfo::Dump] contentType[0] repId[r]"), 1);
    EXPECT_EQ(Logged("[CMediaInfo::Dump] contentType[3] repId[]"), 1);
    EXPECT_EQ(Logged("[CLS::m_ProcessParseLS] tsi[-1] maxBw[-1]"), 1);
    EXPECT_TRUE(m_efdts.empty());

    unsigned int tsi = 0;
    EXPECT_FALSE(m_parser.GetTSI(0, 4, &tsi));  // told by the result, not asserted
    EXPECT_EQ(TakeAssertions(), "");
    EXPECT_EQ(Join(m_parser.GetRT(0, 4), m_parser.DPort(3), m_parser.NumberOfLctSessions(-1)), "0|0|0");
    text = "held";
    EXPECT_EQ(Join(m_parser.GetContentId(3, 0, text), text), "0|");
    EXPECT_FALSE(TakeAssertions().empty());
}

TEST_F(STSIDTest, TimesInLocalTimeHaveAMost)
{
    std::string sessions;
    for (int i = 0; i < 2049; ++i) {
        sessions += "<LS startTime='2027-01-02T00:00:00Z' endTime='2027-01-02T00:00:01Z'/>";
    }
    for (int parse = 1; parse <= 2; ++parse) {  // each counts its own
        ASSERT_TRUE(Parse("<S-TSID><RS>" + sessions + "</RS></S-TSID>"));
        const CCPtrArray& held = static_cast<const CRS*>(m_parser.State()->routeSessions.Last())->State()->ls;
        const CLS::SLS& before = *static_cast<const CLS*>(held.Data(2047))->State();
        const CLS::SLS& last = *static_cast<const CLS*>(held.Data(2048))->State();
        EXPECT_EQ(before.endTime - before.startTime, 1);
        EXPECT_EQ(Join(last.startTime, last.endTime, last.givenEndTime->text), "-1|-1|2027-01-02T00:00:01Z");
        EXPECT_EQ(Logged("more than 4096 dates in local time: the others are left out"), parse);
    }
}

TEST_F(STSIDTest, WhatIsGivenAndWhatIsNot)
{
    ASSERT_TRUE(
        Parse("<S-TSID><RS><LS startTime='2027-07-01T12:00:00+02:00' endTime='soon'><SrcFlow rt='1'>"
              "<Payload codePoint='0' formatId='300' frag='x' order='false' srcFecPayloadId='1'/><Payload/>"
              "<ContentInfo><MediaInfo startUp='false'/></ContentInfo></SrcFlow>"
              "<SrcFlow><ContentInfo><MediaInfo/></ContentInfo></SrcFlow></LS></RS></S-TSID>"));
    const CLS::SLS& ls = *m_parser.State()->routeSessions.Get(0)->State()->ls.Get(0)->State();
    EXPECT_EQ(ls.givenStartTime->seconds, 1814436000);
    EXPECT_EQ(Join(ls.givenEndTime->text, ls.givenEndTime->seconds), "soon|-");
    const CSrcFlow::SSrcFlow& flow = *ls.srcFlows.Get(0)->State();
    EXPECT_EQ(Join(*flow.givenRt, flow.rt), "1|0");
    ASSERT_EQ(flow.payloads.size(), 2u);
    const CSrcFlow::SPayload& payload = flow.payloads[0];
    EXPECT_EQ(Join(payload.codePoint, payload.formatId, payload.frag, payload.srcFecPayloadId), "0|300|-|1");
    EXPECT_EQ(Join(payload.order.has_value(), *payload.order, flow.payloads[1].order.has_value()), "1|0|0");
    EXPECT_EQ(flow.contentInfo->State()->mediaInfo->State()->givenStartUp, false);
    s_log.clear();
    flow.contentInfo->State()->mediaInfo->Dump();
    EXPECT_EQ(Logged("[CMediaInfo::Dump] contentType["), 1);
    const CSrcFlow::SSrcFlow& silent = *ls.srcFlows.Get(1)->State();
    EXPECT_EQ(
        Join(silent.givenRt, silent.payloads.empty(), silent.contentInfo->State()->mediaInfo->State()->givenStartUp),
        "-|1|-");
}

TEST_F(STSIDTest, EveryReportedEfdtLivesUntilDestroy)
{
    ASSERT_TRUE(
        Parse("<S-TSID><RS><LS tsi='8'><SrcFlow><EFDT tsi='1'/><EFDT tsi='2'/></SrcFlow>"
              "<SrcFlow><ContentInfo>c</ContentInfo><EFDT tsi='3'/></SrcFlow></LS></RS></S-TSID>"));
    ASSERT_EQ(m_tsis, (std::vector<unsigned int>{8, 8, 8}));
    EXPECT_EQ(Join(m_efdts[0]->tsi, m_efdts[1]->tsi), "1|2");
    EXPECT_EQ(m_parser.GetEFDTInfo(0, 0), m_efdts[2]);
    EXPECT_EQ(m_efdts[2]->tsi, 3);
    EXPECT_EQ(Session(0, 0).substr(0, 4), "8|c|");
    EXPECT_EQ(Each({m_parser.GetTSI(0, 0, nullptr), m_parser.Create()}), "00");
    EXPECT_EQ(TakeAssertions(), "tsi; !m");

    m_parser.SetCallback(nullptr);
    EXPECT_FALSE(Parse("<S-TSID><RS>"));
    ASSERT_TRUE(Parse("<S-TSID><RS><LS><SrcFlow><EFDT/></SrcFlow></LS></RS></S-TSID>"));
    EXPECT_EQ(Join(m_tsis.size(), m_parser.NumberOfRouteSessions()), "3|2");
}

}  // namespace
