#include "route/SLS/ROUTEUsbd.h"

#include "common/ServiceLinkage.h"
#include "route/SLS/DeliveryMethod.h"
#include "route/SLS/ServiceName.h"
#include "support/Recorder.h"

namespace {

class ROUTEUsbdTest : public CRecorder {
  protected:
    void SetUp() override
    {
        CRecorder::SetUp();
        ASSERT_TRUE(m_usbd.Create());
    }

    void TearDown() override
    {
        m_usbd.Destroy();
        CRecorder::TearDown();
    }

    bool Parse(const std::string& text)
    {
        const std::vector<unsigned char> block = Exact(text);
        return m_usbd.XMLBase::Parse(reinterpret_cast<const char*>(block.data()), static_cast<unsigned>(block.size()),
                                     false);
    }

    CROUTEUsbd m_usbd;
};

TEST_F(ROUTEUsbdTest, EveryElementInBothCapitalisations)
{
    ASSERT_TRUE(Parse(
        "<b:BundleDescriptionROUTE xmlns:b='u'><UserServiceDescription globalServiceId='low' globalServiceID='ID' "
        "serviceId='65537' serviceStatus='1'><name lang='en'>N</name><Name>M</Name><Name/>"
        "<serviceLanguage>en</serviceLanguage><ServiceLanguage/><ServiceLanguage> </ServiceLanguage>"
        "<DeliveryMethod><UnicastAppService><BasePattern>u</BasePattern></UnicastAppService></DeliveryMethod>"
        "<deliveryMethod/><serviceLinkage serviceId='1'/><ServiceLinkage serviceId='7' serviceCategory='2' "
        "linkageType='3' activationTime='a'/></UserServiceDescription></b:BundleDescriptionROUTE>"));
    EXPECT_STREQ(m_usbd.GlobalServiceId(), "ID");
    EXPECT_TRUE(m_usbd.ServiceId() == 1 && m_usbd.ServiceStatus() && m_usbd.NumOfDeliveryMethod() == 2);
    EXPECT_TRUE(m_usbd.LinkServiceId() == 7 && m_usbd.ServiceCategory() == 2 && m_usbd.LinkageType() == 3);
    EXPECT_STREQ(m_usbd.ActivationTime(), "a");
    EXPECT_EQ(m_usbd.DeActivationTime(), nullptr);
    const CROUTEUsbd::SROUTEUsbd& state = *m_usbd.State();
    ASSERT_TRUE(state.names.Size() == 3 && state.languages.Size() == 2);
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
    EXPECT_TRUE(m_usbd.ServiceStatus() && m_usbd.ServiceId() == 65535 && !m_usbd.GlobalServiceId());
    EXPECT_TRUE(m_usbd.LinkServiceId() == -1 && m_usbd.ServiceCategory() == -1 && m_usbd.LinkageType() == -1 &&
                !m_usbd.ActivationTime());
    ASSERT_TRUE(
        Parse("<bundleDescriptionROUTE><userServiceDescription globalServiceId='low'/></bundleDescriptionROUTE>"));
    EXPECT_TRUE(!m_usbd.ServiceStatus() && !m_usbd.State()->givenServiceStatus && m_usbd.ServiceId() == 65535);
    EXPECT_STREQ(m_usbd.GlobalServiceId(), "low");
    ASSERT_TRUE(
        Parse("<bundleDescriptionROUTE><userServiceDescription serviceStatus='true'/></bundleDescriptionROUTE>"));
    EXPECT_TRUE(!m_usbd.ServiceStatus() && *m_usbd.State()->givenServiceStatus && !m_usbd.GlobalServiceId());
    EXPECT_FALSE(m_usbd.Create());
    EXPECT_EQ(TakeAssertions(), "!m");
}

TEST_F(ROUTEUsbdTest, RealDocument)
{
    ASSERT_TRUE(Parse(ReadData("route/gpac-a1-single-service-sls3-usbd.xml")));
    EXPECT_EQ(m_usbd.ServiceId(), 1001);
    EXPECT_EQ(m_usbd.NumOfDeliveryMethod(), 1);
}

}  // namespace
