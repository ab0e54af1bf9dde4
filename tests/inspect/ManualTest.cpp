#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "Tool.h"
#include "support/Places.h"

namespace {

const std::string k_completion = "tools/inspect/completion/";

std::string Output(const std::string& command)
{
    const SEnded ended = Shell(command);
    EXPECT_EQ(ended.status, 0) << command;
    return ended.out;
}

bool IsThere(const std::string& program)
{
    return Shell("command -v " + program).status == 0;
}

/// What bash makes of the words, of which the last is completed: up to four, each with a blank behind it.
std::string Completed(const std::string& words)
{
    return Output("cd '" + TreeFile("docs") +
                  "' && bash -c '. ../tools/inspect/completion/vyr-atsc30-inspect.bash; COMP_WORDS=(x " + words +
                  "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _vyr_atsc30_inspect; "
                  "printf \"%s \" \"${COMPREPLY[@]:0:4}\"'");
}

/// The script itself demands that --help and the tables name the same options.
TEST(Manual, IsMadeOfTheReference)
{
    const CTemporaryFolder folder;
    Output("'" + TreeFile("scripts/make-manual' '") + k_inspect + "' '" + folder.Of("'"));
    for (const auto& [made, kept] : {std::pair<std::string, std::string>("vyr-atsc30-inspect.1", "docs/"),
                                     {"vyr-atsc30-inspect.bash", k_completion},
                                     {"_vyr-atsc30-inspect", k_completion}}) {
        const std::string text = ReadFile(folder.Of(made));
        if (std::getenv("VYR_RECORD") != nullptr) {
            std::ofstream(TreeFile(kept + made)) << text;
        }
        EXPECT_EQ(ReadFile(TreeFile(kept + made)), text) << "VYR_RECORD=1 makes it anew";
    }
    for (const char* check : {"groff -man -ww -z", "mandoc -Tlint -W warning"}) {
        if (IsThere(std::string(check).substr(0, std::string(check).find(' ')))) {
            EXPECT_EQ(Output(std::string(check) + " '" + TreeFile("docs/vyr-atsc30-inspect.1' 2>&1")), "");
        }
    }
}

TEST(Manual, Completion)
{
    const struct {
        const char* words;
        const char* completed;
    } cases[] = {
        {"--in", "--interface "},
        {"-q --js", "--json "},
        {"--severity no-ll", "no-lls= "},
        {"--severity = no-ll", "no-lls= "},
        {"--severity no-lls =", "error warning note "},
        {"--severity no-lls = w", "warning "},
        {"--severity = no-lls = w", "warning "},
        {"--severity no-such = w", " "},
        {"--ignore tai", "tai-offset "},
        {"--fail-on w", "warning "},
        {"--fail-on = w", "warning "},
        {"--log w", " "},
        {"--log \"\"", "debug info error silent "},
        {"--join 239.1.1.1%l", "239.1.1.1%lo "},
        {"--html metr", "metrics.md "},
        {"--extract ../doc", "../docs "},
        {"--extract metr", " "},
        {"metr", "metrics.md "},
        {"--duration \"\"", " "},
        {"--duration 5 metr", "metrics.md "},
        {"--set d", "db/menu/broadcasting/atsc3_bb_option= "},
        {"--table Sig", "SignedMultiTable "},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(Completed(test.words), test.completed) << test.words;
    }
    const std::string tables = Output("bash -c '. \"" + TreeFile(k_completion + "vyr-atsc30-inspect.bash") +
                                      "\"; COMP_WORDS=(x --table \"\"); COMP_CWORD=2; "
                                      "_vyr_atsc30_inspect; printf \"%s \" \"${COMPREPLY[@]/#/--table }\"'");
    EXPECT_NE(Inspect(tables + k_lineup).status, 2) << tables;
    if (IsThere("zsh")) {
        Output("zsh -n '" + TreeFile(k_completion + "_vyr-atsc30-inspect'"));
    }
}

}  // namespace
