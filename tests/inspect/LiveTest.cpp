#include <linux/if_packet.h>
#include <net/ethernet.h>

#include <algorithm>
#include <iostream>
#include <optional>
#include <set>

#include "LiveNetwork.h"
#include "MadeBroadcast.h"
#include "MmtCaptures.h"
#include "support/Places.h"

namespace {

using namespace live;
using namespace packets;

/// A report without what the times are to blame for, and where it comes from.
std::vector<std::string> Timeless(const std::string& out, bool findings)
{
    std::vector<std::string> lines;
    for (nlohmann::json line : Lines(out)) {
        const std::string type = line["type"];
        if (line.contains("source")) {
            line["source"].erase("file");
            line["source"].erase("time");
        }
        for (const char* name : {"intervalSeconds", "captures", "interfaces", "times"}) {
            line.erase(name);
        }
        if (type == "summary") {
            for (nlohmann::json& table : line["tables"]) {
                table.erase("meanIntervalSeconds");
            }
            for (const char* name : {"errors", "warnings", "notes", "findings"}) {
                line.erase(name);
            }
        }
        const bool timed = type == "delivery" || type == "verdict" ||
                           (type == "finding" && (!findings || line["rule"] == "rate-above-bandwidth"));
        if (!timed) {
            lines.push_back(line.dump());
        }
    }
    return lines;
}

/// Sends all, and waits for each group until it is joined. Fast, or as fast as it was.
void Replay(const std::vector<SToSend>& all, bool fast)
{
    CSender sender;
    std::set<std::uint32_t> joined;
    auto begin = std::chrono::steady_clock::now();
    for (const SToSend& sent : all) {
        if (joined.count(sent.destination) == 0) {
            const auto before = std::chrono::steady_clock::now();
            ASSERT_TRUE(Until([&] { return Joined().count(sent.destination) != 0; })) << std::hex << sent.destination;
            joined.insert(sent.destination);
            begin += std::chrono::steady_clock::now() - before;
        }
        if (!fast) {
            std::this_thread::sleep_until(begin + std::chrono::duration<double>(sent.at));
        }
        sender.Send(sent);
    }
}

/// What both kinds of live input say, each with what the capture says.
TEST(Live, SaysWhatTheCaptureSays)
{
    VYR_NETWORK_OR_SKIP();
    SBroadcast made;
    made.rounds = 3;
    const CTemporary madeFile(made.Bytes());
    struct {
        const char* name;
        std::string file;
        bool fast;
    } const cases[] = {
        {"a sample in fast motion", DataFile("pcap/gpac-a2-multi-service.pcap"), true},
        {"one with files", DataFile("pcap/gpac-a8-nrt-files.pcap"), true},
        {"a made broadcast, whose service names its source", madeFile.Name(), true},
        {"a sample as it was", DataFile("pcap/gpac-a2-multi-service.pcap"), false},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        std::vector<SToSend> all = Datagrams(test.file);
        while (!test.fast && all.back().at > 2.5) {
            all.pop_back();
        }
        const std::string count = std::to_string(all.size());
        CCapture capture(1);
        for (const SToSend& sent : all) {
            SIpv4 ip;
            ip.destination = sent.destination;
            capture.At(static_cast<std::uint64_t>(sent.at * 1e6)).Add(Ethernet(Ipv4(Udp(sent.payload, sent.port), ip)));
        }
        const std::vector<std::string> expected = Timeless(Inspect("--json -", capture.Bytes()).out, !test.fast);
        ASSERT_GT(expected.size(), 4u);
        CTool capturing({"--json", "--progress", "--interface", "lo", "--packets", count, "--filter", "udp"});
        ASSERT_TRUE(capturing.Begun());
        CTool joining({"--json", "--join", "lo", "--packets", count});
        Replay(all, test.fast);
        for (CTool* tool : {&capturing, &joining}) {
            SCOPED_TRACE(tool == &joining ? "joined" : "captured");
            const SResult result = tool->Wait();
            EXPECT_EQ(Timeless(result.out, !test.fast), expected);
            const nlohmann::json summary = Lines(result.out).back();
            EXPECT_EQ(summary["interfaces"], 1);
            EXPECT_EQ(summary["captures"], 0);
            EXPECT_EQ(summary["udpDatagrams"], all.size());
            EXPECT_EQ(summary["times"][0]["file"], tool == &joining ? "224.0.23.60%lo" : "lo");
        }
    }
}

std::string SignalledAt(int id, const std::string& address, unsigned port, const std::string& source = {},
                        int protocol = 1)
{
    return "<Service serviceId=\"" + std::to_string(id) +
           "\" serviceCategory=\"1\" majorChannelNo=\"7\" minorChannelNo=\"" + std::to_string(id) +
           "\" shortServiceName=\"S\"><BroadcastSvcSignaling slsProtocol=\"" + std::to_string(protocol) +
           "\" slsDestinationIpAddress=\"" + address + "\" slsDestinationUdpPort=\"" + std::to_string(port) + "\"" +
           (source.empty() ? "" : " slsSourceIpAddress=\"" + source + "\"") + "/></Service>";
}

constexpr std::uint32_t k_a = 0xEFFF0701;  // 239.255.7.1, and so on
constexpr std::uint32_t k_b = 0xEFFF0702;
constexpr std::uint32_t k_elsewhere = 0xEFFF0709;
constexpr std::uint32_t k_loopback = 0x7F000001;

bool AreJoined(const std::set<std::uint32_t>& groups)
{
    const bool joined = Until([&] { return Joined() == groups; });
    for (const std::uint32_t group : joined ? std::set<std::uint32_t>() : Joined()) {
        std::cerr << "joined: " << std::hex << group << std::dec << '\n';
    }
    return joined;
}

TEST(Live, JoinsWhatIsNamedNowAndLeavesWhatIsNot)
{
    VYR_NETWORK_OR_SKIP();
    CSender sender;
    CTool tool({"--json", "--join", "lo", "--progress", "--mmtp", "239.255.7.3:5003", "--max-interval", "1e-9"});
    const auto list = [&](const std::string& services, unsigned version) {
        sender.Send({k_lls, 4937, Slt(services, version)});
    };
    const auto object = [&](std::uint32_t group, unsigned port, unsigned toi, const std::string& text) {
        SLct lct;
        lct.toi = toi;
        lct.length = static_cast<int>(text.size());
        sender.Send({group, static_cast<std::uint16_t>(port), Lct(lct, text)});
    };
    const std::uint32_t asked = 0xEFFF0703;
    const auto sendFrom = [&](std::uint32_t group, std::initializer_list<std::uint32_t> sources) {
        for (const std::uint32_t source : sources) {
            sender.Send({group, 5000, "no LCT", 0, source});
        }
    };
    constexpr std::uint32_t k_ten = 0xC000020A;  // 192.0.2.10, and so on
    constexpr std::uint32_t k_eleven = 0xC000020B;
    constexpr std::uint32_t k_twelve = 0xC000020C;
    ASSERT_TRUE(AreJoined({k_lls, asked}));
    // The last service of each list is joined behind the others, so that these are joined then, too.
    list(SignalledAt(1, "239.255.7.1", 5000, "192.0.2.10") + SignalledAt(2, "239.255.7.2", 5000), 1);
    ASSERT_TRUE(AreJoined({k_lls, asked, k_a, k_b}));
    sender.Send({k_a, 5001, "another port"});
    sendFrom(k_a, {k_twelve, k_eleven, k_ten});
    ASSERT_TRUE(tool.Read(2));
    list(SignalledAt(1, "239.255.7.1", 5000, "192.0.2.10") + SignalledAt(2, "239.255.7.1", 5000, "192.0.2.11") +
             SignalledAt(3, "239.255.7.4", 5000),
         2);
    ASSERT_TRUE(AreJoined({k_lls, asked, k_a, k_b + 2}));
    sendFrom(k_a, {k_twelve, k_eleven, k_ten});
    ASSERT_TRUE(tool.Read(5));
    list(SignalledAt(1, "239.255.7.1", 5000, "192.0.2.10") + SignalledAt(2, "239.255.7.1", 5000) +
             SignalledAt(3, "239.255.7.5", 5000),
         3);
    ASSERT_TRUE(AreJoined({k_lls, asked, k_a, k_b + 3}));
    sendFrom(k_a, {k_twelve, k_eleven, k_ten});
    ASSERT_TRUE(tool.Read(9));
    list(SignalledAt(1, "239.255.7.1", 5000, "192.0.2.10") + SignalledAt(2, "239.255.7.6", 5000), 4);
    ASSERT_TRUE(AreJoined({k_lls, asked, k_a, k_b + 4}));
    sendFrom(k_a, {k_twelve, k_eleven, k_ten});
    ASSERT_TRUE(tool.Read(11));
    // An LCT session elsewhere, of one source; a new S-TSID without it.
    object(k_a, 5000, 1,
           "<S-TSID><RS dIpAddr=\"239.255.7.9\" dPort=\"5000\" sIpAddr=\"192.0.2.12\"><LS tsi=\"1\"/></RS></S-TSID>\n");
    ASSERT_TRUE(AreJoined({k_lls, asked, k_a, k_b + 4, k_elsewhere}));
    sendFrom(k_elsewhere, {k_ten, k_twelve});
    ASSERT_TRUE(tool.Read(13));
    object(k_a, 5000, 2, "<S-TSID><RS><LS tsi=\"2\"/></RS></S-TSID>\n");
    ASSERT_TRUE(AreJoined({k_lls, asked, k_a, k_b + 4}));
    // An asset elsewhere, until its service is listed no more.
    const std::string assets =
        With(MmtMpTable(0x20), Number(5, 8) + Number(5000, 2), Number(0, 4) + Number(0xEFFF0801, 4) + Number(5000, 2));
    list(SignalledAt(3, "239.255.7.2", 5000, "", 2), 5);
    ASSERT_TRUE(AreJoined({k_lls, asked, k_b}));
    sender.Send({k_b, 5000, Mmtp({}, MmtMessage(0x20, 16, assets))});
    ASSERT_TRUE(AreJoined({k_lls, asked, k_b, 0xEFFF0801}));
    list(SignalledAt(4, "127.0.0.1", 5000) + SignalledAt(5, "127.0.0.1", 53) + SignalledAt(6, "198.51.100.1", 5000) +
             SignalledAt(7, "127.0.0.2", 5000),
         6);
    ASSERT_TRUE(AreJoined({k_lls, asked}));
    EXPECT_TRUE(tool.Told("127.0.0.2:5000 is not received"));
    sender.Send({k_loopback, 5000, "no LCT"});
    ASSERT_TRUE(tool.Read(18));
    const SResult result = tool.End();
    std::set<std::string> notJoined;
    std::set<int> notSignalled;
    std::map<int, std::string> verdicts;
    for (const nlohmann::json& line : Lines(result.out)) {
        if (line["type"] == "finding" && line["rule"] == "not-joined") {
            const std::string message = line["message"];
            EXPECT_TRUE(notJoined.insert(message.substr(16, message.find(' ', 16) - 16)).second) << "told twice";
        } else if (line["type"] == "finding" && line["rule"] == "no-signalling" && line.contains("service")) {
            notSignalled.insert(line["service"].get<int>());
        } else if (line["type"] == "verdict") {
            verdicts[line["service"]] = line["verdict"];
        }
    }
    const std::string out = result.out;
    EXPECT_EQ(notJoined, (std::set<std::string>{"127.0.0.1:53", "198.51.100.1:5000", "127.0.0.2:5000"})) << out;
    EXPECT_EQ(notSignalled, (std::set<int>{4})) << "of the others nothing is known";
    EXPECT_EQ(verdicts[5], "cannot-tell");
}

TEST(Live, JoinsNoMoreThanIsBearable)
{
    VYR_NETWORK_OR_SKIP();
    const auto groups = [](int from, int count) {
        std::string services;
        for (int i = 0; i < count; ++i) {
            const int number = from + i;
            services += SignalledAt(
                number, "239.1." + std::to_string(number / 250) + '.' + std::to_string(number % 250 + 1), 5000);
        }
        return services;
    };
    CSender sender;
    CTool storm({"--json", "--join", "lo"});
    ASSERT_TRUE(AreJoined({k_lls}));
    const auto begin = std::chrono::steady_clock::now();
    for (unsigned version = 1; version <= 4; ++version) {
        const std::string table = Slt(groups(static_cast<int>(version) % 2 * 500 + 1, 300), version);
        sender.Send({k_lls, 4937, table.substr(0, 4) + Gzip(table.substr(4))});
    }
    EXPECT_TRUE(Until([] { return Joined().size() > 60; }));
    const std::size_t joined = Joined().size();
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
    EXPECT_LE(static_cast<double>(joined), 66 + 32 * passed.count()) << "a list cannot make a storm";
    // It takes some seconds until the table of the kernel is as full as it may be.
    EXPECT_TRUE(storm.Told("more sessions are named than are received at a time, which is 256: 45 are not received"));
    EXPECT_EQ(Joined().size(), 256u);
    EXPECT_EQ(Lines(storm.End().out).back()["findings"].value("not-joined", 0), 1);

    // What the kernel does not allow is told, and is nobody's fault.
    std::ofstream("/proc/sys/net/ipv4/igmp_max_msf") << 1 << std::flush;
    std::ofstream("/proc/sys/net/ipv4/igmp_max_memberships") << 0 << std::flush;
    CTool forbidden({"--json", "--join", "lo", "--duration", "0.5"});
    const SResult result = forbidden.Wait();
    const nlohmann::json found = Lines(result.out).back()["findings"];
    EXPECT_EQ(found, (nlohmann::json{{"not-joined", 1}})) << result.out;
    EXPECT_NE(result.out.find("224.0.23.60:4937 is not received: No buffer space available"), std::string::npos);
}

/// A broadcast of which a piece is missing: whose fault that is depends on what the kernel dropped.
TEST(Live, WhatTheKernelDroppedIsTold)
{
    VYR_NETWORK_OR_SKIP();
    SBroadcast broken;
    broken.change = [](SSent& sent) {
        return sent.kind != SSent::MEDIA || sent.lct.tsi != 10 || sent.round != 1 || sent.lct.start != 0;
    };
    broken.rounds = 4;
    const CTemporary file(broken.Bytes());
    const std::vector<SToSend> all = Datagrams(file.Name());
    for (const char* mode : {"--join", "--interface"}) {
        for (const bool burst : {false, true}) {
            SCOPED_TRACE(std::string(mode) + (burst ? " and a burst" : ""));
            std::optional<CTool> other;  // so that Replay finds the groups joined: by the tool itself if it joins
            if (mode == std::string("--interface")) {
                other.emplace(std::vector<std::string>{"--join", "lo", "--quiet"});
            }
            CTool tool({"--json", "--progress", mode, "lo", "--mmtp", "239.255.9.9:5099"});
            ASSERT_TRUE(tool.Begun());
            Replay(all, true);
            ASSERT_TRUE(tool.Read(all.size()));
            CSender sender;
            if (burst) {
                tool.Signal(SIGSTOP);
                for (int i = 0; i < 1000; ++i) {
                    sender.Send({0xEFFF0909, 5099, std::string(60000, '\xFF')});
                }
                tool.Signal(SIGCONT);
            }
            const SResult result = tool.End();
            nlohmann::json summary = Lines(result.out).back();
            EXPECT_EQ(summary["findings"].contains("packets-dropped"), burst) << summary["findings"];
            EXPECT_EQ(summary["packetsDropped"] > 0, burst);
            EXPECT_EQ(summary["findings"].contains("objects-incomplete"), !burst) << summary["findings"];
            EXPECT_FALSE(summary["findings"].contains("no-lls"));
        }
    }
}

TEST(Live, Ends)
{
    VYR_NETWORK_OR_SKIP();
    const std::string list = Slt(MmtService(1, 30100, 1), 1);
    CSender sender;
    for (const char* mode : {"--join", "--interface"}) {
        SCOPED_TRACE(mode);
        const std::string name = mode == std::string("--join") ? "224.0.23.60%lo" : "lo";
        const auto isWhole = [&](const SResult& result) {
            return result.out.find("SLT (1) version 1 group 0: new") != std::string::npos &&
                   result.out.find("  1: 1 interface\n") != std::string::npos;
        };
        const struct {
            const char* option;
            const char* value;
            int signal;
            std::size_t packets;
        } cases[] = {
            {"--packets", "2", 0, 2}, {"--duration", "3", 0, 3}, {"--full", "", SIGINT, 3}, {"--full", "", SIGTERM, 3}};
        for (const auto& test : cases) {
            SCOPED_TRACE(test.option);
            std::vector<std::string> arguments = {"--json", "--progress", mode, "lo", test.option};
            if (test.signal == 0) {
                arguments.push_back(test.value);
            }
            CTool tool(arguments);
            ASSERT_TRUE(tool.Begun());
            for (int i = 0; i < 3; ++i) {
                sender.Send({k_lls, 4937, list});
            }
            if (test.signal != 0) {
                ASSERT_TRUE(tool.Read(3));
                tool.Signal(test.signal);
            }
            const SResult result = tool.Wait();
            EXPECT_EQ(result.status, 0) << result.err;
            EXPECT_EQ(Lines(result.out).back()["udpDatagrams"], test.packets);
        }
        // Reports on the way come though nothing does.
        CTool silent({"--json", mode, "lo", "--every", "1", "--duration", "4"});
        const SResult nothing = silent.Wait();
        EXPECT_NE(nothing.out.find("\"type\":\"interim\""), std::string::npos) << nothing.err;
        EXPECT_NE(nothing.out.find("\"rule\":\"no-lls\""), std::string::npos);
        // The interface goes down, and away.
        for (const bool down : {true, false}) {
            SCOPED_TRACE(down ? "down" : "away");
            const std::string interface = down ? "lo" : "d0";
            if (!down && std::system("ip link add d0 type veth peer name d1 2>/dev/null && ip link set d0 up") != 0) {
                std::cerr << "NOT TESTED: no interface can be made here\n";
                continue;
            }
            CTool tool({"--progress", mode, interface});
            ASSERT_TRUE(tool.Begun());
            if (down) {
                sender.Send({k_lls, 4937, list});
                ASSERT_TRUE(tool.Read(1));
                EXPECT_TRUE(SwitchOn("lo", false));
            } else {
                EXPECT_EQ(std::system("ip link del d0"), 0);
            }
            const SResult result = tool.Wait();
            EXPECT_EQ(result.status, 2);
            EXPECT_NE(result.err.find(down ? name + ": behind packet 1: the interface went down\n"
                                           : ": behind packet 0: the interface is gone\n"),
                      std::string::npos)
                << result.err;
            EXPECT_EQ(isWhole(result), down) << result.out;
            SwitchOn("lo", true);
        }
    }
}

TEST(Live, CapturesDatagramsAndTheirFragmentsBehindTags)
{
    VYR_NETWORK_OR_SKIP();
    const std::string table = Slt(Service(1), 1);
    const std::string udp = Udp(table);
    SIpv4 first, last, tcp;
    first.flagsAndOffset = 0x2000;
    last.flagsAndOffset = 2;
    tcp.protocol = 6;
    SIpv4 elsewhere;
    elsewhere.destination = k_session;
    const std::vector<std::string> frames = {
        Ethernet(Ipv4(udp, {1})),
        Ethernet(Ipv4(udp, {2}), {0x8100, 0x0800}),
        Ethernet(Ipv4(udp, {3}), {0x88A8, 0x8100, 0x0800}),
        Ethernet(Ipv4(udp.substr(0, 16), first)),
        Ethernet(Ipv4(udp.substr(16), last)),
        Ethernet(Ipv4(udp, tcp)),
        Ethernet(Ipv4(udp, tcp), {0x8100, 0x0800}),
        Ethernet(std::string(60, '\0'), {0x0806}),
        Ethernet(Ipv4(Udp("?", 5000), elsewhere)),
    };
    const struct {
        std::vector<std::string> filter;
        int packets;
        int datagrams;
    } cases[] = {
        {{}, 6, 5},
        {{"--filter", "dst 224.0.23.60"}, 4, 3},
        {{"--filter", "dst 239.255.7.1 or port 4937"}, 4, 3},
        {{"--filter", "tcp"}, 0, 0},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.filter.empty() ? "no filter" : test.filter[1]);
        std::vector<std::string> arguments = {"--json", "--progress", "--interface", "lo"};
        arguments.insert(arguments.end(), test.filter.begin(), test.filter.end());
        CTool tool(arguments);
        ASSERT_TRUE(tool.Begun());
        const int out = socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, 0);
        sockaddr_ll to{};
        to.sll_family = AF_PACKET;
        to.sll_ifindex = static_cast<int>(if_nametoindex("lo"));
        for (const std::string& frame : frames) {
            ASSERT_GT(sendto(out, frame.data(), frame.size(), 0, reinterpret_cast<sockaddr*>(&to), sizeof to), 0);
        }
        close(out);
        EXPECT_TRUE(test.packets == 0 || tool.Read(static_cast<std::uint64_t>(test.packets)));
        const nlohmann::json summary = Lines(tool.End().out).back();
        EXPECT_EQ(summary["packets"], test.packets);
        EXPECT_EQ(summary["udpDatagrams"], test.datagrams);
    }
}

TEST(Live, WhatIsWrongBeforeItBegins)
{
    const struct {
        std::vector<std::string> arguments;
        const char* err;
    } cases[] = {
        {{"--interface", "lo", "-"}, "only one of"},
        {{"--join", "lo", "-"}, "only one of"},
        {{"--join", "lo", "--interface", "lo"}, "only one of"},
        {{"--join", "lo", "--filter", "udp"}, "--filter requires --interface"},
        {{"--duration", "1", "-"}, "need --interface or --join"},
        {{"--packets", "1", "-"}, "need --interface or --join"},
        {{"--join", "lo", "--packets", "0"}, "--packets"},
        {{"--join", "lo", "--duration", "-1"}, "--duration"},
        {{"--join", "1.2.3%lo"}, "'1.2.3%lo' is not [ADDRESS%]IF"},
        {{"--join", "224.0.23.60%"}, "is not [ADDRESS%]IF"},
        {{"--join", ""}, "'' is no interface"},
        {{"--interface", ""}, "'' is no interface"},
        {{"--join", "none"}, "vyr-atsc30-inspect: 224.0.23.60%none: no such interface\n"},
        {{}, "is required"},
    };
    for (const auto& test : cases) {
        const SResult result = CTool(test.arguments).Wait();
        EXPECT_EQ(result.status, 2) << test.err;
        EXPECT_NE(result.err.find(test.err), std::string::npos) << result.err;
        EXPECT_EQ(result.out, "");
    }
    VYR_NETWORK_OR_SKIP();
    for (const std::string wrong : {"no such word", "udp) or (tcp", "vlan and"}) {
        const SResult result = CTool({"--interface", "lo", "--filter", wrong}).Wait();
        EXPECT_EQ(result.status, 2) << wrong;
        EXPECT_EQ(result.err.rfind("vyr-atsc30-inspect: --filter: ", 0), 0u) << result.err;
        EXPECT_EQ(result.out, "");
    }
    const SResult refused = CTool({"--interface", "lo"}, false).Wait();
    EXPECT_EQ(refused.status, 2);
    EXPECT_NE(refused.err.find("setcap cap_net_raw,cap_net_admin=eip"), std::string::npos) << refused.err;
    for (const bool privileged : {true, false}) {
        const SResult none = CTool({"--interface", "none"}, privileged).Wait();
        EXPECT_EQ(none.err, "vyr-atsc30-inspect: none: no such interface\n");
        EXPECT_EQ(none.status, 2);
    }
    const SResult joined = CTool({"--join", "239.255.1.1%lo", "--duration", "0.2"}, false).Wait();
    EXPECT_EQ(joined.status, 1) << "no LLS" << joined.err;
    EXPECT_NE(joined.out.find("239.255.1.1%lo: error: no LLS: none of 0 UDP datagrams goes to 239.255.1.1:4937"),
              std::string::npos)
        << joined.out;
    ASSERT_TRUE(SwitchOn("lo", false));
    for (const char* mode : {"--join", "--interface"}) {
        const SResult down = CTool({mode, "lo"}).Wait();
        EXPECT_EQ(down.status, 2);
        EXPECT_NE(down.err.find(": the interface is down\n"), std::string::npos) << down.err;
    }
}

}  // namespace
