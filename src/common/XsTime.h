#pragma once

#include <optional>

#include "common/ATSC3TimeUtility.h"
#include "common/XmlNode.h"

namespace vyr {

/// Seconds of an xs:duration (XML Schema 3.2.6), such as "P1DT2H" or "-PT0.5S"; a year has 365 days, a
/// month 30. False, with `seconds` as it was, for other text. White space around is ignored.
bool ReadDuration(const char* text, double& seconds);

/// Seconds since 1970, UTC, of an xs:dateTime (XML Schema 3.2.7); one without a time zone is UTC. A second
/// 60 is the one behind 59. False, with `seconds` as it was, for other text. White space around is ignored.
bool ReadDateTime(const char* text, double& seconds);

/// A text with what `read`, one of the two above, makes of it; empty when it is missing.
std::optional<SGivenTime> GivenTime(const CNodeText& text, bool (*read)(const char*, double&));

}  // namespace vyr
