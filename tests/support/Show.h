#pragma once

#include <initializer_list>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>

// Records as one text, so that a test compares all of it at once: values in their order with "|" between, "-"
// for what is null or absent, [a b] for a list, {...} for an element with a record of its own.

template <class T, class = void>
constexpr bool g_isList = false;
template <class T>
constexpr bool g_isList<T, std::void_t<decltype(std::begin(std::declval<const T&>()))>> = true;

template <class T, class = void>
constexpr bool g_isElement = false;
template <class T>
constexpr bool g_isElement<T, std::void_t<decltype(std::declval<const T&>().State())>> = true;

template <class T, class = void>
constexpr bool g_isRecord = false;
template <class T>
constexpr bool g_isRecord<T, std::void_t<decltype(ShowRecord(std::declval<const T&>()))>> = true;

template <class T, class = void>
constexpr bool g_ownsText = false;
template <class T>
constexpr bool
    g_ownsText<T, std::enable_if_t<std::is_convertible_v<decltype(std::declval<const T&>().get()), const char*>>> =
        true;

template <class T>
std::string Show(const T& value)
{
    if constexpr (g_isRecord<T>) {
        return ShowRecord(value);
    } else if constexpr (std::is_enum_v<T>) {
        return std::to_string(static_cast<int>(value));
    } else if constexpr (std::is_arithmetic_v<T>) {
        std::ostringstream text;
        text << +value;
        return text.str();
    } else if constexpr (std::is_convertible_v<T, const char*>) {
        const char* text = value;
        return text ? text : "-";
    } else if constexpr (std::is_convertible_v<T, std::string_view>) {
        return std::string(value);
    } else if constexpr (g_ownsText<T>) {
        return value ? value.get() : "-";
    } else if constexpr (g_isList<T>) {
        std::string all;
        for (const auto& entry : value) {
            all += " " + Show(entry);
        }
        return "[" + (all.empty() ? "" : all.substr(1)) + "]";
    } else if constexpr (g_isElement<T>) {
        return "{" + Show(*value.State()) + "}";
    } else {
        return value ? Show(*value) : "-";
    }
}

template <class... T>
std::string Join(const T&... values)
{
    std::string all;
    ((all += "|" + Show(values)), ...);
    return all.substr(1);
}

/// What each of several steps told, in their order.
inline std::string Each(std::initializer_list<bool> told)
{
    std::string all;
    for (const bool one : told) {
        all += one ? '1' : '0';
    }
    return all;
}

/// Defines the text of a record: its values, of `s`.
#define SHOW(TYPE, ...)                          \
    inline std::string ShowRecord(const TYPE& s) \
    {                                            \
        return Join(__VA_ARGS__);                \
    }
