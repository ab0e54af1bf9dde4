// The inspector's way from MMTP packets to its report: the first byte picks text or JSON and packets or a
// raw message; then UDP payloads follow, each behind its 16-bit length and a byte that picks its session, or
// lets sessions go and come.
// Sources: tools/inspect/follow/MmtFollower.cpp tools/inspect/follow/MessageFollower.cpp
// Sources: tools/inspect/wire/M*.cpp tools/inspect/content/Mmt*.cpp
#include "InspectFuzz.h"
#include "content/MessageHead.h"
#include "follow/MessageFollower.h"
#include "follow/MmtFollower.h"

using namespace vyr::inspect;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::uint32_t k_address = 0xEFFF0701;
    CScript script(data, size);
    const std::uint8_t options = script.Byte();
    CFuzzReport reports((options & 1) != 0);
    const std::vector<unsigned char> rest = script.Rest();
    if (options & 2) {
        const SView message = {rest.data(), rest.size()};
        const SFollowed followed;
        CMessageFollower follower(followed, reports.Report());
        IsMessageFile(message);
        follower.Take({}, message, {"fuzz", 0, {}});
        follower.Take({}, message, {"fuzz", 0, {}});
        const SSummary& summary = reports.Finish();
        Require(summary.messages.byStatus[0] == summary.messages.byStatus[static_cast<std::size_t>(EStatus::REPEATED)]);
        return 0;
    }
    const std::vector<SListedService> services = {{1, 2, {k_address, 1, 0}}, {2, 2, {k_address, 2, 0}}, {3, 2, {}}};
    const auto follower = FollowMmtp({{k_address, 0}}, reports.Report());
    const CSessionFollower::TGroup group = {{1, 1}, 0};
    follower->Announce(group, services, {});
    std::uint64_t packets = 0;
    ForEachPacket(rest, [&](unsigned pick, const std::vector<unsigned char>& payload) {
        if (pick & 0x80) {
            follower->Announce(group, pick & 0x40 ? services : std::vector<SListedService>(), {});
        }
        const SDatagram datagram = {
            1, k_address, 1, static_cast<std::uint16_t>(pick & 3), {payload.data(), payload.size()}};
        packets += follower->Take(datagram, {"fuzz", 1, {}}) ? 1 : 0;
    });
    std::set<TListedId> awaited;
    follower->Finish({"fuzz", {}, {}}, {}, true, 5, awaited);
    const SMmtpCounts& counts = reports.Finish().mmtp;
    Require(counts.packets == packets);
    Require(counts.malformed + counts.signalling + counts.otherVersions + counts.otherTypes == packets);
    Require(counts.messages.repeated + counts.messages.lost + counts.messages.dropped <= packets);
    return 0;
}
