// SetReplace, alike in every class whose lists pile up: off they do; on, a second input takes the place of the
// first, one that fails leaves what is held, and so does a table of another group.
#include <functional>
#include <memory>

#include "common/RSAT.h"
#include "esg/ESGServiceFragment.h"
#include "esg/SGDUParse.h"
#include "esg/SGResponse.h"
#include "lls/ParseAEAT.h"
#include "lls/ParseCDT.h"
#include "lls/ParseOnscreenNoti.h"
#include "lls/ParseRRT.h"
#include "lls/RRTMap.h"
#include "mmt/desc/MMTUsbd.h"
#include "route/SLS/DeliveryMethod.h"
#include "route/SLS/ROUTEUsbd.h"
#include "route/SLS/RS.h"
#include "route/SLS/STSID.h"
#include "support/ParserTest.h"
#include "support/Show.h"
#include "support/Tables.h"

namespace {

/// A parser of tables or of documents, with a document of entries that it lists.
struct SSubject {
    std::function<void(bool replace)> setReplace;
    std::function<void(const std::string& xml, unsigned char group)> parse;
    std::function<int()> count;
    std::string open, entry, close;
    bool table;
};

template <class T, auto... TArguments>
SSubject Subject(int (*count)(T&), const char* open, const char* entry, const char* close)
{
    constexpr bool k_table = std::is_base_of_v<IParse, T>;
    const std::shared_ptr<T> parser(new T, [](T* object) {
        object->Destroy();
        delete object;
    });
    EXPECT_TRUE(parser->Create(TArguments...));
    const auto parse = [parser](const std::string& xml, unsigned char group) {
        if constexpr (k_table) {
            static unsigned char s_version = 0;
            const std::string header = {'\1', static_cast<char>(group), '\0', static_cast<char>(++s_version)};
            EXPECT_TRUE(Feed(*parser, header + xml));
        } else {
            static_cast<XMLBase&>(*parser).Parse(xml.data(), static_cast<unsigned int>(xml.size()), false);
        }
    };
    return {[parser](bool replace) { parser->SetReplace(replace); },
            parse,
            [parser, count] { return count(*parser); },
            open,
            entry,
            close,
            k_table};
}

using ReplaceTest = CRecorder;

TEST_F(ReplaceTest, PilesUpUntilToldNotTo)
{
    const SSubject k_cases[] = {
        Subject<CParseAEAT, nullptr>([](CParseAEAT& p) { return p.AEACount(); }, "<AEAT>", "<AEA/>", "</AEAT>"),
        Subject<CParseOnscreenNoti>([](CParseOnscreenNoti& p) { return static_cast<int>(p.KSCCount()); },
                                    "<OnscreenMessageNotification>", "<KeepScreenClear/>",
                                    "</OnscreenMessageNotification>"),
        Subject<CParseRRT>([](CParseRRT& p) { return static_cast<int>(p.numOfRatingRegionTable()); },
                           "<RatingRegionTables>", "<RatingRegionTable/>", "</RatingRegionTables>"),
        Subject<CParseCDT>(
            [](CParseCDT& p) {
                std::list<std::string> certificates, responses;
                EXPECT_EQ(Join(p.GetCertificates(certificates), p.GetOCSPResponse(responses)), "1|1");
                return static_cast<int>(certificates.size() + responses.size());
            },
            "<CertificationData>", "<Certificates/>", "</CertificationData>"),
        Subject<CRSAT>([](CRSAT& p) { return p.NumOfService(); }, "<RSAT timestamp='t'>",
                       "<Service><Update/></Service>", "</RSAT>"),
        Subject<CSTSID>([](CSTSID& p) { return p.NumberOfRouteSessions(); }, "<S-TSID>", "<RS><LS/></RS>", "</S-TSID>"),
        Subject<CRS>([](CRS& p) { return p.State()->ls.Size(); }, "<RS>", "<LS/>", "</RS>"),
        Subject<CROUTEUsbd>([](CROUTEUsbd& p) { return p.NumOfDeliveryMethod(); },
                            "<BundleDescriptionROUTE><UserServiceDescription>", "<DeliveryMethod/>",
                            "<ServiceLinkage/></UserServiceDescription></BundleDescriptionROUTE>"),
        Subject<CDeliveryMethod>([](CDeliveryMethod& p) { return p.State()->unicastAppSvcs.Size(); },
                                 "<DeliveryMethod>", "<UnicastAppService/>", "</DeliveryMethod>"),
        Subject<CMMTUsbd>([](CMMTUsbd& p) { return p.ComponentInfoSize(); },
                          "<BundleDescriptionMMT><UserServiceDescription>",
                          "<ComponentInfo componentProtectedFlag='true'/>",
                          "<Channel/></UserServiceDescription></BundleDescriptionMMT>"),
        Subject<CSGDDParse>([](CSGDDParse& p) { return static_cast<int>(p.State()->descriptorEntries.size()); },
                            "<ServiceGuideDeliveryDescriptor>", "<DescriptorEntry/>",
                            "</ServiceGuideDeliveryDescriptor>"),
        Subject<CSGResponse>([](CSGResponse& p) { return static_cast<int>(p.State()->supportedVersions.size()); },
                             "<SGResponse>", "<SupportedVersion>1</SupportedVersion>", "</SGResponse>"),
    };
    for (const SSubject& c : k_cases) {
        const std::string one = c.open + c.entry + c.close;
        const std::string two = c.open + c.entry + c.entry + c.close;
        const auto count = [&c](const std::string& xml, unsigned char group) {
            c.parse(xml, group);
            return c.count();
        };
        EXPECT_EQ(count(one, 1), 1) << one;
        EXPECT_EQ(count(two, 1), 3) << one << " piles up";
        c.setReplace(true);
        const int old = c.table ? 3 : 0;  // what came before stays in a table's parser
        EXPECT_EQ(count(two, 1), old + 2) << one;
        EXPECT_EQ(count(one, 1), old + 1) << one;
        EXPECT_EQ(count(c.open + c.entry, 1), old + 1) << one << " leaves what is held when it is cut";
        if (c.table) {
            EXPECT_EQ(count("<Other>" + c.entry + "</Other>", 1), old + 1) << one;
            EXPECT_EQ(count(two, 2), old + 3) << one << " of another group";
            std::string many = c.open;
            for (int i = 0; i < TCParseLLS::k_maxPerGroup; ++i) {
                many += c.entry;
            }
            s_log.clear();
            EXPECT_EQ(count(many + c.close, 1), old + 2 + TCParseLLS::k_maxPerGroup) << one;
            EXPECT_EQ(Logged("records dropped"), 0);
            EXPECT_EQ(count(many + c.entry + c.close, 1), old + 2 + TCParseLLS::k_maxPerGroup) << one;
            EXPECT_EQ(Logged("records dropped"), 1);
            for (unsigned char group = 3; group < 40; ++group) {  // with nothing to hold, and cut
                count(c.open + c.close, group);
                count(c.open + c.entry, group);
            }
            EXPECT_EQ(count(one, 41), old + 3 + TCParseLLS::k_maxPerGroup) << one << " of one group more";
            EXPECT_EQ(count(c.open + c.close, 41), old + 2 + TCParseLLS::k_maxPerGroup) << one;
        }
        EXPECT_EQ(count(c.open + c.close, 1), c.table ? old + 2 : 0) << one;
        c.setReplace(false);
        EXPECT_EQ(count(two, 1), c.table ? old + 4 : 2) << one << " piles up again";
    }
}

/// Entries inside entries count as well.
TEST_F(ReplaceTest, ListsInAlertsAndRegionsHaveAnEndToo)
{
    CParseAEAT aeat;
    ASSERT_TRUE(aeat.Create(nullptr));
    aeat.SetReplace(true);
    std::string media;
    for (int i = 0; i < TCParseLLS::k_maxPerGroup; ++i) {
        media += "<Media/>";
    }
    FeedXml(aeat, "<AEAT><AEA>" + media + "</AEA><AEA/></AEAT>");
    ASSERT_EQ(aeat.AEACount(), 1);
    EXPECT_EQ(static_cast<int>(aeat.GetAEA(0)->media.size()), TCParseLLS::k_maxPerGroup - 1);
    EXPECT_EQ(Logged("2 records dropped"), 1);
    // A live broadcast is none of a list, but its names are.
    for (const std::size_t left : {1u, 2u}) {
        FeedXml(aeat, "<AEAT><AEA>" + media.substr(left * 8) + "<LiveMedia><ServiceName/></LiveMedia></AEA></AEAT>");
        ASSERT_EQ(aeat.AEACount(), 1);
        ASSERT_TRUE(aeat.GetAEA(0)->liveMedia);
        EXPECT_EQ(aeat.GetAEA(0)->liveMedia->serviceNames.size(), left - 1);
    }
    aeat.Destroy();
    SCreated<CParseRRT> rrt;
    rrt.SetReplace(true);
    std::string dimensions;
    for (int i = 0; i < TCParseLLS::k_maxPerGroup - 3; ++i) {
        dimensions += "<Dimension/>";
    }
    const std::string last = "<Dimension><Rating/><Rating/></Dimension>";
    FeedXml(rrt, "<RatingRegionTables><RatingRegionTable>" + dimensions + last +
                     "</RatingRegionTable></RatingRegionTables>");
    const unsigned index = TCParseLLS::k_maxPerGroup - 3;
    EXPECT_EQ(rrt.numOfRating(0, index), 1);
    FeedXml(rrt, "<RatingRegionTables><RatingRegionTable>" + dimensions + "<Dimension/><Dimension/>" + last +
                     "</RatingRegionTable></RatingRegionTables>");
    EXPECT_EQ(rrt.numOfDimension(0), TCParseLLS::k_maxPerGroup - 1);
    EXPECT_TRUE(TakeAssertions().empty());
    aeat.SetReplace(true);
    EXPECT_EQ(TakeAssertions(), "m");
}

/// They count together, and a ToBeSignedData begins both anew in the midst of a table, whatever the groups.
TEST_F(ReplaceTest, CertificatesAndResponsesOfCdt)
{
    SCreated<CParseCDT> cdt;
    cdt.SetReplace(true);
    const auto texts = [&cdt](const std::string& content, char group = 1) {
        static char s_version = 0;
        Feed(cdt, std::string({6, group, 0, ++s_version}) + "<CertificationData>" + content + "</CertificationData>");
        std::list<std::string> certificates, responses;
        EXPECT_EQ(Join(cdt.GetCertificates(certificates), cdt.GetOCSPResponse(responses)), "1|1");
        std::string all;
        for (const auto* list : {&certificates, &responses}) {
            for (const std::string& text : *list) {
                all += text + ' ';
            }
        }
        return all;
    };
    const std::string c = "<Certificates>c</Certificates>", r = "<OCSPResponse>r</OCSPResponse>";
    EXPECT_EQ(texts(c + c + r), "c c r ");
    EXPECT_EQ(texts(r), "r ");
    EXPECT_EQ(texts(c + r + "<ToBeSignedData>" + r + "</ToBeSignedData>" + c), "c r ");
    EXPECT_EQ(texts(""), "");
    std::string held;
    for (char group = 1; group <= TCParseLLS::k_maxGroups; ++group) {
        EXPECT_EQ(texts(c, group), held += "c ");
    }
    EXPECT_EQ(texts(c, TCParseLLS::k_maxGroups + 1), held);
    EXPECT_EQ(texts("<ToBeSignedData>" + c + "</ToBeSignedData>", TCParseLLS::k_maxGroups + 1), "c ");
    EXPECT_EQ(texts(c, 1), "c c ");
}

TEST_F(ReplaceTest, UnitsAreCutWithTheirOwnOffsets)
{
    // Fragments of two units, the second of which is longer in front.
    const auto unit = [](const std::string& first, const std::string& second) {
        std::string bytes("\0\0\0\0\0\0\0\0\2", 9);
        for (const std::size_t offset : {std::size_t{0}, first.size() + 2}) {
            bytes += std::string(11, '\0') + static_cast<char>(offset);
        }
        return bytes + std::string("\0\1", 2) + first + std::string("\0\1", 2) + second;
    };
    SCreated<CSGDUParse> sgdu;
    sgdu.SetReplace(true);
    const char* const k_ids[] = {"a", "longer", "much longer"};
    for (const std::string id : k_ids) {
        EXPECT_TRUE(Feed(sgdu, unit("<Service id='" + id + "'/>", "<Service id='" + id + "2'/>")));
        ASSERT_EQ(sgdu.State()->arrayFragment.size(), 2u);
        const auto* second = static_cast<const CESGServiceFragment*>(sgdu.State()->arrayFragment[1]->fragment.get());
        EXPECT_EQ(second->State()->id.get(), id + "2");
    }
    const auto* last = sgdu.State()->arrayFragment.back().get();
    EXPECT_FALSE(Feed(sgdu, unit("<Service id='e'/>", "")));
    EXPECT_EQ(sgdu.State()->arrayHead.size(), 2u);
    EXPECT_EQ(sgdu.State()->arrayFragment.back().get(), last);
    sgdu.SetReplace(false);
    Feed(sgdu, unit("<Service id='e'/>", ""));
    EXPECT_EQ(sgdu.State()->arrayHead.size(), 4u);
}

TEST_F(ReplaceTest, RatingStoreStartsARegionAnew)
{
    SCreated<CRRTMap> map;
    char empty[] = "", text[] = "t", abbreviation[] = "a";
    const auto rated = [&] {
        return map.GetProgramRating(
            1, 0, empty, text, [](void*, char*) {}, nullptr);
    };
    EXPECT_EQ(Each({map.Add(1, 7), map.SetDimension(1, 0, false), map.SetRatingVal(1, 1),
                    map.SetRatingValAbbrev(1, empty, abbreviation), map.SetRatingValStr(1, empty, text)}),
              "11111");
    EXPECT_EQ(Each({map.Add(1, 8), rated()}), "11");
    map.SetReplace(true);
    EXPECT_EQ(Each({map.Add(1, 9), rated()}), "10");
}

}  // namespace
