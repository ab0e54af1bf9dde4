#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <utility>

#include "base/JsonFwd.h"

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

/// The times of a capture's packets: the earliest and the latest.
struct SInputTimes {
    std::string file;
    std::optional<STime> first;
    std::optional<STime> last;

    void Add(const std::optional<STime>& time)
    {
        const auto before = [](const STime& a, const STime& b) {
            return std::tie(a.seconds, a.nanoseconds) < std::tie(b.seconds, b.nanoseconds);
        };
        first = time && (!first || before(*time, *first)) ? time : first;
        last = time && (!last || before(*last, *time)) ? time : last;
    }
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

/// The name that a template of files gives the object: "$TOI$", or "$TOI%05d$" with a width of one digit, stands for
/// its TOI. Empty: the template gives none.
std::string NameByTemplate(const std::string& fileTemplate, const TToi& toi);

/// "2026-11-21T02:02:23.328000Z".
std::string TimeJson(const STime& time);
TJson SourceJson(const SSource& source);
/// Sets the field "TOI".
void PutToi(TJson& json, const TToi& toi);

}  // namespace vyr::inspect
