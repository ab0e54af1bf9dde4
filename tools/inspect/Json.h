#pragma once

#include <string>

#include "Report.h"

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

}  // namespace vyr::inspect
