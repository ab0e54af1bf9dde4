// The inspector's way from LLS tables to its report, certificates and signatures included: the first
// byte picks text or JSON, and whether tables come from one sender, then they follow, each behind its 16-bit length.
// Sources: tools/inspect/follow/Lls*.cpp tools/inspect/content/LlsTables.cpp
// Sources: tools/inspect/content/Certificates.cpp
#include "InspectFuzz.h"
#include "common/ChannelMap.h"
#include "follow/LlsStream.h"

using namespace vyr::inspect;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    CScript script(data, size);
    const std::uint8_t options = script.Byte();
    const std::vector<unsigned char> rest = script.Rest();
    CFuzzReport reports((options & 1) != 0);
    CChannelMap map;
    map.Create();
    {
        const auto make = [&](const std::string& stream, std::size_t mostServices) {
            return std::make_unique<CLlsFollower>(stream, (options & 2) == 0, map, reports.Report(), mostServices);
        };
        CLlsStream stream("224.0.23.60:4937", make, reports.Report());
        SSource source = {"fuzz", 0, STime{1800000000, 0}};
        for (std::size_t at = 0; at + 2 <= rest.size();) {
            const std::size_t wanted = static_cast<std::size_t>(rest[at] << 8 | rest[at + 1]);
            at += 2;
            const std::size_t length = wanted < rest.size() - at ? wanted : rest.size() - at;
            const std::vector<unsigned char> table(rest.begin() + static_cast<std::ptrdiff_t>(at),
                                                   rest.begin() + static_cast<std::ptrdiff_t>(at + length));
            const std::uint32_t sender = options & 4 ? static_cast<std::uint32_t>(length % 3) : 0;
            source.time->seconds += options & 8 ? 6 : 0;
            ++source.packet;
            stream.Take({sender, 0xE000173C, 40000, 4937, {table.data(), table.size()}}, source);
            at += length;
        }
        stream.Finish();
    }
    int left = 0;
    map.GetServiceList([](void* user, void*) { ++*static_cast<int*>(user); }, &left);
    Require(left == 0);  // what the follower put into the map, it took out again
    map.Destroy();
    reports.Finish();
    return 0;
}
