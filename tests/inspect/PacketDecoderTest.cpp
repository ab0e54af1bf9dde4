#include <gtest/gtest.h>
#include <pcap/dlt.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Packets.h"
#include "wire/LinkLayer.h"

namespace {

using namespace packets;
using vyr::inspect::CPacketDecoder;
using vyr::inspect::SDatagram;
using vyr::inspect::SPacketCounts;

/// Decodes packets, each from a heap block of exactly its size.
struct SRun {
    explicit SRun(int linkType)
        : decoder(linkType, [this](const SDatagram& datagram) {
              payloads.emplace_back(reinterpret_cast<const char*>(datagram.payload.data), datagram.payload.size);
              last = datagram;
          })
    {
    }
    SRun& Take(const std::string& packet, bool cut = false, const std::optional<vyr::inspect::STime>& time = {})
    {
        const std::unique_ptr<unsigned char[]> block(new unsigned char[packet.size()]);
        std::copy(packet.begin(), packet.end(), block.get());
        decoder.Decode({block.get(), packet.size()}, cut, time);
        return *this;
    }
    const SPacketCounts& Finish()
    {
        decoder.Finish();
        return decoder.Counts();
    }

    std::vector<std::string> payloads;
    SDatagram last;
    CPacketDecoder decoder;
};

const std::string k_text = "twenty-one bytes long";
using TTexts = std::vector<std::string>;

struct SLink {
    const char* name;
    int linkType;
    std::string before;
};

std::vector<SLink> Links()
{
    const std::string packet = Ipv4(Udp(k_text));
    const std::string eightTags = Ethernet("", {0x8100, 0x88A8, 0x9100, 0x8100, 0x8100, 0x8100, 0x8100, 0x8100, 0x800});
    const std::string alpLength = Number(packet.size(), 2);
    return {
        {"Ethernet", DLT_EN10MB, Ethernet("")},
        {"VLAN", DLT_EN10MB, Ethernet("", {0x8100, 0x0800})},
        {"eight tags", DLT_EN10MB, eightTags},
        {"cooked", DLT_LINUX_SLL, std::string(14, '\0') + Number(0x0800, 2)},
        {"cooked, VLAN", DLT_LINUX_SLL, std::string(14, '\0') + Number(0x8100, 2) + Number(5, 2) + Number(0x0800, 2)},
        {"cooked 2", DLT_LINUX_SLL2, Number(0x0800, 2) + std::string(18, '\0')},
        {"raw", DLT_RAW, ""},
        {"raw by its number in files", 101, ""},
        {"IPv4", DLT_IPV4, ""},
        {"loopback, big-endian", DLT_NULL, Number(2, 4)},
        {"loopback, little-endian", DLT_NULL, Number(0x02000000, 4)},
        {"loop", DLT_LOOP, Number(2, 4)},
        {"ALP", DLT_ATSC_ALP, alpLength},
        {"ALP, long header", DLT_ATSC_ALP, Number(0x0800 | packet.size(), 2) + Number(0, 1)},
        {"ALP, sub-stream and extension", DLT_ATSC_ALP,
         Number(0x0800 | packet.size(), 2) + Number(3, 1) + Number(9, 1) + Number(1, 1) + Number(2, 1) + "ext"}};
}

TEST(PacketDecoder, FindsTheDatagramBehindEachLinkLayer)
{
    for (const SLink& link : Links()) {
        SCOPED_TRACE(link.name);
        ASSERT_TRUE(CPacketDecoder::Knows(link.linkType));
        SRun run(link.linkType);
        run.Take(link.before + Ipv4(Udp(k_text))).Take(link.before + Ipv4(Udp("")) + std::string(k_text.size(), '\0'));
        EXPECT_EQ(run.payloads, TTexts({k_text, ""}));
        EXPECT_EQ(run.last.source, 0xC000020A);
        EXPECT_EQ(run.last.destination, k_lls);
        EXPECT_EQ(run.last.sourcePort, 40000);
        EXPECT_EQ(run.last.destinationPort, 4937);
        EXPECT_EQ(run.Finish().malformed, 0u);
    }
    EXPECT_FALSE(CPacketDecoder::Knows(DLT_IEEE802_11));
}

TEST(PacketDecoder, TakesNoPartOfAPacketForAPacket)
{
    for (const SLink& link : Links()) {
        const std::string packet = link.before + Ipv4(Udp(k_text));
        for (std::size_t length = 0; length < packet.size(); ++length) {
            SCOPED_TRACE(std::string(link.name) + ", " + std::to_string(length) + " bytes");
            SRun run(link.linkType);
            run.Take(packet.substr(0, length), true).Take(packet.substr(0, length), false);
            const SPacketCounts& counts = run.Finish();
            EXPECT_EQ(run.payloads.size(), 0u);
            EXPECT_EQ(counts.cut, 1u);
            EXPECT_EQ(counts.malformed, 1u);
        }
        // A capture that left out what stands behind the datagram, a checksum or padding, lost nothing of it.
        SRun whole(link.linkType);
        EXPECT_EQ(whole.Take(packet, true).payloads, TTexts({k_text})) << link.name;
        EXPECT_EQ(whole.Finish().cut, 0u) << link.name;
    }
}

TEST(PacketDecoder, CountsWhatItDoesNotRead)
{
    const std::string good = Ipv4(Udp(k_text));
    const std::string udp = Udp(k_text);
    const auto with = [](std::string packet, std::size_t at, const std::string& bytes) {
        return packet.replace(at, bytes.size(), bytes);
    };
    const auto udpOfLength = [&](std::size_t length) { return Ipv4(with(udp, 4, Number(length, 2))); };
    const struct {
        const char* name;
        int linkType;
        std::string packet;
        unsigned other;
        unsigned malformed;
        unsigned datagrams;
    } cases[] = {
        {"ARP", DLT_EN10MB, Ethernet(good, {0x0806}), 1, 0, 0},
        {"LLC length in place of a type", DLT_EN10MB, Ethernet(good, {0x0040}), 1, 0, 0},
        {"nine tags", DLT_EN10MB,
         Ethernet(good, {0x8100, 0x8100, 0x8100, 0x8100, 0x8100, 0x8100, 0x8100, 0x8100, 0x8100, 0x0800}), 1, 0, 0},
        {"loopback IPv6", DLT_NULL, Number(10, 4) + good, 1, 0, 0},
        {"IPv6", DLT_RAW, with(good, 0, "\x65"), 1, 0, 0},
        {"TCP", DLT_RAW, Ipv4(udp, {7, 0, 6}), 1, 0, 0},
        {"header of 16 bytes, a datagram behind them", DLT_RAW, with(Ipv4(Number(12, 2) + "0123456789"), 0, "\x44"), 0,
         1, 0},
        {"header past the end", DLT_RAW, with(good, 0, "\x4F"), 0, 1, 0},
        {"options", DLT_RAW, Ipv4(udp, {7, 0, 17, "optsopts"}), 0, 0, 1},
        {"total below the header", DLT_RAW, with(good, 2, Number(19, 2)), 0, 1, 0},
        {"total past the end", DLT_RAW, with(good, 2, Number(good.size() + 1, 2)), 0, 1, 0},
        {"bytes behind the packet", DLT_RAW, good + "trailer", 0, 0, 1},
        {"UDP length of 7", DLT_RAW, udpOfLength(7), 0, 1, 0},
        {"UDP length of 8", DLT_RAW, udpOfLength(8), 0, 0, 1},
        {"UDP length past the end", DLT_RAW, udpOfLength(udp.size() + 1), 0, 1, 0},
        {"UDP of 7 bytes", DLT_RAW, Ipv4(udp.substr(0, 7)), 0, 1, 0},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        SRun run(test.linkType);
        run.Take(test.packet);
        const SPacketCounts& counts = run.Finish();
        EXPECT_EQ(counts.otherProtocol, test.other);
        EXPECT_EQ(counts.malformed, test.malformed);
        EXPECT_EQ(counts.datagrams, test.datagrams);
        EXPECT_EQ(run.payloads.size(), test.datagrams);
    }
    SRun run(DLT_RAW);
    run.Take(udpOfLength(14));
    EXPECT_EQ(run.payloads, TTexts({k_text.substr(0, 6)})) << "the UDP length ends the payload";
}

constexpr unsigned k_more = 0x2000;

std::string Fragment(const std::string& datagram, std::size_t from, std::size_t size, unsigned id = 7)
{
    const std::size_t end = std::min(from + size, datagram.size());
    const unsigned more = end < datagram.size() ? k_more : 0;
    return Ipv4(datagram.substr(from, size), {id, static_cast<unsigned>(from / 8) | more});
}

const std::string k_long = Udp(std::string(16, 'a') + std::string(16, 'b') + "the end");

TEST(Fragments, JoinInEveryOrder)
{
    std::vector<std::string> parts = {Fragment(k_long, 0, 16), Fragment(k_long, 16, 16), Fragment(k_long, 32, 16)};
    std::sort(parts.begin(), parts.end());
    do {
        SRun run(DLT_RAW);
        for (const std::string& part : parts) {
            EXPECT_EQ(run.payloads.size(), 0u);
            run.Take(part);
        }
        EXPECT_EQ(run.payloads, TTexts({k_long.substr(8)}));
        EXPECT_EQ(run.Finish().incompleteDatagrams, 0u);
    } while (std::next_permutation(parts.begin(), parts.end()));
}

TEST(Fragments, WhatCameFirstStaysWhereTheyOverlap)
{
    std::string other = k_long;
    std::fill(other.begin() + 8, other.end(), '!');
    SRun run(DLT_RAW);
    run.Take(Fragment(k_long, 0, 24)).Take(Fragment(k_long, 0, 24)).Take(Fragment(other, 8, 24));
    run.Take(Fragment(k_long, 32, 16));
    EXPECT_EQ(run.payloads, TTexts({k_long.substr(8, 16) + "!!!!!!!!" + k_long.substr(32)}));
}

TEST(Fragments, TheSecondCopyOfADatagramIsNoSecondDatagram)
{
    const std::string other = Udp(std::string(39, 'c'));
    SRun run(DLT_RAW);
    for (const std::string& datagram : {k_long, k_long, other}) {
        run.Take(Fragment(datagram, 0, 32)).Take(Fragment(datagram, 32, 32));
    }
    EXPECT_EQ(run.payloads, TTexts({k_long.substr(8), other.substr(8)})) << "another datagram may use the id again";
    EXPECT_EQ(run.Finish().incompleteDatagrams, 0u);
    EXPECT_EQ(run.Finish().copies, 1u);
}

vyr::inspect::STime After(unsigned milliseconds)
{
    return {1800000000 + milliseconds / 1000, static_cast<std::int32_t>(milliseconds % 1000 * 1000000)};
}

TEST(Fragments, ThoseOfAnIdThatComesAgainAreNotMixed)
{
    const struct {
        unsigned others;
        unsigned milliseconds;
        unsigned datagrams;
    } cases[] = {{4095, 0, 1}, {4096, 0, 0}, {0, 15000, 1}, {0, 15001, 0}};
    for (const auto& test : cases) {
        SRun run(DLT_RAW);
        run.Take(Fragment(k_long, 0, 32), false, After(0));
        for (unsigned i = 0; i < test.others; ++i) {
            run.Take(Ipv4("tcp", {8, 0, 6}), false, After(0));
        }
        run.Take(Fragment(k_long, 32, 16), false, After(test.milliseconds));
        EXPECT_EQ(run.payloads.size(), test.datagrams) << test.others << ' ' << test.milliseconds;
        EXPECT_EQ(run.Finish().incompleteDatagrams, test.datagrams == 1 ? 0u : 2u);
    }
}

TEST(Datagrams, TheSecondCopyOfOneIsNoSecondOne)
{
    const auto packet = [](unsigned id, const std::string& text, std::uint32_t destination = k_lls) {
        return Ipv4(Udp(text), {id, 0, 17, "", destination});
    };
    const TTexts others(63, Ipv4("tcp", {8, 0, 6}));
    const auto around = [&](const TTexts& between) {
        TTexts packets = {packet(1, "a")};
        packets.insert(packets.end(), between.begin(), between.end());
        packets.push_back(packets.front());
        return packets;
    };
    TTexts more = others;
    more.push_back(others.front());
    const struct {
        const char* name;
        TTexts packets;
        unsigned datagrams;
        unsigned milliseconds = 0;  ///< between two of them
    } cases[] = {
        {"each twice", {packet(1, "a"), packet(1, "a"), packet(2, "a"), packet(2, "a")}, 2},
        {"all twice", {packet(1, "a"), packet(2, "a"), packet(3, "b"), packet(1, "a"), packet(2, "a")}, 3},
        {"sent twice", {packet(1, "a"), packet(2, "a")}, 2},
        {"without an id", {packet(0, "a"), packet(0, "a")}, 2},
        {"an id that stays", {packet(1, "a"), packet(1, "b"), packet(1, "b")}, 3},
        {"to two addresses", {packet(1, "a"), packet(1, "a", k_session)}, 2},
        {"63 packets between", around(others), 1},
        {"64 packets between", around(more), 2},
        {"0.1 s between", {packet(1, "a"), packet(1, "a")}, 1, 100},
        {"more", {packet(1, "a"), packet(1, "a")}, 2, 101},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        SRun run(DLT_RAW);
        unsigned now = 0;
        for (const std::string& one : test.packets) {
            run.Take(one, false, After(now));
            now += test.milliseconds;
        }
        EXPECT_EQ(run.payloads.size(), test.datagrams);
        const SPacketCounts& counts = run.Finish();
        EXPECT_EQ(counts.datagrams + counts.copies + counts.otherProtocol, test.packets.size());
    }
}

TEST(Fragments, MissingOnesCostTheirDatagramOnly)
{
    SRun run(DLT_RAW);
    run.Take(Fragment(k_long, 0, 16)).Take(Fragment(k_long, 32, 16));
    run.Take(Fragment(k_long, 16, 16, 8)).Take(Ipv4(Udp(k_text)));
    EXPECT_EQ(run.payloads, TTexts({k_text}));
    EXPECT_EQ(run.Finish().incompleteDatagrams, 2u);
}

TEST(Fragments, ContradictionsAreRefused)
{
    const struct {
        const char* name;
        std::vector<std::string> packets;
    } cases[] = {
        {"two ends", {Fragment(k_long, 32, 16), Ipv4("end", {7, 5})}},
        {"end before what is there", {Fragment(k_long, 16, 16), Ipv4("end", {7, 1})}},
        {"more behind the end", {Fragment(k_long, 32, 16), Ipv4("12345678", {7, 5 | k_more})}},
        {"odd size in the middle", {Ipv4("1234567", {7, k_more})}},
        {"nothing in it", {Ipv4("", {7, k_more})}},
        {"past the largest datagram", {Ipv4("12345678", {7, 0x1FFF})}},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        SRun run(DLT_RAW);
        for (const std::string& packet : test.packets) {
            run.Take(packet);
        }
        run.Take(Fragment(k_long, 0, 32)).Take(Fragment(k_long, 32, 16));
        EXPECT_EQ(run.payloads, TTexts({k_long.substr(8)})) << "the id is free again";
        EXPECT_EQ(run.Finish().malformed, 1u);
    }
}

TEST(Fragments, LargestDatagram)
{
    const std::string largest = Udp(std::string(65527, 'x'));
    SRun run(DLT_RAW);
    for (std::size_t at = 0; at < largest.size(); at += 1480) {
        run.Take(Fragment(largest, at, 1480));
    }
    EXPECT_EQ(run.payloads, TTexts({largest.substr(8)}));
}

TEST(Fragments, TheOldestOpenDatagramMakesRoom)
{
    for (const unsigned open : {64u, 65u}) {
        SRun run(DLT_RAW);
        for (unsigned id = 0; id < open; ++id) {
            run.Take(Fragment(k_long, 0, 32, id));
        }
        run.Take(Fragment(k_long, 32, 16, 0));
        EXPECT_EQ(run.payloads.size(), open == 64 ? 1u : 0u);
        run.Take(Fragment(k_long, 32, 16, 63));
        EXPECT_EQ(run.payloads.size(), open == 64 ? 2u : 1u);
    }
}

std::string AlpSegment(const std::string& data, unsigned sequence, bool last)
{
    return Number(0x1000 | data.size(), 2) + Number(sequence << 3 | (last ? 4u : 0u), 1) + data;
}

/// All components but the last stand in the table of lengths.
std::string AlpConcatenation(const TTexts& components)
{
    std::string data;
    std::uint64_t table = 0;
    int bits = 0;
    for (std::size_t i = 0; i < components.size(); ++i) {
        data += components[i];
        if (i + 1 < components.size()) {
            table = table << 12 | components[i].size();
            bits += 12;
        }
    }
    table <<= bits % 8;
    return Number(0x1800 | (data.size() & 0x7FF), 2) +
           Number(data.size() >> 11 << 4 | (components.size() - 2) << 1, 1) + Number(table, (bits + 7) / 8) + data;
}

TEST(Alp, JoinsSegments)
{
    const std::string packet = Ipv4(Udp(k_text), {0});
    const std::string parts[] = {AlpSegment(packet.substr(0, 20), 0, false),
                                 AlpSegment(packet.substr(20, 20), 1, false), AlpSegment(packet.substr(40), 2, true)};
    const struct {
        const char* name;
        std::vector<int> order;
        unsigned datagrams;
        unsigned incomplete;
    } cases[] = {{"in order, twice", {0, 1, 2, 0, 1, 2}, 2, 0},
                 {"middle lost", {0, 2, 0, 1, 2}, 1, 1},
                 {"start lost", {1, 2, 0, 1, 2}, 1, 0},
                 {"begun anew", {0, 0, 1, 2}, 1, 1},
                 {"end lost", {0, 1}, 0, 1},
                 {"end twice", {0, 1, 2, 2}, 1, 0}};
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        SRun run(DLT_ATSC_ALP);
        for (const int part : test.order) {
            run.Take(parts[part]);
        }
        EXPECT_EQ(run.payloads, TTexts(test.datagrams, k_text));
        EXPECT_EQ(run.Finish().incompleteDatagrams, test.incomplete);
    }
    SRun run(DLT_ATSC_ALP);
    run.Take(parts[0]).Take(parts[1].substr(0, 10), true).Take(parts[2]);
    EXPECT_EQ(run.payloads.size(), 0u) << "a cut segment breaks the packet";
}

TEST(Alp, TakesConcatenationsApart)
{
    const auto packet = [](const std::string& text) { return Ipv4(Udp(text)); };
    SRun run(DLT_ATSC_ALP);
    run.Take(AlpConcatenation({packet("1"), packet("2")}));
    run.Take(AlpConcatenation({packet("3"), packet("4"), packet(std::string(3000, '5'))}));
    EXPECT_EQ(run.payloads, TTexts({"1", "2", "3", "4", std::string(3000, '5')}));
    const std::string whole = AlpConcatenation({packet("1"), packet("2"), packet("3")});
    for (std::size_t length = 0; length < whole.size(); ++length) {
        run.Take(whole.substr(0, length));
    }
    EXPECT_EQ(run.payloads.size(), 5u);
    EXPECT_EQ(run.Finish().malformed, whole.size());
}

TEST(Alp, LongestPacket)
{
    const std::string packet = Ipv4(Udp(std::string(65507, 'x')));
    ASSERT_EQ(packet.size(), 65535u);
    SRun run(DLT_ATSC_ALP);
    run.Take(Number(0x0800 | (packet.size() & 0x7FF), 2) + Number(packet.size() >> 11 << 3, 1) + packet);
    EXPECT_EQ(run.payloads, TTexts({std::string(65507, 'x')}));
}

TEST(Alp, CountsOtherPackets)
{
    SRun run(DLT_ATSC_ALP);
    for (unsigned type = 1; type < 8; ++type) {
        run.Take(Number(type << 13 | 4, 2) + "data");
    }
    EXPECT_EQ(run.Finish().otherLinkPackets, 6u);
    EXPECT_EQ(run.Finish().compressed, 1u);
}

}  // namespace
