#pragma once

#include <cstdint>
#include <tuple>

namespace vyr::inspect {

/// Where the signalling of a service is sent.
struct SRouteSession {
    std::uint32_t destination = 0;  ///< 0: nowhere that can be followed
    std::uint16_t port = 0;
    std::uint32_t source = 0;  ///< 0: any

    bool operator<(const SRouteSession& other) const
    {
        return std::tie(destination, port, source) < std::tie(other.destination, other.port, other.source);
    }
};

/// A service of the service list that is carried by ROUTE.
struct SRouteService {
    unsigned serviceId = 0;
    SRouteSession session;
};

}  // namespace vyr::inspect
