#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace vyr::inspect {

struct STime {
    std::int64_t seconds = 0;  ///< since 1970, UTC; before the year 10000
    std::int32_t nanoseconds = 0;
};

constexpr double Seconds(const STime& time)
{
    return static_cast<double>(time.seconds) + time.nanoseconds / 1e9;
}

/// Where something stands in the input.
struct SSource {
    std::string file;
    std::uint64_t packet = 0;  ///< from 1; 0: the file as a whole
    std::optional<STime> time;
};

struct SLlsHeader {
    unsigned char tableId = 0;
    unsigned char groupId = 0;
    unsigned char groupCountMinus1 = 0;
    unsigned char version = 0;
};

/// Transport object identifier of up to 112 bits: the high 64 and the low 64.
using TToi = std::pair<std::uint64_t, std::uint64_t>;
/// Decimal up to 64 bits, hexadecimal beyond.
std::string ToiText(const TToi& toi);

}  // namespace vyr::inspect
