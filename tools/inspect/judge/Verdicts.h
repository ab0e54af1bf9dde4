#pragma once

#include <vector>

#include "judge/Rules.h"
#include "model/Verdict.h"

namespace vyr::inspect {

/// Whether the rule ends a service where it is broken, whatever the run makes of it.
bool Stops(ERule rule);
/// Says of each service of the lists that hold whether it plays. `findings` are those of the input that may concern
/// services: errors, warnings, and what stops.
SVerdicts Verdicts(const SEvidence& evidence, const SDelivery& delivery, const std::vector<SFinding>& findings);

}  // namespace vyr::inspect
