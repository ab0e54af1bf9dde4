#include "route/SLS/ROUTEUsbd.h"

#include "common/ServiceLinkage.h"
#include "route/SLS/DeliveryMethod.h"
#include "route/SLS/ServiceName.h"
#include "support/ParserTest.h"
#include "support/Show.h"

namespace {

using ROUTEUsbdTest = TParserTest<CROUTEUsbd>;

TEST_F(ROUTEUsbdTest, EveryElementInBothCapitalisations)
{
    ASSERT_TRUE(Parse(
        "<b:BundleDescriptionROUTE xmlns:b='u'><UserServiceDescription globalServiceId='low' globalServiceID='ID' "
        "serviceId='65537' serviceStatus='1'><name lang='en'>N</name><Name>M</Name><Name/>"
        "<serviceLanguage>en</serviceLanguage><ServiceLanguage/><ServiceLanguage> </ServiceLanguage>"
        "<DeliveryMethod><UnicastAppService><BasePattern>u</BasePattern></UnicastAppService></DeliveryMethod>"
        "<deliveryMethod/><serviceLinkage serviceId='1'/><ServiceLinkage serviceId='7' serviceCategory='2' "
        "linkageType='3' activationTime='a'/></UserServiceDescription></b:BundleDescriptionROUTE>"));
    EXPECT_STREQ(m_parser.GlobalServiceId(), "ID");
    EXPECT_EQ(Join(m_parser.ServiceId(), m_parser.ServiceStatus(), m_parser.NumOfDeliveryMethod()), "1|1|2");
    EXPECT_EQ(Join(m_parser.LinkServiceId(), m_parser.ServiceCategory(), m_parser.LinkageType()), "7|2|3");
    EXPECT_STREQ(m_parser.ActivationTime(), "a");
    EXPECT_EQ(m_parser.DeActivationTime(), nullptr);
    const CROUTEUsbd::SROUTEUsbd& state = *m_parser.State();
    ASSERT_EQ(Join(state.names.Size(), state.languages.Size()), "3|2");
    EXPECT_STREQ(static_cast<CServiceName*>(state.names.Data(0))->Lang(), "en");
    EXPECT_EQ(static_cast<CServiceName*>(state.names.Data(1))->Lang(), nullptr);
    EXPECT_STREQ(static_cast<CServiceName*>(state.names.Data(0))->Text(), "N");
    EXPECT_STREQ(static_cast<CServiceName*>(state.names.Data(2))->Text(), "");
    EXPECT_EQ(state.givenServiceStatus, true);
    EXPECT_STREQ(static_cast<char*>(state.languages.Data(1)), " ");
    const auto* method = static_cast<const CDeliveryMethod*>(state.deliveryMethods.Data(0));
    EXPECT_EQ(method->State()->unicastAppSvcs.Get(0)->State()->basePatterns.front(), "u");
    EXPECT_EQ(Logged("[CROUTEUsbd::sm_CbSvcLanguage] svcLanguage value is not exist !!!"), 1);
    EXPECT_EQ(Logged("[CServiceLinkage::Destroy]"), 1);  // the first is let go
}

TEST_F(ROUTEUsbdTest, DefaultsAndFailures)
{
    EXPECT_FALSE(Parse("<bundleDescription><userServiceDescription/></bundleDescription>"));
    ASSERT_TRUE(Parse("<bundleDescriptionROUTE/>"));
    EXPECT_EQ(Join(m_parser.ServiceStatus(), m_parser.ServiceId(), m_parser.GlobalServiceId()), "1|65535|-");
    EXPECT_EQ(
        Join(m_parser.LinkServiceId(), m_parser.ServiceCategory(), m_parser.LinkageType(), m_parser.ActivationTime()),
        "-1|-1|-1|-");
    ASSERT_TRUE(
        Parse("<bundleDescriptionROUTE><userServiceDescription globalServiceId='low'/></bundleDescriptionROUTE>"));
    EXPECT_EQ(Join(m_parser.ServiceStatus(), m_parser.State()->givenServiceStatus, m_parser.ServiceId()), "0|-|65535");
    EXPECT_STREQ(m_parser.GlobalServiceId(), "low");
    ASSERT_TRUE(
        Parse("<bundleDescriptionROUTE><userServiceDescription serviceStatus='true'/></bundleDescriptionROUTE>"));
    EXPECT_EQ(Join(m_parser.ServiceStatus(), *m_parser.State()->givenServiceStatus, m_parser.GlobalServiceId()),
              "0|1|-");
    EXPECT_FALSE(m_parser.Create());
    EXPECT_EQ(TakeAssertions(), "!m");
}

}  // namespace
