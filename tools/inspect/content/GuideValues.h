#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/Text.h"
#include "esg/ESGElement/SpokenText.h"

namespace vyr::inspect {

// How the library's records of the guide have their values.

inline std::string Text(const TESGText& text)
{
    return text ? text.get() : "";
}

/// None: not given.
inline std::optional<std::int64_t> FromNtp(unsigned ntp)
{
    return ntp != 0 ? std::optional(NtpSeconds(ntp)) : std::nullopt;
}

/// What a text says: its attribute, or else its content.
inline const TESGText& Shown(const CSpokenText::SSpokenText& text)
{
    return text.text && text.text[0] != '\0' ? text.text : text.content;
}

}  // namespace vyr::inspect
