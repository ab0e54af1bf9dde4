#include "lls/ParseOnscreenNoti.h"

#include "support/Show.h"
#include "support/Tables.h"

namespace {

class ParseOnscreenNotiTest : public CRecorder {};

TEST_F(ParseOnscreenNotiTest, EntriesPileUp)
{
    CParseOnscreenNoti noti;
    ASSERT_TRUE(noti.Create());
    const std::string table =
        "<OnscreenMessageNotification><KeepScreenClear bsid='70000' serviceId='2' serviceIdRange='3' "
        "notificationDuration='PT1M' kscFlag='true' version='300'/><Other/></OnscreenMessageNotification>";
    EXPECT_TRUE(FeedXml(noti, table));
    EXPECT_TRUE(FeedXml(noti, "<OnscreenMessageNotification/>"));
    EXPECT_TRUE(
        FeedXml(noti, "<OnscreenMessageNotification><KeepScreenClear kscFlag='True'/></OnscreenMessageNotification>"));
    EXPECT_TRUE(FeedXml(noti, "<KeepScreenClear/>"));
    EXPECT_EQ(Logged(", m_ProcessParseOnscreenNoti(root)"), 1);
    ASSERT_EQ(noti.KSCCount(), 2u);
    const CParseOnscreenNoti::SKeepScreenClear& entry = *noti.GetKSC(0);
    EXPECT_EQ(Join(entry.notificationDuration, entry.kscFlag, entry.version), "PT1M|1|44");
    EXPECT_EQ(Join(noti.Bsid(0), noti.ServiceId(0), noti.ServiceIdRange(0)), "4464|2|3");
    EXPECT_EQ(Join(noti.Bsid(1), noti.GetKSC(1)->kscFlag, noti.GetKSC(1)->notificationDuration.empty()), "0|0|1");
    const auto given = [&noti](unsigned index) {
        const CParseOnscreenNoti::SGiven& g = *noti.Given(index);
        return Join(g.bsid, g.serviceId, g.serviceIdRange, g.kscFlag, g.version);
    };
    EXPECT_EQ(given(0), "70000|2|3|1|300");
    EXPECT_EQ(given(1), "-|-|-|-|-");
    EXPECT_EQ(noti.Given(2), nullptr);
    EXPECT_EQ(Logged("[CParseOnscreenNoti::m_DumpKSC]index: 0 , bsid: 4464, serviceId: 2"), 3);
    EXPECT_EQ(Logged("[CParseOnscreenNoti::m_DumpKSC]serviceIdRange: 3 , duration: PT1M"), 3);
    EXPECT_EQ(Logged("[CParseOnscreenNoti::m_DumpKSC]kscFlag: 1 , version: 44"), 3);
    EXPECT_EQ(Logged("[CParseOnscreenNoti::t_Parse] array size[2]"), 1);
    EXPECT_EQ(ChangingPrefixes(noti, table, [&noti] { return noti.KSCCount(); }), 0);

    EXPECT_EQ(noti.Bsid(2) + noti.ServiceId(0xFFFFFFFF), 0);
    EXPECT_EQ(noti.GetKSC(2), nullptr);
    EXPECT_EQ(TakeAssertions(), "0 <= index && index < m_size; 0 <= index && index < m_size");
    EXPECT_FALSE(noti.Create());
    noti.Destroy();
    EXPECT_EQ(noti.KSCCount() + noti.Bsid(0), 0u);
    EXPECT_EQ(s_assertions.back().file, "src/lls/ParseOnscreenNoti");
    EXPECT_EQ(TakeAssertions(), "!m; m; m");
    ASSERT_TRUE(noti.Create());
    EXPECT_EQ(noti.KSCCount(), 0u);
    noti.Destroy();
}

}  // namespace
