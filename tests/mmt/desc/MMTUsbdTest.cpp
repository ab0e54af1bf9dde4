#include "mmt/desc/MMTUsbd.h"

#include "mmt/desc/MMTChannel.h"
#include "mmt/desc/MMTContentAdvisoryRatings.h"
#include "mmt/desc/MMTMpuComponent.h"
#include "mmt/desc/MMTName.h"
#include "mmt/desc/MMTRouteComponent.h"
#include "support/Recorder.h"

namespace {

class MMTUsbdTest : public CRecorder {
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
        return m_usbd.Parse(reinterpret_cast<const char*>(block.data()), static_cast<unsigned>(block.size()), false);
    }
    /// Under the user service description when there is one, else under the root.
    bool ParseIn(const std::string& elements, bool described = true)
    {
        const std::string open = described ? "<UserServiceDescription serviceId='9'>" : "";
        const std::string close = described ? "</UserServiceDescription>" : "";
        return Parse("<BundleDescriptionMMT>" + open + elements + close + "</BundleDescriptionMMT>");
    }

    CMMTUsbd m_usbd;
};

TEST_F(MMTUsbdTest, EveryElementAtBothPlaces)
{
    for (const bool described : {false, true}) {
        SCOPED_TRACE(described);
        m_usbd.Destroy();
        ASSERT_TRUE(m_usbd.Create());
        ASSERT_TRUE(ParseIn(
            "<name lang='en'>N</name><Name>M</Name><serviceLanguage>en</serviceLanguage><ServiceLanguage/>"
            "<ServiceLanguage> </ServiceLanguage><Channel serviceGenre='g' serviceIcon='i'/>"
            "<mpuComponent mmtPackageId='old'/><MPUComponent mmtPackageId='p' contentIdSchemeIdUri='s' "
            "contentIdValue='v' nextMMTPackageId='np' nextContentIdSchemeIdUri='ns' nextContentIdValue='nv'/>"
            "<routeComponent sTSIDUri='old'/><ROUTEComponent sTSIDUri='u' sTSIDDestinationIpAddress='239.255.10.1' "
            "sTSIDSourceIpAddress='10.1.2.3' sTSIDDestinationUdpPort='5000' sTSIDMajorProtocolVersion='1' "
            "sTSIDMinorProtocolVersion='2'/><broadbandComponent fullMPDUri='m'/>"
            "<ComponentInfo componentType='257' componentRole='3' componentProtectedFlag='true' componentId='a' "
            "componentName='Audio'/><ComponentInfo componentProtectedFlag='1'/><componentInfo/>"
            "<serviceLinkage serviceId='1'/><ServiceLinkage serviceId='7' serviceCategory='2' linkageType='3' "
            "activationTime='a' deActivationTime='d'/>",
            described));
        const CMMTUsbd::SMMTUsbd& state = *m_usbd.State();

        std::string text;
        unsigned int address = 0;
        unsigned short port = 0;
        EXPECT_TRUE(m_usbd.CheckRouteComponent() && m_usbd.GetsTSIDUri(text) && text == "u");
        EXPECT_TRUE(m_usbd.GetRouteComponentDestIp(address) && address == 4026468865u);
        EXPECT_TRUE(m_usbd.GetRouteComponentSrcIp(address) && address == 0x0A010203u);
        EXPECT_TRUE(m_usbd.GetRouteComponentDestPort(port) && port == 5000);
        EXPECT_EQ(state.routeComponent->State()->sTSIDMajorProtocolVersion, 1);
        EXPECT_EQ(state.routeComponent->State()->sTSIDMinorProtocolVersion, 2);
        EXPECT_TRUE(m_usbd.CheckBroadbandComponent() && m_usbd.GetFullMPDUri(text) && text == "m");
        const CMMTMpuComponent::SMpuComponent& mpu = *state.mpuComponent->State();
        EXPECT_EQ(mpu.mmtPackageId + mpu.contentIdSchemeIdUri + mpu.contentIdValue, "psv");
        EXPECT_EQ(mpu.nextMMTPackageId + mpu.nextContentIdSchemeIdUri + mpu.nextContentIdValue, "npnsnv");
        EXPECT_EQ(state.channel->State()->serviceGenre + state.channel->State()->serviceIcon, "gi");
        ASSERT_EQ(state.names.Size(), 2);
        const CMMTName::SName& named = *static_cast<CMMTName*>(state.names.Data(0))->State();
        EXPECT_EQ(named.name + named.lang + static_cast<CMMTName*>(state.names.Data(1))->State()->name, "NenM");
        const auto info = [this](int index) {
            unsigned char type = 0, role = 0;
            std::string id, name;
            EXPECT_TRUE(m_usbd.GetComponentType(index, type) && m_usbd.GetComponentRole(index, role));
            EXPECT_TRUE(m_usbd.GetComponentId(index, id) && m_usbd.GetComponentName(index, name));
            return std::to_string(type) + std::to_string(role) + (m_usbd.ComponentProtectedFlag(index) ? "!" : "") +
                   id + name;
        };
        EXPECT_TRUE(m_usbd.ComponentInfoSize() == 2 && info(0) == "13!aAudio" && info(1) == "00");
        char *first = nullptr, *second = nullptr;
        ASSERT_TRUE(m_usbd.LanguageSize() == 2 && m_usbd.GetLanguageInfo(0, &first) &&
                    m_usbd.GetLanguageInfo(1, &second));
        EXPECT_EQ(std::string(first) + second, "en ");
        EXPECT_TRUE(m_usbd.LinkServiceId() == 7 && m_usbd.ServiceCategory() == 2 && m_usbd.LinkageType() == 3);
        EXPECT_EQ(std::string(m_usbd.ActivationTime()) + m_usbd.DeActivationTime(), "ad");
        EXPECT_EQ(m_usbd.ServiceId(), described ? 9 : 0);
    }
    EXPECT_EQ(Logged("[CMMTUsbd::sm_CbSvcLanguage] svcLanguage value is not exist !!!"), 2);
    EXPECT_EQ(Logged("[CMMTUsbd::sm_CbSvcLanguage] language[en], size[2]"), 2);
    EXPECT_EQ(Logged("[CMMTRouteComponent::Destroy]"), 3);  // the first of two is let go, each time
}

TEST_F(MMTUsbdTest, ServiceDescription)
{
    const struct {
        const char* attributes;
        const char* globalServiceId;
        unsigned short serviceId;
        bool status;
    } k_cases[] = {{"globalServiceId='b' globalServiceID='a' serviceId='65538' serviceStatus='1'", "a", 2, true},
                   {"globalServiceId='b' serviceStatus='2'", "b", 65535, false},
                   {"serviceId='3' serviceStatus='true'", nullptr, 3, false},
                   {"", nullptr, 65535, false}};
    for (const auto& c : k_cases) {
        SCOPED_TRACE(c.attributes);
        ASSERT_TRUE(Parse(std::string("<m:bundleDescriptionMMT xmlns:m='u'><m:userServiceDescription ") + c.attributes +
                          "/></m:bundleDescriptionMMT>"));
        EXPECT_STREQ(m_usbd.GlobalServiceId(), c.globalServiceId);
        EXPECT_TRUE(m_usbd.ServiceId() == c.serviceId && m_usbd.ServiceStatus() == c.status &&
                    m_usbd.State()->givenServiceStatus.value_or(c.status) == (c.serviceId == 3 || c.status));
    }
}

TEST_F(MMTUsbdTest, NothingGiven)
{
    ASSERT_TRUE(ParseIn(""));
    std::string text = "old";
    unsigned int address = 5;
    unsigned short port = 5;
    unsigned char number = 5;
    char* language = text.data();
    std::vector<std::string> ratings;
    EXPECT_FALSE(m_usbd.CheckRouteComponent() || m_usbd.CheckBroadbandComponent() || m_usbd.GetsTSIDUri(text) ||
                 m_usbd.GetFullMPDUri(text) || m_usbd.GetRouteComponentDestIp(address) ||
                 m_usbd.GetRouteComponentSrcIp(address) || m_usbd.GetRouteComponentDestPort(port));
    for (const int index : {-1, 0}) {
        EXPECT_FALSE(m_usbd.GetComponentType(index, number) || m_usbd.GetComponentRole(index, number) ||
                     m_usbd.ComponentProtectedFlag(index) || m_usbd.GetComponentId(index, text) ||
                     m_usbd.GetComponentName(index, text) || m_usbd.GetLanguageInfo(index, &language));
    }
    EXPECT_TRUE(text == "old" && address == 5 && port == 5 && number == 5 && language == text.data());
    EXPECT_TRUE(m_usbd.LinkServiceId() == -1 && m_usbd.ServiceCategory() == -1 && m_usbd.LinkageType() == -1 &&
                !m_usbd.ActivationTime() && !m_usbd.DeActivationTime());
    EXPECT_FALSE(m_usbd.GetRatingStringTable(ratings));
    EXPECT_EQ(Logged("[CMMTUsbd::GetRatingStringTable] Content Advisory Data not parsed"), 1);

    ASSERT_TRUE(ParseIn("<routeComponent/><broadbandComponent/><mpuComponent nextMmtPackageId='n'/>"));
    EXPECT_TRUE(m_usbd.GetsTSIDUri(text) && text.empty() && m_usbd.GetRouteComponentDestIp(address) && address == 0 &&
                m_usbd.GetRouteComponentDestPort(port) && port == 0);
    EXPECT_EQ(m_usbd.State()->mpuComponent->State()->nextMMTPackageId, "n");
}

TEST_F(MMTUsbdTest, MissingProtectedFlagIsAsserted)
{
    ASSERT_TRUE(ParseIn("<ComponentInfo componentType='2' componentId='c'/>"));
    EXPECT_EQ(TakeAssertions(), "tempComponentProtectedFlag != nullptr");
    std::string id;
    EXPECT_TRUE(m_usbd.GetComponentId(0, id) && id == "c" && !m_usbd.ComponentProtectedFlag(0));
}

TEST_F(MMTUsbdTest, WrongRootLeavesEarlierResults)
{
    ASSERT_TRUE(ParseIn("<serviceLanguage>en</serviceLanguage><routeComponent sTSIDUri='u'/>"));
    for (const char* text :
         {"<bundleDescriptionROUTE><userServiceDescription serviceId='1'/></bundleDescriptionROUTE>", "<bundle"}) {
        EXPECT_FALSE(Parse(text)) << text;
    }
    std::string uri;
    EXPECT_TRUE(m_usbd.ServiceId() == 9 && m_usbd.LanguageSize() == 1 && m_usbd.GetsTSIDUri(uri) && uri == "u");
}

TEST_F(MMTUsbdTest, RatingStrings)
{
    ASSERT_TRUE(ParseIn(
        "<ContentAdvisoryRatings><RegionIdentifier>1</RegionIdentifier><RatingDescription lang='en'>TV-PG-L"
        "</RatingDescription><RatingDescription lang='es'>otra</RatingDescription><RatedDimensions>2</RatedDimensions>"
        "<RatingDimVal><RatingDimension>0</RatingDimension><RatingValueString lang='en'>TV-PG</RatingValueString>"
        "<RatingValueString>x</RatingValueString></RatingDimVal><RatingDimVal><RatingValueString>L</RatingValueString>"
        "<RatingDimension>1</RatingDimension><RatingDimVal><RatingDimension>7</RatingDimension></RatingDimVal>"
        "</RatingDimVal></ContentAdvisoryRatings><ContentAdvisoryRating><RatingDimension>5</RatingDimension>"
        "<RatingValueString>outside</RatingValueString><RatingDimVal/></ContentAdvisoryRating>"
        "<ContentAdvisoryRating/>"));
    std::vector<std::string> ratings = {"kept"};
    ASSERT_TRUE(m_usbd.GetRatingStringTable(ratings));
    EXPECT_EQ(ratings, (std::vector<std::string>{"kept", "1,'TV-PG-L',{0 'TV-PG'}{1 'L'}", "0,'',{0 ''}", "0,'',"}));
    const auto* first = static_cast<CMMTContentAdvisoryRatings*>(m_usbd.State()->contentAdvisoryRatings.Data(0));
    EXPECT_EQ(first->State()->ratedDimensions, 2);
    EXPECT_EQ(first->State()->descriptions.at(1).lang + first->State()->descriptions.at(1).text, "esotra");
    EXPECT_EQ(first->State()->ratings.at(0).values.at(1).text, "x");
}

TEST_F(MMTUsbdTest, NotCreated)
{
    EXPECT_FALSE(m_usbd.Create());
    CMMTUsbd fresh;
    std::string text;
    EXPECT_FALSE(fresh.GetsTSIDUri(text) || fresh.ServiceStatus() || fresh.GlobalServiceId() || fresh.State());
    EXPECT_EQ(fresh.ServiceId() + fresh.ComponentInfoSize() + fresh.LinkServiceId(), 0);
    EXPECT_EQ(TakeAssertions(), "!m; m; m; m; m; m; m");
}

}  // namespace
