#include "mmt/desc/MMTUsbd.h"

#include "mmt/desc/MMTChannel.h"
#include "mmt/desc/MMTContentAdvisoryRatings.h"
#include "mmt/desc/MMTMpuComponent.h"
#include "mmt/desc/MMTName.h"
#include "mmt/desc/MMTRouteComponent.h"
#include "support/ParserTest.h"
#include "support/Show.h"

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
        EXPECT_EQ(Join(m_parser.CheckRouteComponent(), m_parser.GetsTSIDUri(text), text), "1|1|u");
        EXPECT_EQ(Join(m_parser.GetRouteComponentDestIp(address), address), "1|4026468865");
        EXPECT_EQ(Join(m_parser.GetRouteComponentSrcIp(address), address), Join(1, 0x0A010203));
        EXPECT_EQ(Join(m_parser.GetRouteComponentDestPort(port), port), "1|5000");
        EXPECT_EQ(state.routeComponent->State()->sTSIDMajorProtocolVersion, 1);
        EXPECT_EQ(state.routeComponent->State()->sTSIDMinorProtocolVersion, 2);
        EXPECT_EQ(Join(m_parser.CheckBroadbandComponent(), m_parser.GetFullMPDUri(text), text), "1|1|m");
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
            EXPECT_EQ(Join(m_parser.GetComponentType(index, type), m_parser.GetComponentRole(index, role)), "1|1");
            EXPECT_EQ(Join(m_parser.GetComponentId(index, id), m_parser.GetComponentName(index, name)), "1|1");
            return std::to_string(type) + std::to_string(role) + (m_parser.ComponentProtectedFlag(index) ? "!" : "") +
                   id + name;
        };
        EXPECT_EQ(Join(m_parser.ComponentInfoSize(), info(0), info(1)), "2|13!aAudio|00");
        char *first = nullptr, *second = nullptr;
        ASSERT_EQ(
            Join(m_parser.LanguageSize(), m_parser.GetLanguageInfo(0, &first), m_parser.GetLanguageInfo(1, &second)),
            "2|1|1");
        EXPECT_EQ(std::string(first) + second, "en ");
        EXPECT_EQ(Join(m_parser.LinkServiceId(), m_parser.ServiceCategory(), m_parser.LinkageType()), "7|2|3");
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
        EXPECT_EQ(Join(m_parser.ServiceId(), m_parser.ServiceStatus(),
                       m_parser.State()->givenServiceStatus.value_or(c.status)),
                  Join(c.serviceId, c.status, c.serviceId == 3 || c.status));
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
    EXPECT_EQ(Join(m_parser.CheckRouteComponent(), m_parser.CheckBroadbandComponent(), m_parser.GetsTSIDUri(text),
                   m_parser.GetFullMPDUri(text), m_parser.GetRouteComponentDestIp(address),
                   m_parser.GetRouteComponentSrcIp(address), m_parser.GetRouteComponentDestPort(port)),
              "0|0|0|0|0|0|0");
    for (const int index : {-1, 0}) {
        EXPECT_EQ(Join(m_parser.GetComponentType(index, number), m_parser.GetComponentRole(index, number),
                       m_parser.ComponentProtectedFlag(index), m_parser.GetComponentId(index, text),
                       m_parser.GetComponentName(index, text), m_parser.GetLanguageInfo(index, &language)),
                  "0|0|0|0|0|0");
    }
    EXPECT_EQ(Join(text, address, port, number, language == text.data()), "old|5|5|5|1");
    EXPECT_EQ(Join(m_parser.LinkServiceId(), m_parser.ServiceCategory(), m_parser.LinkageType(),
                   m_parser.ActivationTime(), m_parser.DeActivationTime()),
              "-1|-1|-1|-|-");
    EXPECT_FALSE(m_parser.GetRatingStringTable(ratings));
    EXPECT_EQ(Logged("[CMMTUsbd::GetRatingStringTable] Content Advisory Data not parsed"), 1);

    ASSERT_TRUE(ParseIn("<routeComponent/><broadbandComponent/><mpuComponent nextMmtPackageId='n'/>"));
    EXPECT_EQ(Join(m_parser.GetsTSIDUri(text), text, m_parser.GetRouteComponentDestIp(address), address,
                   m_parser.GetRouteComponentDestPort(port), port),
              "1||1|0|1|0");
    EXPECT_EQ(m_parser.State()->mpuComponent->State()->nextMMTPackageId, "n");
}

TEST_F(MMTUsbdTest, MissingProtectedFlagIsAsserted)
{
    ASSERT_TRUE(ParseIn("<ComponentInfo componentType='2' componentId='c'/>"));
    EXPECT_EQ(TakeAssertions(), "tempComponentProtectedFlag != nullptr");
    std::string id;
    EXPECT_EQ(Join(m_parser.GetComponentId(0, id), id, m_parser.ComponentProtectedFlag(0)), "1|c|0");
}

TEST_F(MMTUsbdTest, WrongRootLeavesEarlierResults)
{
    ASSERT_TRUE(ParseIn("<serviceLanguage>en</serviceLanguage><routeComponent sTSIDUri='u'/>"));
    for (const char* text :
         {"<bundleDescriptionROUTE><userServiceDescription serviceId='1'/></bundleDescriptionROUTE>", "<bundle"}) {
        EXPECT_FALSE(Parse(text)) << text;
    }
    std::string uri;
    EXPECT_EQ(Join(m_parser.ServiceId(), m_parser.LanguageSize(), m_parser.GetsTSIDUri(uri), uri), "9|1|1|u");
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
    EXPECT_EQ(Each({m_parser.GetLanguageInfo(0, nullptr), m_parser.Create()}), "00");
    EXPECT_EQ(TakeAssertions(), "language; !m");
}

}  // namespace
