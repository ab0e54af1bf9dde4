#include "route/SLS/STSID.h"

#include "route/SLS/ContentInfo.h"
#include "route/SLS/EFDT.h"
#include "route/SLS/MediaInfo.h"
#include "route/SLS/RS.h"
#include "route/SLS/SrcFlow.h"
#include "support/Recorder.h"

namespace {

class STSIDTest : public CRecorder {
  protected:
    void SetUp() override
    {
        CRecorder::SetUp();
        ASSERT_TRUE(m_stsid.Create());
        const CLS::SCallback callback = {this, OnEfdt};
        ASSERT_TRUE(m_stsid.SetCallback(&callback));
    }

    void TearDown() override
    {
        m_stsid.Destroy();
        CRecorder::TearDown();
    }

    bool Parse(const std::string& text)
    {
        const std::vector<unsigned char> block = Exact(text);
        return m_stsid.XMLBase::Parse(reinterpret_cast<const char*>(block.data()), static_cast<unsigned>(block.size()),
                                      false);
    }

    std::string ContentId(int i, int j) const
    {
        std::string id = "untouched";
        m_stsid.GetContentId(i, j, id);
        return id;
    }

    static void OnEfdt(void* context, unsigned int tsi, SEFDTInfo* info)
    {
        auto* self = static_cast<STSIDTest*>(context);
        self->m_tsis.push_back(tsi);
        self->m_efdts.push_back(info);
    }

    CSTSID m_stsid;
    std::vector<unsigned int> m_tsis;
    std::vector<SEFDTInfo*> m_efdts;
};

TEST_F(STSIDTest, Sessions)
{
    ASSERT_TRUE(Parse(ReadData("route/gpac-a1-single-service-sls3-stsid.xml")));
    ASSERT_TRUE(m_stsid.NumberOfRouteSessions() == 1 && m_stsid.NumberOfLctSessions(0) == 2);
    EXPECT_EQ(m_stsid.DIpAddr(0), 0xE1010100u);
    EXPECT_EQ(m_stsid.SIpAddr(0), 0xC000020Au);
    EXPECT_TRUE(m_stsid.DPort(0) == 6000 && m_stsid.BsId(0) == 65535);
    unsigned int tsi = 0;
    EXPECT_TRUE(m_stsid.GetTSI(0, 1, &tsi) && tsi == 20);
    EXPECT_EQ(ContentId(0, 0) + ContentId(0, 1), "12");
    EXPECT_TRUE(m_stsid.GetRT(0, 0));
    EXPECT_EQ(m_tsis, (std::vector<unsigned int>{10, 20}));
    EXPECT_EQ(m_stsid.GetEFDTInfo(0, 1), m_efdts[1]);
    EXPECT_EQ(m_efdts[0]->fdtGlobal->files.Size(), 1);
    const auto* ls =
        static_cast<const CLS*>(static_cast<const CRS*>(m_stsid.State()->routeSessions.Data(0))->State()->ls.Data(0));
    EXPECT_TRUE(ls->State()->bw == 100 && ls->State()->startTime == -1 && !ls->State()->givenStartTime);
    const CSrcFlow::SSrcFlow& flow = *ls->State()->srcFlows.Get(0)->State();
    ASSERT_EQ(flow.payloads.size(), 1u);
    EXPECT_TRUE(flow.payloads[0].codePoint == 128 && *flow.payloads[0].order && !flow.payloads[0].srcFecPayloadId);
    EXPECT_EQ(Logged("[CRS::m_ProcessParseRS] dest ip = [3774939392]"), 1);
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
    ASSERT_TRUE(m_stsid.NumberOfRouteSessions() == 3 && m_stsid.NumberOfLctSessions(0) == 4);
    EXPECT_EQ(m_stsid.DPort(0) * 10 + m_stsid.DPort(1), 40002);
    EXPECT_EQ(m_stsid.DPort(2), 65535);
    EXPECT_TRUE(m_stsid.BsId(0) == 65535 && m_stsid.SIpAddr(0) == 0xFFFFFFFF && m_stsid.DIpAddr(0) == 0xFFFFFFFF);
    unsigned int tsi = 0;
    EXPECT_TRUE(m_stsid.GetTSI(0, 0, &tsi) && tsi == 0xFFFFFFFF);
    // Without a source flow.
    std::string text = "untouched";
    EXPECT_FALSE(m_stsid.GetRT(0, 0) || m_stsid.GetContentRating(0, 0, 0, text));
    EXPECT_EQ(text, "untouched");
    EXPECT_FALSE(m_stsid.GetContentId(0, 0, text));
    EXPECT_TRUE(text.empty() && m_stsid.GetAEAId(0, 0).empty() && !m_stsid.GetEFDTInfo(0, 0));
    EXPECT_EQ(m_stsid.NumberOfContentRatings(0, 0), 0);
    EXPECT_EQ(ContentId(0, 1), " ab");
    EXPECT_EQ(ContentId(0, 2), "r");
    EXPECT_EQ(ContentId(0, 3), "");  // the representation's, though it is empty
    EXPECT_TRUE(!m_stsid.GetRT(0, 1) && m_stsid.GetRT(0, 2) && !m_stsid.GetRT(0, 3));
    EXPECT_EQ(m_stsid.GetAEAId(0, 2), "x");
    EXPECT_EQ(m_stsid.NumberOfContentRatings(0, 2), 2);
    EXPECT_TRUE(m_stsid.GetContentRating(0, 2, 0, text) && text == "v");
    EXPECT_TRUE(m_stsid.GetContentRating(0, 2, 1, text) && text.empty());
    EXPECT_FALSE(m_stsid.GetContentRating(0, 2, 2, text));
    EXPECT_FALSE(m_stsid.GetContentRating(0, 3, 0, text));
    EXPECT_EQ(Logged("[CMediaInfo::GetContentRating] ContentRating index:2 not found."), 1);
    EXPECT_EQ(Logged("[CMediaInfo::GetContentRating] No ContentRating Information."), 1);
    EXPECT_EQ(Logged("[CMediaInfo::Dump] contentType[0] repId[r]"), 1);
    EXPECT_EQ(Logged("[CMediaInfo::Dump] contentType[3] repId[]"), 1);
    EXPECT_EQ(Logged("[CLS::m_ProcessParseLS] tsi[-1] maxBw[-1]"), 1);
    EXPECT_TRUE(m_efdts.empty());

    EXPECT_FALSE(m_stsid.GetTSI(0, 4, &tsi));  // told by the result, not asserted
    EXPECT_EQ(TakeAssertions(), "");
    EXPECT_TRUE(!m_stsid.GetRT(0, 4) && m_stsid.DPort(3) == 0 && m_stsid.NumberOfLctSessions(-1) == 0);
    text = "held";
    EXPECT_TRUE(!m_stsid.GetContentId(3, 0, text) && text.empty());
    EXPECT_FALSE(TakeAssertions().empty());
}

TEST_F(STSIDTest, WhatIsGivenAndWhatIsNot)
{
    ASSERT_TRUE(
        Parse("<S-TSID><RS><LS startTime='2027-07-01T12:00:00+02:00' endTime='soon'><SrcFlow rt='1'>"
              "<Payload codePoint='0' formatId='300' frag='x' order='false' srcFecPayloadId='1'/><Payload/>"
              "<ContentInfo><MediaInfo startUp='false'/></ContentInfo></SrcFlow>"
              "<SrcFlow><ContentInfo><MediaInfo/></ContentInfo></SrcFlow></LS></RS></S-TSID>"));
    const CLS::SLS& ls = *m_stsid.State()->routeSessions.Get(0)->State()->ls.Get(0)->State();
    EXPECT_EQ(ls.givenStartTime->seconds, 1814436000);
    EXPECT_TRUE(ls.givenEndTime->text == "soon" && !ls.givenEndTime->seconds);
    const CSrcFlow::SSrcFlow& flow = *ls.srcFlows.Get(0)->State();
    EXPECT_TRUE(*flow.givenRt && !flow.rt);
    ASSERT_EQ(flow.payloads.size(), 2u);
    const CSrcFlow::SPayload& payload = flow.payloads[0];
    EXPECT_TRUE(payload.codePoint == 0 && payload.formatId == 300 && !payload.frag && payload.srcFecPayloadId == 1);
    EXPECT_TRUE(payload.order.has_value() && !*payload.order && !flow.payloads[1].order.has_value());
    EXPECT_EQ(flow.contentInfo->State()->mediaInfo->State()->givenStartUp, false);
    const CSrcFlow::SSrcFlow& silent = *ls.srcFlows.Get(1)->State();
    EXPECT_TRUE(!silent.givenRt && silent.payloads.empty() &&
                !silent.contentInfo->State()->mediaInfo->State()->givenStartUp);
}

TEST_F(STSIDTest, EveryReportedEfdtLivesUntilDestroy)
{
    ASSERT_TRUE(
        Parse("<S-TSID><RS><LS tsi='8'><SrcFlow><EFDT tsi='1'/><EFDT tsi='2'/></SrcFlow>"
              "<SrcFlow><ContentInfo>c</ContentInfo><EFDT tsi='3'/></SrcFlow></LS></RS></S-TSID>"));
    ASSERT_EQ(m_tsis, (std::vector<unsigned int>{8, 8, 8}));
    EXPECT_TRUE(m_efdts[0]->tsi == 1 && m_efdts[1]->tsi == 2);
    EXPECT_TRUE(m_stsid.GetEFDTInfo(0, 0) == m_efdts[2] && m_efdts[2]->tsi == 3);
    EXPECT_EQ(ContentId(0, 0), "c");

    m_stsid.SetCallback(nullptr);
    EXPECT_FALSE(Parse("<S-TSID><RS>"));
    ASSERT_TRUE(Parse("<S-TSID><RS><LS><SrcFlow><EFDT/></SrcFlow></LS></RS></S-TSID>"));
    EXPECT_TRUE(m_tsis.size() == 3 && m_stsid.NumberOfRouteSessions() == 2);
}

TEST_F(STSIDTest, UseWithoutCreate)
{
    CSTSID fresh;
    const CSrcFlow flow;
    const CMediaInfo info;
    EXPECT_TRUE(!fresh.SetCallback(nullptr) && fresh.NumberOfRouteSessions() == 0 && !fresh.GetEFDTInfo(0, 0));
    EXPECT_TRUE(!flow.GetRT() && !flow.GetEFDTInfo() && info.NumberOfContentRating() == 0 && !fresh.State());
    fresh.Destroy();
    EXPECT_FALSE(m_stsid.Create());
    EXPECT_EQ(TakeAssertions(), "m; m; m; m; m; m; m; !m");
}

}  // namespace
