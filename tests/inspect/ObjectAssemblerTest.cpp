#include "wire/ObjectAssembler.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "Packets.h"

namespace {

using namespace vyr::inspect;
using packets::Lct;
using packets::Number;
using packets::SLct;

using TTexts = std::vector<std::string>;

/// Reads a packet from a heap block of exactly its size.
bool Read(const std::string& packet, SLctPacket& read, std::unique_ptr<unsigned char[]>& block)
{
    block.reset(new unsigned char[packet.size()]);
    std::copy(packet.begin(), packet.end(), block.get());
    return ReadLct({block.get(), packet.size()}, read);
}

TEST(Lct, FieldsOfEveryWidth)
{
    const std::string cci(4, '\xCC');
    const std::string data = Number(7, 4) + "data";
    const struct {
        const char* name;
        std::string packet;
        bool fine;
        std::uint64_t tsi = 0;
        TToi toi = {};
        std::int64_t length = -1;
        std::string text = "data";
    } cases[] = {
        {"TSI and TOI of 32 bits", Number(0x12A00400, 4) + cci + Number(9, 4) + Number(8, 4) + data, true, 9, {0, 8}},
        {"of 48 bits",
         Number(0x12B00500, 4) + cci + Number(0x900000001, 6) + Number(0x800000001, 6) + data,
         true,
         0x900000001,
         {0, 0x800000001}},
        {"of 16 bits", Number(0x12100300, 4) + cci + Number(9, 2) + Number(8, 2) + data, true, 9, {0, 8}},
        {"TOI of 112 bits, long CCI",
         Number(0x1EF00A00, 4) + std::string(16, 'c') + Number(1, 6) + Number(2, 6) + Number(3, 8) + data,
         true,
         1,
         {2, 3}},
        {"EXT_TOL, 24 bits", Lct({8, 7, 0xABCDEF}, "data"), true, 0, {0, 8}, 0xABCDEF},
        {"EXT_TOL, 48 bits",
         Number(0x12A00600, 4) + cci + Number(0, 4) + Number(8, 4) + Number(0x4302, 2) + Number(0x100000001, 6) + data,
         true,
         0,
         {0, 8},
         0x100000001},
        {"EXT_FTI behind others, EXT_TOL before it",
         Number(0x12A00800, 4) + cci + Number(0, 4) + Number(8, 4) + Number(0xC2000005, 4) + Number(0x02010000, 4) +
             Number(0x4002, 2) + Number(6, 6) + data,
         true,
         0,
         {0, 8},
         5},
        {"EXT_FTI alone",
         Number(0x12A00600, 4) + cci + Number(0, 4) + Number(8, 4) + Number(0x4002, 2) + Number(6, 6) + data,
         true,
         0,
         {0, 8},
         6},
        {"EXT_FTI of one word has no length",
         Number(0x12A00500, 4) + cci + Number(0, 4) + Number(8, 4) + Number(0x40010000, 4) + data,
         true,
         0,
         {0, 8}},
        {"a packet that closes the session", Number(0x10820300, 4) + cci + Number(9, 4), true, 9, {0, 0}, -1, ""},
        {"an extension of no words",
         Number(0x12A00500, 4) + cci + Number(0, 4) + Number(8, 4) + Number(0x02000000, 4) + data, false},
        {"an extension beyond the header",
         Number(0x12A00500, 4) + cci + Number(0, 4) + Number(8, 4) + Number(0x02020000, 4) + data, false},
        {"a header that ends in its TOI", Number(0x12A00300, 4) + cci + Number(0, 4) + Number(8, 4) + data, false},
        {"a header beyond the packet", Number(0x12A0FF00, 4) + cci + Number(0, 4) + Number(8, 4) + data, false},
        {"version 2", Number(0x22A00400, 4) + cci + Number(0, 4) + Number(8, 4) + data, false},
        {"no TSI", Number(0x12200300, 4) + cci + Number(8, 4) + data, false},
        {"source data without a TOI", Number(0x12800300, 4) + cci + Number(8, 4) + data, false},
        {"a start offset that is cut", Number(0x12A00400, 4) + cci + Number(9, 4) + Number(8, 4) + "abc", false},
        {"nothing behind the header", Number(0x12A00400, 4) + cci + Number(9, 4) + Number(8, 4), false},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        SLctPacket packet;
        std::unique_ptr<unsigned char[]> block;
        ASSERT_EQ(Read(test.packet, packet, block), test.fine);
        for (std::size_t size = 0; size < test.packet.size(); ++size) {
            SLctPacket cut;
            std::unique_ptr<unsigned char[]> cutBlock;
            Read(test.packet.substr(0, size), cut, cutBlock);
        }
        if (test.fine) {
            EXPECT_EQ(packet.tsi, test.tsi);
            EXPECT_EQ(packet.toi, test.toi);
            EXPECT_EQ(packet.transferLength ? static_cast<std::int64_t>(*packet.transferLength) : -1, test.length);
            EXPECT_EQ(std::string(reinterpret_cast<const char*>(packet.data.data), packet.data.size), test.text);
            EXPECT_EQ(packet.startOffset, test.text.empty() ? 0u : 7u);
        }
    }
    EXPECT_EQ(ToiText({0, 4294967295}), "4294967295");
    EXPECT_EQ(ToiText({2, 3}), "0x20000000000000003");
}

/// An assembler and what it delivered.
struct SRun {
    explicit SRun(CAssemblyMemory& memory)
        : assembler(memory, [this](const TToi&, SView object) {
              objects.emplace_back(reinterpret_cast<const char*>(object.data), object.size);
          })
    {
    }
    SRun& Take(const SLct& fields, const std::string& data)
    {
        SLctPacket packet;
        std::unique_ptr<unsigned char[]> block;
        EXPECT_TRUE(Read(Lct(fields, data), packet, block));
        assembler.Take(packet);
        return *this;
    }

    TTexts objects;
    CObjectAssembler assembler;
};

TEST(ObjectAssembler, BytesInAnyOrder)
{
    struct SStep {
        SLct fields;
        std::string data;
    };
    const struct {
        const char* name;
        std::vector<SStep> steps;
        TTexts objects;
        std::size_t open = 0;
        std::uint64_t dropped = 0;
        std::uint64_t tooLarge = 0;
    } cases[] = {
        {"in order", {{{1, 0, 6}, "abc"}, {{1, 3, 6}, "def"}}, {"abcdef"}},
        {"backwards", {{{1, 4, 6}, "ef"}, {{1, 2, 6}, "cd"}, {{1, 0, 6}, "ab"}}, {"abcdef"}},
        {"repeated packets", {{{1, 0, 6}, "abc"}, {{1, 0, 6}, "abc"}, {{1, 3, 6}, "def"}}, {"abcdef"}},
        {"overlaps on both sides, and over all",
         {{{1, 1, 8}, "bc"}, {{1, 5, 8}, "fg"}, {{1, 2, 8}, "cdef"}, {{1, 0, 8}, "abcdefgh"}},
         {"abcdefgh"}},
        {"a lost packet, and the next round", {{{1, 0, 6}, "ab"}, {{1, 4, 6}, "ef"}, {{1, 2, 6}, "cd"}}, {"abcdef"}},
        {"a lost packet", {{{1, 0, 6}, "ab"}, {{1, 4, 6}, "ef"}}, {}, 1},
        {"two objects at once",
         {{{1, 0, 4}, "ab"}, {{2, 0, 4}, "cd"}, {{1, 2, 4}, "AB"}, {{2, 2, 4}, "CD"}},
         {"abAB", "cdCD"}},
        {"the same TOI again, with other content", {{{1, 0, 2}, "ab"}, {{1, 0, 2}, "AB"}}, {"ab", "AB"}},
        {"other content before the first is whole",
         {{{1, 0, 4}, "ab"}, {{1, 0, 4}, "AB"}, {{1, 2, 4}, "CD"}},
         {"ABCD"},
         0,
         1},
        {"another length before the first is whole",
         {{{1, 0, 4}, "ab"}, {{1, 2, 5}, "cde"}, {{1, 0, 5}, "ab"}},
         {"abcde"},
         0,
         1},
        {"the last packet tells the length", {{{1, 3, -1, true}, "def"}, {{1, 0}, "abc"}}, {"abcdef"}},
        {"bytes beyond the last packet", {{{1, 3, -1, true}, "def"}, {{1, 6}, "g"}}, {}, 1, 1},
        {"a last packet before bytes that are there", {{{1, 6}, "g"}, {{1, 3, -1, true}, "def"}}, {}, 1, 1},
        {"no length", {{{1, 0}, "abc"}}, {}, 1},
        {"bytes beyond the length", {{{1, 3, 5}, "def"}}, {}, 0, 0, 1},
        {"the largest object there is", {{{1, 8388607}, "a"}}, {}, 1},
        {"a larger one", {{{1, 8388608}, "a"}, {{1, 0, 8388609}, "a"}}, {}, 0, 0, 2},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        CAssemblyMemory memory;
        SRun run(memory);
        for (const SStep& step : test.steps) {
            run.Take(step.fields, step.data);
        }
        EXPECT_EQ(run.objects, test.objects);
        EXPECT_EQ(run.assembler.Open().size(), test.open);
        EXPECT_EQ(run.assembler.Counts().dropped, test.dropped);
        EXPECT_EQ(run.assembler.Counts().tooLarge, test.tooLarge);
    }
}

TEST(ObjectAssembler, HoldsABoundedAmount)
{
    const std::string large(65000, 'x');
    CAssemblyMemory memory;
    std::vector<std::unique_ptr<SRun>> runs;
    for (int i = 0; i < 5; ++i) {
        runs.push_back(std::make_unique<SRun>(memory));
        for (unsigned toi = 0; toi < 300; ++toi) {
            runs.back()->Take({toi, 1}, large);
        }
    }
    // 16 MiB are 257 of these, 64 MiB are 1028: the last run's first object is the oldest to go.
    EXPECT_EQ(runs[4]->assembler.Open().size(), 257u);
    EXPECT_EQ(runs[3]->assembler.Open().size(), 257u);
    EXPECT_EQ(runs[0]->assembler.Open().size(), 0u);
    std::size_t open = 0;
    for (const auto& run : runs) {
        open += run->assembler.Open().size();
        EXPECT_EQ(run->assembler.Open().size() + run->assembler.Counts().dropped, 300u);
    }
    EXPECT_EQ(open, 1028u);
    EXPECT_EQ(runs[4]->assembler.Open().front().toi.second, 43u);
    // Pieces of one byte cost more than their byte.
    SRun small(memory);
    for (unsigned i = 0; i < 70000; ++i) {
        small.Take({1, 2 * i}, "x");
    }
    EXPECT_EQ(small.assembler.Counts().dropped, 1u);
    runs.clear();
    SRun next(memory);
    for (unsigned toi = 0; toi < 257; ++toi) {
        next.Take({toi, 1}, large);
    }
    EXPECT_EQ(next.assembler.Open().size(), 257u) << "what was held is given back";
}

}  // namespace
