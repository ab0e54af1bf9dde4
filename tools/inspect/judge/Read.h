#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/Json.h"

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

}  // namespace vyr::inspect
