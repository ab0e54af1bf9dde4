// What the inspector measures of a capture: the first byte picks text or JSON; then UDP payloads follow, each behind
// its 16-bit length and a byte that picks when and where it comes, and what is announced before it.
// Sources: tools/inspect/measure/*.cpp tools/inspect/wire/Lct.cpp tools/inspect/wire/Mmtp.cpp
// Sources: tools/inspect/report/DeliveryText.cpp
#include "InspectFuzz.h"
#include "measure/Traffic.h"

using namespace vyr::inspect;

namespace {

/// Gives the packets of the traffic, after it proves that its figures agree.
std::uint64_t Packets(const STraffic& traffic)
{
    std::uint64_t bytes = 0;
    for (const std::uint64_t bin : traffic.bins) {
        bytes += bin;
    }
    Require(traffic.bins.size() <= CMeter::k_bins);
    Require(bytes == traffic.bytes);  // all have times
    Require(!traffic.meanRate || *traffic.meanRate <= *traffic.peakRate);
    return traffic.packets;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::uint32_t k_address = 0xEFFF0701;
    constexpr std::int64_t k_milliseconds[] = {0, 300, 1000, 5000, 40000, -500, -3000, 4000000};
    CScript script(data, size);
    const std::uint8_t options = script.Byte();
    CFuzzReport reports((options & 1) != 0);
    CTraffic traffic([](const SServiceSession&, std::uint64_t, const TToi& toi) {
        return toi.second % 2 != 0 ? std::optional<std::uint64_t>(toi.second) : std::nullopt;
    });
    std::int64_t now = 1800000000000;
    std::uint64_t packets = 0;
    ForEachPacket(script.Rest(), [&](unsigned pick, const std::vector<unsigned char>& payload) {
        const auto port = static_cast<std::uint16_t>(pick & 3);
        const std::uint32_t from = pick & 0x80 ? 1 : 2;
        now += k_milliseconds[pick >> 2 & 7];
        if (pick & 0x60) {
            traffic.Announce({k_address, port, pick & 0x40 ? from : 0},
                             pick & 0x20 ? EDeliveryProtocol::ROUTE : EDeliveryProtocol::MMTP, pick);
        }
        traffic.Take({from, k_address, 1, port, {payload.data(), payload.size()}},
                     STime{now / 1000, static_cast<std::int32_t>(now % 1000 * 1000000)});
        ++packets;
    });
    const SDelivery delivery = traffic.Result({"fuzz", 0, {}});
    std::uint64_t sum = Packets(delivery.others);
    for (const SSessionDelivery& session : delivery.sessions) {
        std::uint64_t flows = session.otherPackets + session.packetsNoFlow;
        for (const SFlowDelivery& flow : session.flows) {
            flows += Packets(flow.traffic);
            const SObjectsDelivery objects = flow.objects.value_or(SObjectsDelivery());
            Require(objects.begun == objects.whole + objects.incomplete + objects.cut + objects.unknown);
            Require(objects.whole + objects.repeats <= flow.traffic.packets);
            Require(objects.bytesMissing == 0 || objects.incomplete != 0);
            Require(!flow.packets || flow.packets->lost <= flow.traffic.packets * CPacketLoss::k_mostLost);
        }
        Require(flows <= session.traffic.packets);
        sum += Packets(session.traffic);
    }
    Require(sum == packets && Packets(delivery.traffic) == packets);
    reports.Report().Delivery(delivery);
    reports.Finish();
    return 0;
}
