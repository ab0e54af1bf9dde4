#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "model/Finding.h"

namespace vyr::inspect {

/// Where the signalling of a service is sent.
struct SServiceSession {
    std::uint32_t destination = 0;  ///< 0: nowhere that can be followed
    std::uint16_t port = 0;
    std::uint32_t source = 0;  ///< 0: any

    bool operator<(const SServiceSession& other) const
    {
        return std::tie(destination, port, source) < std::tie(other.destination, other.port, other.source);
    }
};

/// A service of the service list.
struct SListedService {
    unsigned serviceId = 0;
    int slsProtocol = 0;  ///< 0: it does not say where its signalling is sent
    SServiceSession session;
    int category = 0;
    std::string globalServiceId = {};
    int majorChannelNo = 0;  ///< 0: none
    int minorChannelNo = 0;
    std::optional<STime> since = {};  ///< when its group's list first had it with this session

    bool IsGuide() const { return category == 4; }
};

/// A service by its list, as ServiceListName has it, and its serviceId.
using TListedId = std::pair<std::string, unsigned>;

/// A session that is followed, as the report names it. A raw file has none of this.
struct SFollowed {
    SServiceSession session;
    std::string name;                  ///< "239.255.7.1:30100"; empty for a raw file
    std::multiset<unsigned> services;  ///< that the service lists have at this session
    std::multiset<unsigned> guides;    ///< of these, those that are service guides

    /// The first of the services.
    std::vector<unsigned> Shown() const;
    /// A finding of this session.
    SFinding Finding(ERule rule, const std::string& message, const SSource& source) const;
};

}  // namespace vyr::inspect
