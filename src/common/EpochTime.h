#pragma once

/// Epoch seconds of "Y-M-DTh:m:s" read as UTC, plus one second (required); -1 for null. Required too:
/// in a zone that has daylight saving at that date the result is off by that saving.
long long g_EpochTime(const char* dateTime);

namespace vyr {

/// What `convert` makes of a date, for which the C library may look through years of local time; -1 for those behind
/// 4,096 of a call from outside.
long long LocalEpoch(const char* dateTime, long long (*convert)(const char*));

}  // namespace vyr
