#pragma once

#include <string>
#include <vector>

#include "base/Text.h"
#include "model/Verdict.h"

namespace vyr::inspect {

/// "plays, but there is no sound", printable and clipped.
std::string JudgementText(const SJudgement& judgement);
/// "plays; without broadband does not play: it needs the internet".
std::string VerdictText(const SVerdict& verdict);
/// Id, channel, name, and verdict of each service, below their titles.
std::vector<TRow> VerdictRows(const SVerdicts& verdicts);

}  // namespace vyr::inspect
