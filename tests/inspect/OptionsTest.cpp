#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "GuideObjects.h"
#include "Markup.h"
#include "MmtCaptures.h"
#include "Tool.h"
#include "model/Rule.h"
#include "support/Gzip.h"
#include "support/Places.h"
#include "support/Show.h"

namespace {

using namespace packets;
using namespace vyr::inspect;

TEST(Inspect, APageThatCannotBeWritten)
{
    const std::string lineup = ReadFile(DataFile(k_lineup));
    EXPECT_EQ(Inspect("--html missing/page.html " + k_lineup).status, 2);
    EXPECT_EQ(Inspect("--html missing/page.html " + k_lineup).out, "") << "told before the work";
    EXPECT_EQ(Inspect("--html missing/page.html " + k_lineup).err,
              "vyr-atsc30-inspect: missing/page.html: No such file or directory\n");
    EXPECT_EQ(Inspect("--html /dev/full " + k_lineup).status, 2);
    EXPECT_NE(Inspect("--html /dev/full " + k_lineup).out, "");
    const CTemporary input(lineup);
    EXPECT_EQ(Inspect("--html '" + input.Name() + "' '" + input.Name() + "'").status, 2);
    EXPECT_EQ(Inspect("--html /dev/stdin -", lineup).status, 2) << "nor what comes in";
    EXPECT_EQ(ReadFile(input.Name()), lineup) << "an input is never written over";
}

TEST(Inspect, NothingIsWrittenIntoAPageThatTookTheNumberOfAClosedStream)
{
    const CTemporary page;
    const std::string command = Command("--log debug --progress --html '" + page.Name() + "' " + k_lineup);
    for (const char* closed : {"<&-", ">&-", "2>&-", "<&- >&- 2>&-"}) {
        const int status = std::system((command + ' ' + closed + " 2>/dev/null >/dev/null " + closed).c_str());
        EXPECT_EQ(Join(WIFEXITED(status), WEXITSTATUS(status)), "1|0") << closed;
        const std::string html = ReadFile(page.Name());
        EXPECT_EQ(html.compare(0, 15, "<!DOCTYPE html>"), 0) << closed;
        EXPECT_EQ(MarkupFault(html), "") << closed;
    }
}

TEST(Inspect, ThePageTellsOfItsRun)
{
    const CTemporary page;
    const std::string arguments = "--set 'a b=1' -q --html '" + page.Name() + "' " + k_lineup;
    const std::string foot = "<p><bdi>vyr-atsc30-inspect --set &#39;a b=1&#39; -q --html " + page.Name() + ' ' +
                             k_lineup + "</bdi></p></footer>";
    for (const char* epoch : {"1800000000", "1800000000x", ""}) {
        setenv("SOURCE_DATE_EPOCH", epoch, 1);
        Inspect(arguments);
        unsetenv("SOURCE_DATE_EPOCH");
        const std::string html = ReadFile(page.Name());
        EXPECT_NE(html.find(foot), std::string::npos);
        EXPECT_EQ(html.find(", 2027-01-15T08:00:00Z</p>") != std::string::npos, epoch == std::string("1800000000"));
    }
}

TEST(Inspect, InputsThatAreNone)
{
    const struct {
        const char* name;
        std::string arguments;
        std::string input;
        int status;
        std::string err;
        std::string rule;
    } cases[] = {
        {"empty", "-", "", 1, "-: is empty", "input-empty"},
        {"three bytes", "-", "\x01\x01\x01", 1,
         "-: not a capture, not an LLS table, not signalling and not a service guide", "input-unknown"},
        {"unknown table", "-", "\x07\x01\x01\x01", 1,
         "-: not a capture, not an LLS table, not signalling and not a service guide", "input-unknown"},
        {"text", "inspect/cut.txt", "", 1,
         "inspect/cut.txt: not a capture, not an LLS table, not signalling and not a service guide", "input-unknown"},
        {"other XML", "-", "<!-- <SLT/> --><a:\x9b x='<DWD/>'/>", 1,
         "-: not a capture, not an LLS table, not signalling and not a service guide: its root element is "
         "\"a:\\x9B\"",
         "input-unknown"},
        {"a table without its header", "-", "<?xml version='1.0'?><!-- > -->\n<a:SLT/>", 1,
         "-: a service list table (SLT) without its LLS header: a table is read behind the four bytes that name it, "
         "its group and its version",
         "input-unknown"},
        {"a document that nobody reads", "-", Gzip("\xEF\xBB\xBF<DWD>"), 1,
         "-: a distribution window description (DWD), which the tool does not read", "input-unknown"},
        {"a name that only begins so", "-", "<DWDs/>", 1,
         "-: not a capture, not an LLS table, not signalling and not a service guide: its root element is \"DWDs\"",
         "input-unknown"},
        {"a document that is read without a prefix", "-", "<x:MPD/>", 1,
         "-: an MPD, whose name has a prefix: it is looked for without one", "input-unknown"},
        {"a playlist", "-", "#EXTM3U\n", 1, "-: an HLS playlist, which the tool does not read", "input-unknown"},
        {"nearly a playlist", "-", "#EXTM3\n", 1,
         "-: not a capture, not an LLS table, not signalling and not a service guide", "input-unknown"},
        {"no root element", "-", "<!-- <DWD/>", 1,
         "-: not a capture, not an LLS table, not signalling and not a service guide", "input-unknown"},
        {"damaged gzip", "-", "\x1F\x8B\x08?", 1,
         "-: not a capture, not an LLS table, not signalling and not a service guide", "input-unknown"},
        {"too much signalling", "-", std::string(1048577, ' '), 1,
         "-: larger than any signalling: more than 1048576 bytes", "input-too-large"},
        {"directory", "inspect", "", 2, "inspect: is a directory", "input-directory"},
        {"missing", "missing.pcap", "", 2, "missing.pcap: No such file or directory", "input-missing"},
        {"hostile name", "'\x1B[2J'", "", 2, "\\x1B[2J: No such file or directory", "input-missing"},
        {"no unit", "-", std::string(1048577, '\0'), 1,
         "-: not a capture, not an LLS table, not signalling and not a service guide", "input-unknown"},
        {"too large unit", "-", std::string(8388609, '\0'), 1,
         "-: larger than any delivery unit: more than 8388608 bytes", "input-too-large"},
        {"too large", "-", std::string(1048577, '\x01'), 1, "-: larger than any LLS table: more than 1048576 bytes",
         "input-too-large"},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        const SResult text = Inspect(test.arguments, test.input);
        EXPECT_EQ(text.status, test.status);
        EXPECT_EQ(text.out, "");
        EXPECT_EQ(text.err, "vyr-atsc30-inspect: " + test.err + '\n');
        const SResult json = Inspect("--json " + test.arguments, test.input);
        EXPECT_EQ(json.status, test.status);
        EXPECT_EQ(json.err, text.err);
        const std::vector<nlohmann::json> lines = Lines(json.out);
        ASSERT_EQ(lines.size(), 2u);
        EXPECT_EQ(lines[0]["type"], "finding");
        EXPECT_EQ(lines[0]["rule"], test.rule);
        EXPECT_EQ(lines[1]["findings"][test.rule], 1);
    }
    EXPECT_EQ(Inspect("-", std::string(1048576, '\xFF')).status, 0) << "the largest raw table";
    EXPECT_EQ(Inspect("missing " + k_lineup).status, 2) << "a fault hides no failure";
    EXPECT_NE(Inspect("missing " + k_lineup).out.find("KLAS"), std::string::npos);
}

TEST(Inspect, UsageErrors)
{
    EXPECT_EQ(Inspect("").status, 2);
    for (const char* arguments :
         {"--nonsense", "--lls 1.2.3.4", "--lls 1.2.3:5", "--lls 1.2.3.4:0", "--lls 1.2.3.4:65536", "--route 1.2.3.4:x",
          "--mmtp 1", "--set a", "--set =1", "--set a=1x", "--log loud"}) {
        const SResult result = Inspect(std::string(arguments) + " pcap/gpac-a2-multi-service.pcap");
        EXPECT_EQ(result.status, 2) << arguments;
        EXPECT_EQ(result.out, "") << arguments;
        EXPECT_NE(result.err, "") << arguments;
    }
    EXPECT_EQ(Inspect("--lls 1.2.3.4:65535 --quiet pcap/gpac-a2-multi-service.pcap").status, 1);
    EXPECT_EQ(Inspect("--version").status, 0);
    EXPECT_NE(Inspect("--version").out.find("libvyr-atsc30-parser"), std::string::npos);
}

TEST(Inspect, TheReadmeShowsAScreen)
{
    const std::string readme = ReadFile(TreeFile("README.md"));
    // The screen that the README shows: what stands between its lines of dots is what the tool writes.
    const std::string screen = ReadFile(DataFile("inspect/broadcast.txt"));
    const std::string begin = "$ scripts/demo\n";
    std::size_t at = readme.find(begin) + begin.size();
    const std::size_t end = readme.find("```", at);
    std::size_t found = 0;
    int parts = 0;
    for (; at < end; ++parts) {
        const std::size_t dots = std::min(readme.find("  \u2026\n", at), end);
        const std::string part = readme.substr(at, dots - at);
        found = screen.find(part, found);
        ASSERT_NE(found, std::string::npos) << part;
        EXPECT_EQ(found == 0, parts == 0) << "the first part is the beginning";
        found += part.size();
        at = dots + std::string("  \u2026\n").size();
    }
    EXPECT_GE(parts, 2);
    EXPECT_EQ(found, screen.size()) << "the last part is the end";
}

TEST(Inspect, Rules)
{
    for (std::size_t i = 0; i < k_rules; ++i) {
        EXPECT_EQ(static_cast<std::size_t>(k_ruleTable[i].rule), i) << k_ruleTable[i].name;
        EXPECT_EQ(FindRule(k_ruleTable[i].name), k_ruleTable[i].rule) << "its name is its own";
    }
    if (std::getenv("VYR_RECORD") != nullptr) {
        std::ofstream(TreeFile("docs/rules.md")) << RulesPage();
    }
    EXPECT_EQ(ReadFile(TreeFile("docs/rules.md")), RulesPage()) << "VYR_RECORD=1 makes it anew";

    const SResult list = Inspect("--rules --ignore no-slt --severity bad-address=note");
    EXPECT_EQ(list.status, 0);
    EXPECT_NE(list.out.find("  no-lls: error. Receivers find no channel at all. "), std::string::npos) << list.out;
    EXPECT_NE(list.out.find("  no-slt: ignored. "), std::string::npos);
    EXPECT_NE(list.out.find("  bad-address: note. "), std::string::npos);

    // A service whose session was not captured, which is worth a note.
    const std::string capture = CCapture(1).AddLls(Slt(MmtService(1, 30100, 1), 1)).Bytes();
    const struct {
        const char* options;
        int status;
        int errors, warnings, notes;
    } cases[] = {
        {"", 0, 0, 0, 1},
        {"--fail-on note", 1, 0, 0, 1},
        {"--fail-on warning", 0, 0, 0, 1},
        {"--severity no-sessions=warning", 0, 0, 1, 0},
        {"--severity no-sessions=warning --fail-on warning", 1, 0, 1, 0},
        {"--severity no-sessions=error", 1, 1, 0, 0},
        {"--severity no-sessions=error --fail-on note --ignore no-sessions", 0, 0, 0, 0},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.options);
        const SResult result = Inspect(std::string("--json ") + test.options + " -", capture);
        EXPECT_EQ(result.status, test.status);
        const nlohmann::json summary = Lines(result.out).back();
        EXPECT_EQ(summary["errors"], test.errors);
        EXPECT_EQ(summary["warnings"], test.warnings);
        EXPECT_EQ(summary["notes"], test.notes);
    }
    for (const char* wrong : {"--ignore no-such-rule", "--severity no-lls", "--severity no-lls=fatal",
                              "--severity =note", "--fail-on never"}) {
        EXPECT_EQ(Inspect(wrong + std::string(" -"), capture).status, 2) << wrong;
    }
}

TEST(Inspect, GuideInLocalTimeWithNamesOfGenres)
{
    const CTemporary genres(
        "<!-- --><ClassificationScheme><Term termID='2'>\n <Name>News at night</Name>\n</Term></ClassificationScheme>");
    setenv("TZ", "XYZ-3", 1);
    const SResult local = Inspect("--local-time --genres '" + genres.Name() + "' -", guide::WholeUnit());
    const SResult utc = Inspect("-", guide::WholeUnit());
    unsetenv("TZ");
    EXPECT_NE(local.out.find("Sunday 2026-11-22 (XYZ)\n"), std::string::npos);
    EXPECT_NE(local.out.find("\n      01:30  03:30     Late news"), std::string::npos) << "midnight is elsewhere";
    EXPECT_NE(local.out.find("News at night"), std::string::npos);
    EXPECT_EQ(utc.out, ReadFile(DataFile("inspect/guide-unit.txt")));
    std::string scheme = ReadFile(genres.Name());
    scheme.insert(scheme.find("</Term>"), 8388608 - scheme.size(), ' ');
    const CTemporary largest(scheme);
    EXPECT_EQ(Inspect("--genres '" + largest.Name() + "' -", guide::WholeUnit()).err, "");
    const CTemporary tooLarge(scheme + ' ');
    const SResult refused = Inspect("--genres '" + tooLarge.Name() + "' -", guide::WholeUnit());
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.err, "vyr-atsc30-inspect: " + tooLarge.Name() +
                               ": larger than any classification scheme: more than 8388608 bytes\n");
    EXPECT_EQ(Inspect("--genres /dev/zero -", guide::WholeUnit()).status, 2);
    const SResult none = Inspect("--genres missing.xml -", guide::WholeUnit());
    EXPECT_EQ(none.status, 2);
    EXPECT_EQ(none.err, "vyr-atsc30-inspect: missing.xml: not a classification scheme\n");
}

TEST(Inspect, LogAndProgressGoToStandardError)
{
    const std::string capture = "pcap/gpac-a13-unescaped-name.pcap";
    const SResult plain = Inspect(capture);
    const SResult log = Inspect("--log debug " + capture);
    EXPECT_EQ(log.out, plain.out);
    EXPECT_NE(log.err.find("[TCParseLLS::Parse] TableId[1]"), std::string::npos);
    EXPECT_EQ(Inspect("--log info " + capture).err, "");
    EXPECT_NE(Inspect("--strict --log error " + k_lineup).err.find("protected1"), std::string::npos);
    const SResult progress = Inspect("--progress pcap/gpac-a2-multi-service.pcap");
    EXPECT_NE(progress.err.find("64 packets"), std::string::npos);
    EXPECT_EQ(Inspect("--progress --quiet pcap/gpac-a2-multi-service.pcap").err, "");
}

TEST(Inspect, AReaderThatHasGoneIsNoError)
{
    const CTemporary err;
    const CTemporary status;
    // The reader is gone before the first line is written.
    const std::string command = "cd '" + DataFile() + "'; (sleep 0.2; '" + k_inspect +
                                "' pcap/gpac-a2-multi-service.pcap 2> '" + err.Name() + "'; echo $? > '" +
                                status.Name() + "') | true";
    EXPECT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(ReadFile(err.Name()), "");
    EXPECT_EQ(ReadFile(status.Name()), "0\n");
    EXPECT_EQ(Inspect("pcap/gpac-a2-multi-service.pcap > /dev/full").status, 2);
}

TEST(Inspect, AStreamIsReportedAsItComes)
{
    const CTemporary fifo;
    const CTemporary page;
    std::remove(fifo.Name().c_str());
    ASSERT_EQ(mkfifo(fifo.Name().c_str(), 0600), 0);
    // One interrupt, to the tool alone: a second one could meet the leak check at its end.
    const std::string command = std::string("timeout --foreground --preserve-status -s INT 2 '") + k_inspect +
                                "' --html '" + page.Name() + "' - < '" + fifo.Name() + "'";
    FILE* out = popen(command.c_str(), "r");
    const int in = open(fifo.Name().c_str(), O_WRONLY);
    const std::string bytes = CCapture(1).AddLls(Slt(Service(1), 1)).Bytes();
    ASSERT_EQ(write(in, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    pollfd ready = {fileno(out), POLLIN, 0};
    EXPECT_EQ(poll(&ready, 1, 1500), 1) << "the table comes while the stream goes on";
    std::string text;
    for (int c = 0; (c = fgetc(out)) != EOF;) {
        text += static_cast<char>(c);
    }
    close(in);
    EXPECT_EQ(pclose(out), 0);
    EXPECT_NE(text.find("SLT (1) version 1 group 0: new"), std::string::npos);
    EXPECT_NE(text.find("\nsummary\n"), std::string::npos) << "an interrupt ends the input, not the report";
    EXPECT_EQ(MarkupFault(ReadFile(page.Name())), "");
    EXPECT_NE(ReadFile(page.Name()).find("<h3>bsid 5, 224.0.23.60:4937 group 0 "), std::string::npos);
}

/// Nobody reads what the tool writes: it waits there.
TEST(Inspect, ASecondInterruptEndsTheProgramAtOnceWhateverItDoes)
{
    CCapture many(1);
    for (unsigned int i = 0; i < 2000; ++i) {
        many.AddLls(Slt(Service(1 + static_cast<int>(i % 2)), i));
    }
    const CTemporary input(many.Bytes());
    for (const int interrupts : {1, 2}) {
        int ends[2];
        ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
        const pid_t tool = fork();
        if (tool == 0) {
            dup2(ends[1], STDOUT_FILENO);
            execl(k_inspect, k_inspect, "--json", input.Name().c_str(), nullptr);
            _exit(127);
        }
        for (int held = 0, before = -1; held == 0 || held != before;) {
            usleep(100000);
            before = held;
            ASSERT_EQ(ioctl(ends[0], FIONREAD, &held), 0);
        }
        int status = 0;
        for (int i = 0; i < interrupts; ++i) {
            usleep(100000);
            EXPECT_EQ(waitpid(tool, &status, WNOHANG), 0) << "one is not enough";
            kill(tool, SIGINT);
        }
        close(ends[1]);
        std::string last;
        if (interrupts == 1) {
            char chunk[65536];
            for (ssize_t count = 0; (count = read(ends[0], chunk, sizeof chunk)) > 0;) {
                last.append(chunk, static_cast<std::size_t>(count));
                last.erase(0, last.size() > 4000 ? last.size() - 4000 : 0);
            }
        }
        waitpid(tool, &status, 0);
        close(ends[0]);
        EXPECT_EQ(WIFSIGNALED(status), interrupts == 2);
        EXPECT_EQ(last.find("\"type\":\"summary\"") != std::string::npos, interrupts == 1) << last;
    }
}

}  // namespace
