#include "base/Text.h"

#include <arpa/inet.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <system_error>

namespace vyr::inspect {

namespace {

struct SCodePoint {
    unsigned value;
    std::size_t length;  ///< 0: the bytes are not UTF-8
};

SCodePoint Decode(const std::string& text, std::size_t at)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned first = byte(at);
    if (first < 0x80) {
        return {first, 1};
    }
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || at + length > text.size()) {
        return {0, 0};
    }
    unsigned value = first & (0xFFu >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(at + i) & 0xC0) != 0x80) {
            return {0, 0};
        }
        value = value << 6 | (byte(at + i) & 0x3Fu);
    }
    constexpr unsigned k_least[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
    return value < k_least[length] || value > 0x10FFFF || surrogate ? SCodePoint{0, 0} : SCodePoint{value, length};
}

/// Controls, what sets the direction of text, line separators, and what is drawn as nothing (Unicode's
/// Default_Ignorable_Code_Point and annotation marks). The two that choose how an emoji is drawn are no harm.
bool Invisible(unsigned value)
{
    constexpr struct {
        unsigned first;
        unsigned last;
    } k_ranges[] = {{0x00, 0x1F},     {0x7F, 0x9F},       {0xAD, 0xAD},       {0x34F, 0x34F},    {0x61C, 0x61C},
                    {0x115F, 0x1160}, {0x17B4, 0x17B5},   {0x180B, 0x180F},   {0x200B, 0x200F},  {0x2028, 0x202E},
                    {0x2060, 0x206F}, {0x3164, 0x3164},   {0xFE00, 0xFE0D},   {0xFEFF, 0xFEFF},  {0xFFA0, 0xFFA0},
                    {0xFFF0, 0xFFFB}, {0x1BCA0, 0x1BCA3}, {0x1D173, 0x1D17A}, {0xE0000, 0xE0FFF}};
    return std::any_of(std::begin(k_ranges), std::end(k_ranges),
                       [value](const auto& range) { return value >= range.first && value <= range.last; });
}

/// Columns that printable text takes: one for each character.
std::size_t DisplayWidth(const std::string& text)
{
    std::size_t width = 0;
    for (const char c : text) {
        width += (static_cast<unsigned char>(c) & 0xC0) != 0x80 ? 1 : 0;
    }
    return width;
}

}  // namespace

std::string Printable(const std::string& text)
{
    const auto first = std::find_if(text.begin(), text.end(), [](char c) { return c < ' ' || c > '~'; });
    std::size_t at = static_cast<std::size_t>(first - text.begin());
    std::string out(text, 0, at);  // all of it, as a rule
    char escape[16];
    while (at < text.size()) {
        const SCodePoint point = Decode(text, at);
        if (point.length == 0) {
            std::snprintf(escape, sizeof escape, "\\x%02X", static_cast<unsigned char>(text[at]));
            out += escape;
            ++at;
            continue;
        }
        if (Invisible(point.value)) {
            const char* format = point.value < 0x100 ? "\\x%02X" : point.value < 0x10000 ? "\\u%04X" : "\\U%08X";
            std::snprintf(escape, sizeof escape, format, point.value);
            out += escape;
        } else {
            out.append(text, at, point.length);
        }
        at += point.length;
    }
    return out;
}

std::string PlainJson(const std::string& json)
{
    const auto first =
        std::find_if(json.begin(), json.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x7F; });
    if (first == json.end()) {
        return json;  // as most are
    }
    std::size_t at = static_cast<std::size_t>(first - json.begin());
    std::string out(json, 0, at);
    char escape[16];
    while (at < json.size()) {
        const SCodePoint point = Decode(json, at);
        // What is below is escaped already, but for the line's end.
        if (point.value < 0x7F || !Invisible(point.value)) {
            out.append(json, at, std::max<std::size_t>(point.length, 1));
        } else if (point.value < 0x10000) {
            std::snprintf(escape, sizeof escape, "\\u%04x", point.value);
            out += escape;
        } else {
            const unsigned pair = point.value - 0x10000;
            std::snprintf(escape, sizeof escape, "\\u%04x\\u%04x", 0xD800 | pair >> 10, 0xDC00 | (pair & 0x3FF));
            out += escape;
        }
        at += std::max<std::size_t>(point.length, 1);
    }
    return out;
}

std::string Hex(SView bytes)
{
    constexpr char k_digits[] = "0123456789abcdef";
    std::string out;
    out.reserve(bytes.size * 2);
    for (std::size_t i = 0; i < bytes.size; ++i) {
        out += k_digits[bytes[i] >> 4];
        out += k_digits[bytes[i] & 0x0F];
    }
    return out;
}

std::string Ipv4Text(std::uint32_t address)
{
    return std::to_string(address >> 24) + '.' + std::to_string(address >> 16 & 0xFF) + '.' +
           std::to_string(address >> 8 & 0xFF) + '.' + std::to_string(address & 0xFF);
}

std::string Ipv6Text(const unsigned char* address)
{
    char text[INET6_ADDRSTRLEN] = "";
    inet_ntop(AF_INET6, address, text, sizeof text);
    return text;
}

std::string FourCcText(SView code)
{
    const bool readable =
        std::all_of(code.data, code.data + code.size, [](unsigned char c) { return c >= 0x20 && c < 0x7F; });
    return readable ? std::string(code.data, code.data + code.size) : "0x" + Hex(code);
}

std::string EndpointText(std::uint32_t address, unsigned port)
{
    return Ipv4Text(address) + ':' + std::to_string(port);
}

std::optional<std::uint32_t> ReadIpv4(const std::string& text)
{
    in_addr address{};
    return inet_pton(AF_INET, text.c_str(), &address) == 1 ? std::optional(ntohl(address.s_addr)) : std::nullopt;
}

std::optional<std::pair<std::uint32_t, std::uint16_t>> ReadEndpoint(const std::string& text)
{
    const std::size_t colon = std::min(text.rfind(':'), text.size());
    const std::optional<std::uint32_t> address = ReadIpv4(text.substr(0, colon));
    const char* const end = text.data() + text.size();
    const char* const begin = text.data() + std::min(colon + 1, text.size());
    std::uint16_t port = 0;
    const auto [rest, error] = std::from_chars(begin, end, port);
    if (!address || error != std::errc() || rest != end || port == 0) {
        return {};
    }
    return std::pair(*address, port);
}

std::string Counted(std::uint64_t count, const std::string& singular, const std::string& plural)
{
    return std::to_string(count) + ' ' + (count == 1 ? singular : plural.empty() ? singular + 's' : plural);
}

std::string Quoted(const std::string& text)
{
    return '"' + Printable(text) + '"';
}

std::string Joined(const std::vector<std::string>& texts)
{
    std::string joined;
    for (const std::string& text : texts) {
        joined += (joined.empty() || text.empty() ? "" : ", ") + text;
    }
    return joined;
}

std::string InLanguage(const std::string& lang)
{
    return lang.empty() ? std::string() : " (" + Printable(lang) + ')';
}

std::string Short(const std::string& text)
{
    constexpr std::size_t k_columns = 64;
    std::size_t at = 0;
    for (std::size_t columns = 0; at < text.size(); ++at) {
        const bool begins = (static_cast<unsigned char>(text[at]) & 0xC0) != 0x80;
        columns += begins ? 1 : 0;
        if (columns > k_columns) {
            return text.substr(0, at) + "\u2026";
        }
    }
    return text;
}

std::optional<std::int64_t> ReadInstant(const std::string& text)
{
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int length = 0;
    if (std::sscanf(text.c_str(), "%4d-%2d-%2dT%2d:%2d:%2d%n", &year, &month, &day, &hour, &minute, &second, &length) !=
            6 ||
        year < 1 || month < 1 || month > 12 || day < 1 || day > 31 || hour < 0 || hour > 24 || minute < 0 ||
        minute > 59 || second < 0 || second > 60) {
        return std::nullopt;
    }
    std::string zone = text.substr(static_cast<std::size_t>(length));
    if (!zone.empty() && zone[0] == '.') {
        zone.erase(0, std::min(zone.find_first_not_of("0123456789", 1), zone.size()));
    }
    int zoneHour = 0;
    int zoneMinute = 0;
    int zoneLength = 0;
    const bool offset = !zone.empty() && (zone[0] == '+' || zone[0] == '-') &&
                        std::sscanf(zone.c_str() + 1, "%2d:%2d%n", &zoneHour, &zoneMinute, &zoneLength) == 2 &&
                        zone.size() == static_cast<std::size_t>(zoneLength) + 1;
    if (!offset && zone != "Z") {
        return std::nullopt;
    }
    constexpr int k_toMarchOfYear0 = 719469;  // days from there to the first day of 1970, and one
    const int fromMarch = (month + 9) % 12;
    const int since = year - (month < 3 ? 1 : 0);
    const int days =
        365 * since + since / 4 - since / 100 + since / 400 + (153 * fromMarch + 2) / 5 + day - k_toMarchOfYear0;
    const int east = (zone[0] == '-' ? -60 : 60) * (60 * zoneHour + zoneMinute);
    return std::int64_t{86400} * days + 3600 * hour + 60 * minute + second - east;
}

std::int64_t NtpSeconds(std::uint32_t ntp)
{
    constexpr std::int64_t k_from1900To1970 = 2208988800;
    constexpr std::int64_t k_era = std::int64_t{1} << 32;
    return ntp - k_from1900To1970 + (ntp < 0x80000000u ? k_era : 0);
}

std::size_t ClippedSize(const std::string& text, std::size_t bytes)
{
    std::size_t end = std::min(text.size(), bytes);
    while (end < text.size() && end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
        --end;
    }
    return end;
}

std::string Clipped(const std::string& text, std::size_t bytes)
{
    const std::size_t end = ClippedSize(text, bytes);
    return end < text.size() ? text.substr(0, end) + "\u2026" : text;
}

std::string WithoutNumbers(const std::string& text)
{
    const auto digit = [&text](std::size_t at) { return at < text.size() && text[at] >= '0' && text[at] <= '9'; };
    std::string without;
    for (std::size_t i = 0; i < text.size(); ++i) {
        without += digit(i) ? '#' : text[i];
        while (digit(i) && (digit(i + 1) || (i + 2 < text.size() && text[i + 1] == '.' && digit(i + 2)))) {
            i += digit(i + 1) ? 1 : 2;
        }
    }
    return without;
}

std::string MoreText(const char* indent, std::uint64_t count, std::uint64_t shown)
{
    return count > shown ? indent + ("and " + std::to_string(count - shown)) + " more\n" : std::string();
}

std::string FirstLines(const std::string& text, std::size_t bytes)
{
    constexpr std::size_t k_told = 64;
    if (text.size() <= bytes) {
        return text;
    }
    const std::size_t most = bytes > k_told ? bytes - k_told : 0;
    const std::size_t last = most != 0 ? text.rfind('\n', most - 1) : std::string::npos;
    if (last == std::string::npos) {
        return {};
    }
    const auto more = std::count(text.begin() + static_cast<std::ptrdiff_t>(last) + 1, text.end(), '\n');
    return text.substr(0, last + 1) + "  and " + Counted(static_cast<std::uint64_t>(more), "line") + " more\n";
}

std::string InstantText(std::int64_t seconds, std::int32_t nanoseconds, int digits)
{
    const std::time_t whole = static_cast<std::time_t>(seconds);
    std::tm utc{};
    gmtime_r(&whole, &utc);
    char text[80];
    const int length = std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d", utc.tm_year + 1900,
                                     utc.tm_mon + 1, utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec);
    std::string out(text, static_cast<std::size_t>(length));
    std::snprintf(text, sizeof text, "%09d", nanoseconds);
    const int needed = nanoseconds % 1000 != 0 ? 9 : nanoseconds % 1000000 != 0 ? 6 : nanoseconds != 0 ? 3 : 0;
    if (std::max(needed, digits) > 0) {
        out.append(1, '.').append(text, static_cast<std::size_t>(std::max(needed, digits)));
    }
    return out + 'Z';
}

std::string EpochText(double seconds)
{
    constexpr double k_beginOfTime = -62135596800;  // the year 1
    constexpr double k_endOfTime = 253402300800;    // the year 10000
    constexpr double k_fine = 4294967296;           // up to here a double tells microseconds apart
    if (!(seconds >= k_beginOfTime && seconds < k_endOfTime - 1)) {
        return NumberText(seconds);
    }
    const double unit = std::fabs(seconds) < k_fine ? 1e6 : 1e3;
    const double whole = std::floor(seconds);
    const long long parts = std::llround((seconds - whole) * unit);
    const long long most = static_cast<long long>(unit);
    return InstantText(static_cast<std::int64_t>(whole) + parts / most,
                       static_cast<std::int32_t>(parts % most * (1000000000 / most)), 0);
}

std::string NumberText(double number)
{
    char text[40];
    const double size = std::fabs(number);
    if (!(size < 1e9) || (size < 1e-3 && size > 0)) {
        std::snprintf(text, sizeof text, "%.9g", number);
        return text;
    }
    std::string out(text, static_cast<std::size_t>(std::snprintf(text, sizeof text, "%.6f", number)));
    out.erase(out.find_last_not_of('0') + 1);
    return out.back() == '.' ? out.substr(0, out.size() - 1) : out;
}

std::string Line(const char* label, const std::string& text)
{
    char line[32];
    std::snprintf(line, sizeof line, "    %-10s", label);
    return text.empty() ? std::string() : line + text + '\n';
}

std::string Indented(const std::string& text, const std::string& indent)
{
    std::string indented;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size() - 1) + 1;
        indented += indent + text.substr(at, end - at);
        at = end;
    }
    return indented;
}

std::string Aligned(const std::vector<TRow>& rows)
{
    // A cell beyond this is not waited for: the broadcast could make every row as long as its longest.
    constexpr std::size_t k_widest = 80;
    std::vector<std::size_t> widths;
    for (const TRow& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], std::min(DisplayWidth(row[i]), k_widest));
        }
    }
    std::string text;
    for (const TRow& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::size_t width = DisplayWidth(row[i]);
            line += "  " + row[i] + std::string(widths[i] > width ? widths[i] - width : 0, ' ');
        }
        text += line.substr(0, line.find_last_not_of(' ') + 1) + '\n';
    }
    return text;
}

std::string TableText(const std::vector<TRow>& rows)
{
    if (rows.size() < 2) {
        return {};
    }
    std::vector<bool> used(rows.front().size());
    for (auto row = std::next(rows.begin()); row != rows.end(); ++row) {
        for (std::size_t i = 0; i < row->size(); ++i) {
            used[i] = used[i] || !(*row)[i].empty();
        }
    }
    std::vector<TRow> shown;
    for (const TRow& row : rows) {
        TRow& cells = shown.emplace_back();
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (used[i]) {
                cells.push_back(row[i]);
            }
        }
    }
    return Aligned(shown);
}

}  // namespace vyr::inspect
