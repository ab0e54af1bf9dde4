#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "MadeBroadcast.h"
#include "Tool.h"

/// What the tool finds in the made broadcast, broken in one place.
namespace packets {

/// How many findings of each rule an input has, and their texts for messages of a test.
struct SFound {
    std::map<std::string, unsigned> rules;
    std::string text;
};

inline SFound FindingsOf(const std::string& input, const std::string& options = {})
{
    SFound found;
    const SResult result = Inspect("--json " + options + " -", input);
    for (const nlohmann::json& line : Lines(result.out)) {
        if (line["type"] == "finding") {
            found.text += line["severity"].get<std::string>() + ": " + line["message"].get<std::string>() + '\n';
        }
        if (line["type"] == "summary") {
            for (const auto& [rule, count] : line["findings"].items()) {
                found.rules[rule] = count.get<unsigned>();
            }
        }
    }
    return found;
}

/// One input, and the findings that it has.
struct SRuleCase {
    const char* name;
    std::map<std::string, unsigned> rules;
    std::function<void(SBroadcast&)> change;
    std::string options = {};
};

/// Breaks the sound broadcast as each case says, and looks at what is found.
inline void CheckRules(const std::vector<SRuleCase>& cases)
{
    for (const SRuleCase& test : cases) {
        SCOPED_TRACE(test.name);
        SBroadcast broadcast;
        test.change(broadcast);
        const SFound found = FindingsOf(broadcast.Bytes(), test.options);
        EXPECT_EQ(found.rules, test.rules) << found.text;
    }
}

}  // namespace packets
