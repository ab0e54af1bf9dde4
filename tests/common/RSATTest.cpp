#include "common/RSAT.h"

#include "common/ServiceLinkage.h"
#include "support/ParserTest.h"
#include "support/Show.h"

SHOW(SRSATUpdateInfo, s.preferred, s.majorChannelNo, s.minorChannelNo, s.frequency, s.broadcastType, s.validFrom)
SHOW(SRSATServiceInfo, s.preferred, s.majorChannelNo, s.minorChannelNo, s.frequency, s.broadcastType, s.validUntil,
     s.updates)
SHOW(CServiceLinkage::SServiceLinkage, s.bsid, s.LLSGroupId, s.serviceId, s.serviceCategory, s.linkageType,
     s.activationTime, s.deActivationTime, s.svcCapabilities, s.linkageData, s.broadbandAccessRequired)

namespace {

using RSATTest = CRecorder;

TEST_F(RSATTest, ServicesAndTheirUpdates)
{
    CRSAT rsat;
    ASSERT_TRUE(rsat.Create());
    EXPECT_FALSE(ParseXml(rsat, "<SLT timestamp='t'/>"));
    EXPECT_EQ(Logged("[CRSAT::m_ProcessParseRSAT] NOT RSAT FILE"), 1);
    EXPECT_FALSE(ParseXml(rsat, "<RSAT RSATInetURL='u'/>"));
    ASSERT_TRUE(
        ParseXml(rsat,
                 "<RSAT timestamp='2027' RSATInetURL='http://r'><Update/>"
                 "<Service preferred='trueish' majorChannelNo='65541' frequency='f' broadcastType='b' validUntil='v'>"
                 "<Update preferred='TRUE' majorChannelNo='7' minorChannelNo='8' frequency='uf' broadcastType='ub' "
                 "validFrom='vf'/><Update/></Service><Service/></RSAT>"));
    std::string text;
    EXPECT_EQ(Join(rsat.GetTimestamp(text), text), "1|2027");
    EXPECT_EQ(Join(rsat.GetRSATInetURL(text), text), "1|http://r");
    ASSERT_EQ(rsat.NumOfService(), 2);
    SRSATServiceInfo service;
    ASSERT_TRUE(rsat.GetServiceInfo(0, &service));
    EXPECT_EQ(Show(service), "1|5|65535|f|b|v|[0|7|8|uf|ub|vf 0|65535|65535|||]");
    SRSATUpdateInfo update;
    ASSERT_TRUE(rsat.GetUpdateInfo(0, 1, &update));
    EXPECT_EQ(Show(update), Show(service.updates.back()));
    EXPECT_EQ(Join(rsat.NumOfUpdate(0), rsat.NumOfUpdate(1), rsat.NumOfUpdate(2)), "2|0|0");
    EXPECT_EQ(Join(rsat.GetServiceInfo(2, &service), rsat.GetUpdateInfo(0, 2, &update),
                   rsat.GetUpdateInfo(0, -1, &update), rsat.GetUpdateInfo(-1, 0, &update)),
              "0|0|0|0");
    EXPECT_EQ(service.frequency, "f");
    EXPECT_EQ(Join(rsat.GetServiceInfo(0, nullptr), rsat.GetUpdateInfo(0, 1, nullptr)), "0|0");
    EXPECT_EQ(TakeAssertions(), "info; info");
    EXPECT_EQ(Logged("[sm_CbUpdate] 7, 8, vf "), 1);
    EXPECT_FALSE(rsat.Create());
    rsat.Destroy();
    EXPECT_FALSE(ParseXml(rsat, "<RSAT timestamp='t'/>"));
    EXPECT_EQ(Join(rsat.NumOfService(), rsat.GetTimestamp(text)), "0|0");
    EXPECT_EQ(TakeAssertions(), "!m; m != nullptr; m; m");
    rsat.Parse(nullptr, 0u);
    EXPECT_EQ(TakeAssertions(), "buffer");
    static_cast<XMLBase&>(rsat).XMLBase::Destroy();
}

TEST_F(RSATTest, ServiceLinkage)
{
    CServiceLinkage linkage;
    ASSERT_TRUE(linkage.Create());
    ASSERT_TRUE(ParseXml(linkage,
                         "<x bsid='65537' LLSGroupId='257' serviceId='65538' serviceCategory='3' linkageType='4' "
                         "activationTime='a' deActivationTime='d' SvcCapabilities='s' linkageData='l' "
                         "broadbandAccessRequied='true'/>"));
    const CServiceLinkage::SServiceLinkage& v = *linkage.State();
    EXPECT_EQ(Show(v), "1|1|2|3|4|a|d|s|l|1");
    EXPECT_EQ(Join(linkage.LinkServiceId(), linkage.ServiceCategory(), linkage.LinkageType(), linkage.ActivationTime(),
                   linkage.DeActivationTime()),
              "2|3|4|a|d");
    EXPECT_EQ(Logged("[CServiceLinkage::Dump] bsid [1], LLSGroupId [1] broadbandAccessRequied [1]"), 1);
    // The right spelling is the wrong one; what is absent has all bits set, or is null.
    ASSERT_TRUE(ParseXml(linkage, "<x broadbandAccessRequired='true' svcCapabilities='1' SvcCapabilities='2'/>"));
    EXPECT_EQ(Show(v), "65535|255|65535|-1|-1|-|-|1|-|0");
    linkage.Destroy();
    EXPECT_EQ(linkage.State(), nullptr);
}

}  // namespace
