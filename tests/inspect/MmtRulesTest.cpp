#include "Judged.h"
#include "MmtCaptures.h"

namespace {

using packets::CCapture;

struct SAsset {
    std::string id;
    std::string type;
    unsigned packetId;
    unsigned port = 0;    ///< of 239.255.7.1, other than the session's
    unsigned source = 0;  ///< of 192.0.2.0
};

/// A sound broadcast of one service by MMTP on 239.255.7.1:6001: in every second the service list, USBD, MP table and
/// four packets of each of two assets.
struct SMmtBroadcast : SJudged {
    std::string services =
        "<Service serviceId='1' globalServiceID='urn:g' serviceCategory='1' majorChannelNo='5' minorChannelNo='1' "
        "shortServiceName='One'><BroadcastSvcSignaling slsProtocol='2' slsDestinationIpAddress='239.255.7.1' "
        "slsDestinationUdpPort='6001'/></Service>";
    std::string usbd =
        "<BundleDescriptionMMT><UserServiceDescription globalServiceID='urn:g' serviceId='1'>"
        "<MPUComponent mmtPackageId='pkg'/><ComponentInfo componentType='1' componentRole='0' "
        "componentProtectedFlag='false' componentId='v'/>"
        "<ComponentInfo componentType='0' componentRole='0' componentProtectedFlag='false' "
        "componentId='a'/></UserServiceDescription>"
        "</BundleDescriptionMMT>";
    std::string package = "pkg";
    std::vector<SAsset> assets = {{"v", "hev1", 10}, {"a", "mp4a", 20}};
    unsigned tables = 1;
    char version = 7;  ///< of their messages
    unsigned usbdVersion = 1;
    std::string ahead = {};            ///< another package, whose MP table has the asset "w" of packet_id 11
    unsigned ports[2] = {6001, 6001};  ///< that the packets of the assets go to
    unsigned seconds = 12;
    std::function<bool(unsigned packetId, unsigned sequence)> keep = [](unsigned, unsigned) { return true; };
    std::function<void(unsigned second, SMmtBroadcast&)> change = [](unsigned, SMmtBroadcast&) {};
    bool repair = false;
    bool route = false;           ///< media by ROUTE on 239.255.7.1:7001
    unsigned otherVersion = ~0u;  ///< packets from this packet_id on are of MMTP version 1

    static std::string MpTable(const std::string& package, const std::vector<SAsset>& assets)
    {
        CMmtBuilder b;
        b.Put(8, 0xFC).Open(8).Put(package).Close().Put(16, 0).Put(8, assets.size());
        for (const SAsset& asset : assets) {
            b.Put(8, 0).Put(MmtAssetId(asset.id)).Put(asset.type).Put(8, 0).Put(8, 1);
            if (asset.port == 0) {
                b.Put(8, 0);
            } else {
                b.Put(8, 1).Put(32, 0xC0000200 + asset.source).Put(32, packets::k_session).Put(16, asset.port);
            }
            b.Put(16, asset.packetId).Put(16, 0);
        }
        return MmtTable(0x20, b.Bytes());
    }
    std::string Bytes() override
    {
        CCapture capture(1);
        std::map<unsigned, unsigned> sequences;
        const auto send = [&](unsigned packetId, unsigned type, const std::string& data, unsigned port = 6001) {
            const unsigned sequence = sequences[packetId]++;
            if (keep(packetId, sequence)) {
                capture.AddSession(
                    packets::Mmtp({sequence, 0, packetId, packetId < otherVersion ? 0 : 0x4000u, type}, data), port);
            }
        };
        for (unsigned second = 0; second < seconds; ++second) {
            change(second, *this);
            capture.At(second, 40000).AddLls(packets::Slt(services, 1));
            if (!usbd.empty()) {
                send(0, 2, MmtMessage(0x8100, 32, packets::MmtAtsc3(1, usbd, usbdVersion)));
            }
            for (unsigned i = 0; i < tables; ++i) {
                std::string message = MmtMessage(0x20, 16, MpTable(package, assets));
                message[2] = version;
                send(1, 2, message);
            }
            if (!ahead.empty()) {
                send(1, 2, MmtMessage(0x20, 16, MpTable(ahead, {{"w", "hev1", 11}})));
            }
            for (unsigned i = 0; i < 8; ++i) {
                send(10 + 10 * (i % 2), 0, "media", ports[i % 2]);
            }
            if (route) {
                capture.AddSession(packets::Lct({second + 1, 0, 20, false, 30}, std::string(20, 'x')), 7001);
            }
            if (repair) {
                capture.AddSession(packets::Mmtp({second, 0, 40, 0x1000, 3}, "repair"), 6001);
            }
        }
        return capture.Bytes();
    }
};

/// Another package with the packet_ids of the last one begins.
void ChangePackage(unsigned second, SMmtBroadcast& now)
{
    if (second == 6) {
        now.package = "next";
        now.assets = {{"v2", "hev1", 10}, {"a2", "mp4a", 20}};
        ++now.version;
        ++now.usbdVersion;
        if (!now.usbd.empty()) {
            now.usbd =
                "<BundleDescriptionMMT><UserServiceDescription globalServiceID='urn:g' serviceId='1'>"
                "<MPUComponent mmtPackageId='next'/></UserServiceDescription></BundleDescriptionMMT>";
        }
    }
}

std::function<void(SMmtBroadcast&)> Keep(const std::function<bool(unsigned id, unsigned number)>& keep)
{
    return [keep](SMmtBroadcast& broadcast) { broadcast.keep = keep; };
}

const std::vector<SBreachOf<SMmtBroadcast>> k_mmt = {
    {"sound", [](SMmtBroadcast&) {}, {}},
    {"another package's MP table", [](SMmtBroadcast& b) { b.package = "other"; }, {"no-mp-table"}},
    {"no MP table", [](SMmtBroadcast& b) { b.tables = 0; }, {"no-mp-table"}},
    {"one late",
     [](SMmtBroadcast& b) {
         b.tables = 0;
         b.change = [](unsigned second, SMmtBroadcast& now) { now.tables = second / 9; };
     },
     {}},
    {"too short to tell",
     [](SMmtBroadcast& b) {
         b.tables = 0;
         b.seconds = 5;
     },
     {}},
    {"an MP table, no USBD", [](SMmtBroadcast& b) { b.usbd = ""; }, {}},
    {"no packet of an asset", Keep([](unsigned id, unsigned) { return id != 20; }), {"asset-not-sent"}},
    {"an asset that stops",
     [](SMmtBroadcast& b) {
         b.seconds = 30;
         b.keep = [](unsigned id, unsigned number) { return id != 20 || number < 40; };
     },
     {"asset-not-sent"}},
    {"for as long as a segment may be",
     [](SMmtBroadcast& b) {
         b.seconds = 20;
         b.keep = [](unsigned id, unsigned number) { return id != 20 || number < 40; };
     },
     {}},
    {"they are of another version", [](SMmtBroadcast& b) { b.otherVersion = 20; }, {"mmtp-version"}},
    {"the MP table is, too", [](SMmtBroadcast& b) { b.otherVersion = 1; }, {"mmtp-version"}},
    {"all packets are", [](SMmtBroadcast& b) { b.otherVersion = 0; }, {"mmtp-version"}},
    {"one packet", Keep([](unsigned id, unsigned number) { return id != 20 || number == 5; }), {}},
    {"no media at all", Keep([](unsigned id, unsigned) { return id < 10; }), {}},
    {"subtitles may be silent for longer",
     [](SMmtBroadcast& b) {
         b.assets.push_back({"s", "stpp", 30});
         b.seconds = 9;
     },
     {}},
    {"but not for ever",
     [](SMmtBroadcast& b) {
         b.assets.push_back({"s", "stpp", 30});
     },
     {"asset-not-sent"}},
    {"an asset at an address that was not captured",
     [](SMmtBroadcast& b) {
         b.assets.push_back({"s", "hev1", 30, 6002});
     },
     {}},
    {"an asset at another address", [](SMmtBroadcast& b) { b.assets[1].port = b.ports[1] = 6002; }, {}},
    {"at an address that no table has",
     [](SMmtBroadcast& b) { b.ports[1] = 6002; },
     {"asset-not-sent", "unsignalled-traffic"}},
    {"a packet_id of two assets",
     [](SMmtBroadcast& b) {
         b.assets.push_back({"w", "hev1", 10});
     },
     {"packet-id-twice"}},
    {"of two sessions",
     [](SMmtBroadcast& b) {
         b.assets.push_back({"w", "hev1", 10, 6002});
     },
     {}},
    {"of two sources",
     [](SMmtBroadcast& b) {
         b.assets.push_back({"w", "hev1", 30, 6002, 7});
         b.assets.push_back({"x", "hev1", 30, 6002, 8});
     },
     {}},
    {"of one source",
     [](SMmtBroadcast& b) {
         b.assets.push_back({"w", "hev1", 30, 6002, 7});
         b.assets.push_back({"x", "hev1", 30, 6002, 7});
     },
     {"packet-id-twice"}},
    {"of one asset, twice",
     [](SMmtBroadcast& b) {
         b.assets.push_back({"v", "hev1", 10});
     },
     {}},
    {"of a package and the next one", [](SMmtBroadcast& b) { b.change = ChangePackage; }, {}},
    {"without a USBD",
     [](SMmtBroadcast& b) {
         b.change = ChangePackage;
         b.usbd = "";
     },
     {}},
    {"a table ahead of its package", [](SMmtBroadcast& b) { b.ahead = "next"; }, {}},
    {"of a package beside the other",
     [](SMmtBroadcast& b) {
         b.ahead = "other";
         b.usbd = "";
     },
     {"asset-not-sent"}},
    {"a component that is no asset", [](SMmtBroadcast& b) { b.assets[1].id = "b"; }, {"component-without-asset"}},
    {"that may come by broadband",
     [](SMmtBroadcast& b) {
         b.assets[1].id = "b";
         b.usbd.insert(b.usbd.find("<ComponentInfo"), "<BroadbandComponent fullMPDUri='m'/>");
     },
     {}},
    {"while the table has just changed",
     [](SMmtBroadcast& b) {
         b.change = [](unsigned second, SMmtBroadcast& now) {
             now.assets[1].id = second < 9 ? "a" : "b";
             now.version = second < 9 ? 7 : 8;
         };
     },
     {}},
    {"another globalServiceID",
     [](SMmtBroadcast& b) { b.usbd.replace(b.usbd.find("urn:g"), 5, "urn:h"); },
     {"global-service-id"}},
    {"a packet lost", Keep([](unsigned id, unsigned number) { return id != 10 || number != 7; }), {"packets-lost"}},
    {"the first and the last one",
     Keep([](unsigned id, unsigned number) { return id != 10 || (number > 0 && number < 47); }),
     {}},
    {"every ninth",
     Keep([](unsigned id, unsigned number) { return id != 10 || number % 9 != 1; }),
     {"many-packets-lost"}},
    {"every thirteenth",
     Keep([](unsigned id, unsigned number) { return id != 10 || number % 13 != 1; }),
     {"packets-lost"}},
    {"every ninth, with repair",
     [](SMmtBroadcast& b) {
         b.repair = true;
         b.keep = [](unsigned id, unsigned number) { return id != 10 || number % 9 != 1; };
     },
     {"packets-lost"}},
    {"signalling stays away",
     [](SMmtBroadcast& b) {
         const std::string usbd = b.usbd;
         b.change = [usbd](unsigned second, SMmtBroadcast& now) {
             now.tables = second < 2 || second > 6 ? 1 : 0;
             now.usbd = now.tables != 0 ? usbd : "";
         };
     },
     {"signalling-interval"}},
};

TEST(MmtRules, EachHasItsBreachAndItsNearMiss)
{
    ExpectBroken(k_mmt);
}

/// Media of other services show that the capture is not one of signalling alone.
TEST(MmtRules, VerdictOnWhatIsSent)
{
    const struct {
        const char* what;
        const char* verdict;
        std::function<void(SMmtBroadcast&)> change;
    } cases[] = {
        {"sound", "plays", [](SMmtBroadcast&) {}},
        {"no media", "does-not-play", Keep([](unsigned id, unsigned) { return id < 10; })},
        {"that may come by broadband", "cannot-tell",
         [](SMmtBroadcast& b) {
             b.keep = [](unsigned id, unsigned) { return id < 10; };
             b.usbd.insert(b.usbd.find("<ComponentInfo"), "<BroadbandComponent fullMPDUri='m'/>");
         }},
        {"on an address that was not captured", "cannot-tell",
         [](SMmtBroadcast& b) {
             b.keep = [](unsigned id, unsigned) { return id < 10; };
             b.assets[0].port = b.assets[1].port = 6002;
         }},
        {"one asset of two", "plays-but", Keep([](unsigned id, unsigned) { return id != 20; })},
        {"packets of another version", "cannot-tell", [](SMmtBroadcast& b) { b.otherVersion = 0; }},
        {"media of another version", "cannot-tell", [](SMmtBroadcast& b) { b.otherVersion = 10; }},
        {"no MP table either", "cannot-tell",
         [](SMmtBroadcast& b) {
             b.keep = [](unsigned id, unsigned) { return id < 10; };
             b.tables = 0;
             b.seconds = 5;
         }},
    };
    for (const auto& test : cases) {
        SMmtBroadcast broadcast;
        broadcast.route = true;
        broadcast.services +=
            "<Service serviceId='2' serviceCategory='4'><BroadcastSvcSignaling slsProtocol='1' "
            "slsDestinationIpAddress='239.255.7.1' slsDestinationUdpPort='7001'/></Service>";
        test.change(broadcast);
        broadcast.Broken();
        for (const nlohmann::json& line : broadcast.lines) {
            if (line["type"] == "verdict" && line["service"] == 1) {
                EXPECT_EQ(line["verdict"], test.verdict) << test.what << line;
            }
        }
    }
}

}  // namespace
