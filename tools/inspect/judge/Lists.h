#pragma once

#include "judge/Evidence.h"

namespace vyr::inspect {

/// Whether the service lists of all groups came, and everything of their services was read.
bool ListsWhole(const SEvidence& evidence);

}  // namespace vyr::inspect
