#pragma once

#include <memory>
#include <set>

#include "follow/SessionFollower.h"

namespace vyr::inspect {

/// Follows the services that MMTP carries, by the signalling packets of their sessions.
std::unique_ptr<CSessionFollower> FollowMmtp(const std::set<CSessionFollower::TEndpoint>& endpoints, CReport& report);

}  // namespace vyr::inspect
