#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

#include "base/Json.h"
#include "base/Text.h"

namespace vyr::inspect {

// Reads fields of the report's JSON. What is not there, or of another type, is not given.

inline const TJson& Field(const TJson& object, const char* key)
{
    static const TJson k_none;
    const auto field = object.is_object() ? object.find(key) : object.end();
    return object.is_object() && field != object.end() ? *field : k_none;
}

/// Empty: not given. Of a long text, its first bytes.
inline std::string Text(const TJson& object, const char* key)
{
    constexpr std::size_t k_most = 1024;
    const TJson& field = Field(object, key);
    return field.is_string() ? field.get_ref<const std::string&>().substr(0, k_most) : std::string();
}

inline std::optional<double> Number(const TJson& object, const char* key)
{
    const TJson& field = Field(object, key);
    return field.is_number() ? std::optional<double>(field.get<double>()) : std::nullopt;
}

inline std::optional<std::uint64_t> Unsigned(const TJson& object, const char* key)
{
    const TJson& field = Field(object, key);
    return field.is_number_unsigned() || (field.is_number_integer() && field.get<std::int64_t>() >= 0)
               ? std::optional<std::uint64_t>(field.get<std::uint64_t>())
               : std::nullopt;
}

inline std::optional<bool> Flag(const TJson& object, const char* key)
{
    const TJson& field = Field(object, key);
    return field.is_boolean() ? std::optional<bool>(field.get<bool>()) : std::nullopt;
}

/// Calls `visit` with each element of a list. False: entries of the list were left out.
template <class TVisit>
bool Each(const TJson& object, const char* key, TVisit visit)
{
    const TJson& list = Field(object, key);
    if (list.is_array()) {
        for (const TJson& element : list) {
            visit(element);
        }
    }
    return Field(Field(object, "leftOut"), key).is_null();
}

/// Seconds since 1970 of "2026-11-21T02:02:23.328Z", or of NTP seconds.
inline std::optional<double> Instant(const std::string& text)
{
    constexpr std::size_t k_mostDigits = 10;
    if (!text.empty() && text.size() <= k_mostDigits && text.find_first_not_of("0123456789") == std::string::npos) {
        const std::uint64_t ntp = std::stoull(text);
        return ntp <= 0xFFFFFFFF ? std::optional<double>(NtpSeconds(static_cast<std::uint32_t>(ntp))) : std::nullopt;
    }
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    double second = 0;
    char zone = 0;
    if (std::sscanf(text.c_str(), "%4d-%2d-%2dT%2d:%2d:%lf%c", &year, &month, &day, &hour, &minute, &second, &zone) !=
            7 ||
        zone != 'Z' || month < 1 || month > 12 || !(second >= 0 && second < 61)) {
        return std::nullopt;
    }
    // Days since 1970 of a year that begins in March.
    const int fromMarch = (month + 9) % 12;
    const int since = year - (month < 3 ? 1 : 0);
    const int days = 365 * since + since / 4 - since / 100 + since / 400 + (153 * fromMarch + 2) / 5 + day - 719469;
    return 86400.0 * days + 3600.0 * hour + 60.0 * minute + second;
}

}  // namespace vyr::inspect
