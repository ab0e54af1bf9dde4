#pragma once

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "model/Delivery.h"

/// Deliveries that pictures are made of, from 2027-01-15T08:00:00Z on.
namespace pictures {

inline const std::string k_hostile =
    "</title></style><script>alert(1)</script><img src=x onerror='a()'>\" style=\"x&\xE2\x80\xAE\x1B";

inline vyr::inspect::STraffic Traffic(std::vector<std::uint64_t> bins)
{
    vyr::inspect::STraffic traffic;
    traffic.bytes = std::accumulate(bins.begin(), bins.end(), std::uint64_t{0});
    traffic.packets = bins.size();
    traffic.bins = std::move(bins);
    traffic.first = vyr::inspect::STime{1800000000, 0};
    return traffic;
}

inline vyr::inspect::SFlowDelivery Flow(std::uint64_t tsi, const std::string& carries, std::vector<std::uint64_t> bins)
{
    vyr::inspect::SFlowDelivery flow;
    flow.id = tsi;
    flow.carries = carries;
    flow.traffic = Traffic(std::move(bins));
    flow.objects.emplace();
    return flow;
}

/// A session of ROUTE, which has the bytes of its flows where it is not given others.
inline vyr::inspect::SSessionDelivery Session(std::uint16_t port, std::vector<unsigned> services,
                                              std::vector<vyr::inspect::SFlowDelivery> flows,
                                              std::vector<std::uint64_t> bins = {}, bool guessed = false)
{
    const bool given = !bins.empty();
    for (const vyr::inspect::SFlowDelivery& flow : flows) {
        bins.resize(std::max(bins.size(), flow.traffic.bins.size()));
        for (std::size_t i = 0; i < flow.traffic.bins.size() && !given; ++i) {
            bins[i] += flow.traffic.bins[i];
        }
    }
    vyr::inspect::SSessionDelivery session;
    session.destination = 0xEFFF0701;
    session.port = port;
    session.source = 1;
    session.protocol = vyr::inspect::EDeliveryProtocol::ROUTE;
    session.guessed = guessed;
    session.services = std::move(services);
    session.traffic = Traffic(std::move(bins));
    session.flows = std::move(flows);
    return session;
}

inline vyr::inspect::SDelivery Delivery(std::vector<vyr::inspect::SSessionDelivery> sessions, double seconds)
{
    vyr::inspect::SDelivery delivery;
    delivery.source.file = "made.pcap";
    delivery.traffic = Traffic({1});
    delivery.seconds = seconds;
    delivery.sessions = std::move(sessions);
    return delivery;
}

}  // namespace pictures
