#pragma once

#include <memory>
#include <set>

#include "SessionFollower.h"

namespace vyr::inspect {

/// Follows the services that ROUTE carries, by TSI 0 of their sessions.
std::unique_ptr<CSessionFollower> FollowRoute(const std::set<CSessionFollower::TEndpoint>& endpoints, CReport& report);

}  // namespace vyr::inspect
