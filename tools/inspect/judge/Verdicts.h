#pragma once

#include <vector>

#include "judge/Rules.h"
#include "model/Verdict.h"

namespace vyr::inspect {

/// Says of each service of the lists that hold whether it plays. `findings` are those of the input that may concern
/// services: errors and warnings.
SVerdicts Verdicts(const SEvidence& evidence, const SDelivery& delivery, const std::vector<SFinding>& findings);

}  // namespace vyr::inspect
