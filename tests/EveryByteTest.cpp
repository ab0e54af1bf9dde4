#include <gtest/gtest.h>

#include "entries/Entries.h"
#include "platform/Platform.h"
#include "support/Recorder.h"
#include "support/Show.h"

namespace {

/// Every prefix of the input, and eight values at every place of it.
std::vector<std::string> Variations(const std::string& input)
{
    std::vector<std::string> all;
    for (std::size_t at = 0; at < input.size(); ++at) {
        all.push_back(input.substr(0, at));
        std::string changed = input;
        for (const int value : {0x00, 0x01, 0x7F, 0x80, 0xFF, int{'<'}, int{'&'}, input[at] + 1}) {
            changed[at] = static_cast<char>(value);
            all.push_back(changed);
        }
    }
    return all;
}

class EveryByteTest : public CRecorder, public testing::WithParamInterface<SEntryKind> {
  protected:
    /// What is held, and what is logged of an object that only dumps.
    static std::string Held(const SEntry& entry)
    {
        SetLogPriority(LOG_PRIORITY_DEBUG);
        s_log.clear();
        std::string all = entry.digest();
        for (const std::string& line : s_log) {
            all += '\n' + line.substr(line.find("> "));
        }
        SetLogPriority(LOG_PRIORITY_ERROR);
        s_log.clear();
        s_assertions.clear();
        return all;
    }
};

TEST_P(EveryByteTest, WhateverComesIsReadWithinItsBytesAndLeavesNothing)
{
    const SEntry fresh = GetParam().make();
    ASSERT_EQ(Each({fresh.create(), fresh.parse()}), "11");
    const std::string good = Held(fresh);
    fresh.digest();
    EXPECT_TRUE(s_log.empty()) << "only what is debugged is shown";
    const std::string input = fresh.input();
    fresh.destroy();
    ASSERT_EQ(Join(good.empty(), input.empty()), "0|0");

    // One object lives through it all, another one takes the one input alone.
    const SEntry lived = GetParam().make();
    ASSERT_TRUE(lived.create());
    const bool made = GetParam().name.rfind("mmt_", 0) == 0;
    int taken = 0, fed = 0;
    for (const std::string& variation : Variations(input)) {
        // What the bytes decide that make the object, one that lives on does not see.
        const SEntry other = GetParam().makeOf(variation);
        if ((made || variation.size() < input.size()) && other.create()) {
            if (other.parse()) {
                Held(other);
            }
            other.destroy();
        }
        std::string next = variation;
        if (GetParam().name.rfind("lls_", 0) == 0 && fresh.mayLose && next.size() > 3) {
            next[3] = static_cast<char>(fed);  // a table of the version that came last is not parsed
        }
        lived.take(next);
        if (lived.parse()) {
            ++taken;
            if (!made) {
                Held(lived);
            }
        }
        if (++fed % 50 == 0) {  // what piles up until Destroy goes
            lived.destroy();
            lived.take(input);
            ASSERT_TRUE(lived.create());
        }
    }
    EXPECT_EQ(Join(taken > 0, taken < fed || fresh.mayLose), "1|1") << taken << " of " << fed;
    lived.destroy();
    lived.take(input);
    ASSERT_TRUE(lived.create());
    // A parser of tables remembers the last header all its life, and takes the next version.
    EXPECT_TRUE(lived.parse() || (lived.mayLose && lived.parse()));
    EXPECT_EQ(Held(lived), good);
    lived.destroy();
}

std::vector<SEntryKind> Kinds()
{
    std::vector<SEntryKind> kinds;
    for (const auto& family : {LlsEntries(), RouteEntries(), MmtEntries(), GuideEntries()}) {
        kinds.insert(kinds.end(), family.begin(), family.end());
    }
    return kinds;
}

INSTANTIATE_TEST_SUITE_P(Of, EveryByteTest, testing::ValuesIn(Kinds()), NameOfKind);

}  // namespace
