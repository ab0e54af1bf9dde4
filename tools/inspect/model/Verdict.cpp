#include "model/Verdict.h"

namespace vyr::inspect {

std::string SJudgement::Text() const
{
    constexpr const char* k_begin[] = {"plays", "plays, but ", "does not play: ", "cannot be told from this capture: "};
    return k_begin[static_cast<std::size_t>(verdict)] + (verdict == EVerdict::PLAYS ? std::string() : cause);
}

}  // namespace vyr::inspect
