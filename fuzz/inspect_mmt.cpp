// The inspector's way from MMTP packets to its report: the first byte picks text or JSON and packets or a
// raw message; then UDP payloads follow, each behind its 16-bit length and a byte that picks its session, or
// lets sessions go and come.
#include <cstdio>

#include "Fuzz.h"
#include "HtmlReport.h"
#include "JsonReport.h"
#include "LibraryPort.h"
#include "MessageFollower.h"
#include "MessageHead.h"
#include "MmtFollower.h"
#include "Output.h"
#include "Progress.h"
#include "TextReport.h"
#include "inspect/Markup.h"

using namespace vyr::inspect;

extern "C" int LLVMFuzzerInitialize(int*, char***);

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    return std::freopen("/dev/null", "w", stdout) ? 0 : 1;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::uint32_t k_address = 0xEFFF0701;
    InstallPlatform(LOG_PRIORITY_SILENT, {});
    CScript script(data, size);
    const std::uint8_t options = script.Byte();
    CProgress progress(false);
    COutput output(progress);
    CTextReport text(output);
    CJsonReport json(output);
    CHtmlReport page;
    CReport report(options & 1 ? static_cast<IReportWriter&>(json) : text, false, &page);
    const std::vector<unsigned char> rest = script.Rest();
    if (options & 2) {
        const SBytes message = {rest.data(), rest.size()};
        const SFollowed followed;
        CMessageFollower follower(followed, report);
        IsMessageFile(message);
        follower.Take({}, message, {"fuzz", 0, {}});
        follower.Take({}, message, {"fuzz", 0, {}});
        report.Finish();
        Require(MarkupFault(page.Page()).empty());  // nothing that came is markup
        const SSummary& summary = report.Summary();
        Require(summary.messages[0] == summary.messages[static_cast<std::size_t>(EStatus::REPEATED)]);
        return 0;
    }
    const std::vector<SService> services = {{1, 2, {k_address, 1, 0}}, {2, 2, {k_address, 2, 0}}, {3, 2, {}}};
    const auto follower = FollowMmtp({{k_address, 0}}, report);
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
        const SDatagram datagram = {1, k_address, 1, static_cast<std::uint16_t>(pick & 3), {payload.data(), length}};
        packets += follower->Take(datagram, source) ? 1 : 0;
    }
    follower->Finish("fuzz");
    const SMmtpCounts& counts = report.Summary().mmtp;
    Require(counts.packets == packets);
    Require(counts.malformed + counts.signalling + counts.otherVersions + counts.otherTypes == packets);
    Require(counts.messages.repeated + counts.messages.lost + counts.messages.dropped <= packets);
    report.Finish();
    Require(MarkupFault(page.Page()).empty());  // nothing that came is markup
    return 0;
}
