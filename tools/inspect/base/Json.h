#pragma once

#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>

#include "base/JsonFwd.h"

namespace vyr::inspect {

/// Sets the field unless the text is not given (null).
inline void PutText(TJson& object, const char* key, const char* text)
{
    if (text != nullptr) {
        object[key] = text;
    }
}

/// Sets the field unless the text is not given (empty).
inline void PutText(TJson& object, const char* key, const std::string& text)
{
    if (!text.empty()) {
        object[key] = text;
    }
}

/// Sets the field unless it has no value.
template <class TValue>
void PutValue(TJson& object, const char* key, const std::optional<TValue>& value)
{
    if (value) {
        object[key] = *value;
    }
}

/// Sets the field unless it has no value; seconds to the nanosecond, without the digits that adding them up left.
inline void PutSeconds(TJson& object, const char* key, const std::optional<double>& seconds)
{
    if (seconds) {
        object[key] = std::fabs(*seconds) < 1e6 ? std::round(*seconds * 1e9) / 1e9 : *seconds;
    }
}

/// Sets the field unless the number is the one that stands for "not given".
template <class TNumber>
void PutNumber(TJson& object, const char* key, TNumber number, TNumber notGiven)
{
    if (number != notGiven) {
        object[key] = number;
    }
}

/// Sets the field unless the list is empty.
inline void PutList(TJson& object, const char* key, TJson list)
{
    if (!list.empty()) {
        object[key] = std::move(list);
    }
}

/// Sets the field `key`, and with a name for the number the field of that name with "Name" behind it.
void PutNamed(TJson& object, const std::string& key, long long number, const char* name);
/// Counts entries in the object's "leftOut", by the name of their list.
void LeaveOut(TJson& object, const std::string& list, std::size_t count);
/// Appends an entry to a list of the object. When the list has as many as a report shows, the entry is counted in the
/// object's "leftOut" instead, by the name of the list.
void Append(TJson& object, const char* list, TJson entry);
/// Appends what `make` makes of each element of a list of anything.
template <class TList, class TMake>
void PutEach(TJson& object, const char* list, const TList& elements, TMake make)
{
    for (const auto& element : elements) {
        Append(object, list, make(element));
    }
}
/// Leaves of every list within no more than its first `most` entries, and of every text about as many lines of it as
/// that; how much is gone of which stands beside it in "leftOut", in entries and bytes. False: all of it stays.
bool CutJson(TJson& object, std::size_t most);
/// The value as a line of JSON Lines; what is not UTF-8 in it is replaced.
std::string JsonLine(const TJson& value);
/// A value for people. Long texts and lists are cut short.
std::string ValueText(const TJson& value);
/// The fields of an object for people: "packet_id 5, assets (asset_id a, codec_code hev1)".
std::string FieldsText(const TJson& object);

}  // namespace vyr::inspect
