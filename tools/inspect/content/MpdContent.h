#pragma once

#include <string>

#include "model/OptionalContent.h"
#include "route/SLSManager.h"

struct SMPDInfo;

namespace vyr::inspect {

/// What an MPD says, in text (without its segments) and JSON. What a level has from the level above
/// stands there again when it is short: texts beyond 64 bytes and segments stand where they are said.
/// Without `text`, its text is left out.
SContent MpdContent(const SMPDInfo& mpd, bool text = true);
/// Parses an MPD; none: `reason` tells why.
COptionalContent ReadMpd(const std::string& document, std::string& reason);
/// Adds the ratings that the library reports of the whole MPD.
void AddRatings(const CSLSManager::TRatings& ratings, SContent& content);

}  // namespace vyr::inspect
