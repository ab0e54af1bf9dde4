#include "common/ATSC3TimeUtility.h"

#include <cctype>
#include <cstdint>
#include <cstdio>
#include <ctime>

#include "common/EpochTime.h"
#include "platform/FailureKeeping.h"
#include "platform/Log.h"

unsigned int g_tai = 0;
unsigned int g_UTC = 0;
unsigned int g_Tick = 0;

namespace {

// A 32-bit system without such a time would lose every date past 2038.
static_assert(sizeof(std::time_t) >= 8, "times need 64 bits: build with _TIME_BITS=64");

/// Sums of what was scanned, which may be any number, wrap.
int Add(int a, int b)
{
    return static_cast<int>(static_cast<unsigned int>(a) + static_cast<unsigned int>(b));
}

bool Is(char c, char upper)
{
    return std::toupper(static_cast<unsigned char>(c)) == upper;
}

/// Scans six numbers into a calendar record, standard time; what does not scan is 0.
std::tm Scan(const char* dateTime, const char* format, int addedSeconds)
{
    int n[6] = {};
    std::sscanf(dateTime, format, n, n + 1, n + 2, n + 3, n + 4, n + 5);
    std::tm calendar{};
    calendar.tm_year = Add(n[0], -1900);
    calendar.tm_mon = Add(n[1], -1);
    calendar.tm_mday = n[2];
    calendar.tm_hour = n[3];
    calendar.tm_min = n[4];
    calendar.tm_sec = Add(n[5], addedSeconds);
    return calendar;
}

}  // namespace

int TimeUtility::DurationToSec(const char* duration)
{
    if (!VYR_ASSERT(duration, "duration")) {
        return 0;
    }
    const bool negative = duration[0] == '-';
    std::size_t i = 0;
    if (duration[0] != '\0' && Is(duration[1], 'P')) {
        i = Is(duration[2], 'T') ? 3 : 2;
    } else if (!negative && Is(duration[0], 'P')) {
        i = Is(duration[1], 'T') ? 2 : 1;
    } else {
        return 0;
    }
    std::uint32_t hours = 0;
    std::uint32_t minutes = 0;
    std::uint32_t seconds = 0;
    std::uint32_t n = 0;
    for (; duration[i]; ++i) {
        std::uint32_t* unit = nullptr;
        switch (duration[i]) {
            case 'H':
                unit = &hours;
                break;
            case 'M':
                unit = &minutes;
                break;
            case 'S':
                unit = &seconds;
                break;
            default:
                // Required: whatever it is, it counts as a digit.
                n = n * 10 + static_cast<std::uint32_t>(static_cast<signed char>(duration[i]) - '0');
                continue;
        }
        *unit = n;
        n = 0;
    }
    const std::uint32_t sum = (hours * 60 + minutes) * 60 + seconds;
    return static_cast<int>(negative ? 0 - sum : sum);
}

long long TimeUtility::ConvertDateTime2Epoch(const char* dateTime)
{
    if (!VYR_ASSERT(dateTime, "dateTime")) {
        return -1;
    }
    std::tm calendar = Scan(dateTime, "%4d-%2d-%2dT%2d:%2d:%2d", 0);
    return std::mktime(&calendar);
}

long long g_EpochTime(const char* dateTime)
{
    if (!dateTime) {
        return -1;
    }
    std::tm calendar = Scan(dateTime, "%d-%d-%dT%d:%d:%d", 1);
    const long long local = std::mktime(&calendar);
    return local + static_cast<std::int32_t>(calendar.tm_gmtoff);
}

namespace vyr {

long long LocalEpoch(const char* dateTime, long long (*convert)(const char*))
{
    thread_local CBudget t_dates(4096, "dates in local time");
    return t_dates.Take() ? convert(dateTime) : -1;
}

}  // namespace vyr
