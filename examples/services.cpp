// Prints the services of a service list. Usage: services < TABLE
#include <common/ChannelMap.h>
#include <lls/ParseSLT.h>

#include <cstdio>

int main()
{
    static unsigned char bytes[65536];  // the payload of one datagram of 224.0.23.60:4937
    const auto size = static_cast<unsigned int>(std::fread(bytes, 1, sizeof bytes, stdin));
    CChannelMap map;
    CParseSLT slt;
    if (!map.Create() || !slt.Create(&map, nullptr)) {
        return 1;
    }
    slt.SetLenient(true);  // take services that leave out flags, as many stations do
    IParse::SItem item = {bytes, size, size * 8, 0, true};
    slt.Parse(&item);
    for (int i = 0; i < slt.ServiceCount(); ++i) {
        const SParseSLT::SService& service = *slt.GetServiceInfo(i);
        std::printf("%d.%d %s\n", service.majorChannelNo, service.minorChannelNo,
                    service.shortServiceName.value_or("").c_str());
    }
    slt.Destroy();
    map.Destroy();
    return 0;
}
