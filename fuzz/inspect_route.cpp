// The inspector's way from LCT packets to its report: the first byte picks text or JSON and packets or a
// raw file; then UDP payloads follow, each behind its 16-bit length and a byte that picks its session, or
// lets sessions go and come.
#include <cstdio>

#include "Fuzz.h"
#include "JsonReport.h"
#include "LibraryPort.h"
#include "Output.h"
#include "Progress.h"
#include "RouteFollower.h"
#include "SlsFollower.h"
#include "TextReport.h"

using namespace vyr::inspect;

extern "C" int LLVMFuzzerInitialize(int*, char***);

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    return std::freopen("/dev/null", "w", stdout) ? 0 : 1;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::uint32_t k_address = 0xEFFF0701;
    constexpr std::uint32_t k_source = 0xC000020A;
    InstallPlatform(LOG_PRIORITY_SILENT, {});
    CScript script(data, size);
    const std::uint8_t options = script.Byte();
    CProgress progress(false);
    COutput output(progress);
    CTextReport text(output);
    CJsonReport json(output);
    CReport report(options & 1 ? static_cast<IReportWriter&>(json) : text, false);
    const std::vector<unsigned char> rest = script.Rest();
    if (options & 2) {
        const SFollowed followed;
        CSlsFollower follower(followed, report);
        follower.Take({}, {rest.data(), rest.size()}, {"fuzz", 0, {}});
        report.Finish();
        return 0;
    }
    const std::vector<SService> services = {
        {1, 1, {k_address, 1, 0}}, {2, 1, {k_address, 1, k_source}}, {3, 1, {k_address, 2, k_source}}, {4, 1, {}}};
    const auto follower = FollowRoute({{k_address, 0}}, report);
    const CSessionFollower::TGroup group = {{1, 1}, 0};
    follower->Announce(group, services);
    std::uint64_t packets = 0;
    const SSource source = {"fuzz", 1, {}};
    for (std::size_t at = 0; at + 3 <= rest.size();) {
        const std::size_t wanted = static_cast<std::size_t>(rest[at] | rest[at + 1] << 8);
        const unsigned pick = rest[at + 2];
        at += 3;
        const std::size_t length = std::min(wanted, rest.size() - at);
        const std::vector<unsigned char> payload(rest.begin() + static_cast<std::ptrdiff_t>(at),
                                                 rest.begin() + static_cast<std::ptrdiff_t>(at + length));
        at += length;
        if (pick & 0x80) {
            follower->Announce(group, pick & 0x40 ? services : std::vector<SService>());
        }
        const SDatagram datagram = {pick & 4 ? 1 : k_source,
                                    k_address,
                                    1,
                                    static_cast<std::uint16_t>(pick & 3),
                                    {payload.data(), payload.size()}};
        packets += follower->Take(datagram, source) ? 1 : 0;
    }
    follower->Finish("fuzz");
    const SRouteCounts& counts = report.Summary().route;
    Require(counts.packets >= packets);
    Require(counts.malformed + counts.signalling <= counts.packets);
    Require(counts.objects.complete + counts.incomplete + counts.objects.tooLarge <= counts.signalling);
    report.Finish();
    return 0;
}
