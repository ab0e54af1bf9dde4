#include <memory>

#include "common/ChannelMap.h"
#include "common/RSAT.h"
#include "common/ServiceLinkage.h"
#include "common/Version.h"
#include "common/XML.h"
#include "entries/Entries.h"
#include "esg/ESGFragmentMapST.h"
#include "lls/LLSSMTParser.h"
#include "lls/ParseAEAT.h"
#include "lls/ParseCDT.h"
#include "lls/ParseOnscreenNoti.h"
#include "lls/ParseRRT.h"
#include "lls/ParseSLT.h"
#include "lls/RRTMap.h"
#include "mmt/desc/MMTContentAdvisoryRatings.h"
#include "mmt/desc/MMTUsbd.h"
#include "route/SLS/ContentInfo.h"
#include "route/SLS/ContentRating.h"
#include "route/SLS/LS.h"
#include "route/SLS/MediaInfo.h"
#include "route/SLS/ROUTEUsbd.h"
#include "route/SLS/STSID.h"
#include "route/SLS/ServiceName.h"
#include "route/SLS/SrcFlow.h"
#include "support/Recorder.h"
#include "support/Show.h"

namespace {

/// What is asked of an object that was never created: each question is asserted once and answered with nothing.
class NotCreatedTest : public CRecorder {
  protected:
    template <class... TAnswers>
    void ExpectNothing(const TAnswers&... answers)
    {
        std::string wanted;
        for (std::size_t i = 0; i < sizeof...(answers); ++i) {
            wanted += i == 0 ? "m" : "; m";
        }
        EXPECT_EQ(TakeAssertions(), wanted);
        EXPECT_EQ(((answers == TAnswers() ? 0 : 1) + ...), 0);
        EXPECT_EQ(m_text, "kept");
        EXPECT_EQ(m_number + m_wide + m_short, 21u);
    }

    std::string m_text = "kept";
    unsigned int m_number = 7;
    std::uint64_t m_wide = 7;
    unsigned short m_short = 7;
    unsigned char m_byte = 7;
    int m_int = 7;
};

TEST_F(NotCreatedTest, Documents)
{
    const CRSAT rsat;
    SRSATServiceInfo service;
    SRSATUpdateInfo update;
    ExpectNothing(rsat.GetTimestamp(m_text), rsat.GetRSATInetURL(m_text), rsat.NumOfService(),
                  rsat.GetServiceInfo(0, &service), rsat.NumOfUpdate(0), rsat.GetUpdateInfo(0, 0, &update));
    const CServiceLinkage linkage;
    ExpectNothing(linkage.LinkServiceId(), linkage.ActivationTime(), linkage.DeActivationTime(),
                  linkage.ServiceCategory(), linkage.LinkageType(), (linkage.Dump(), 0));
    const CMMTUsbd usbd;
    char* language = nullptr;
    std::vector<std::string> ratings;
    ExpectNothing(usbd.GlobalServiceId(), usbd.ServiceId(), usbd.ServiceStatus(), usbd.LinkServiceId(),
                  usbd.ServiceCategory(), usbd.LinkageType(), usbd.ActivationTime(), usbd.DeActivationTime(),
                  usbd.CheckRouteComponent(), usbd.CheckBroadbandComponent(), usbd.GetsTSIDUri(m_text),
                  usbd.GetRouteComponentSrcIp(m_number), usbd.GetRouteComponentDestPort(m_short),
                  usbd.GetFullMPDUri(m_text), usbd.ComponentInfoSize(), usbd.GetComponentType(0, m_byte),
                  usbd.ComponentProtectedFlag(0), usbd.GetComponentId(0, m_text), usbd.LanguageSize(),
                  usbd.GetLanguageInfo(0, &language), usbd.GetRatingStringTable(ratings));
    EXPECT_EQ(Join(Logged("Func:GetsTSIDUri,"), Logged("Func:GetFullMPDUri,"), Logged("Func:CheckRouteComponent,")),
              "1|1|1");
    ExpectNothing(CMMTContentAdvisoryRatings().GetContentRatingString(m_text), CROUTEUsbd().NumOfDeliveryMethod(),
                  CContentRating().GetContentRating(m_text), CServiceName().Lang(), CServiceName().Text());
    const CMediaInfo media;
    const CContentInfo content;
    ExpectNothing(media.GetRepId(m_text), media.NumberOfContentRating(), media.GetContentRating(0, m_text),
                  (media.Dump(), 0), content.GetContentId(m_text), content.GetAEAId(), content.NumberOfContentRating(),
                  content.GetContentRating(0, m_text));
    CSTSID stsid;
    std::string none;
    const CLS ls;
    const CSrcFlow flow;
    ExpectNothing(stsid.SetCallback(nullptr), stsid.NumberOfRouteSessions(), stsid.GetEFDTInfo(0, 0),
                  flow.GetEFDTInfo(), stsid.BsId(0), stsid.SIpAddr(0), stsid.DIpAddr(0), stsid.DPort(0),
                  stsid.GetTSI(0, 0, &m_number), stsid.GetAEAId(0, 0), stsid.NumberOfContentRatings(0, 0),
                  stsid.GetContentRating(0, 0, 0, m_text), ls.TSI(), ls.GetContentId(none), ls.GetAEAId(), ls.GetRT(),
                  flow.GetContentId(m_text), flow.GetAEAId(), flow.GetRT(), flow.NumberOfContentRatings(),
                  flow.GetContentRating(0, m_text));
    CXML xml;
    void* root = this;
    ExpectNothing(xml.Doc(), xml.MoveRoot(&root), xml.MoveChild(this), xml.MoveNext(this), xml.Name(this),
                  xml.Ns(this, nullptr), xml.PropStr(this, "a", nullptr), xml.PropInt(this, "a", nullptr),
                  xml.PropLLong(this, "a", nullptr), xml.PropBool(this, "a", nullptr), xml.Content(this, nullptr),
                  xml.PeekPropStr(this, "a", nullptr), xml.Compare(this, "a"), xml.NodeDump(this, nullptr),
                  xml.getStringContent(this, nullptr), xml.getStringProp(this, "a", nullptr));
    EXPECT_EQ(root, this);
    ASSERT_TRUE(xml.Create("<r/>", 4, false));
    EXPECT_EQ(Each({xml.MoveRoot(nullptr), xml.MoveChild(nullptr) != nullptr, xml.MoveNext(nullptr) != nullptr,
                    xml.Name(nullptr) != nullptr, xml.Ns(nullptr, nullptr) != nullptr, xml.Compare(nullptr, "r"),
                    xml.PeekPropStr(nullptr, "a", nullptr), xml.NodeDump(nullptr, nullptr) != nullptr}),
              "00000000");
    bool found = true;
    EXPECT_STREQ(std::unique_ptr<char[]>(xml.PropStr(nullptr, "a", &found)).get(), "");
    EXPECT_FALSE(found);
    EXPECT_EQ(TakeAssertions(), "root; node; node; node; node; node; out; node");
    xml.Destroy();
}

TEST_F(NotCreatedTest, Tables)
{
    const CLLSSMTParser multi;
    ExpectNothing(multi.PayloadCount(), multi.GetPayloadLength(0, m_number), multi.GetPayload(0, m_number, &m_byte),
                  multi.GetSignatureLength(m_number), multi.GetSignatureData(&m_byte),
                  multi.GetSignedBlockLength(m_number), multi.GetSignedBlock(&m_byte));
    CParseAEAT aeat;
    EAEAType type{};
    EAEAPriority priority{};
    ExpectNothing((aeat.Destroy(), 0), aeat.AEACount(), aeat.GetAEAId(0, m_text, m_text), aeat.GetAEAType(0, type),
                  aeat.GetAEAPriority(0, priority), aeat.AEAWakeup(0), aeat.AEAEventDescCount(0), aeat.GetAEA(0));
    EXPECT_EQ(Join(Logged("Func:GetAEAType,"), Logged("Func:GetAEA,")), "1|1") << "each under its own name";
    CParseCDT cdt;
    long from = 7;
    std::list<std::string> list;
    ExpectNothing((cdt.Destroy(), 0), (cdt.SetReplace(true), 0), cdt.Given(), cdt.GetCurrentCert(m_text),
                  cdt.GetToBeSignedData(m_text), cdt.GetCertReplacement(m_text, from, from), cdt.GetOCSPRefresh(m_int),
                  cdt.GetCMSSignedData(m_text), cdt.GetCertificates(list), cdt.GetOCSPResponse(list));
    CParseRRT rrt;
    ExpectNothing(rrt.SetCallback(nullptr), rrt.Start(nullptr), rrt.Stop(), (rrt.SetReplace(true), 0),
                  rrt.numOfRatingRegionTable(), rrt.GetRegionIdentifier(0, m_number), rrt.numOfDimension(0),
                  rrt.GetDimensionTitle(0, 0, m_text), rrt.numOfRating(0, 0), rrt.GetRatingValueAbbrev(0, 0, 0, m_text),
                  rrt.GetRegion(0));
    CParseOnscreenNoti notice;
    ExpectNothing((notice.SetReplace(true), 0), notice.KSCCount(), notice.ServiceIdRange(0), notice.GetKSC(0));
    EXPECT_EQ(Logged("Func:ServiceIdRange,"), 1);
    CParseSLT slt;
    EATSC3UrlType urlType{};
    void* service = nullptr;
    ExpectNothing(slt.Start(nullptr), slt.Stop(), slt.AddLLSGroupId(1), (slt.SetLenient(true), 0),
                  (slt.SetReplace(true), 0), (slt.SetDropCallback(nullptr), 0), slt.ServiceCount(), slt.Bsid(),
                  slt.LowestMinorChannelNo(), slt.SltInetUrlCount(), slt.GetSltCapability(m_text),
                  slt.GetSltInetUrl(0, m_text, urlType), slt.GetService(0, service), slt.GetService(nullptr, nullptr),
                  slt.GetServiceInfo(0), slt.GetLLSGroupIDs(), slt.GetBsidByLLSGroupID());
}

TEST_F(NotCreatedTest, TablesThatAreFed)
{
    const std::string table = "\x04\x01\x01\x01<AEAT/>";
    const TBytes bytes(table.begin(), table.end());
    CParseAEAT aeat;
    CParseCDT cdt;
    CParseOnscreenNoti notice;
    ExpectNothing((FeedItem(aeat, bytes), 0), (FeedItem(cdt, bytes), 0), (FeedItem(notice, bytes), 0));
}

TEST_F(NotCreatedTest, Maps)
{
    CESGFragmentMapST fragments;
    ExpectNothing((fragments.Destroy(), 0), fragments.Add("f"), fragments.Remove("f"));
    EXPECT_FALSE(fragments.isExisted("f"));
    EXPECT_EQ(TakeAssertions(), "m != nullptr");
    EXPECT_EQ(Each({fragments.Create(), fragments.Create(), fragments.Add(nullptr), fragments.Remove(nullptr),
                    fragments.isExisted(nullptr), fragments.Add("f"), fragments.Add("f"), fragments.Remove("f"),
                    fragments.isExisted("f"), fragments.Remove("f"), fragments.isExisted("f"), fragments.Remove("f")}),
              "100001111100");
    EXPECT_EQ(TakeAssertions(), "!m");
    fragments.Destroy();
    CRRTMap ratings;
    ExpectNothing((ratings.Destroy(), 0), (ratings.SetReplace(true), 0), ratings.Add(1, 1), ratings.Remove(1),
                  ratings.SetRegionIdText(1, nullptr, nullptr), ratings.SetDimension(1, 1, true),
                  ratings.SetDimTitle(1, nullptr, nullptr), ratings.SetRatingVal(1, 1),
                  ratings.SetRatingValAbbrev(1, nullptr, nullptr), ratings.SetRatingValStr(1, nullptr, nullptr),
                  ratings.GetProgramRating(1, 1, nullptr, nullptr, nullptr, nullptr));
    CChannelMap map;
    ExpectNothing(map.GetServiceList(nullptr, nullptr), map.Channel(this), map.CloneService(this),
                  map.GetServiceNumber(this, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
                  map.SetSvcInetUrl(this, "u"), map.GetSvcInetUrl(this, m_text), map.SetGlobalServiceId(this, "i", 1),
                  map.GetGlobalServiceId(this, m_text), map.SetServiceName(this, "n", 1),
                  map.GetServiceName(this, &m_byte, m_short), map.GetDrmSystemID(this, m_text));
}

}  // namespace
