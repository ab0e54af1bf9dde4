#include "mmt/IdentifierUnit/IdentifierUnit0.h"
#include "mmt/IdentifierUnit/IdentifierUnit1.h"
#include "mmt/IdentifierUnit/IdentifierUnit2.h"
#include "mmt/IdentifierUnit/IdentifierUnit3.h"
#include "mmt/IdentifierUnit/IdentifierUnitPriv.h"
#include "mmt/element/MMTElementIdentifierMapping.h"
#include "mmt/element/MMTElementLocation.h"
#include "mmt/element/MMTElementMime.h"
#include "support/MmtBuilder.h"
#include "support/Show.h"

namespace {

class MMTElementTest : public CRecorder {
  protected:
    /// The last assertion or check failure must name this place.
    static void ExpectAsserted(const std::string& expression, const std::string& file, unsigned line)
    {
        ASSERT_EQ(s_assertions.size(), 1u);
        EXPECT_EQ(s_assertions[0].expression, expression);
        EXPECT_EQ(s_assertions[0].file, file);
        EXPECT_EQ(s_assertions[0].line, line);
        s_assertions.clear();
    }
};

std::string Hex(unsigned int value)
{
    char text[16];
    std::snprintf(text, sizeof text, "%x", value);
    return text;
}

/// What a unit answers, and a check that the getters that do not answer leave their output alone.
std::string Answers(const CLocationUnitBase& unit)
{
    std::string all;
    const auto add = [&all](const char* name, bool answered, const std::string& value) {
        all += answered ? std::string(all.empty() ? "" : " ") + name + "=" + value : "";
    };
    const auto number = [&](const char* name, auto getter, auto start) {
        auto value = start;
        const bool answered = (unit.*getter)(&value);
        EXPECT_TRUE(answered || value == start) << name;
        add(name, answered, Hex(value));
    };
    const auto words = [&](const char* name, auto getter) {
        unsigned short value[9] = {7, 7, 7, 7, 7, 7, 7, 7, 7};
        const bool answered = (unit.*getter)(value);
        EXPECT_EQ(Join(value[8], answered || value[0] == 7), "7|1") << name;
        EXPECT_FALSE((unit.*getter)(nullptr)) << name;
        std::string text;
        for (int i = 0; i < 8; ++i) {
            text += Hex(value[i]) + (i < 7 ? ":" : "");
        }
        add(name, answered, text);
    };
    const auto text = [&](const char* name, auto getter) {
        std::string value = "old";
        const bool answered = (unit.*getter)(value);
        EXPECT_TRUE(answered || value == "old") << name;
        add(name, answered, value);
    };
    number("packet", &CLocationUnitBase::GetPacketId, 0xABCDEFu);
    number("port", &CLocationUnitBase::GetDstPort, static_cast<unsigned short>(0xABCD));
    number("network", &CLocationUnitBase::GetNetworkId, static_cast<unsigned short>(0xABCD));
    number("ts", &CLocationUnitBase::GetMPEG2TsId, static_cast<unsigned short>(0xABCD));
    number("pid", &CLocationUnitBase::GetMPEG2PID, static_cast<unsigned short>(0xABCD));
    number("msg", &CLocationUnitBase::GetMsgId, static_cast<unsigned short>(0xABCD));
    number("src4", &CLocationUnitBase::GetIpv4SrcAddr, 0xABCDEFu);
    number("dst4", &CLocationUnitBase::GetIpv4DstAddr, 0xABCDEFu);
    words("src6", &CLocationUnitBase::GetIpv6SrcAddr);
    words("dst6", &CLocationUnitBase::GetIpv6DstAddr);
    text("url", &CLocationUnitBase::GetUrl);
    text("private", &CLocationUnitBase::GetPrivateLocationInfo);
    return all;
}

TEST_F(MMTElementTest, LocationsOfEveryType)
{
    const std::string v4("\xC0\xA8\x00\x01\xE0\x00\x17\x3C\x13\x88", 10);  // source, destination, port
    const std::string v6("\x20\x01\x0d\xb8\0\0\0\0\0\0\0\0\0\0\0\1\xFF\x0E\0\0\0\0\0\0\0\0\0\0\0\0\0\2\x13\x89", 34);
    const std::string raw = " src4=c0a80001 dst4=e000173c";
    const std::string swapped = " src4=100a8c0 dst4=3c1700e0";
    const std::string answers6 = " src6=2001:db8:0:0:0:0:0:1 dst6=ff0e:0:0:0:0:0:0:2";
    struct {
        int type;
        std::string bytes;
        std::string answers;
    } const k_cases[] = {
        {0x0, "\x12\x34", "packet=1234"},
        {0x1, v4 + "\x12\x34", "packet=1234 port=1388" + raw},
        {0x2, v6 + "\x12\x34", "packet=1234 port=1389" + answers6},
        {0x3, "\x11\x12\x21\x22\xFF\xFE", "network=1112 ts=2122 pid=1ffe"},
        {0x4, v6 + "\xE1\x23", "port=1389 pid=123" + answers6},
        {0x5, std::string("\3u\0l", 4), std::string("url=u\0l", 7)},
        {0x5, std::string("\0", 1), "url="},
        {0x6, std::string("\0\2pi", 4), "private=pi"},
        {0x7, "", ""},
        {0x8, "\x81\x01", "msg=8101"},
        {0x9, "\x12\x34\x81\x01", "packet=1234 msg=8101"},
        {0xA, v4 + "\x12\x34\x81\x01", "packet=1234 port=1388 msg=8101" + swapped},
        {0xB, v6 + "\x12\x34\x81\x01", "packet=1234 port=1389 msg=8101" + answers6},
        {0xC, v4 + "\xE1\x23", "port=1388 pid=123" + swapped},
    };
    for (const auto& c : k_cases) {
        SCOPED_TRACE(c.type);
        const std::string bytes = static_cast<char>(c.type) + c.bytes;
        CMMTElementLocation location;
        const SFed fed(location, bytes + "next");
        ASSERT_EQ(Join(fed.result, location.Location() != nullptr), "1|1");
        EXPECT_EQ(fed.Cursor(), bytes.size());
        EXPECT_EQ(location.LocationType(), static_cast<unsigned>(c.type));
        EXPECT_EQ(Answers(*location.Location()), c.answers);
        location.Dump();
        for (std::size_t size = 0; size < bytes.size(); ++size) {
            CMMTElementLocation cut;
            EXPECT_EQ(Each({SFed(cut, bytes.substr(0, size)).result, cut.Location() != nullptr}), "00") << size;
        }
        if (c.answers.find("packet") != std::string::npos) {
            EXPECT_FALSE(location.Location()->GetPacketId(nullptr));
            EXPECT_EQ(TakeAssertions(), "out");
        }
    }
}

TEST_F(MMTElementTest, CutUnitsAndGettersNames)
{
    const std::string whole("\xC0\xA8\x00\x01\xE0\x00\x17\x3C\x13\x88\x12\x34\x81\x01", 14);
    CLocationUnitA unit;
    EXPECT_EQ(Answers(unit), "packet=0 port=0 msg=0 src4=0 dst4=0");
    EXPECT_TRUE(SFed(unit, whole).result);
    EXPECT_FALSE(SFed(unit, whole.substr(0, 9)).result);
    EXPECT_EQ(Answers(unit), "packet=0 port=0 msg=0 src4=100a8c0 dst4=3c1700e0");
    EXPECT_FALSE(unit.GetMsgId(nullptr));
    EXPECT_EQ(Logged("GetMsgId("), 1);
    EXPECT_EQ(Logged("ASSERT!, Func:GetMsgId, Line:"), 1);
    EXPECT_EQ(TakeAssertions(), "out");
    const auto dumped = [](const CLocationUnitBase& of) {
        s_log.clear();
        of.Dump();
        std::string lines;
        for (const std::string& line : s_log) {
            EXPECT_NE(line.find(" Dump("), std::string::npos) << line;
            lines += line.substr(line.find("> "));
        }
        return lines;
    };
    EXPECT_EQ(dumped(unit),
              "> source [0xc0a80001] destination [0xe000173c]> destination port [0]> packet id [0]> message id [0]");
    CLocationUnitB unit6;
    for (const bool cut : {false, true}) {
        EXPECT_NE(SFed(unit6, std::string(cut ? 10 : 38, '\x11')).result, cut);
        unsigned short port = 0, message = 0;
        EXPECT_EQ(Join(unit6.GetDstPort(&port), unit6.GetMsgId(&message)), "1|1");
        EXPECT_EQ(Join(port, message), Join(0x1111, 0x1111)) << "its numbers stay when its addresses are cut";
    }
    CLocationUnit4 stream6;
    EXPECT_TRUE(
        SFed(stream6, std::string(15, '\0') + "\1\xFF\x0E" + std::string(14, '\0') + "\x13\x89\xE1\x23").result);
    EXPECT_EQ(dumped(stream6),
              "> source [0:0:0:0:0:0:0:1]> destination [ff0e:0:0:0:0:0:0:0]> destination port [5001]"
              "> reserved [7]> PID [291]");
    CLocationUnit3 stream;
    EXPECT_TRUE(SFed(stream, "\x11\x12\x21\x22\xFF\xFE").result);
    EXPECT_EQ(dumped(stream), "> network id [4370]> transport stream id [8482]> reserved [7]> PID [8190]");
    CLocationUnit6 own;
    EXPECT_TRUE(SFed(own, std::string("\0\2pi", 4)).result);
    EXPECT_EQ(dumped(own), "> private location info, bytes [2]");
    CLocationUnit5 url;
    EXPECT_EQ(Answers(url), "url=");
    EXPECT_TRUE(SFed(url, "\3abc").result);
    EXPECT_EQ(dumped(url), "> URL [abc]");
    EXPECT_FALSE(SFed(url, "\3ab").result);
    EXPECT_EQ(Answers(url), "url=");
    EXPECT_TRUE(CLocationUnit7().Parse(nullptr));
}

TEST_F(MMTElementTest, LocationsThatDoNotParse)
{
    for (const int type : {0x0D, 0xFF}) {
        CMMTElementLocation location;
        EXPECT_EQ(Each({SFed(location, static_cast<char>(type) + std::string(80, 'x')).result,
                        location.Location() != nullptr}),
                  "00");
        EXPECT_EQ(location.LocationType(), static_cast<unsigned>(type));
    }
    CMMTElementLocation location;
    EXPECT_TRUE(SFed(location,
                     "\x8"
                     "ab")
                    .result);
    EXPECT_TRUE(SFed(location, std::string("\0cd", 3)).result);
    ExpectAsserted("!m_pLocation", "src/mmt/element/MMTElementLocation", 23);
    EXPECT_EQ(Answers(*location.Location()), "packet=6364");
    EXPECT_EQ(Each({SFed(location, "\x0D").result, location.Location() != nullptr}), "00");
    ExpectAsserted("!m_pLocation", "src/mmt/element/MMTElementLocation", 23);
    EXPECT_FALSE(location.Parse(nullptr));
    CLocationUnitB unit;
    EXPECT_FALSE(unit.Parse(nullptr));
    EXPECT_EQ(TakeAssertions().substr(0, 10), "item; item");
}

TEST_F(MMTElementTest, AssetIds)
{
    const std::string id16("\x00\x11\x22\x33\x44\x55\x66\x77\x88\x99\xAA\xBB\xCC\xDD\xEE\xFF", 16);
    struct {
        std::string scheme;
        std::string bytes;
        std::string text;
    } const k_cases[] = {
        {std::string("uui\0", 4), id16, "00112233-4455-6677-8899-aabbccddeeff"},
        {std::string("uui\0", 4), id16.substr(0, 15), id16.substr(0, 15)},
        {std::string("\0\0\0\1", 4), id16, id16},
        {"urn ", "", ""},
    };
    for (const auto& c : k_cases) {
        const std::string bytes = CMmtBuilder().Put(c.scheme).Open(32).Put(c.bytes).Close().Bytes();
        CMMTElementAssetId id;
        EXPECT_EQ(id.AssetId(), nullptr);
        const SFed fed(id, bytes + "next");
        ASSERT_TRUE(fed.result);
        EXPECT_EQ(fed.Cursor(), bytes.size());
        EXPECT_EQ(std::string(id.AssetIdScheme(), id.AssetIdScheme() + 4), c.scheme);
        EXPECT_EQ(id.AssetIdLength(), c.bytes.size());
        EXPECT_EQ(std::string(id.AssetId(), id.AssetIdTextLength() + 1), c.text + '\0');
        for (std::size_t size = 0; size < bytes.size(); ++size) {
            CMMTElementAssetId cut;
            EXPECT_FALSE(SFed(cut, bytes.substr(0, size)).result) << size;
        }
    }
    CMMTElementAssetId id;
    EXPECT_FALSE(SFed(id, "urn \xFF\xFF\xFF\xFFx").result);
    EXPECT_FALSE(id.Parse(nullptr));
    EXPECT_EQ(TakeAssertions(), "item");
}

TEST_F(MMTElementTest, UrlLists)
{
    const std::string two("\1\0\3\0\3abc\0\0", 10);
    CMMTElementIdentifierMapping mapping;
    const SFed fed(mapping, two);
    ASSERT_EQ(Join(fed.result, fed.item.valid), "1|1");
    const auto* urls = dynamic_cast<CIdentifierUnit1*>(mapping.Identifier());
    ASSERT_NE(urls, nullptr);
    ASSERT_EQ(urls->UrlCount(), 2);
    EXPECT_STREQ(urls->Url(0), "abc");
    EXPECT_STREQ(urls->Url(1), "");
    EXPECT_EQ(urls->Url(2), nullptr);
    EXPECT_EQ(TakeAssertions(), "0 <= index && index < m_size");
    mapping.Dump();
    DumpUnseen(mapping);
    // As many as announced, and no more; none at all; a list cut inside a URL.
    EXPECT_EQ(SFed(mapping, std::string("\1\0\1\0\1a\0\1b", 9)).Cursor(), 6u);
    EXPECT_TRUE(SFed(mapping, std::string("\1\0\0", 3)).result);
    EXPECT_TRUE(SFed(mapping, "\1\xFF\xFF").result);
    for (const std::size_t size : {0u, 1u, 2u, 4u, 6u, 7u, 9u}) {
        EXPECT_EQ(Each({SFed(mapping, two.substr(0, size)).result, mapping.Identifier() != nullptr}), "00") << size;
    }
    EXPECT_EQ(Logged("src/mmt/element/MMTElementIdentifierMapping:43, m_identifier->Parse(item)"), 6);
}

TEST_F(MMTElementTest, IdentifiersWithALength)
{
    const std::string body("\0\3a\0c", 5);
    for (const int type : {2, 3, 4, 0xFF}) {
        SCOPED_TRACE(type);
        CMMTElementIdentifierMapping mapping;
        const SFed fed(mapping, static_cast<char>(type) + body + "next");
        ASSERT_EQ(Join(fed.result, mapping.IdentifierType(), fed.Cursor()), Join(1, type, 6));
        std::string held;
        if (const auto* regex = dynamic_cast<CIdentifierUnit2*>(mapping.Identifier())) {
            held = "2" + std::string(regex->Regex(), regex->RegexLength() + 1u);
        } else if (const auto* id = dynamic_cast<CIdentifierUnit3*>(mapping.Identifier())) {
            held = "3" + std::string(id->RepresentationId(), id->RepresentationIdLength() + 1u);
        } else if (const auto* bytes = dynamic_cast<CIdentifierUnitPriv*>(mapping.Identifier())) {
            held = "p" + std::string(bytes->Private(), bytes->PrivateLength() + 1u);
        }
        EXPECT_EQ(held, (type > 3 ? "p" : std::to_string(type)) + std::string("a\0c\0", 4));
        mapping.Dump();
        DumpUnseen(mapping);
        DumpUnseen(*mapping.Identifier());
        for (std::size_t size = 1; size <= body.size(); ++size) {
            EXPECT_FALSE(SFed(mapping, static_cast<char>(type) + body.substr(0, size - 1)).result);
            EXPECT_EQ(mapping.Identifier(), nullptr);
        }
    }
    CIdentifierUnit2 regex;
    CIdentifierUnit3 id;
    CIdentifierUnitPriv bytes;
    regex.Dump();  // of nothing yet
    id.Dump();
    EXPECT_EQ(Logged("[]"), 2);
    EXPECT_EQ(Each({SFed(regex, body).result, SFed(regex, body).result}), "11");
    ExpectAsserted("!m_regex", "src/mmt/IdentifierUnit/IdentifierUnit2", 10);
    EXPECT_EQ(Each({SFed(id, body).result, SFed(id, body).result}), "11");
    ExpectAsserted("!m_representationID", "src/mmt/IdentifierUnit/IdentifierUnit3", 14);
    EXPECT_EQ(Each({SFed(bytes, body).result, SFed(bytes, body).result}), "11");
    ExpectAsserted("!m_priv", "src/mmt/IdentifierUnit/IdentifierUnitPriv", 16);
    EXPECT_FALSE(bytes.Parse(nullptr));
    ExpectAsserted("item", "src/mmt/IdentifierUnit/IdentifierUnitPriv", 8);
}

TEST_F(MMTElementTest, MimeTypes)
{
    struct {
        const char* text;
        bool audio;
        bool video;
    } const k_cases[] = {{"video/mp4", false, true}, {"audio", true, false}, {"audiox", true, false},
                         {"vid", false, false},      {"audi", false, false}, {"Video/mp4", false, false},
                         {"", false, false}};
    for (const auto& c : k_cases) {
        const std::string bytes = CMmtBuilder().Open(8).Put(c.text).Close().Bytes();
        CMMTElementMime mime;
        EXPECT_FALSE(SFed(mime, bytes.substr(0, bytes.size() - 1)).result);
        EXPECT_TRUE(SFed(mime, bytes + "o/x").result);
        EXPECT_EQ(mime.MimeTypeLength(), bytes.size() - 1);
        EXPECT_STREQ(mime.MimeType(), c.text);
        EXPECT_EQ(mime.IsAudio(), c.audio) << c.text;
        EXPECT_EQ(mime.IsVideo(), c.video) << c.text;
    }
}

}  // namespace
