#pragma once

/// Epoch seconds of "Y-M-DTh:m:s" read as UTC, plus one second (required); -1 for null. Required too:
/// in a zone that has daylight saving at that date the result is off by that saving.
long long g_EpochTime(const char* dateTime);
