#include "report/VerdictText.h"

#include <algorithm>

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
    const std::vector<SVerdict>& all = verdicts.verdicts;
    const auto stream = [](const SVerdict& verdict) {
        return verdict.serviceList.substr(0, verdict.serviceList.rfind("group "));
    };
    // Their ids and channels do not tell services of several broadcasts apart.
    const bool several = std::any_of(all.begin(), all.end(),
                                     [&](const SVerdict& verdict) { return stream(verdict) != stream(all.front()); });
    std::vector<TRow> rows = {{"id", "channel", "name", "verdict"}};
    for (const SVerdict& verdict : all) {
        rows.push_back(
            {std::to_string(verdict.serviceId), verdict.channel, Printable(verdict.name), VerdictText(verdict)});
    }
    for (std::size_t i = 0; several && i < rows.size(); ++i) {
        rows[i].insert(rows[i].end() - 1, i == 0 ? "list" : all[i - 1].serviceList);
    }
    return rows;
}

}  // namespace vyr::inspect
