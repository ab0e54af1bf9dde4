#pragma once

#include <string>

#include "model/Guide.h"

namespace vyr::inspect {

/// The guide as markup: a time grid for each day, and the programmes of each service to unfold. `id` begins
/// the anchors; with `localTime`, times are those of the machine's zone. Ends, and says so, soon after `limit` bytes.
std::string HtmlGuide(const SGuide& guide, const std::string& id, bool localTime, std::size_t limit);

}  // namespace vyr::inspect
