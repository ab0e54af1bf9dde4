#pragma once

#include "common/ChannelMap.h"
#include "support/Recorder.h"
#include "support/Show.h"

/// The services of a map in its order.
inline std::vector<void*> ServicesOf(CChannelMap& map)
{
    std::vector<void*> all;
    EXPECT_TRUE(map.GetServiceList(
        [](void* user, void* service) { static_cast<std::vector<void*>*>(user)->push_back(service); }, &all));
    return all;
}

/// All that a map tells of a service, each value as its getter gives it.
inline std::string ShowService(CChannelMap& map, void* service)
{
    unsigned char group = 0, name[64];
    int n[6] = {}, category = 0;
    unsigned int destination = 0, source = 0;
    unsigned short port = 0, length = sizeof name;
    bool isProtected = false, broadband = false, hidden = false;
    EATSC3ProtocolType protocol{};
    EATSC3UrlType urlType{};
    std::string id, url, drm;
    const bool given = map.GetServiceNumber(service, &group, n, n + 1, n + 2, n + 3, n + 4, n + 5) &&
                       map.GetDestination(service, &destination, &port) && map.GetSource(service, &source) &&
                       map.GetProtocolType(service, &protocol) && map.GetProtected(service, &isProtected) &&
                       map.GetServiceCategory(service, &category, &broadband, &hidden) &&
                       map.GetServiceName(service, name, length) && map.GetGlobalServiceId(service, id) &&
                       map.GetSvcInetUrl(service, url) && map.GetSvcInetUrlType(service, &urlType) &&
                       map.GetDrmSystemID(service, drm);
    if (!given) {
        return "gone";
    }
    return Join(group, std::vector<int>(n, n + 6), destination, port, source, protocol, isProtected, category,
                broadband, hidden, std::string(name, name + length), id, url, urlType, drm);
}
