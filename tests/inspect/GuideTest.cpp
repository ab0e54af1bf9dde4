#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "Tool.h"
#include "support/Places.h"

namespace {

/// What the commands write to the terminal, in a folder with the test data and with the tool on the path.
std::string Screen(const std::string& folder, const std::string& commands)
{
    const CTemporary script(commands);
    return Shell("cd '" + folder + "' && PATH=\"$PWD/bin:$PATH\" sh '" + script.Name() + "' 2>&1").out;
}

/// What of the quotation is not on the screen, in order; "…" stands for any lines, and without it they follow each
/// other.
std::string NotShown(const std::string& quotation, const std::string& screen)
{
    std::istringstream lines(quotation);
    std::size_t at = 0;
    bool skip = false;
    for (std::string line; std::getline(lines, line);) {
        if (line == "…") {
            skip = true;
            continue;
        }
        line += '\n';
        while (skip && at < screen.size() && screen.compare(at, line.size(), line) != 0) {
            at = std::min(screen.find('\n', at), screen.size() - 1) + 1;
        }
        if (screen.compare(at, line.size(), line) != 0) {
            return line;
        }
        at += line.size();
        skip = false;
    }
    return skip || at == screen.size() ? std::string() : "(more behind it)";
}

/// Every block of the guide that begins with a command is what a terminal shows.
TEST(Guide, ShowsWhatIsSeen)
{
    const CTemporaryFolder folder;
    std::filesystem::create_directory(folder.Of("bin"));
    std::filesystem::create_symlink(k_inspect, folder.Of("bin/vyr-atsc30-inspect"));
    for (const auto& data : std::filesystem::directory_iterator(DataFile())) {
        std::filesystem::create_symlink(data.path(), folder.Of(data.path().filename()));
    }
    std::istringstream guide(ReadFile(TreeFile("docs/inspect.md")));
    int commands = 0;
    std::string command, quotation;
    bool fenced = false, shown = false;
    const auto check = [&] {
        if (!command.empty()) {
            const std::string screen = Screen(folder.Name(), command);
            EXPECT_EQ(NotShown(quotation, screen), "") << command << screen;
            ++commands;
        }
        command.clear();
        quotation.clear();
    };
    for (std::string line; std::getline(guide, line);) {
        if (line.rfind("```", 0) == 0) {
            check();
            fenced = !fenced;
            shown = false;
        } else if (fenced && line.rfind("$ ", 0) == 0) {
            check();
            command = line.substr(2) + '\n';
            shown = true;
        } else if (shown && line.rfind("> ", 0) == 0) {
            command += line.substr(2) + '\n';
        } else if (shown) {
            quotation += line + '\n';
        }
    }
    EXPECT_GE(commands, 15);
    EXPECT_EQ(NotShown("a\n…\nc\n", "a\nb\nc\n"), "");
    EXPECT_EQ(NotShown("a\nc\n", "a\nb\nc\n"), "c\n") << "nothing is left out unsaid";
    EXPECT_EQ(NotShown("a\n…\nc\n", "c\nb\na\n"), "a\n");
    EXPECT_EQ(NotShown("a\n", "a\nb\n"), "(more behind it)");
}

}  // namespace
