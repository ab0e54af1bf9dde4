#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/Text.h"
#include "esg/ESGElement/PresentationWindow.h"
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

/// Seconds that a window lasts, by its attribute, or else its element; 0: not given.
inline unsigned Duration(const CPresentationWindow& window)
{
    constexpr long long k_most = 0xFFFFFFFF;
    const long long given = window.Given()->duration.value_or(0);
    return given > 0 && given <= k_most ? static_cast<unsigned>(given) : window.State()->duration;
}

/// What a text says: its attribute, or else its content.
inline const TESGText& Shown(const CSpokenText::SSpokenText& text)
{
    return text.text && text.text[0] != '\0' ? text.text : text.content;
}

}  // namespace vyr::inspect
