#pragma once

#include <optional>
#include <string>

#include "../platform/Api.h"

/// Time-keeping numbers of the caller. The library neither reads nor writes them; zero at first.
extern VYR_API unsigned int g_tai;
extern VYR_API unsigned int g_UTC;
extern VYR_API unsigned int g_Tick;

/// A time or a duration as a document gives it, beside what is made of it elsewhere.
struct SGivenTime {
    std::string text;  ///< as it stands
    /// What the text says: seconds since 1970, UTC, of an xs:dateTime (one without a time zone is UTC); seconds of an
    /// xs:duration, where a year has 365 days and a month 30. Empty: it is neither.
    std::optional<double> seconds;
};

/// Conversions of the text forms of time that signalling carries. Any text gives some number.
class VYR_API TimeUtility {
  public:
    /// Seconds of a duration of hours, minutes and seconds, such as "PT1H30M" or "-PT5H" (the
    /// xs:duration of ISO 8601); 0 for text that does not begin like one, null (asserted) included.
    /// Required: a character other than H, M and S is folded into the running number as a digit, so
    /// that fractions, days, months and years distort the result. Wraps at 32 bits.
    static int DurationToSec(const char* duration);

    /// Epoch seconds of "YYYY-MM-DDThh:mm:ss", read as local standard time; what follows, a time zone
    /// included, is ignored, and fields that are not there are 0. Null is asserted: -1.
    static long long ConvertDateTime2Epoch(const char* dateTime);
};
