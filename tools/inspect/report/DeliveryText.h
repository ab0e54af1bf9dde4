#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "base/Text.h"
#include "model/Delivery.h"

namespace vyr::inspect {

/// A delivery in rows for people: those of sessions, each with its flows behind it.
struct SDeliveryRows {
    struct SRow {
        TRow cells;
        bool flow = false;
    };
    TRow titles;
    std::vector<SRow> rows;
    std::uint64_t more = 0;  ///< rows that are left out
};

/// What came in all: "51 packets, 73849 bytes in 4.100 s, 144.1 kbit/s, peak 160.0".
std::string DeliveryHeadline(const SDelivery& delivery);
/// No more than `most` rows: first the sessions that signalling names, then the largest.
SDeliveryRows DeliveryRows(const SDelivery& delivery, std::size_t most);
/// The headline, and the rows below it.
std::string DeliveryText(const SDelivery& delivery);

}  // namespace vyr::inspect
