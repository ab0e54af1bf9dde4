// The inspector's way from the guide's objects to its report: the first byte picks text or JSON, the limits,
// and a raw file or objects of a session; these follow, each behind its 16-bit length and a byte that is its
// TOI, or renames the services of the service list.
#include <cstdio>

#include "Fuzz.h"
#include "GuideFollower.h"
#include "HtmlReport.h"
#include "JsonReport.h"
#include "LibraryPort.h"
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
    InstallPlatform(LOG_PRIORITY_SILENT, {});
    CScript script(data, size);
    const std::uint8_t options = script.Byte();
    CProgress progress(false);
    COutput output(progress);
    CTextReport text(output, (options & 2) != 0);
    CJsonReport json(output);
    CHtmlReport page;
    CReport report(options & 1 ? static_cast<IReportWriter&>(json) : text, false, &page);
    const SGuideLimits limits = options & 4 ? SGuideLimits{3, 2048, 4096} : SGuideLimits{};
    CGuideFollower guide(report, limits);
    const std::vector<unsigned char> rest = script.Rest();
    const SSource source = {"fuzz", 1, {}};
    if (options & 8) {
        guide.Take({}, {rest.data(), rest.size()}, source);
    }
    for (std::size_t at = 0; (options & 8) == 0 && at + 3 <= rest.size();) {
        const std::size_t wanted = static_cast<std::size_t>(rest[at] | rest[at + 1] << 8);
        const unsigned pick = rest[at + 2];
        at += 3;
        const std::size_t length = std::min(wanted, rest.size() - at);
        const std::vector<unsigned char> object(rest.begin() + static_cast<std::ptrdiff_t>(at),
                                                rest.begin() + static_cast<std::ptrdiff_t>(at + length));
        at += length;
        if (pick & 0x80) {
            SService service;
            service.serviceId = pick;
            service.globalServiceId.assign(object.begin(), object.end());
            guide.Announce({{1, 1}, 0}, {service});
            continue;
        }
        const char* type = pick & 0x40 ? "application/vnd.oma.bcast.sgdu" : "";
        const SGuidePlace place = {"1.2.3.4:5", 1, {0, pick & 0x0F}, pick & 0x20 ? "file" : "", type, {1}};
        guide.Take(place, {object.data(), object.size()}, source);
    }
    guide.Finish("fuzz", true);
    const SGuideCounts& counts = report.Summary().guide;
    Require(counts.fragments <= limits.fragments);
    Require((counts.fragments != 0) == guide.Holds());
    report.Finish();
    Require(MarkupFault(page.Page()).empty());  // nothing that came is markup
    return 0;
}
