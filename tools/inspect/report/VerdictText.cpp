#include "report/VerdictText.h"

namespace vyr::inspect {

std::string JudgementText(const SJudgement& judgement)
{
    constexpr std::size_t k_longest = 400;
    return Printable(Clipped(judgement.Text(), k_longest));
}

std::string VerdictText(const SVerdict& verdict)
{
    const std::string text = JudgementText(verdict.judgement);
    return verdict.withoutBroadband == verdict.judgement
               ? text
               : text + "; without broadband " + JudgementText(verdict.withoutBroadband);
}

std::vector<TRow> VerdictRows(const SVerdicts& verdicts)
{
    std::vector<TRow> rows = {{"id", "channel", "name", "verdict"}};
    for (const SVerdict& verdict : verdicts.verdicts) {
        rows.push_back(
            {std::to_string(verdict.serviceId), verdict.channel, Printable(verdict.name), VerdictText(verdict)});
    }
    return rows;
}

}  // namespace vyr::inspect
