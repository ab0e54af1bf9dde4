#include "measure/Traffic.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Packets.h"

namespace {

using namespace vyr::inspect;
using packets::Lct;
using packets::Mmtp;
using packets::Number;
using packets::SLct;

constexpr std::uint32_t k_from = 0xC000020A;
constexpr double k_noTime = -1e18;

/// A capture of one test: packets with their times, in seconds since it began.
class CAir {
  public:
    explicit CAir(CTraffic::TLength length = {}) : traffic(std::move(length)) {}

    void Send(double at, const std::string& payload, std::uint16_t port = 6001, std::uint32_t source = k_from)
    {
        const std::unique_ptr<unsigned char[]> block(new unsigned char[payload.size()]);
        std::copy(payload.begin(), payload.end(), block.get());
        const auto microseconds = std::llround((at + 1.8e9) * 1e6);
        std::optional<STime> time;
        if (at != k_noTime) {
            time = {microseconds / 1000000, static_cast<std::int32_t>(microseconds % 1000000) * 1000};
        }
        traffic.Take({source, packets::k_session, 40000, port, {block.get(), payload.size()}}, time);
    }
    void Announce(EDeliveryProtocol protocol, std::uint16_t port = 6001, std::uint32_t source = 0)
    {
        traffic.Announce({packets::k_session, port, source}, protocol, 7);
    }
    SDelivery Result() const { return traffic.Result({"file", 0, {}}); }

    CTraffic traffic;
};

std::string Show(double number)
{
    char text[40];
    std::snprintf(text, sizeof text, "%g", number);
    return text;
}

/// "packets bytes mean/peak gap bins".
std::string Show(const STraffic& traffic)
{
    std::string text = std::to_string(traffic.packets) + ' ' + std::to_string(traffic.bytes) + ' ';
    text += traffic.meanRate ? Show(*traffic.meanRate) + '/' + Show(*traffic.peakRate) : "-";
    text += ' ' + (traffic.gap ? Show(*traffic.gap) + '@' + Show(Seconds(*traffic.gapSince) - 1.8e9) : "-");
    text += " " + std::to_string(traffic.firstBin) + ':';
    for (const std::uint64_t bytes : traffic.bins) {
        text += ' ' + std::to_string(bytes);
    }
    return text;
}

TEST(Traffic, RatesGapsAndBins)
{
    constexpr double k_century = 3.2e9;
    const struct {
        const char* name;
        std::vector<std::pair<double, std::size_t>> packets;
        std::string shown;
        double seconds = 0;
        std::uint64_t set = 0;
    } cases[] = {
        {"one packet", {{0, 125}}, "1 125 - - 0: 125"},
        {"and no more for long", {{0, 125}, {0, 125}, {3, 1}}, "3 251 0.666667/2 3@0 0: 250 0 0 1", 3},
        {"all at once", {{0, 125}, {0, 125}}, "2 250 - 0@0 0: 250"},
        {"less than a second", {{0, 125}, {0.999, 125}}, "2 250 - 0.999@0 0: 250", 0.999},
        {"a second, and the next one not whole", {{0, 125}, {1, 250}}, "2 375 1/2 1@0 0: 125 250", 1},
        {"the longest gap is the first of its length",
         {{0, 125}, {0.5, 125}, {1.5, 125}, {2.5, 125}, {3, 1}},
         "5 501 1.33333/2 1@0.5 0: 250 125 125 1",
         3},
        {"out of order",
         {{0, 1}, {2.1, 250}, {1.9, 125}, {2.2, 125}, {4, 1}},
         "5 502 1.002/3 2.1@0 0: 1 125 375 0 1",
         4},
        {"back by a second", {{0, 1}, {2.5, 125}, {1.5, 125}, {3, 1}}, "4 252 0.669333/1 2.5@0 0: 1 125 125 1", 3},
        {"back by several seconds, a step of one at a time",
         {{0, 1}, {3.5, 125}, {2.5, 125}, {1.5, 1000}, {2.5, 1}, {3.5, 1}, {4.5, 1}},
         "7 1254 2.506/2.506 3.5@0 0: 1 1000 126 126 1",
         4.5},
        {"the clock was set back",
         {{0, 1}, {2.5, 125}, {1, 125}, {1.6, 1}},
         "4 252 0.669333/2 2.5@0 0: 1 0 250 1",
         3.1,
         1},
        {"on by an hour", {{0, 125}, {3600, 125}}, "2 250 0.000277778/1 3600@0 0: 125", 3600},
        {"by more, and back", {{0, 125}, {k_century, 125}, {1, 125}, {2, 1}}, "4 376 3/3 1@1 0: 375 1", 1, 2},
        {"no times", {{k_noTime, 125}, {k_noTime, 125}}, "2 250 - - 0:"},
        {"some", {{0, 125}, {k_noTime, 999}, {1.5, 1}}, "3 1125 1/1 1.5@0 0: 125 1", 1.5},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        CAir air;
        for (const auto& [at, bytes] : test.packets) {
            air.Send(at, std::string(bytes, '\xFF'));
        }
        const SDelivery delivery = air.Result();
        ASSERT_EQ(delivery.sessions.size(), 1u);
        std::string shown = Show(delivery.traffic);
        EXPECT_EQ(Show(delivery.sessions[0].traffic), shown);
        EXPECT_EQ(shown.substr(0, test.shown.size()), test.shown);
        EXPECT_DOUBLE_EQ(delivery.seconds, test.seconds);
        EXPECT_EQ(delivery.clockSet, test.set);
        EXPECT_EQ(delivery.sessions[0].protocol, EDeliveryProtocol::UNKNOWN);
    }
}

TEST(Traffic, BinsWiden)
{
    const struct {
        const char* name;
        double last;
        double binSeconds;
        std::size_t bins;
    } cases[] = {
        {"as many as there are", 599.5, 1, 600},
        {"one more", 600, 2, 301},
        {"twice as many", 1199, 2, 600},
        {"a day", 86399, 256, 338},
        {"as steps of an hour, ten years", 315360000, 1048576, 301},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        CAir air;
        std::uint64_t sent = 0;
        for (double at = 0; at < test.last; at += at < 1200 ? 1 : 3600, ++sent) {
            air.Send(at, "four", 6001);
        }
        air.Send(test.last, "last", 6002);
        const SDelivery delivery = air.Result();
        EXPECT_EQ(delivery.binSeconds, test.binSeconds);
        EXPECT_EQ(delivery.traffic.bins.size(), test.bins);
        // A session that came once has one bin, where it came.
        EXPECT_EQ(delivery.sessions[1].traffic.bins, std::vector<std::uint64_t>{4});
        EXPECT_EQ(delivery.sessions[1].traffic.firstBin, test.bins - 1);
        std::uint64_t sum = 0;
        for (const std::uint64_t bytes : delivery.sessions[0].traffic.bins) {
            sum += bytes;
        }
        EXPECT_EQ(sum, 4 * sent);
        EXPECT_DOUBLE_EQ(delivery.sessions[0].traffic.peakRate.value_or(0), 0.032) << "of one second, however wide";
    }
}

struct SPart {
    double at;
    unsigned toi;
    std::uint32_t begin;
    std::uint32_t end;
    int length = -1;
    bool close = false;
};

std::string Show(const SObjectsDelivery& objects)
{
    EXPECT_EQ(objects.begun, objects.whole + objects.incomplete + objects.cut + objects.unknown);
    std::string text;
    const auto add = [&text](std::uint64_t count, const char* what) {
        text += count != 0 ? (text.empty() ? "" : " ") + std::to_string(count) + ' ' + what : "";
    };
    add(objects.whole, "whole");
    add(objects.repeats, "again");
    add(objects.incomplete, "incomplete");
    add(objects.bytesMissing, "missing");
    add(objects.cut, "cut");
    add(objects.unknown, "unknown");
    return text;
}

SObjectsDelivery Objects(const std::vector<SPart>& parts, CTraffic::TLength length = {})
{
    CAir air(std::move(length));
    air.Announce(EDeliveryProtocol::ROUTE);
    for (const SPart& part : parts) {
        air.Send(part.at,
                 Lct({part.toi, part.begin, part.length, part.close, 5}, std::string(part.end - part.begin, 'x')));
    }
    const SDelivery delivery = air.Result();
    EXPECT_EQ(delivery.sessions.at(0).flows.size(), 1u);
    return delivery.sessions[0].flows.at(0).objects.value_or(SObjectsDelivery());
}

TEST(Traffic, Objects)
{
    const SPart first = {0, 1, 0, 10, 10};  // whole: what follows began in the capture
    const struct {
        const char* name;
        std::vector<SPart> parts;
        std::string shown;
    } cases[] = {
        {"in one packet", {first}, "1 whole"},
        {"its parts touch", {{0, 1, 0, 5, 10}, {1, 1, 5, 10, 10, true}}, "1 whole"},
        {"a byte is missing between them", {{0, 1, 0, 5, 10}, {1, 1, 6, 10, 10, true}}, "1 incomplete 1 missing"},
        {"in any order, some twice",
         {{0, 1, 6, 8, 10}, {0, 1, 0, 3, 10}, {0, 1, 8, 10, 10}, {0, 1, 2, 7, 10}},
         "1 whole"},
        {"its length by the last packet alone", {{0, 1, 0, 5}, {1, 1, 5, 10, -1, true}}, "1 whole"},
        {"the last byte alone does not say so, without a length", {{0, 1, 0, 5}, {1, 1, 5, 10}}, "1 cut"},
        {"nor afterwards", {{0, 1, 0, 5}, {1, 1, 5, 10}, {2, 2, 0, 1, 1}, {9, 3, 0, 1, 1}}, "2 whole 1 unknown"},
        {"but a hole is a hole",
         {{0, 1, 0, 5}, {1, 1, 6, 10}, {2, 2, 0, 1, 1}, {9, 3, 0, 1, 1}},
         "2 whole 1 incomplete 1 missing"},
        {"a packet behind the end", {{0, 1, 0, 5, 10}, {0, 1, 5, 11, 10}, {0, 1, 5, 10, 10}}, "1 whole"},
        {"whole in two rounds", {{0, 1, 0, 5, 9}, {0, 1, 6, 9, 9}, {5, 1, 0, 5, 9}, {5, 1, 5, 9, 9}}, "1 whole"},
        {"again, and again in part",
         {first, {1, 1, 0, 5, 10}, {1, 1, 5, 10, 10}, {2, 1, 5, 10, 10, true}},
         "1 whole 1 again"},
        {"another object under the TOI", {{0, 1, 0, 5, 10}, {1, 1, 0, 5, 11}, {1, 1, 5, 11, 11}}, "1 whole 1 unknown"},
        {"another, shorter than what came", {{0, 1, 0, 9}, {1, 1, 0, 5, -1, true}}, "1 whole 1 unknown"},
        {"another, of which some may have been taken for the one before",
         {{0, 1, 0, 5}, {0, 1, 6, 10, -1, true}, {1, 1, 0, 5}, {1, 1, 5, 12, -1, true}},
         "2 unknown"},
        {"and nothing can have been",
         {{0, 1, 0, 5, 10}, {0, 1, 6, 10, 10}, {1, 1, 5, 12, 12, true}},
         "1 incomplete 5 missing 1 unknown"},
        {"each packet twice",
         {{0, 1, 0, 5},
          {0, 1, 0, 5},
          {0, 1, 5, 9, -1, true},
          {0, 1, 5, 9, -1, true},
          {1, 1, 0, 4},
          {1, 1, 4, 12, -1, true}},
         "1 whole"},
        {"under way when the capture begins", {{0, 1, 5, 10, 10, true}}, "1 cut"},
        {"the same behind another", {first, {1, 2, 5, 10, 10, true}}, "1 whole 1 incomplete 5 missing"},
        {"at this rate, it was under way", {first, {1, 2, 60, 80, 100}, {2, 2, 80, 100, 100, true}}, "1 whole 1 cut"},
        {"later, it was not",
         {first, {3, 2, 60, 80, 100}, {4, 2, 80, 100, 100, true}},
         "1 whole 1 incomplete 60 missing"},
        {"its last packet, and others take as long",
         {first, {3, 2, 80, 100, 100}, {4, 3, 0, 50, 99}, {7, 3, 50, 99, 99}},
         "2 whole 1 cut"},
        {"and others take less",
         {first, {3, 2, 80, 100, 100}, {4, 3, 0, 50, 99}, {6, 3, 50, 99, 99}},
         "2 whole 1 incomplete 80 missing"},
        {"when it ends", {first, {1, 2, 0, 5, 10}}, "1 whole 1 cut"},
        {"its last byte just came", {first, {1, 2, 6, 10, 10}}, "1 whole 1 cut"},
        {"and others since",
         {first, {1, 2, 0, 5, 10}, {1, 2, 6, 10, 10}, {1.5, 3, 0, 1, 1}},
         "2 whole 1 incomplete 1 missing"},
        {"silent, as all others", {first, {1, 2, 0, 4, 10}, {2, 2, 4, 5, 10}, {9, 4, 0, 1, 9}}, "1 whole 2 cut"},
        {"silent for as long as it has been",
         {first, {1, 2, 0, 4, 10}, {3, 2, 4, 5, 10}, {11, 3, 0, 1, 1}},
         "2 whole 1 cut"},
        {"and longer",
         {first, {1, 2, 0, 4, 10}, {3, 2, 4, 5, 10}, {11.1, 3, 0, 1, 1}},
         "2 whole 1 incomplete 5 missing"},
        {"silent for as long as others have been",
         {{0, 1, 0, 5, 10}, {2, 1, 5, 10, 10}, {3, 2, 0, 4, 10}, {3, 2, 4, 5, 10}, {11, 3, 0, 1, 1}},
         "2 whole 1 cut"},
        {"until they came again",
         {{0, 1, 0, 5, 11}, {0, 1, 5, 10, 11}, {9, 1, 0, 5, 11}, {9, 2, 0, 4, 9}, {9, 2, 4, 5, 9}, {19, 3, 0, 1, 1}},
         "1 whole 1 incomplete 4 missing 1 cut"},
        {"one packet alone", {first, {1, 2, 0, 4, 10}, {31, 3, 0, 1, 1}}, "2 whole 1 cut"},
        {"and half a minute", {first, {1, 2, 0, 4, 10}, {31.1, 3, 0, 1, 1}}, "2 whole 1 incomplete 6 missing"},
        {"without times, nothing is long", {{k_noTime, 1, 0, 5, 10}, {k_noTime, 2, 0, 1, 1}}, "1 whole 1 cut"},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        EXPECT_EQ(Show(Objects(test.parts)), test.shown);
    }
    const SObjectsDelivery closed = Objects({first, {1, 2, 0, 4, 10}, {1, 2, 4, 4, -1, true}});
    EXPECT_EQ(Show(closed), "1 whole 1 incomplete 6 missing") << "a packet without data closes";
    ASSERT_EQ(closed.firstIncomplete.size(), 1u);
    EXPECT_EQ(closed.firstIncomplete[0].toi, TToi(0, 2));
    EXPECT_EQ(closed.firstIncomplete[0].bytes, 4u);
    EXPECT_EQ(closed.firstIncomplete[0].length, 10u);
    // Signalling knows the length; what the packets say is the truth.
    const auto ten = [](const SServiceSession& session, std::uint64_t tsi, const TToi& toi) {
        EXPECT_EQ(session.port, 6001);
        EXPECT_EQ(tsi, 5u);
        return toi.second == 2 ? std::optional<std::uint64_t>(10) : std::nullopt;
    };
    EXPECT_EQ(Show(Objects({{0, 2, 0, 10}, {0, 3, 0, 10}}, ten)), "1 whole 1 cut");
    EXPECT_EQ(Show(Objects({{0, 2, 0, 11}, {0, 2, 11, 12, -1, true}}, ten)), "1 whole");
    EXPECT_EQ(Show(Objects({{0, 2, 0, 8}, {0, 2, 9, 10}, {0, 2, 10, 12, -1, true}}, ten)), "1 incomplete 1 missing");
}

TEST(Traffic, ObjectsBeyondTheLimits)
{
    const auto pieces = [](std::uint32_t count) {
        std::vector<SPart> parts;
        for (std::uint32_t i = 0; i < count; ++i) {
            parts.push_back({0, 1, 2 * i, 2 * i + 1, 1000});
        }
        parts.push_back({1, 1, 0, 999, 1000});
        parts.push_back({1, 1, 999, 1000, 1000, true});
        return Show(Objects(parts));
    };
    EXPECT_EQ(pieces(CObjects::k_maxParts), "1 whole");
    EXPECT_EQ(pieces(CObjects::k_maxParts + 1), "1 unknown");
    const auto underWay = [](unsigned count, int last) {
        std::vector<SPart> parts;
        for (unsigned toi = 1; toi <= count; ++toi) {
            parts.push_back({toi * 0.001, toi, 0, 5, 10, toi == 1 && last == 5});
        }
        parts.push_back({1, 1, 5, 10, 10});
        return Show(Objects(parts));
    };
    EXPECT_EQ(underWay(CObjects::k_maxOpen, 0), "1 whole 63 cut");
    EXPECT_EQ(underWay(CObjects::k_maxOpen + 1, 0), "64 cut 2 unknown") << "the first, and the second for it";
    EXPECT_EQ(underWay(CObjects::k_maxOpen + 1, 5), "1 incomplete 5 missing 64 cut 1 unknown") << "it was over";
    const auto whole = [](unsigned count, unsigned step) {
        std::vector<SPart> parts;
        for (unsigned i = 1; i <= count; ++i) {
            parts.push_back({0, i * step, 0, 1, 1});
        }
        parts.push_back({0, step, 0, 1, 1});
        return Show(Objects(parts));
    };
    EXPECT_EQ(whole(1000, 1), "1000 whole 1 again");
    EXPECT_EQ(whole(CObjects::k_maxWhole, 2), "256 whole 1 again");
    EXPECT_EQ(whole(CObjects::k_maxWhole + 1, 2), "258 whole") << "forgotten";
    std::vector<SPart> holes = {{0, 1, 0, 1, 1}};
    for (unsigned toi = 2; toi < 42; ++toi) {
        holes.push_back({1, toi, 0, 5, 10, true});
        holes.back().length = 10;
    }
    EXPECT_EQ(Objects(holes).firstIncomplete.size(), CObjects::k_maxIncomplete);
}

TEST(Traffic, PacketLoss)
{
    constexpr std::uint32_t k_end = std::numeric_limits<std::uint32_t>::max();
    const struct {
        const char* name;
        std::vector<std::uint32_t> numbers;
        std::uint64_t lost = 0;
        std::uint64_t duplicates = 0;
        std::uint64_t late = 0;
        std::uint64_t restarts = 0;
    } cases[] = {
        {"in order", {1, 2, 3}},
        {"one lost", {1, 2, 4}, 1},
        {"out of order", {1, 4, 3, 2, 5}, 0, 0, 2},
        {"twice", {1, 2, 2, 1, 3}, 0, 2},
        {"over the end", {k_end - 1, k_end, 0, 1}},
        {"and lost there", {k_end - 1, 1}, 2},
        {"as late as is waited for", {100, 164, 101}, 62, 0, 1},
        {"later", {100, 165, 101, 166}, 64},
        {"many lost", {1, 65537}, 65535},
        {"a number far off", {1, 65538, 2}},
        {"the sender began anew", {1000, 1002, 5, 6, 8}, 2, 0, 0, 1},
        {"far on", {1, 70000, 70001}, 0, 0, 0, 1},
        {"a straggler is none", {1000, 5, 1001, 6, 1002}},
        {"nor are two", {1000, 1002, 905, 906, 1003, 1004, 906, 907, 1006}, 2},
        {"nor is an old one", {1000, 1002, 5, 6, 1001, 1002, 7}, 0, 1, 1, 1},
        {"numbers that it had before", {100, 1, 2, 50, 98, 101, 103}, 97, 0, 0, 1},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        CAir air;
        air.Announce(EDeliveryProtocol::MMTP);
        for (const std::uint32_t number : test.numbers) {
            air.Send(0, Mmtp({number, 0, 9, 0, 0}, "data"));
        }
        const SDelivery delivery = air.Result();
        ASSERT_EQ(delivery.sessions[0].flows.size(), 1u);
        const SPacketsDelivery loss = *delivery.sessions[0].flows[0].packets;
        EXPECT_EQ(loss.lost, test.lost);
        EXPECT_EQ(loss.duplicates, test.duplicates);
        EXPECT_EQ(loss.late, test.late);
        EXPECT_EQ(loss.restarts, test.restarts);
    }
}

/// "PROTOCOL? flow flow".
std::string Show(const SSessionDelivery& session)
{
    const char* protocol = DeliveryProtocolName(session.protocol);
    std::string text = protocol == nullptr ? "-" : protocol;
    text += session.guessed ? "?" : "";
    for (const SFlowDelivery& flow : session.flows) {
        text += ' ' + std::to_string(flow.id) + 'x' + std::to_string(flow.traffic.packets) +
                (flow.carries.empty() ? "" : '=' + flow.carries);
    }
    return text + (session.otherPackets != 0 ? " other x" + std::to_string(session.otherPackets) : "") +
           (session.packetsNoFlow != 0 ? " more x" + std::to_string(session.packetsNoFlow) : "") +
           (session.Named() ? " named" : "");
}

TEST(Traffic, ProtocolByTheSignallingOrByItsPackets)
{
    const std::string lct = Lct({1, 0, -1, false, 5}, "data");
    const std::string signalling = Lct({1, 0, -1, false, 0}, "data");
    const std::string repair = Lct({1, 0, -1, false, 5, 0x10A0}, "data");
    const auto mmtp = [](unsigned number, unsigned flags = 0) { return Mmtp({number, 0, 9, flags, 0}, "data"); };
    const auto message = [](unsigned number) { return Mmtp({number, 0, 3}, "data"); };
    const std::string noise = "\x47noise of another kind";
    // As MMTP, repair data with all reserved bits set; as LCT, a header of 20 bytes.
    const std::string both = Number(0x10C3, 2) + Number(0x0500, 2) + Number(0, 4) + Number(0, 12) + "data";
    constexpr auto k_route = EDeliveryProtocol::ROUTE;
    constexpr auto k_mmtp = EDeliveryProtocol::MMTP;
    constexpr auto k_none = EDeliveryProtocol::UNKNOWN;
    const struct {
        const char* name;
        std::vector<std::string> before;
        std::vector<EDeliveryProtocol> announced;
        std::vector<std::string> after;
        std::string shown;
    } cases[] = {
        {"noise", {noise, noise}, {}, {}, "-"},
        {"LCT", {signalling, lct, repair}, {}, {}, "ROUTE? 0x1 5x2"},
        {"of one packet", {lct}, {}, {}, "-"},
        {"with too much else", {lct, noise, lct, lct}, {}, {}, "-"},
        {"MMTP", {mmtp(1), mmtp(2), mmtp(3), mmtp(4)}, {}, {}, "MMTP? 9x4"},
        {"not in order", {mmtp(1), mmtp(5), mmtp(3), mmtp(7)}, {}, {}, "-"},
        {"what could be either", {both, both, both}, {}, {}, "-"},
        {"announced, whatever comes", {noise}, {k_route}, {noise, lct}, "ROUTE 5x1 other x1 named"},
        {"announced before", {}, {k_mmtp}, {mmtp(1)}, "MMTP 9x1 named"},
        {"announced as it was guessed", {signalling, lct}, {k_route}, {lct}, "ROUTE 0x1=signalling 5x2 named"},
        {"announced as another", {lct, lct}, {k_mmtp}, {message(1)}, "MMTP 3x1=signalling named"},
        {"announced as both", {lct}, {k_mmtp, k_route}, {lct}, "ROUTE? 5x1 named"},
        {"announced without a protocol", {lct}, {k_none}, {lct}, "ROUTE? 5x2 named"},
        {"LLS", {lct}, {EDeliveryProtocol::LLS}, {lct}, "LLS named"},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        CAir air;
        for (const std::string& packet : test.before) {
            air.Send(0, packet);
        }
        for (const EDeliveryProtocol protocol : test.announced) {
            air.Announce(protocol);
            air.Announce(protocol);
        }
        for (const std::string& packet : test.after) {
            air.Send(0, packet);
        }
        const SDelivery delivery = air.Result();
        EXPECT_EQ(Show(delivery.sessions[0]), test.shown);
        EXPECT_EQ(delivery.sessions[0].services.size(), test.announced.empty() ? 0u : 1u);
    }
}

TEST(Traffic, SessionsBySourceAndWhatNamesThem)
{
    CAir air;
    const std::string lct = Lct({1, 0, -1, false, 5}, "data");
    air.Announce(EDeliveryProtocol::ROUTE, 6001, k_from + 1);
    for (const std::uint32_t source : {k_from + 1, k_from, k_from + 1}) {
        air.Send(0, lct, 6001, source);
        air.Send(0, lct, 6002, source);
    }
    air.Announce(EDeliveryProtocol::ROUTE, 6002);
    air.traffic.Name({packets::k_session, 6002, 0}, 5, "guide");
    air.traffic.Name({packets::k_session, 6001, k_from + 2}, 5, "of another source");
    air.Announce(EDeliveryProtocol::MMTP, 6003, k_from + 1);
    const SDelivery delivery = air.Result();
    ASSERT_EQ(delivery.sessions.size(), 5u);
    EXPECT_EQ(Show(delivery.sessions[4]), "MMTP named");
    EXPECT_EQ(Show(delivery.sessions[4].traffic), "0 0 - - 0:") << "nothing came";
    const char* const shown[] = {"-", "ROUTE 5x2 named", "ROUTE 5x1=guide named", "ROUTE 5x2=guide named"};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(Show(delivery.sessions[i]), shown[i]);
        EXPECT_EQ(delivery.sessions[i].source, k_from + i % 2);
    }
}

TEST(Traffic, SessionsAndFlowsBeyondTheLimits)
{
    CAir air;
    const auto port = [](std::size_t i) { return static_cast<std::uint16_t>(i); };
    for (std::size_t i = 1; i <= CTraffic::k_maxForeign + 5; ++i) {
        air.Send(0, "noise", port(i));
    }
    EXPECT_EQ(air.Result().sessions.size(), CTraffic::k_maxForeign);
    EXPECT_EQ(air.Result().others.packets, 5u);
    for (std::size_t i = 2001; i <= 3000; ++i) {
        air.Announce(EDeliveryProtocol::ROUTE, port(i));
        air.Send(0, Lct({}, "data"), port(i));
    }
    SDelivery delivery = air.Result();
    EXPECT_EQ(delivery.sessions.size(), CTraffic::k_maxSessions);
    EXPECT_EQ(delivery.others.packets, 5u + CTraffic::k_maxForeign + 1000 - CTraffic::k_maxSessions);
    EXPECT_EQ(delivery.traffic.packets, CTraffic::k_maxForeign + 1005);
    air.Announce(EDeliveryProtocol::ROUTE, 9000);
    EXPECT_EQ(air.Result().sessions.size(), CTraffic::k_maxSessions) << "it may be among the others";

    CAir flows;
    for (unsigned tsi = 0; tsi <= CTraffic::k_maxFlows; ++tsi) {
        flows.Send(0, Lct({1, 0, -1, false, tsi}, "data"));
    }
    flows.Send(0, Lct({1, 0, -1, false, 0}, "data"));
    delivery = flows.Result();
    EXPECT_EQ(delivery.sessions[0].flows.size(), CTraffic::k_maxFlows);
    EXPECT_EQ(delivery.sessions[0].packetsNoFlow, 1u);
    EXPECT_EQ(delivery.sessions[0].flows[0].traffic.packets, 2u);
    // Those that nothing announces have their half of all; those that are announced the rest.
    const auto send = [&flows, &port](std::size_t first, std::size_t sessions) {
        for (std::size_t i = first; i < first + sessions; ++i) {
            for (unsigned tsi = 0; tsi < 2 * CTraffic::k_maxFlows; ++tsi) {
                flows.Send(0, Lct({1, 0, -1, false, tsi % 64}, "data"), port(i));
            }
        }
        std::size_t count = 0;
        for (const SSessionDelivery& session : flows.Result().sessions) {
            count += session.flows.size();
        }
        return count;
    };
    EXPECT_EQ(send(7000, 40), CTraffic::k_maxForeignFlows);
    for (std::size_t i = 8000; i < 8040; ++i) {
        flows.Announce(EDeliveryProtocol::ROUTE, port(i));
    }
    EXPECT_EQ(send(8000, 40), CTraffic::k_maxAllFlows);
}

}  // namespace
