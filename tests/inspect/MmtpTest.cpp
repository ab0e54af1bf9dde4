#include "wire/Mmtp.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "Packets.h"
#include "wire/MessageAssembler.h"

namespace {

using namespace vyr::inspect;
using packets::Mmtp;
using packets::Number;
using packets::SMmtp;

/// Bytes in a heap block of exactly their size.
struct SBlock {
    explicit SBlock(const std::string& text) : block(new unsigned char[text.size()]), bytes({block.get(), text.size()})
    {
        std::copy(text.begin(), text.end(), block.get());
    }

    std::unique_ptr<unsigned char[]> block;
    SView bytes;
};

std::string Text(SView bytes)
{
    return std::string(reinterpret_cast<const char*>(bytes.data), bytes.size);
}

TEST(Mmtp, HeaderOfEveryForm)
{
    const struct {
        const char* name;
        std::string packet;
        EMmtp result;
        std::size_t header = 12;
        std::int64_t counter = -1;
        std::string extension = {};
        unsigned flags = 0;
    } cases[] = {
        {"plain", Mmtp({9, 0, 3}, "data"), EMmtp::FINE},
        {"counter", Mmtp({9, 0, 3, 0x2000}, "data", Number(8, 4)), EMmtp::FINE, 16, 8},
        {"extension", Mmtp({9, 0, 3, 0x0200}, "data", Number(1, 2) + Number(2, 2) + "ex"), EMmtp::FINE, 18, -1, "ex"},
        {"both, and all other bits", Mmtp({9, 0, 3, 0x3FC0}, "data", Number(8, 4) + Number(1, 2) + Number(0, 2)),
         EMmtp::FINE, 20, 8, "", 0x3FC0},
        {"nothing behind the header", Mmtp({9, 0, 3}, "").substr(0, 12), EMmtp::FINE},
        {"version 1", "\x40", EMmtp::OTHER_VERSION},
        {"version 3", Mmtp({9, 0, 3, 0xC000}, "data"), EMmtp::OTHER_VERSION},
        {"no bytes", "", EMmtp::MALFORMED},
        {"an extension beyond the packet", Mmtp({9, 0, 3, 0x0200}, "data", Number(1, 2) + Number(7, 2)),
         EMmtp::MALFORMED},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        SMmtpPacket packet;
        ASSERT_EQ(ReadMmtp(SBlock(test.packet).bytes, packet), test.result);
        if (test.result != EMmtp::FINE) {
            continue;
        }
        const SBlock whole(test.packet);
        ReadMmtp(whole.bytes, packet);
        EXPECT_EQ(packet.type, 2u);
        EXPECT_EQ(packet.packetId, 3u);
        EXPECT_EQ(packet.timestamp, 0x12345678u);
        EXPECT_EQ(packet.sequenceNumber, 9u);
        EXPECT_EQ(packet.counter ? std::int64_t{*packet.counter} : -1, test.counter);
        EXPECT_EQ(Text(packet.extensionData), test.extension);
        EXPECT_EQ(packet.extension.has_value(), (test.packet[0] & 2) != 0);
        EXPECT_EQ(packet.fec, test.flags != 0 ? 3u : 0u);
        EXPECT_EQ(packet.randomAccess, test.flags != 0);
        EXPECT_EQ(Text(packet.payload), test.packet.substr(test.header));
        for (std::size_t size = 0; size < test.header; ++size) {
            SMmtpPacket cut;
            EXPECT_EQ(ReadMmtp(SBlock(test.packet.substr(0, size)).bytes, cut), EMmtp::MALFORMED) << size;
        }
    }
}

/// An assembler and what it delivered.
struct SRun {
    explicit SRun(CAssemblyMemory& memory)
        : assembler(memory, [this](std::uint16_t packetId, SView message) {
              messages.push_back(std::to_string(packetId) + ':' + Text(message));
          })
    {
    }
    bool Take(const SMmtp& fields, const std::string& data)
    {
        const SBlock block(Mmtp(fields, data));
        SMmtpPacket packet;
        EXPECT_EQ(ReadMmtp(block.bytes, packet), EMmtp::FINE);
        return assembler.Take(packet);
    }

    std::vector<std::string> messages;
    CMessageAssembler assembler;
};

constexpr unsigned k_first = 0x4000;
constexpr unsigned k_middle = 0x8000;
constexpr unsigned k_last = 0xC000;

TEST(MessageAssembler, WholeSeveralAndFragments)
{
    struct SStep {
        SMmtp fields;
        std::string data;
        bool fine = true;
    };
    const std::string two = Number(2, 2) + "ab" + Number(1, 2) + "c";
    const std::string wide = Number(2, 4) + "ab" + Number(1, 4) + "c";
    const struct {
        const char* name;
        std::vector<SStep> steps;
        std::vector<std::string> messages;
        std::uint64_t lost = 0;
        std::uint64_t repeated = 0;
    } cases[] = {
        {"whole", {{{1}, "ab"}, {{2, 0, 5}, "c"}}, {"0:ab", "5:c"}},
        {"several, 16-bit lengths", {{{1, 0x0100}, two}}, {"0:ab", "0:c"}},
        {"several, 32-bit lengths", {{{1, 0x0300}, wide}}, {"0:ab", "0:c"}},
        {"the second beyond the packet", {{{1, 0x0100}, two.substr(0, 6), false}}, {"0:ab"}},
        {"the second length cut", {{{1, 0x0300}, wide.substr(0, 6) + "\1\1\1", false}}, {"0:ab"}},
        {"padding behind them", {{{1, 0x0100}, two + std::string(3, '\0')}}, {"0:ab", "0:c"}},
        {"bytes behind them", {{{1, 0x0100}, two + Number(9, 3), false}}, {"0:ab", "0:c"}},
        {"of an FEC source packet", {{{1, 0x0100, 0, 0x0800}, two + "id.."}}, {"0:ab", "0:c"}},
        {"a length of 0", {{{1, 0x0100}, Number(0, 2) + two, false}}, {}},
        {"fragments", {{{1, k_first}, "a"}, {{2, k_middle}, "b"}, {{3, k_last}, "c"}}, {"0:abc"}},
        {"over the wrap of the number", {{{0xFFFFFFFF, k_first}, "a"}, {{0, k_last}, "b"}}, {"0:ab"}},
        {"two packet ids at once",
         {{{1, k_first}, "a"}, {{7, k_first, 5}, "A"}, {{2, k_last}, "b"}, {{8, k_last, 5}, "B"}},
         {"0:ab", "5:AB"}},
        {"the middle lost, and the next one",
         {{{1, k_first}, "a"}, {{3, k_last}, "c"}, {{4, k_first}, "d"}, {{5, k_last}, "e"}},
         {"0:de"},
         1},
        {"a middle lost among more",
         {{{1, k_first}, "a"}, {{3, k_middle}, "c"}, {{4, k_middle}, "d"}, {{5, k_last}, "e"}, {{6}, "w"}},
         {"0:w"},
         1},
        {"the first lost", {{{2, k_middle}, "b"}, {{3, k_last}, "c"}, {{4, k_last}, "d"}}, {}, 2},
        {"the last lost, a whole one next", {{{1, k_first}, "a"}, {{2}, "w"}, {{3, k_last}, "c"}}, {"0:w"}, 2},
        {"the last lost, a first one next",
         {{{1, k_first}, "a"}, {{2, k_first}, "b"}, {{3, k_last}, "c"}},
         {"0:bc"},
         1},
        {"the last still to come", {{{1, k_first}, "a"}}, {}, 1},
        {"repeated packets",
         {{{1, k_first}, "a"}, {{2, k_middle}, "b"}, {{2, k_middle}, "b"}, {{1, k_first}, "a"}, {{3, k_last}, "c"}},
         {"0:abc"},
         0,
         2},
        {"a whole one late", {{{1, k_first}, "a"}, {{3, k_last}, "c"}, {{2}, "w"}, {{2}, "w"}}, {"0:w"}, 1, 1},
        {"a fragment late", {{{1, k_first}, "a"}, {{3, k_last}, "c"}, {{2, k_middle}, "b"}}, {}, 1},
        {"a sender that begins anew", {{{100}, "a"}, {{36}, "b"}, {{37}, "c"}}, {"0:a", "0:b", "0:c"}},
        {"63 packets late is late, not anew",
         {{{100}, "a"}, {{37}, "b"}, {{37}, "b"}, {{101}, "c"}},
         {"0:a", "0:b", "0:c"},
         0,
         1},
        {"a fragment with several messages",
         {{{1, k_first}, "a"}, {{2, k_middle | 0x0100}, two, false}, {{3, k_last}, "c"}},
         {},
         1},
        {"nothing behind the signalling header",
         {{{1, k_first}, "a"}, {{2, k_last}, "", false}, {{3, k_last}, "c"}},
         {},
         1},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        CAssemblyMemory memory;
        SRun run(memory);
        for (const SStep& step : test.steps) {
            EXPECT_EQ(run.Take(step.fields, step.data), step.fine);
        }
        EXPECT_EQ(run.messages, test.messages);
        const SMessageCounts counts = run.assembler.Counts();
        EXPECT_EQ(counts.complete, test.messages.size());
        EXPECT_EQ(counts.lost, test.lost);
        EXPECT_EQ(counts.repeated, test.repeated);
        EXPECT_EQ(counts.dropped, 0u);
    }
}

TEST(MessageAssembler, HoldsABoundedAmount)
{
    const std::string piece(65536, 'x');
    CAssemblyMemory memory;
    const auto send = [&piece](SRun& run, unsigned packetId, unsigned pieces, const std::string& end) {
        for (unsigned i = 0; i < pieces; ++i) {
            run.Take({i, i == 0 ? k_first : k_middle, packetId}, piece);
        }
        run.Take({pieces, k_last, packetId}, end);
        run.Take({pieces + 1, 0, packetId}, "w");
    };
    SRun run(memory);
    send(run, 1, 15, piece);  // 1 MiB, the most there is
    send(run, 2, 16, "x");
    ASSERT_EQ(run.messages.size(), 3u);
    EXPECT_EQ(run.messages[0].size(), 1048576u + 2);
    EXPECT_EQ(run.messages[2], "2:w");
    EXPECT_EQ(run.assembler.Counts().dropped, 1u);
    EXPECT_EQ(run.assembler.Counts().lost, 0u);

    // 64 packet ids are followed, and 16 MiB held for them.
    for (unsigned packetId = 10; packetId < 75; ++packetId) {
        for (unsigned i = 0; i < 5; ++i) {
            run.Take({i, i == 0 ? k_first : k_middle, packetId}, piece);
        }
    }
    EXPECT_EQ(run.assembler.Counts().lost + run.assembler.Counts().dropped, 66u);
    EXPECT_GT(run.assembler.Counts().dropped, 14u);
    run.messages.clear();
    run.Take({5, k_last, 10}, "x");
    run.Take({5, k_last, 74}, "x");
    ASSERT_EQ(run.messages.size(), 1u) << "the oldest went";
    EXPECT_EQ(run.messages[0].size(), 5 * piece.size() + 4);
}

}  // namespace
