#include <gtest/gtest.h>

#include <string>

#include "Findings.h"
#include "GuideObjects.h"
#include "MmtCaptures.h"

namespace {

using namespace packets;

std::string Region(int region, const std::string& dimensions)
{
    return "<RatingRegionTable regionIdentifier='" + std::to_string(region) + "'>" + dimensions +
           "</RatingRegionTable>";
}

std::string Children(int region, int dimension)
{
    return "<ContentAdvisoryRatings><RegionIdentifier>" + std::to_string(region) +
           "</RegionIdentifier><RatingDimVal><RatingDimension>" + std::to_string(dimension) +
           "</RatingDimension><RatingValueString>V</RatingValueString></RatingDimVal></ContentAdvisoryRatings>";
}

std::string Rating(const std::string& element, const std::string& value, const std::string& scheme = "RRT")
{
    return "<" + element + " schemeIdUri=\"tag:atsc.org,2016:XMLSchemas/ATSC3/" + scheme + "\" value=\"" + value +
           "\"/>";
}

struct SRatingCase {
    const char* broken;
    std::string mpd;
    std::string stsid = {};
    std::string guide = {};
    std::string usbd = {};
    std::string regions = Region(1, "<Dimension/><Dimension/>") + Region(5, "<Dimension/>");
    unsigned groups = 1;
};

std::string Capture(const SRatingCase& one)
{
    const std::string package =
        "<S-TSID><RS><LS tsi='20'><SrcFlow rt='false'><ContentInfo><MediaInfo>" + one.stsid +
        "</MediaInfo></ContentInfo></SrcFlow></LS></RS></S-TSID>\n"
        "<MPD xmlns='urn:mpeg:dash:schema:mpd:2011'><Period><AdaptationSet mimeType='video/mp4'>" +
        one.mpd + "<Representation id='v' bandwidth='9'/></AdaptationSet></Period></MPD>\n";
    const std::string usbd = "<BundleDescriptionMMT><UserServiceDescription globalServiceID='urn:g' serviceId='1'>" +
                             one.usbd + "</UserServiceDescription></BundleDescriptionMMT>";
    CCapture capture(1);
    capture.AddLls(Slt(MmtService(1, 6001) + MmtService(4, 6004, 1), 1, 0, one.groups));
    capture.AddSession(Lct({1, 0, -1, true}, package), 6004);
    capture.AddSession(Lct({1, 0, -1, true, 20}, guide::Unit({{2, guide::Fragment("Content", "c", 1, one.guide)}})),
                       6004);
    capture.AddSession(Mmtp({}, MmtMessage(0x8100, 32, MmtAtsc3(1, usbd))), 6001);
    if (!one.regions.empty()) {
        capture.AddLls(Number(0x02000001, 4) + "<RatingRegionTables>" + one.regions + "</RatingRegionTables>");
    }
    return capture.Bytes();
}

TEST(RatingRules, EachIsBrokenAlone)
{
    const char* const dimension = "rating-dimension-unknown";
    const char* const region = "rating-region-unknown";
    const std::string none = {};
    const SRatingCase cases[] = {
        {"", Rating("Rating", "1,'TV',{0 'A'}{1 'B'}"), Rating("ContentRating", "5,'TV',{0 'A'}"), Children(1, 1),
         Children(5, 0)},
        {dimension, Rating("Rating", "1,'TV',{0 'A'}{2 'B'}")},
        {dimension, none, Rating("ContentRating", "5,'TV',{1 'B'}")},
        {dimension, none, none, Children(5, 1)},
        {dimension, none, none, none, Children(1, 2)},
        {"", Rating("Rating", "1,'TV {2 x}',{2}{2 'B'}") + Rating("Rating", "1,'TV',{7 'B'}", "other")},
        {region, Rating("Rating", "6,'TV',{0 'A'}")},
        {region, none, none, none, Children(6, 0)},
        {"", Rating("Rating", "2,'TV',{0 'A'}{9 'A'}")},
        {"", Rating("Rating", "6,'TV',{0 'A'}") + Rating("Rating", "1,'TV',{9 'A'}"), none, none, none, "-"},
        {"", Rating("Rating", "6,'TV',{0 'A'}"), none, none, none, none, 2},
    };
    int place = -1;
    for (SRatingCase one : cases) {
        ++place;
        one.regions = one.regions == "-" ? none : one.regions.empty() ? SRatingCase().regions : one.regions;
        EXPECT_EQ(Findings(Capture(one), {"rating-", "guide-not", "document-not", "message-not"}), Only(one.broken))
            << "case " << place;
    }
}

}  // namespace
