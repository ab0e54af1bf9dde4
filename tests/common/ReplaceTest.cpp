// SetReplace, alike in every class whose lists pile up: off they do; on, a second input takes the place of the
// first, one that fails leaves what is held, and so does a table of another group.
#include "common/RSAT.h"
#include "esg/ESGServiceFragment.h"
#include "esg/SGDUParse.h"
#include "esg/SGResponse.h"
#include "lls/ParseAEAT.h"
#include "lls/ParseOnscreenNoti.h"
#include "lls/ParseRRT.h"
#include "lls/RRTMap.h"
#include "mmt/desc/MMTUsbd.h"
#include "route/SLS/DeliveryMethod.h"
#include "route/SLS/ROUTEUsbd.h"
#include "route/SLS/RS.h"
#include "route/SLS/STSID.h"
#include "support/Tables.h"

namespace {

/// What is the same in the tests of tables and of documents.
struct CSubject {
    virtual ~CSubject() = default;
    virtual void SetReplace(bool replace) = 0;
    virtual void Parse(const std::string& xml, unsigned char group) = 0;
    virtual int Count() = 0;
};

bool Create(CParseAEAT& parser)
{
    return parser.Create(nullptr);
}
template <class T>
bool Create(T& parser)
{
    return parser.Create();
}

template <class T>
struct CTableSubject : CSubject {
    explicit CTableSubject(int (*count)(T&)) : m_count(count) { EXPECT_TRUE(Create(m_parser)); }
    ~CTableSubject() override { m_parser.Destroy(); }
    void SetReplace(bool replace) override { m_parser.SetReplace(replace); }
    void Parse(const std::string& xml, unsigned char group) override
    {
        EXPECT_TRUE(
            Feed(m_parser, std::string("\1") + static_cast<char>(group) + '\0' + static_cast<char>(++m_version) + xml));
    }
    int Count() override { return m_count(m_parser); }

  private:
    T m_parser;
    int (*m_count)(T&);
    int m_version = 0;
};

template <class T>
struct CDocumentSubject : CSubject {
    explicit CDocumentSubject(int (*count)(T&)) : m_count(count) { EXPECT_TRUE(m_parser.Create()); }
    ~CDocumentSubject() override { m_parser.Destroy(); }
    void SetReplace(bool replace) override { m_parser.SetReplace(replace); }
    void Parse(const std::string& xml, unsigned char /*group*/) override
    {
        m_parser.Parse(xml.data(), static_cast<unsigned int>(xml.size()), false);
    }
    int Count() override { return m_count(m_parser); }

  private:
    T m_parser;
    int (*m_count)(T&);
};

class ReplaceTest : public CRecorder {};

TEST_F(ReplaceTest, PilesUpUntilToldNotTo)
{
    CTableSubject<CParseAEAT> aeat([](CParseAEAT& p) { return p.AEACount(); });
    CTableSubject<CParseOnscreenNoti> noti([](CParseOnscreenNoti& p) { return static_cast<int>(p.KSCCount()); });
    CTableSubject<CParseRRT> rrt([](CParseRRT& p) { return static_cast<int>(p.numOfRatingRegionTable()); });
    CDocumentSubject<CRSAT> rsat([](CRSAT& p) { return p.NumOfService(); });
    CDocumentSubject<CSTSID> stsid([](CSTSID& p) { return p.NumberOfRouteSessions(); });
    CDocumentSubject<CRS> rs([](CRS& p) { return p.State()->ls.Size(); });
    CDocumentSubject<CROUTEUsbd> usbd([](CROUTEUsbd& p) { return p.NumOfDeliveryMethod(); });
    CDocumentSubject<CDeliveryMethod> method([](CDeliveryMethod& p) { return p.State()->unicastAppSvcs.Size(); });
    CDocumentSubject<CMMTUsbd> mmt([](CMMTUsbd& p) { return p.ComponentInfoSize(); });
    CDocumentSubject<CSGDDParse> sgdd(
        [](CSGDDParse& p) { return static_cast<int>(p.State()->descriptorEntries.size()); });
    CDocumentSubject<CSGResponse> response(
        [](CSGResponse& p) { return static_cast<int>(p.State()->supportedVersions.size()); });
    const struct {
        CSubject& subject;
        std::string open, entry, close;
        bool table;
    } k_cases[] = {
        {aeat, "<AEAT>", "<AEA/>", "</AEAT>", true},
        {noti, "<OnscreenMessageNotification>", "<KeepScreenClear/>", "</OnscreenMessageNotification>", true},
        {rrt, "<RatingRegionTables>", "<RatingRegionTable/>", "</RatingRegionTables>", true},
        {rsat, "<RSAT timestamp='t'>", "<Service><Update/></Service>", "</RSAT>", false},
        {stsid, "<S-TSID>", "<RS><LS/></RS>", "</S-TSID>", false},
        {rs, "<RS>", "<LS/>", "</RS>", false},
        {usbd, "<BundleDescriptionROUTE><UserServiceDescription>", "<DeliveryMethod/>",
         "<ServiceLinkage/></UserServiceDescription></BundleDescriptionROUTE>", false},
        {method, "<DeliveryMethod>", "<UnicastAppService/>", "</DeliveryMethod>", false},
        {mmt, "<BundleDescriptionMMT><UserServiceDescription>", "<ComponentInfo componentProtectedFlag='true'/>",
         "<Channel/></UserServiceDescription></BundleDescriptionMMT>", false},
        {sgdd, "<ServiceGuideDeliveryDescriptor>", "<DescriptorEntry/>", "</ServiceGuideDeliveryDescriptor>", false},
        {response, "<SGResponse>", "<SupportedVersion>1</SupportedVersion>", "</SGResponse>", false},
    };
    for (const auto& c : k_cases) {
        const std::string one = c.open + c.entry + c.close;
        const std::string two = c.open + c.entry + c.entry + c.close;
        const auto count = [&c](const std::string& xml, unsigned char group) {
            c.subject.Parse(xml, group);
            return c.subject.Count();
        };
        EXPECT_EQ(count(one, 1), 1) << one;
        EXPECT_EQ(count(two, 1), 3) << one << " piles up";
        c.subject.SetReplace(true);
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
        }
        EXPECT_EQ(count(c.open + c.close, 1), c.table ? old + 2 : 0) << one;
        c.subject.SetReplace(false);
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
    aeat.Destroy();
    EXPECT_TRUE(TakeAssertions().empty());
    aeat.SetReplace(true);
    EXPECT_EQ(TakeAssertions(), "m");
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
    CSGDUParse sgdu;
    ASSERT_TRUE(sgdu.Create());
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
    EXPECT_TRUE(sgdu.State()->arrayHead.size() == 2 && sgdu.State()->arrayFragment.back().get() == last);
    sgdu.SetReplace(false);
    Feed(sgdu, unit("<Service id='e'/>", ""));
    EXPECT_EQ(sgdu.State()->arrayHead.size(), 4u);
    sgdu.Destroy();
}

TEST_F(ReplaceTest, RatingStoreStartsARegionAnew)
{
    CRRTMap map;
    ASSERT_TRUE(map.Create());
    char empty[] = "", text[] = "t", abbreviation[] = "a";
    const auto rated = [&] {
        return map.GetProgramRating(
            1, 0, empty, text, [](void*, char*) {}, nullptr);
    };
    EXPECT_TRUE(map.Add(1, 7) && map.SetDimension(1, 0, false) && map.SetRatingVal(1, 1) &&
                map.SetRatingValAbbrev(1, empty, abbreviation) && map.SetRatingValStr(1, empty, text));
    EXPECT_TRUE(map.Add(1, 8) && rated());
    map.SetReplace(true);
    EXPECT_TRUE(map.Add(1, 9) && !rated());
    map.Destroy();
}

}  // namespace
