#include "esg/SGDUParse.h"

#include "esg/ESGContentFragment.h"
#include "esg/ESGScheduleFragment.h"
#include "esg/ESGServiceFragment.h"
#include "support/MmtWriter.h"
#include "support/ParserTest.h"
#include "support/Patience.h"
#include "support/Show.h"
#include "support/Tables.h"

namespace {

std::string Header(unsigned int fragments)
{
    return CMmtBuilder().Put(32, 0x01020304).Put(16, 0x0506).Put(24, fragments).Bytes();
}

std::string Entry(unsigned int id, unsigned int offset)
{
    return CMmtBuilder().Put(32, id).Put(32, id + 1).Put(32, offset).Bytes();
}

/// A fragment as it stands in a unit: encoding, type, text.
struct SPart {
    int encoding;
    int type;
    std::string text;
};

std::string Unit(const std::vector<SPart>& parts, unsigned int origin = 100)
{
    std::string table = Header(static_cast<unsigned int>(parts.size()));
    std::string bytes;
    for (const SPart& part : parts) {
        table += Entry(static_cast<unsigned int>(10 * bytes.size()), origin + static_cast<unsigned int>(bytes.size()));
        bytes += static_cast<char>(part.encoding);
        if (part.encoding == 0) {
            bytes += static_cast<char>(part.type) + part.text;
        }
    }
    return table + bytes;
}

class SGDUParseTest : public TParserTest<CSGDUParse> {
  protected:
    /// Types of the fragments kept, with their ids; "-" for one that was not parsed.
    std::string Kept() const
    {
        std::string all;
        for (const auto& fragment : m_parser.State()->arrayFragment) {
            all += std::to_string(fragment->fragmentType);
            const CESGFragmentBase* parsed = fragment->fragment.get();
            if (const auto* service = dynamic_cast<const CESGServiceFragment*>(parsed)) {
                all += std::string("S") + service->State()->id.get();
            } else if (const auto* content = dynamic_cast<const CESGContentFragment*>(parsed)) {
                all += std::string("C") + content->State()->id.get();
            } else if (const auto* schedule = dynamic_cast<const CESGScheduleFragment*>(parsed)) {
                all += std::string("P") + schedule->State()->id.get();
            } else {
                all += "-";
            }
        }
        return all;
    }
};

const SPart k_service = {0, 1, "<Service id='a'/>"};
const SPart k_content = {0, 2, "<Content id='bb'/>"};
const SPart k_schedule = {0, 3, "<Schedule id='ccc'/>"};

TEST_F(SGDUParseTest, EveryField)
{
    ASSERT_TRUE(Feed(m_parser, Unit({k_schedule, k_service, k_content})));
    const CSGDUParse::SSGDUParse& state = *m_parser.State();
    EXPECT_EQ(Join(state.extensionOffset, state.reserved, state.nOServiceGuideFragments), Join(0x01020304, 0x0506, 3));
    ASSERT_EQ(state.arrayHead.size(), 3u);
    EXPECT_EQ(Join(state.arrayHead[1]->fragmentTransportID, state.arrayHead[1]->fragmentVersion,
                   state.arrayHead[1]->fragmentOffset),
              "220|221|122");
    EXPECT_EQ(Kept(), "3Pccc1Sa2Cbb");
    const CSGDUParse::SFragmentSGDU& second = *state.arrayFragment[1];
    EXPECT_EQ(second.length, k_service.text.size());
    EXPECT_STREQ(reinterpret_cast<const char*>(second.data.get()), k_service.text.c_str());
    EXPECT_EQ(Logged("[CSGDUParse::Parse] nOServiceGuideFragments=3"), 1);
    EXPECT_EQ(Logged("[CSGDUParse::Parse] m->arrayFragment.push_back() -a[2] "), 1);
    Renew();
    EXPECT_EQ(Join(Logged("create SGDU"), Logged("destroy SGDU"), Logged("[CESGContentFragment::Destroy]")), "2|1|1");
}

TEST_F(SGDUParseTest, OneBadFragmentCostsNoOther)
{
    static const struct {
        SPart bad;
        const char* logged;
        const char* kept;
    } k_cases[] = {
        {{0, 4, "<Access id='x'/>"}, "invalid fragment type", "1Sa2Cbb"},
        {{0, 1, "<Service/>"}, "new failure", "1Sa2Cbb"},
        {{0, 2, "<Service id='x'/>"}, "new failure", "1Sa2Cbb"},
        {{0, 3, "<"}, "new failure", "1Sa2Cbb"},
        {{1, 0, ""}, "[CSGDUParse::Parse] p_frag->fragmentEncoding =1", "1Sa0-2Cbb"},
    };
    for (const auto& c : k_cases) {
        Renew();
        s_log.clear();
        EXPECT_TRUE(Feed(m_parser, Unit({k_service, c.bad, k_content})));
        EXPECT_EQ(Kept(), c.kept);
        EXPECT_EQ(Logged(c.logged), 1) << c.logged;
        EXPECT_EQ(Logged("0 = p_xmlfrag - parse failed-a[1] "), c.bad.encoding == 0);
    }
    // Of another encoding only the encoding itself is stepped over, whatever the table says.
    Renew();
    const std::string between = std::string("\1") + '\0' + '\2' + "<Content id='n'/>";
    EXPECT_TRUE(Feed(m_parser, Header(2) + Entry(1, 0) + Entry(2, 500) + between));
    EXPECT_EQ(Kept(), "0-2Cn");
}

TEST_F(SGDUParseTest, OffsetsAndCountsThatLie)
{
    const std::string rest = std::string(1, '\0') + '\1' + k_service.text;
    static const struct {
        std::string unit;
        bool parsed;
        const char* kept;
        int logged;
    } k_cases[] = {
        {Header(0), true, "", 0},
        {Header(0).substr(0, 8), false, "", 0},
        {Header(0xFFFFFF) + "0123456789", false, "", 0},
        {Header(1) + Entry(1, 0), false, "", 1},
        {Header(1) + Entry(1, 0) + std::string(1, '\0'), false, "", 1},
        {Header(1) + Entry(1, 0) + std::string(1, '\0') + '\1', false, "", 1},  // no byte of XML
        {Header(1) + Entry(1, 0xFFFFFFFF) + rest, true, "1Sa", 0},              // the last has what is left
        {Header(2) + Entry(1, 100) + Entry(2, 102) + rest + rest, false, "", 1},
        {Header(2) + Entry(1, 102) + Entry(2, 100) + rest + rest, false, "", 1},
        {Header(2) + Entry(1, 100) + Entry(2, 119) + rest + rest, true, "1Sa1Sa", 0},
        {Header(2) + Entry(1, 0) + Entry(2, 0xFFFFFFFF) + rest + rest, false, "", 1},
        {Header(2) + Entry(1, 0) + Entry(2, 39) + rest + rest, false, "", 1},  // a byte more than there is
        {Header(3) + Entry(1, 0) + Entry(2, 19) + Entry(3, 19) + rest + rest, false, "1Sa", 1},
        {Header(2) + Entry(1, 0) + Entry(2, 19) + '\1', false, "0-", 1},  // the second has no encoding
    };
    for (const auto& c : k_cases) {
        Renew();
        s_log.clear();
        EXPECT_EQ(Feed(m_parser, c.unit), c.parsed) << &c - k_cases;
        EXPECT_EQ(Kept(), c.kept) << &c - k_cases;
        EXPECT_EQ(Logged("invalid offset -a["), c.logged) << &c - k_cases;
    }
    Renew();
    const std::string whole = Unit({k_service, k_content});
    for (std::size_t size = 1; size + k_content.text.size() < whole.size(); ++size) {
        EXPECT_FALSE(Feed(m_parser, whole.substr(0, size)));
    }
}

TEST_F(SGDUParseTest, SecondUnitIsCutWithTheOffsetsOfTheFirst)
{
    ASSERT_TRUE(Feed(m_parser, Unit({k_service, k_content})));
    EXPECT_TRUE(Feed(m_parser, Unit({k_service, k_schedule}, 7)));  // as long a first fragment
    EXPECT_EQ(Kept(), "1Sa2Cbb1Sa3Pccc");
    EXPECT_EQ(m_parser.State()->arrayHead.size(), 4u);
    s_log.clear();
    EXPECT_TRUE(Feed(m_parser, Unit({k_schedule, k_service})));  // cut three bytes early
    EXPECT_EQ(Kept(), "1Sa2Cbb1Sa3Pccc0-");
    EXPECT_EQ(Logged("new failure"), 1);
    Renew();
    EXPECT_TRUE(Feed(m_parser, Unit({k_schedule, k_service})));
    EXPECT_EQ(Kept(), "3Pccc1Sa");
}

TEST_F(SGDUParseTest, Compressed)
{
    const std::string unit = Unit({k_service, {0, 2, "<Content id='b'>" + std::string(200000, ' ') + "</Content>"}});
    const std::string gzip = Gzip(unit);
    m_parser.SetCompress(true);
    EXPECT_TRUE(Feed(m_parser, gzip));
    EXPECT_EQ(Kept(), "1Sa2Cb");
    EXPECT_FALSE(Feed(m_parser, unit));  // not gzip: taken for empty
    EXPECT_EQ(Join(m_parser.State()->extracted != nullptr, m_parser.State()->extractedSize), "1|0");
    EXPECT_FALSE(Feed(m_parser, "\x1F"));
    EXPECT_FALSE(Feed(m_parser, "\x1F\x8B"));
    EXPECT_EQ(Logged("inflate failure"), 0);

    // Cut off in the trailer or before: what came out is taken.
    for (const std::size_t cut : {gzip.size() - 1, gzip.size() - 9}) {
        Renew();
        m_parser.SetCompress(true);
        EXPECT_TRUE(Feed(m_parser, gzip.substr(0, cut)));
        EXPECT_EQ(Kept(), "1Sa2Cb");
    }
    std::string damaged = gzip;
    damaged[gzip.size() - 5] ^= 1;  // the checksum
    EXPECT_FALSE(Feed(m_parser, damaged));
    EXPECT_EQ(Join(Logged("inflate failure"), Logged("[CSGDUParse::Parse] Extra Data failed ")), "1|1");
    EXPECT_EQ(m_parser.State()->extracted, nullptr);

    // Without a trailer at a step's end: all is read when all is written, and whether that was all shows a step later.
    for (const std::size_t size : {51199u, 51200u, 51201u, 102400u}) {
        const std::string text = "<Content id='c'>" + std::string(size, ' ');
        const std::string step = Unit({{0, 2, text.substr(0, size - Unit({{0, 2, ""}}).size() - 10) + "</Content>"}});
        ASSERT_EQ(step.size(), size);
        const std::string packed = Gzip(step);
        Renew();
        m_parser.SetCompress(true);
        EXPECT_TRUE(Feed(m_parser, packed.substr(0, packed.size() - 8))) << size;
        EXPECT_EQ(Kept(), "2Cc") << size;
    }

    // The limit, and a byte less.
    for (const unsigned int missing : {0u, 1u}) {
        Renew();
        m_parser.SetCompress(true);
        m_parser.SetInflateLimit(static_cast<unsigned int>(unit.size()) - missing);
        EXPECT_EQ(Feed(m_parser, gzip + "what follows"), missing == 0);
    }
}

TEST_F(SGDUParseTest, ItemIsUsedAgain)
{
    // The unit in the gzip is a gzip itself: the second call reads what the first inflated.
    const std::string inner = Gzip(Unit({k_service}));
    const std::string outer = Gzip(inner);
    m_parser.SetCompress(true);
    for (const bool damaged : {false, true}) {
        std::string unit = damaged ? Gzip("?" + inner.substr(0, 12) + std::string(20, '\xFF')) : outer;
        const std::vector<unsigned char> block = Exact(unit);
        IParse::SItem item = {block.data(), static_cast<unsigned int>(block.size()),
                              static_cast<unsigned int>(block.size()) * 8, 0, true};
        EXPECT_FALSE(!damaged && m_parser.Parse(&item) && Kept() == "1Sa");
        item.buffer += damaged ? 1 : 0;
        item.size -= damaged ? 1 : 0;
        item.bitpos = 0;
        item.valid = true;
        EXPECT_EQ(m_parser.Parse(&item), !damaged);
        item.valid = true;
        EXPECT_FALSE(m_parser.Parse(&item));
    }
}

TEST_F(SGDUParseTest, EndlessGzipMeetsTheLimitQuickly)
{
    const std::string bomb = Gzip(std::string(64 << 20, '\0'));
    m_parser.SetCompress(true);
    m_parser.SetInflateLimit(1 << 20);
    const CPatience patience("64 MiB of zeros");
    EXPECT_FALSE(Feed(m_parser, bomb));
}

TEST_F(SGDUParseTest, Misuse)
{
    EXPECT_FALSE(m_parser.Create());
    EXPECT_FALSE(m_parser.Parse(nullptr));
    IParse::SItem item = {nullptr, 0, 0, 0, true};
    EXPECT_FALSE(m_parser.Parse(&item));
    {
        CSGDUParse fresh;
        fresh.SetCompress(true);
        fresh.SetInflateLimit(1);
        EXPECT_FALSE(fresh.Parse(&item));
        fresh.Destroy();
        EXPECT_EQ(fresh.State(), nullptr);
    }
    EXPECT_EQ(TakeAssertions(), "!m; item; item->buffer; m; m; m; m");
}

}  // namespace
