#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "model/Finding.h"
#include "model/Verdict.h"

namespace vyr::inspect {

/// A verdict that is another one than before.
struct SVerdictChange {
    SVerdict now;
    SJudgement before;  ///< of a receiver with broadband
};

/// What a report on the way, while the input goes on, says beside the summary, the verdicts and what is on the air.
struct SInterim {
    std::uint64_t number = 0;  ///< from 1 on
    SSource source;            ///< how far the input is
    double seconds = 0;        ///< that the input lasts, without what its clock was set by
    // Of the findings that are no events, but hold or do not:
    std::vector<SFinding> begun;           ///< since the report before
    std::vector<SFinding> over;            ///< held at the report before, and do no more
    std::uint64_t holding = 0;             ///< all of them
    std::vector<SVerdictChange> verdicts;  ///< that are other than at the report before
};

}  // namespace vyr::inspect
