#pragma once

#include <string>

#include "model/Guide.h"

namespace vyr::inspect {

/// The guide for people: its headline, and of each service its programmes, day by day.
std::string GuideText(const SGuide& guide, bool localTime);

}  // namespace vyr::inspect
