#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "model/Source.h"

namespace vyr::inspect {

/// Whether a service plays, as far as the input tells.
enum class EVerdict { PLAYS, PLAYS_BUT, DOES_NOT_PLAY, CANNOT_TELL };

/// "plays" and the like, as the JSON has it.
constexpr const char* VerdictName(EVerdict verdict)
{
    constexpr const char* k_names[] = {"plays", "plays-but", "does-not-play", "cannot-tell"};
    return k_names[static_cast<std::size_t>(verdict)];
}

/// A verdict, and why: "there is no sound".
struct SJudgement {
    EVerdict verdict = EVerdict::PLAYS;
    std::string cause;
    std::string rule = {};  ///< whose finding it is; empty: of none

    bool operator==(const SJudgement& other) const { return verdict == other.verdict && cause == other.cause; }
    bool operator!=(const SJudgement& other) const { return !(*this == other); }
    /// "plays, but there is no sound".
    std::string Text() const;
};

struct SVerdict {
    unsigned serviceId = 0;
    std::string serviceList;  ///< as ServiceListName has it
    std::string channel;      ///< "7.1"; empty: none
    std::string name;
    SJudgement judgement;         ///< of a receiver with broadband
    SJudgement withoutBroadband;  ///< of one without
};

/// The verdicts on the services of one input.
struct SVerdicts {
    SSource source;
    std::vector<SVerdict> verdicts;
    std::size_t leftOut = 0;  ///< services beyond those
};

}  // namespace vyr::inspect
