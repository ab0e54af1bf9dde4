#pragma once

#include <functional>
#include <string>

#include "model/Delivery.h"

namespace vyr::inspect {

/// Pictures of how much came when: one for each service, stacked by component, then those of sessions that belong to
/// none. `id` begins the ids in them, `title` gives the markup that names a service. Without times, a text alone.
std::string HtmlRates(const SDelivery& delivery, const std::string& id,
                      const std::function<std::string(unsigned serviceId)>& title);

}  // namespace vyr::inspect
