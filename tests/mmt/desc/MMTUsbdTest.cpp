#include "mmt/desc/MMTUsbd.h"

#include "mmt/desc/MMTChannel.h"
#include "mmt/desc/MMTContentAdvisoryRatings.h"
#include "mmt/desc/MMTMpuComponent.h"
#include "mmt/desc/MMTName.h"
#include "mmt/desc/MMTRouteComponent.h"
#include "support/ParserTest.h"

namespace {

class MMTUsbdTest : public TParserTest<CMMTUsbd> {
  protected:
    /// Under the user service description when there is one, else under the root.
    bool ParseIn(const std::string& elements, bool described = true)
    {
        const std::string open = described ? "<UserServiceDescription serviceId='9'>" : "";
        const std::string close = described ? "</UserServiceDescription>" : "";
        return Parse("<BundleDescriptionMMT>" + open + elements + close + "</BundleDescriptionMMT>");
    }
};

TEST_F(MMTUsbdTest, EveryElementAtBothPlaces)
{
    for (const bool described : {false, true}) {
        SCOPED_TRACE(described);
        Renew();
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
        const CMMTUsbd::SMMTUsbd& state = *m_parser.State();

        std::string text;
        unsigned int address = 0;
        unsigned short port = 0;
        EXPECT_TRUE(m_parser.CheckRouteComponent() && m_parser.GetsTSIDUri(text) && text == "u");
        EXPECT_TRUE(m_parser.GetRouteComponentDestIp(address) && address == 4026468865u);
        EXPECT_TRUE(m_parser.GetRouteComponentSrcIp(address) && address == 0x0A010203u);
        EXPECT_TRUE(m_parser.GetRouteComponentDestPort(port) && port == 5000);
        EXPECT_EQ(state.routeComponent->State()->sTSIDMajorProtocolVersion, 1);
        EXPECT_EQ(state.routeComponent->State()->sTSIDMinorProtocolVersion, 2);
        EXPECT_TRUE(m_parser.CheckBroadbandComponent() && m_parser.GetFullMPDUri(text) && text == "m");
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
            EXPECT_TRUE(m_parser.GetComponentType(index, type) && m_parser.GetComponentRole(index, role));
            EXPECT_TRUE(m_parser.GetComponentId(index, id) && m_parser.GetComponentName(index, name));
            return std::to_string(type) + std::to_string(role) + (m_parser.ComponentProtectedFlag(index) ? "!" : "") +
                   id + name;
        };
        EXPECT_TRUE(m_parser.ComponentInfoSize() == 2 && info(0) == "13!aAudio" && info(1) == "00");
        char *first = nullptr, *second = nullptr;
        ASSERT_TRUE(m_parser.LanguageSize() == 2 && m_parser.GetLanguageInfo(0, &first) &&
                    m_parser.GetLanguageInfo(1, &second));
        EXPECT_EQ(std::string(first) + second, "en ");
        EXPECT_TRUE(m_parser.LinkServiceId() == 7 && m_parser.ServiceCategory() == 2 && m_parser.LinkageType() == 3);
        EXPECT_EQ(std::string(m_parser.ActivationTime()) + m_parser.DeActivationTime(), "ad");
        EXPECT_EQ(m_parser.ServiceId(), described ? 9 : 0);
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
        EXPECT_STREQ(m_parser.GlobalServiceId(), c.globalServiceId);
        EXPECT_TRUE(m_parser.ServiceId() == c.serviceId && m_parser.ServiceStatus() == c.status &&
                    m_parser.State()->givenServiceStatus.value_or(c.status) == (c.serviceId == 3 || c.status));
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
    EXPECT_FALSE(m_parser.CheckRouteComponent() || m_parser.CheckBroadbandComponent() || m_parser.GetsTSIDUri(text) ||
                 m_parser.GetFullMPDUri(text) || m_parser.GetRouteComponentDestIp(address) ||
                 m_parser.GetRouteComponentSrcIp(address) || m_parser.GetRouteComponentDestPort(port));
    for (const int index : {-1, 0}) {
        EXPECT_FALSE(m_parser.GetComponentType(index, number) || m_parser.GetComponentRole(index, number) ||
                     m_parser.ComponentProtectedFlag(index) || m_parser.GetComponentId(index, text) ||
                     m_parser.GetComponentName(index, text) || m_parser.GetLanguageInfo(index, &language));
    }
    EXPECT_TRUE(text == "old" && address == 5 && port == 5 && number == 5 && language == text.data());
    EXPECT_TRUE(m_parser.LinkServiceId() == -1 && m_parser.ServiceCategory() == -1 && m_parser.LinkageType() == -1 &&
                !m_parser.ActivationTime() && !m_parser.DeActivationTime());
    EXPECT_FALSE(m_parser.GetRatingStringTable(ratings));
    EXPECT_EQ(Logged("[CMMTUsbd::GetRatingStringTable] Content Advisory Data not parsed"), 1);

    ASSERT_TRUE(ParseIn("<routeComponent/><broadbandComponent/><mpuComponent nextMmtPackageId='n'/>"));
    EXPECT_TRUE(m_parser.GetsTSIDUri(text) && text.empty() && m_parser.GetRouteComponentDestIp(address) &&
                address == 0 && m_parser.GetRouteComponentDestPort(port) && port == 0);
    EXPECT_EQ(m_parser.State()->mpuComponent->State()->nextMMTPackageId, "n");
}

TEST_F(MMTUsbdTest, MissingProtectedFlagIsAsserted)
{
    ASSERT_TRUE(ParseIn("<ComponentInfo componentType='2' componentId='c'/>"));
    EXPECT_EQ(TakeAssertions(), "tempComponentProtectedFlag != nullptr");
    std::string id;
    EXPECT_TRUE(m_parser.GetComponentId(0, id) && id == "c" && !m_parser.ComponentProtectedFlag(0));
}

TEST_F(MMTUsbdTest, WrongRootLeavesEarlierResults)
{
    ASSERT_TRUE(ParseIn("<serviceLanguage>en</serviceLanguage><routeComponent sTSIDUri='u'/>"));
    for (const char* text :
         {"<bundleDescriptionROUTE><userServiceDescription serviceId='1'/></bundleDescriptionROUTE>", "<bundle"}) {
        EXPECT_FALSE(Parse(text)) << text;
    }
    std::string uri;
    EXPECT_TRUE(m_parser.ServiceId() == 9 && m_parser.LanguageSize() == 1 && m_parser.GetsTSIDUri(uri) && uri == "u");
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
    ASSERT_TRUE(m_parser.GetRatingStringTable(ratings));
    EXPECT_EQ(ratings, (std::vector<std::string>{"kept", "1,'TV-PG-L',{0 'TV-PG'}{1 'L'}", "0,'',{0 ''}", "0,'',"}));
    const auto* first = static_cast<CMMTContentAdvisoryRatings*>(m_parser.State()->contentAdvisoryRatings.Data(0));
    EXPECT_EQ(first->State()->ratedDimensions, 2);
    EXPECT_EQ(first->State()->descriptions.at(1).lang + first->State()->descriptions.at(1).text, "esotra");
    EXPECT_EQ(first->State()->ratings.at(0).values.at(1).text, "x");
    EXPECT_FALSE(m_parser.GetLanguageInfo(0, nullptr) || m_parser.Create());
    EXPECT_EQ(TakeAssertions(), "language; !m");
}

}  // namespace
