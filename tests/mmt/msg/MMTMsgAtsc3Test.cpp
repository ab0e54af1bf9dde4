#include "mmt/msg/MMTMsgAtsc3.h"

#include "common/RSAT.h"
#include "mmt/desc/MMTDesc.h"
#include "mmt/desc/MMTUsbd.h"
#include "mmt/table/MMTTblSi.h"
#include "support/MmtBuilder.h"
#include "support/Show.h"

namespace {

/// An ATSC 3.0 message; what it announces may differ from what is in it.
struct SMessage {
    unsigned int type = 0;
    std::string content = "";
    unsigned int compression = 1;
    long long announced = -1;  // content length; -1: the content's
    std::string uri = "";

    std::string Bytes() const
    {
        CMmtBuilder b;
        b.Put(16, 0x8100).Put(8, 3).Open(32).Put(16, 1001).Put(16, type).Put(8, 4).Put(8, compression);
        b.Open(8).Put(uri).Close().Put(32, announced < 0 ? content.size() : static_cast<std::uint64_t>(announced));
        return b.Put(content).Close().Bytes();
    }
};

/// What GetContent gives: the text, or "null", and the length.
std::string Content(const CMMTMsgAtsc3& message)
{
    std::string told;
    const auto tell = [](void* user, unsigned char* data, unsigned int length) {
        auto& text = *static_cast<std::string*>(user);
        text = data ? std::string(reinterpret_cast<char*>(data), length) + (data[length] == 0 ? "" : "!")
                    : "null " + std::to_string(length);
    };
    EXPECT_TRUE(message.GetContent(tell, &told));
    return told;
}

std::string Tags(CMMTMsgAtsc3& message)
{
    std::string tags;
    const auto tell = [](void* user, CMMTDesc* desc) {
        *static_cast<std::string*>(user) += std::to_string(desc->Tag()) + " ";
    };
    EXPECT_TRUE(message.GetDescriptors(tell, &tags));
    return tags;
}

/// Bytes that do not compress.
std::string Noise(std::size_t size)
{
    std::string text;
    for (std::uint32_t value = 1; text.size() < size; value = value * 1664525 + 1013904223) {
        text += static_cast<char>('A' + (value >> 24) % 26);
    }
    return text;
}

const std::string k_usbd =
    "<bundleDescriptionMMT><userServiceDescription globalServiceID='g' serviceId='5'/></bundleDescriptionMMT>";
const std::string k_rsat = "<RSAT timestamp='t'><Service/></RSAT>";
const std::string k_desc = CMmtBuilder().Put(16, 14).Put(16, 0).Bytes();

class MMTMsgAtsc3Test : public CRecorder {};

TEST_F(MMTMsgAtsc3Test, ContentStaysWhileACallbackHasIt)
{
    struct SHost {
        CMMTMsgAtsc3 message;
        const std::string bytes = SMessage{2, "<MPD/>", 1, -1, "uri"}.Bytes();
    } host;
    ASSERT_TRUE(SFed(host.message, host.bytes).result);
    const auto parse = [](void* user, unsigned char* data, unsigned int) {
        SHost& h = *static_cast<SHost*>(user);
        EXPECT_FALSE(SFed(h.message, h.bytes).result);
        EXPECT_EQ(data[0], '<');
    };
    EXPECT_TRUE(host.message.GetContent(parse, &host));
    EXPECT_EQ(TakeAssertions(), "!m_visiting");
    EXPECT_TRUE(SFed(host.message, host.bytes).result);
}

TEST_F(MMTMsgAtsc3Test, Header)
{
    CMMTMsgAtsc3 message;
    EXPECT_EQ(Join(message.ClassType(), message.SITable()->TableId(), message.SITable()->ClassType()),
              Join(CMMTMsg::CLASS_TYPE_ATSC3, 0xFF, 5));
    const std::string bytes = SMessage{2, "<MPD/>", 1, -1, "uri"}.Bytes();
    const SFed fed(message, bytes + "behind");
    EXPECT_EQ(Join(fed.result, fed.Cursor(), message.Process()), Join(1, bytes.size(), 1));
    EXPECT_EQ(Join(message.Id(), message.Version(), message.Length()), Join(0x8100, 3, bytes.size() - 7));
    EXPECT_EQ(Join(message.ServiceId(), message.ContentType(), message.ContentVersion(), message.ContentCompression(),
                   message.ContentLength()),
              "1001|2|4|1|6");
    EXPECT_STREQ(message.Uri(), "uri");
    EXPECT_EQ(Content(message), "<MPD/>");
    EXPECT_EQ(Logged("m_content_type[2], version[3], m_content_version[4]"), 1);
    message.Dump();
    DumpUnseen(message);
    EXPECT_EQ(Logged("MSGID:33024, VER:3 LENGTH:20"), 1);
    EXPECT_EQ(Logged("type [2]"), 1);
    // Again, with neither URI nor content: nothing of the first is left.
    EXPECT_TRUE(SFed(message, SMessage{2, "", 1}.Bytes()).result);
    EXPECT_EQ(message.Uri(), nullptr);
    EXPECT_EQ(Content(message), "null 0");
    EXPECT_EQ(Join(message.GetContent(nullptr, nullptr), message.GetDescriptors(nullptr, nullptr)), "0|0");
    EXPECT_EQ(TakeAssertions(), "callback; callback");
}

TEST_F(MMTMsgAtsc3Test, EveryCutFailsOrIsSafe)
{
    const std::string bytes = SMessage{9, k_desc + k_desc, 1, -1, "uri"}.Bytes();
    for (std::size_t size = 1; size < bytes.size(); ++size) {
        CMMTMsgAtsc3 message;
        EXPECT_FALSE(SFed(message, bytes.substr(0, size)).result);
        std::string shorter = bytes.substr(0, size);
        if (size >= 7) {
            // The same with a length that agrees: what is not there is absent.
            shorter.replace(3, 4, CMmtBuilder().Put(32, size - 7).Bytes());
            EXPECT_TRUE(SFed(message, shorter).result);
            EXPECT_EQ(Tags(message).size(), size < bytes.size() - 4 ? 0u : 3u);
        }
    }
    EXPECT_EQ(Logged("[CMMTMsgAtsc3::Parse] Item size ERROR len[7], length[22]"), 1);
}

TEST_F(MMTMsgAtsc3Test, ContentTypes)
{
    const std::string gzipUsbd = Gzip(k_usbd);
    const std::string gzipMpd = Gzip("<MPD/>");
    const struct {
        SMessage message;
        bool result;
        std::string content;
    } k_cases[] = {
        {{1, k_usbd, 1}, true, k_usbd},
        {{1, gzipUsbd, 2}, true, gzipUsbd},  // inflated by the document's own parser
        {{1, k_usbd, 2}, true, k_usbd},
        {{1, "", 2}, true, "null 0"},
        {{2, gzipMpd, 2}, true, "<MPD/>"},
        {{2, gzipMpd, 1}, true, gzipMpd},
        {{2, gzipMpd + "tail", 2}, true, "<MPD/>"},
        {{2, Gzip(""), 2}, true, "null 0"},
        {{2, "<MPD/>", 2}, true, "<MPD/>"},                            // no gzip signature
        {{2, gzipMpd.substr(0, 20), 2}, true, gzipMpd.substr(0, 20)},  // no end of the stream
        {{2, "\x1F", 2}, false, "null 1"},
        {{2, "\x1F\x8B", 2}, true, "\x1F\x8B"},
        {{2, "", 2}, false, "null 0"},
        {{3, "x", 2}, false, "null 1"},
        {{2, gzipMpd, 2, 0x80000}, true, "<MPD/>"},  // told longer than it is
        {{2, gzipMpd, 2, 0x80001}, false, "null 524289"},
        {{2, "<MPD/>", 2, 0x80000}, true, "null 524288"},
        {{2, "<MPD/>", 1, 0x80001}, true, "null 524289"},
        {{2, "<MPD/>", 1, 0xFFFFFFFF}, true, "null 4294967295"},
        {{9, k_desc, 1, 0xFFFFFFFF}, true, "null 4294967295"},
        {{11, k_rsat, 1}, true, k_rsat},
        {{11, Gzip(k_rsat), 2}, true, k_rsat},
        {{11, "", 1}, true, ""},
        {{11, Gzip(""), 2}, true, "null 0"},
    };
    for (const auto& c : k_cases) {
        SCOPED_TRACE(std::to_string(c.message.type) + " " + std::to_string(c.message.compression) + " " +
                     std::to_string(c.message.content.size()) + " " + std::to_string(c.message.announced));
        CMMTMsgAtsc3 message;
        const SFed fed(message, c.message.Bytes());
        EXPECT_EQ(fed.result, c.result);
        EXPECT_EQ(Content(message), c.content);
        EXPECT_TRUE(c.content.compare(0, 4, "null") == 0 || fed.Cursor() == fed.item.size);
    }
    EXPECT_EQ(Logged("Prepare uncompress Fail length["), 4);
    EXPECT_EQ(Logged("Prepare uncompress Fail length[524289]"), 1);
}

TEST_F(MMTMsgAtsc3Test, InflationLimit)
{
    const std::string most = Noise(0x80000);
    for (const bool over : {false, true}) {
        const std::string stream = Gzip(most + (over ? "x" : ""));
        CMMTMsgAtsc3 message;
        const SFed fed(message, SMessage{2, stream, 2}.Bytes());
        EXPECT_EQ(Join(fed.result, fed.Cursor()), Join(1, fed.item.size));
        EXPECT_TRUE(Content(message) == (over ? stream : most)) << over;
    }
}

TEST_F(MMTMsgAtsc3Test, Documents)
{
    for (const SMessage& sent : {SMessage{1, k_usbd, 1}, SMessage{1, Gzip(k_usbd), 2}}) {
        CMMTMsgAtsc3 message;
        ASSERT_TRUE(SFed(message, sent.Bytes()).result);
        char* globalServiceId = nullptr;
        unsigned short serviceId = 0;
        EXPECT_EQ(Join(message.GetServiceInfo(&globalServiceId, serviceId), serviceId), "1|1001");
        EXPECT_STREQ(globalServiceId, "g");
        EXPECT_EQ(globalServiceId, message.UserServiceBundleDescription()->GlobalServiceId());
        EXPECT_EQ(message.UserServiceBundleDescription()->ServiceId(), 5);
    }
    CMMTMsgAtsc3 message;
    EXPECT_TRUE(SFed(message, SMessage{1, Gzip(k_usbd), 1}.Bytes()).result);  // not said to be compressed
    EXPECT_EQ(message.UserServiceBundleDescription()->GlobalServiceId(), nullptr);
    // A second and a third message in one object: safe, and the RSAT goes on with what it has.
    EXPECT_TRUE(SFed(message, SMessage{11, k_rsat, 1}.Bytes()).result);
    EXPECT_EQ(message.RSAT()->NumOfService(), 1);
    EXPECT_TRUE(SFed(message, SMessage{11, Gzip("<RSAT/>"), 2}.Bytes()).result);
    EXPECT_EQ(message.RSAT()->NumOfService(), 1);
    EXPECT_EQ(Content(message), "<RSAT/>");
}

TEST_F(MMTMsgAtsc3Test, DescriptorsByArray)
{
    CMMTMsgAtsc3 all;
    for (const unsigned int type : {13u, 12u, 8u, 5u, 9u}) {
        // The unknown tag ends the loop; the message does not mind.
        const std::string loop = CMmtBuilder().Put(16, type).Put(24, 0x100).Put(k_desc).Put(16, 0x8000).Bytes();
        for (const SMessage& sent : {SMessage{type, loop}, SMessage{type, Gzip(loop), 2}}) {
            CMMTMsgAtsc3 message;
            EXPECT_TRUE(SFed(message, sent.Bytes()).result);
            EXPECT_EQ(Tags(message), std::to_string(type) + " 14 ");
            EXPECT_EQ(Content(message).substr(0, 4), "null");
        }
        EXPECT_TRUE(SFed(all, SMessage{type, loop}.Bytes()).result);
    }
    EXPECT_EQ(Tags(all), "9 14 5 14 8 14 12 14 13 14 ");
    for (const unsigned int type : {0u, 3u, 4u, 6u, 7u, 10u, 14u, 65535u}) {
        CMMTMsgAtsc3 message;
        EXPECT_TRUE(SFed(message, SMessage{type, k_desc}.Bytes()).result);
        EXPECT_EQ(Tags(message), "");
        EXPECT_EQ(Logged("[CMMTMsgAtsc3::Parse] UNKNOWN descriptor [" + std::to_string(type) + "]"), 1);
    }
}

}  // namespace
