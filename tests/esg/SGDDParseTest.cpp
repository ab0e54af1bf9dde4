#include "esg/SGDDParse.h"

#include "esg/ESGFragmentMap.h"
#include "esg/Elements.h"
#include "esg/SGResponse.h"
#include "support/ParserTest.h"
#include "support/Show.h"

SHOW(CSGResponse::SResponseValidity, s.expirationTime, s.timeWindow)
SHOW(CSGResponse::SSGResponse, s.status, s.lastResponseVersion, s.supportedVersions, s.descriptors, s.responseValidity,
     s.privateExt)
SHOW(CSGDDParse::SSGDDParse, s.ns, s.id, s.version, s.descriptorEntries)

namespace {

using SGDDParseTest = CRecorder;

const std::string k_sgdd =
    "<ServiceGuideDeliveryDescriptor xmlns='u' id='a' version='2'><DescriptorEntry type='3'><Transport port='4'/>"
    "</DescriptorEntry><Other/><DescriptorEntry type='5'/></ServiceGuideDeliveryDescriptor>";

TEST_F(SGDDParseTest, Descriptor)
{
    CSGDDParse sgdd;
    EXPECT_FALSE(ParseXml(sgdd, k_sgdd));
    EXPECT_EQ(TakeAssertions(), "m != nullptr");
    ASSERT_TRUE(sgdd.Create());
    ASSERT_TRUE(ParseXml(sgdd, k_sgdd));
    const auto& state = *sgdd.State();
    EXPECT_EQ(Show(state), "u|a|2|[{3|-|{-|4|-|0|0}|[]|[]} {5|-|-|[]|[]}]");
    EXPECT_FALSE(ParseXml(sgdd, Gzip(k_sgdd)));
    EXPECT_EQ(state.descriptorEntries.size(), 2u);  // the record of the one before stays
    sgdd.SetCompress(true);
    EXPECT_TRUE(ParseXml(sgdd, Gzip(k_sgdd)));
    EXPECT_TRUE(ParseXml(sgdd, "<ServiceGuideDeliveryDescriptor/>"));
    EXPECT_EQ(Join(state.id, state.ns, state.version, state.descriptorEntries.size()), "-|-|0|4");
    EXPECT_FALSE(ParseXml(sgdd, "<SGResponse>" + k_sgdd + "</SGResponse>"));
    EXPECT_EQ(TakeAssertions(), "");

    CXML outer;
    void* root = nullptr;
    const std::string siblings = "<r> <Other id='x'/>text" + k_sgdd + "<ServiceGuideDeliveryDescriptor/></r>";
    ASSERT_EQ(Each({outer.Create(siblings.data(), static_cast<int>(siblings.size()), false), outer.MoveRoot(&root)}),
              "11");
    EXPECT_TRUE(sgdd.Parse(outer.Doc(), outer.MoveChild(root)));  // begins at white space
    EXPECT_STREQ(state.id.get(), "a");
    EXPECT_FALSE(sgdd.Parse(outer.Doc(), root));
    EXPECT_FALSE(sgdd.Parse(outer.Doc(), nullptr));
    EXPECT_FALSE(sgdd.Create());
    EXPECT_EQ(TakeAssertions(), "!m");
    sgdd.Destroy();
    outer.Destroy();
    EXPECT_EQ(sgdd.State(), nullptr);
    sgdd.Destroy();
    EXPECT_EQ(TakeAssertions(), "m");
}

TEST_F(SGDDParseTest, Response)
{
    CSGResponse response;
    response.SetCompress(true);
    EXPECT_EQ(TakeAssertions(), "m");
    ASSERT_TRUE(response.Create());
    ASSERT_TRUE(ParseXml(response,
                         "<x:SGResponse xmlns:x='u' status='1' lastResponseVersion='2'><SupportedVersion>1.0"
                         "</SupportedVersion><SupportedVersion/><SupportedVersion>1.1</SupportedVersion>" +
                             k_sgdd +
                             "<ServiceGuideDeliveryDescriptor id='b'/><ResponseValidity expirationTime='1'/>"
                             "<ResponseValidity expirationTime='3981234567' timeWindow='4'/><PrivateExt>c</PrivateExt>"
                             "<PrivateExt>d</PrivateExt></x:SGResponse>"));
    const auto& state = *response.State();
    EXPECT_EQ(Show(state), "1|2|[1.0 1.1]|[{u|a|2|[{3|-|{-|4|-|0|0}|[]|[]} {5|-|-|[]|[]}]} {-|b|0|[]}]|3981234567|4|d");
    response.SetCompress(true);
    EXPECT_TRUE(ParseXml(response, Gzip("<SGResponse/>")));
    EXPECT_EQ(Join(state.status, state.lastResponseVersion, state.supportedVersions.size(), state.descriptors.size(),
                   state.responseValidity, state.privateExt),
              "0|0|2|2|3981234567|4|d");
    EXPECT_FALSE(ParseXml(response, k_sgdd));
    response.Destroy();
    EXPECT_EQ(Logged("[CSGDDParse::Destroy]"), 2);
    ASSERT_TRUE(response.Create());
    EXPECT_FALSE(ParseXml(response, Gzip("<SGResponse/>")));  // Create takes the switch back
    response.Destroy();
}

TEST(ESGFragmentMapTest, IsSharedAndCounted)
{
    CRecorder::s_assertions.clear();
    CESGFragmentMap one;
    CESGFragmentMap other;
    EXPECT_EQ(Each({one.isExisted("a"), one.Add("a"), one.Remove("a")}), "000");
    one.Destroy();
    EXPECT_EQ(Each({one.Create(), other.Create(), one.Create()}), "110");
    EXPECT_EQ(CRecorder::s_assertions.size(), 5u);
    EXPECT_EQ(SESGFragmentMap::refMapCnt, 2);
    EXPECT_EQ(Each({one.Add("a"), one.Add("b"), other.Add("a")}), "111");
    EXPECT_EQ(Each({one.Add(nullptr), one.Remove(nullptr), one.isExisted(nullptr), one.Remove("c")}), "0000");
    EXPECT_EQ(Each({one.Remove("a"), other.isExisted("a"), one.Remove("a"), one.isExisted("a")}), "1110");
    one.Destroy();
    EXPECT_EQ(Join(other.isExisted("b"), other.isExisted("B")), "1|0");
    other.Destroy();
    EXPECT_EQ(Each({other.Create(), other.isExisted("b")}), "10");
    other.Destroy();
    EXPECT_EQ(SESGFragmentMap::refMapCnt, 0);
    EXPECT_FALSE(SESGFragmentMap::refMap.isExisted("b"));
    EXPECT_EQ(CRecorder::s_assertions.size(), 6u);
    EXPECT_EQ(CRecorder::s_assertions.back().expression, "m != nullptr");
    CRecorder::s_assertions.clear();
}

}  // namespace
