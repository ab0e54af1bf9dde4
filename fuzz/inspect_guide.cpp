// The inspector's way from the guide's objects to its report: the first byte picks text or JSON, the limits,
// and a raw file or objects of a session; these follow, each behind its 16-bit length and a byte that is its
// TOI, or renames the services of the service list.
// Sources: tools/inspect/follow/Guide*.cpp tools/inspect/content/Guide*.cpp tools/inspect/report/*Guide*.cpp
#include "InspectFuzz.h"
#include "follow/GuideFollower.h"

using namespace vyr::inspect;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    CScript script(data, size);
    const std::uint8_t options = script.Byte();
    CFuzzReport reports((options & 1) != 0, (options & 2) != 0);
    const SGuideLimits limits = options & 4 ? SGuideLimits{3, 2048, 4096} : SGuideLimits{};
    CGuideFollower guide(reports.Report(), limits);
    const std::vector<unsigned char> rest = script.Rest();
    const SSource source = {"fuzz", 1, {}};
    if (options & 8) {
        guide.Take({}, {rest.data(), rest.size()}, source);
    } else {
        ForEachPacket(rest, [&](unsigned pick, const std::vector<unsigned char>& object) {
            if (pick & 0x80) {
                SListedService service;
                service.serviceId = pick;
                service.globalServiceId.assign(object.begin(), object.end());
                guide.Announce({{1, 1}, 0}, {service});
                return;
            }
            const char* type = pick & 0x40 ? "application/vnd.oma.bcast.sgdu" : "";
            const SGuidePlace place = {"1.2.3.4:5", 1, {0, pick & 0x0F}, pick & 0x20 ? "file" : "", type, {1}};
            guide.Take(place, {object.data(), object.size()}, source);
        });
    }
    guide.Finish("fuzz");
    const SGuideCounts& counts = reports.Finish().guide;
    Require(counts.fragments <= limits.fragments);
    Require((counts.fragments != 0) == guide.Holds());
    return 0;
}
