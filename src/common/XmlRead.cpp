#include "common/XmlRead.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <string_view>

#include "common/Ipv4.h"

namespace vyr {

namespace {

/// Without the white space around it; empty when it is missing.
std::string_view Trimmed(const CNodeText& text)
{
    const std::string_view all = text.Found() ? text.Text() : "";
    const std::size_t begin = std::min(all.find_first_not_of(" \t\r\n"), all.size());
    return all.substr(begin, all.find_last_not_of(" \t\r\n") + 1 - begin);
}

/// The number that the whole text is, whatever the locale.
template <class T>
std::optional<T> Whole(std::string_view text)
{
    T number{};
    text.remove_prefix(text.size() > 1 && text[0] == '+' && text[1] != '-' ? 1 : 0);
    const char* end = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc() && result.ptr == end ? std::optional<T>(number) : std::nullopt;
}

}  // namespace

std::unique_ptr<char[]> NewText(const char* text, std::size_t length)
{
    std::unique_ptr<char[]> copy(new char[length + 1]);
    std::copy_n(text, length, copy.get());
    copy[length] = 0;
    return copy;
}

std::unique_ptr<char[]> NewText(const CNodeText& text)
{
    return text.Found() ? NewText(text.Text(), std::strlen(text.Text())) : NewText("", 0);
}

void Read(const CNodeText& text, std::unique_ptr<char[]>& out)
{
    out = text.Found() ? NewText(text) : nullptr;
}

void Read(const CNodeText& text, std::optional<long long>& out)
{
    out = Whole<long long>(Trimmed(text));
}

void Read(const CNodeText& text, std::optional<double>& out)
{
    const std::string_view trimmed = Trimmed(text);
    out = Whole<double>(trimmed);
    if (out && !std::isfinite(*out)) {
        out.reset();  // by other names than that of XML Schema
    }
    if (trimmed == "INF") {
        out = std::numeric_limits<double>::infinity();
    }
}

void Read(const CNodeText& text, std::optional<bool>& out)
{
    const std::string_view trimmed = Trimmed(text);
    out.reset();
    if (trimmed == "true" || trimmed == "1") {
        out = true;
    } else if (trimmed == "false" || trimmed == "0") {
        out = false;
    }
}

bool ReadIpv4(const CNodeText& text, unsigned int& out)
{
    if (text.Found()) {
        out = Ipv4Address(text.Text());
    }
    return text.Found();
}

}  // namespace vyr
