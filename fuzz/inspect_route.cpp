// The inspector's way from LCT packets to its report: the first byte picks text or JSON and packets or a
// raw file; then UDP payloads follow, each behind its 16-bit length and a byte that picks its session, or
// lets sessions go and come.
// Sources: tools/inspect/follow/RouteFollower.cpp tools/inspect/follow/SlsFollower.cpp tools/inspect/wire/Lct.cpp
// Sources: tools/inspect/wire/ObjectAssembler.cpp tools/inspect/content/Sls*.cpp tools/inspect/content/MpdContent.cpp
#include "InspectFuzz.h"
#include "follow/GuideSessions.h"
#include "follow/RouteFollower.h"
#include "follow/SlsFollower.h"

using namespace vyr::inspect;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::uint32_t k_address = 0xEFFF0701;
    constexpr std::uint32_t k_source = 0xC000020A;
    CScript script(data, size);
    const std::uint8_t options = script.Byte();
    CFuzzReport reports((options & 1) != 0);
    CReport& report = reports.Report();
    const std::vector<unsigned char> rest = script.Rest();
    if (options & 2) {
        const SFollowed followed;
        CSlsFollower follower(followed, report);
        follower.Take({}, {rest.data(), rest.size()}, {"fuzz", 0, {}});
        reports.Finish();
        return 0;
    }
    const std::vector<SListedService> services = {{1, 1, {k_address, 1, 0}},
                                                  {2, 1, {k_address, 1, k_source}, 4, {}},
                                                  {3, 1, {k_address, 2, k_source}},
                                                  {4, 1, {}}};
    CGuideFollower guide(report);
    CGuideSessions guideSessions(guide, report);
    const auto follower = FollowRoute({{k_address, 0}}, guideSessions, report);
    const CSessionFollower::TGroup group = {{1, 1}, 0};
    follower->Announce(group, services, {});
    std::uint64_t packets = 0;
    const SSource source = {"fuzz", 1, {}};
    ForEachPacket(rest, [&](unsigned pick, const std::vector<unsigned char>& payload) {
        if (pick & 0x80) {
            follower->Announce(group, pick & 0x40 ? services : std::vector<SListedService>(), {});
        }
        const SDatagram datagram = {pick & 4 ? 1 : k_source,
                                    k_address,
                                    1,
                                    static_cast<std::uint16_t>(pick & 3),
                                    {payload.data(), payload.size()}};
        guideSessions.Take(datagram, source);
        packets += follower->Take(datagram, source) ? 1 : 0;
    });
    std::set<TListedId> awaited;
    follower->Finish({"fuzz", {}, {}}, {}, true, 5, awaited);
    guideSessions.Finish({"fuzz", {}, {}}, true);
    guide.Finish("fuzz");
    const SRouteCounts& counts = reports.Finish().route;
    Require(counts.packets >= packets);
    Require(counts.malformed + counts.signalling <= counts.packets);
    Require(counts.objects.complete + counts.incomplete + counts.objects.tooLarge <= counts.signalling);
    return 0;
}
