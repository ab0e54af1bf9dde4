#include "report/VerdictText.h"

namespace vyr::inspect {

std::string VerdictText(const SVerdict& verdict)
{
    constexpr std::size_t k_longest = 400;
    const std::string text = Printable(Clipped(verdict.judgement.Text(), k_longest));
    return verdict.withoutBroadband == verdict.judgement
               ? text
               : text + "; without broadband " + Printable(Clipped(verdict.withoutBroadband.Text(), k_longest));
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
