#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "judge/Evidence.h"

namespace vyr::inspect {

/// An LCT session that signalling announces, and what is on the air of it.
struct SLctSession {
    struct SAnnouncement {
        const SPackageFacts* package;
        const SLctFacts* facts;
    };
    std::vector<SAnnouncement> by;
    std::vector<std::pair<std::size_t, std::size_t>> flows;  ///< places of SDelivery's sessions, and of their flows
};
using TLctSessions = std::map<TLctKey, SLctSession>;

/// Where an LCT session of the package's S-TSID is.
TLctKey KeyOf(const SPackageFacts& package, const SLctFacts& lct);
/// All that the packages announce.
TLctSessions LctSessions(const SEvidence& evidence, const SDelivery& delivery);
/// The services whose signalling the package is.
std::vector<unsigned> ServicesOf(const SPackageFacts& package);
/// "video, representation 1": what signalling says that it is; empty: nothing.
std::string CarriesText(const SLctFacts& lct);
/// A template with what stands for the representation filled in.
std::string OfRepresentation(const std::string& text, const std::string& id);
/// "239.255.7.1:30100".
std::string SessionText(const SSessionDelivery& session);

/// A service of the flow, or of the session.
std::optional<unsigned> FirstService(const SSessionDelivery& session, const SFlowDelivery& flow);

/// Says in `delivery` what the signalling calls its sessions, flows and objects.
void NameDelivery(const SEvidence& evidence, SDelivery& delivery);

}  // namespace vyr::inspect
