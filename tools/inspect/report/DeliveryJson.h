#pragma once

#include "base/JsonFwd.h"
#include "model/Delivery.h"

namespace vyr::inspect {

/// What the JSON report says of a delivery as a whole, and of one of its sessions.
TJson DeliveryJson(const SDelivery& delivery);
TJson DeliveryJson(const SDelivery& delivery, const SSessionDelivery& session);

}  // namespace vyr::inspect
