#include "wire/Input.h"

#include <gtest/gtest.h>

#include "Packets.h"
#include "support/Gzip.h"
#include "support/Programs.h"

namespace {

using namespace packets;
using namespace vyr::inspect;

/// What becomes of a file of these bytes: how many packets, and why no more; or what it is otherwise.
std::string Read(const std::string& bytes)
{
    const CTemporary file(bytes);
    std::string text;
    int packets = 0;
    try {
        CInput input(file.Name());
        if (!input.IsCapture()) {
            const SView held = input.Bytes();
            text = std::string(held.data, held.data + held.size) == bytes ? "its bytes" : "other bytes";
        }
        for (SPacket packet; input.IsCapture() && input.Next(packet);) {
            ++packets;
        }
    } catch (const CInputError& error) {
        text = std::string(RuleName(error.Code())) + ": " + error.what();
    }
    return packets != 0 ? std::to_string(packets) + " packets" + (text.empty() ? "" : ", " + text) : text;
}

TEST(Input, CapturesAreReadCompressedAsWell)
{
    CCapture capture(1);
    for (int i = 0; i < 3000; ++i) {
        capture.AddLls("packet " + std::to_string(i * 7919));  // more than one step of inflating
    }
    const std::string& plain = capture.Bytes();
    const std::string whole = Gzip(plain);
    const std::string parts = Gzip(plain.substr(0, 1001)) + Gzip("") + Gzip(plain.substr(1001));
    // A gzip header with a name (flag 8) that is longer than what is read ahead.
    const std::string named = whole.substr(0, 3) + '\x08' + whole.substr(4, 6) + std::string(70000, 'n') + '\0';
    std::string damaged = whole;
    damaged[damaged.size() / 2] = static_cast<char>(~damaged[damaged.size() / 2]);
    std::string wrongSum = whole;
    wrongSum[wrongSum.size() - 5] = static_cast<char>(~wrongSum[wrongSum.size() - 5]);
    const std::string package = Gzip("<BundleDescriptionROUTE/>");
    const struct {
        const char* name;
        std::string bytes;
        std::string expected;
    } cases[] = {
        {"plain", plain, "3000 packets"},
        {"gzip", whole, "3000 packets"},
        {"in several members", parts, "3000 packets"},
        {"zeros behind it", whole + std::string(1000, '\0'), "3000 packets"},
        {"wrong check sum", wrongSum, "3000 packets, capture-damaged: its gzip data is damaged"},
        {"cut in its trailer", whole.substr(0, whole.size() - 1),
         "3000 packets, capture-damaged: its gzip data ends early"},
        {"compressed, of something else", package, "its bytes"},
        {"compressed twice", Gzip(whole), "its bytes"},
        {"shorter than a header", Gzip(plain.substr(0, 3)), "its bytes"},
        {"a name without end", named, "its bytes"},
        {"nothing but the magic", "\x1F\x8B", "its bytes"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(Read(test.bytes), test.expected) << test.name;
    }
    EXPECT_NE(Read(damaged).find("packets, capture-damaged: "), std::string::npos) << Read(damaged);
    const std::string half = Read(whole.substr(0, whole.size() / 2));
    EXPECT_NE(half.find("packets, capture-damaged: its gzip data ends early"), std::string::npos) << half;
}

}  // namespace
