#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "Tool.h"

/// A capture that the tool judges.
struct SJudged {
    virtual ~SJudged() = default;
    virtual std::string Bytes() = 0;

    /// The rules that it does not keep, in order and each once.
    std::vector<std::string> Broken()
    {
        std::vector<std::string> rules;
        for (const nlohmann::json& line : Lines(Inspect("--json -", Bytes()).out)) {
            if (line["type"] == "finding") {
                rules.push_back(line["rule"]);
            }
            lines.push_back(line);
        }
        std::sort(rules.begin(), rules.end());
        rules.erase(std::unique(rules.begin(), rules.end()), rules.end());
        return rules;
    }
    /// The report's findings, a line each.
    std::string Findings() const
    {
        std::string text;
        for (const nlohmann::json& line : lines) {
            text += line["type"] == "finding" ? '\n' + line.dump() : "";
        }
        return text;
    }

    std::vector<nlohmann::json> lines;  ///< of the report
};

/// What is done to a sound broadcast, and the rules that it does not keep then.
template <class TBroadcast>
struct SBreachOf {
    const char* what;
    std::function<void(TBroadcast&)> breach;
    std::vector<std::string> broken;
};

template <class TBroadcast>
void ExpectBroken(const std::vector<SBreachOf<TBroadcast>>& breaches)
{
    for (const SBreachOf<TBroadcast>& breach : breaches) {
        TBroadcast broadcast;
        breach.breach(broadcast);
        EXPECT_EQ(broadcast.Broken(), breach.broken) << breach.what << broadcast.Findings();
    }
}
