#include "common/XsTime.h"

#include <cmath>
#include <cstring>
#include <ctime>

namespace vyr {

namespace {

/// Reads a text from the left; `failed` stays once something did not fit.
struct SReader {
    const char* at;
    bool failed = false;

    explicit SReader(const char* text) : at(text) { SkipSpace(); }

    void SkipSpace() { at += std::strspn(at, " \t\r\n"); }

    bool Take(char c)
    {
        if (*at != c || c == '\0') {
            return false;
        }
        ++at;
        return true;
    }

    void Need(char c) { failed = !Take(c) || failed; }

    static bool IsDigit(char c) { return c >= '0' && c <= '9'; }

    /// A number of at least `digits` digits.
    double Number(int digits)
    {
        double value = 0;
        int count = 0;
        for (; IsDigit(*at); ++at, ++count) {
            value = value * 10 + (*at - '0');
        }
        failed = failed || count < digits;
        return value;
    }

    /// A field of exactly `digits` digits in a range.
    int Field(int digits, int lowest, int highest)
    {
        int value = 0;
        for (int i = 0; i < digits; ++i) {
            failed = failed || !IsDigit(*at);
            value = failed ? lowest : value * 10 + (*at++ - '0');
        }
        failed = failed || value < lowest || value > highest;
        return value;
    }

    /// What a point and at least one digit behind it add, if they are there; to the nanosecond.
    double Fraction()
    {
        if (!Take('.')) {
            return 0;
        }
        failed = failed || !IsDigit(*at);
        double value = 0;
        double unit = 1;
        for (; IsDigit(*at); ++at) {
            if (unit < 1e9) {
                value = value * 10 + (*at - '0');
                unit *= 10;
            }
        }
        return value / unit;
    }

    bool Finished()
    {
        SkipSpace();
        return !failed && *at == '\0';
    }
};

}  // namespace

bool ReadDuration(const char* text, double& seconds)
{
    struct SUnit {
        char name;
        double seconds;
    };
    static constexpr SUnit k_units[2][3] = {{{'Y', 31536000}, {'M', 2592000}, {'D', 86400}},
                                            {{'H', 3600}, {'M', 60}, {'S', 1}}};
    SReader reader(text);
    const bool negative = reader.Take('-');
    reader.Need('P');
    double sum = 0;
    int fields = 0;
    for (int half = 0; half < 2; ++half) {
        if (half == 1 && !reader.Take('T')) {
            break;
        }
        const int before = fields;
        int unit = 0;
        while (SReader::IsDigit(*reader.at) && !reader.failed) {
            const double whole = reader.Number(1);
            const bool point = *reader.at == '.';
            const double fraction = reader.Fraction();
            while (unit < 3 && k_units[half][unit].name != *reader.at) {
                ++unit;
            }
            if (unit == 3 || (point && *reader.at != 'S')) {
                return false;
            }
            sum += whole * k_units[half][unit].seconds + fraction;
            ++fields;
            ++unit;
            ++reader.at;
        }
        reader.failed = reader.failed || (half == 1 && fields == before);
    }
    if (!reader.Finished() || fields == 0 || !std::isfinite(sum)) {
        return false;
    }
    seconds = negative ? -sum : sum;
    return true;
}

bool ReadDateTime(const char* text, double& seconds)
{
    SReader reader(text);
    const bool negative = reader.Take('-');
    const double year = reader.Number(4);
    reader.failed = reader.failed || year < 1 || year > 999999999;
    if (reader.failed) {
        return false;
    }
    std::tm date{};
    date.tm_year = (negative ? 1 - static_cast<int>(year) : static_cast<int>(year)) - 1900;
    reader.Need('-');
    date.tm_mon = reader.Field(2, 1, 12) - 1;
    reader.Need('-');
    const int day = date.tm_mday = reader.Field(2, 1, 31);
    reader.Need('T');
    const int hour = reader.Field(2, 0, 24);
    reader.Need(':');
    const int minute = reader.Field(2, 0, 59);
    reader.Need(':');
    const int second = reader.Field(2, 0, 60);
    const double fraction = reader.Fraction();
    // Midnight at the end of a day is the only time with an hour 24.
    reader.failed = reader.failed || (hour == 24 && (minute != 0 || second != 0 || fraction > 0));
    int zone = 0;
    if (!reader.Take('Z') && (*reader.at == '+' || *reader.at == '-')) {
        const int sign = *reader.at++ == '+' ? 1 : -1;
        const int hours = reader.Field(2, 0, 14);
        reader.Need(':');
        zone = sign * (hours * 60 + reader.Field(2, 0, 59));
    }
    if (!reader.Finished()) {
        return false;
    }
    const std::time_t midnight = timegm(&date);
    if (date.tm_mday != day) {
        return false;  // the month is shorter
    }
    seconds = static_cast<double>(midnight + ((hour * 60) + minute - zone) * 60 + second) + fraction;
    return true;
}

std::optional<SGivenTime> GivenTime(const CNodeText& text, bool (*read)(const char*, double&))
{
    double seconds = 0;
    if (!text.Found()) {
        return std::nullopt;
    }
    const bool legal = read(text.Text(), seconds);
    return SGivenTime{text.Text(), legal ? std::optional<double>(seconds) : std::nullopt};
}

}  // namespace vyr
