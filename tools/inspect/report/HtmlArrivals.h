#pragma once

#include <string>

#include "model/Delivery.h"

namespace vyr::inspect {

/// When tables and signalling came: a table with a picture in each row. `id` begins the ids in it. Nothing when none
/// came.
std::string HtmlArrivals(const SDelivery& delivery, const std::string& id);

}  // namespace vyr::inspect
