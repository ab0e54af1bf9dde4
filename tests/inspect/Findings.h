#pragma once

#include <map>
#include <string>
#include <vector>

#include "Tool.h"

using TFindings = std::map<std::string, int>;

/// One finding of the rule; of no name, none.
inline TFindings Only(const std::string& rule)
{
    return rule.empty() ? TFindings() : TFindings{{rule, 1}};
}

/// How many findings the input has of each rule whose name begins like one of the prefixes.
inline TFindings Findings(const std::string& input, const std::vector<std::string>& prefixes,
                          const std::string& arguments = {})
{
    TFindings findings;
    const std::vector<nlohmann::json> lines = Lines(Inspect("--json --quiet " + arguments + " -", input).out);
    if (lines.empty()) {
        return {{"no summary", 1}};
    }
    for (const auto& [rule, count] : lines.back()["findings"].items()) {
        for (const std::string& prefix : prefixes) {
            if (rule.rfind(prefix, 0) == 0) {
                findings[rule] = count;
            }
        }
    }
    return findings;
}
