#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>

#include "common/XmlNode.h"

// How the values of records are read: the type and the width come from the member.

namespace vyr {

/// Copy of a text of `length` bytes, zero-terminated.
std::unique_ptr<char[]> NewText(const char* text, std::size_t length);

/// Copy of a text; an empty one when it is missing.
std::unique_ptr<char[]> NewText(const CNodeText& text);

/// Copy of a text; null when it is missing.
void Read(const CNodeText& text, std::unique_ptr<char[]>& out);

/// The same; a missing one leaves what is there: false.
inline bool Read(const CNodeText& text, std::string& out)
{
    return text.CopyTo(out);
}

/// Decimal number, cut to the member's width; `absent` when it is missing.
template <class T, std::enable_if_t<std::is_integral_v<T> && !std::is_same_v<T, bool>, int> = 0>
void Read(const CNodeText& text, T& out, int absent = 0)
{
    if constexpr (sizeof(T) > sizeof(int)) {
        out = static_cast<T>(text.LLong(absent));
    } else {
        out = static_cast<T>(text.Int(absent));
    }
}

/// Dotted IPv4 address, in host order; a missing one leaves what is there: false.
bool ReadIpv4(const CNodeText& text, unsigned int& out);

/// What the whole text is by XML Schema, white space around it aside; empty when it is missing, no number, or one
/// that the type does not hold.
void Read(const CNodeText& text, std::optional<long long>& out);
/// xs:double; "INF" is infinite, and no number is empty.
void Read(const CNodeText& text, std::optional<double>& out);
/// xs:boolean: "true", "1", "false" or "0".
void Read(const CNodeText& text, std::optional<bool>& out);

/// An attribute, as Read says.
template <class T, class... TAbsent>
auto ReadAttribute(void* node, const char* name, T& out, TAbsent... absent)
{
    return Read(CNodeText::Attribute(node, name), out, absent...);
}

}  // namespace vyr
