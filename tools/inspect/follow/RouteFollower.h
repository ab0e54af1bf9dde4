#pragma once

#include <memory>
#include <set>

#include "follow/SessionFollower.h"

namespace vyr::inspect {

class CGuideSessions;

/// Follows the services that ROUTE carries, by TSI 0 of their sessions. `guide` is told of what each S-TSID
/// names, and outlives the follower.
std::unique_ptr<CSessionFollower> FollowRoute(const std::set<CSessionFollower::TEndpoint>& endpoints,
                                              CGuideSessions& guide, CReport& report);

}  // namespace vyr::inspect
