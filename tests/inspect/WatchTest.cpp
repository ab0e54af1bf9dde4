#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <regex>
#include <set>
#include <thread>

#include "MadeBroadcast.h"
#include "Tool.h"
#include "report/MetricsReport.h"
#include "support/Places.h"

using namespace packets;

namespace {

std::vector<nlohmann::json> Interims(const std::string& out)
{
    std::vector<nlohmann::json> interims;
    for (nlohmann::json& line : Lines(out)) {
        if (line["type"] == "interim") {
            interims.push_back(std::move(line));
        }
    }
    return interims;
}

std::set<std::string> Rules(const nlohmann::json& findings)
{
    std::set<std::string> rules;
    for (const nlohmann::json& finding : findings) {
        rules.insert(finding["rule"]);
    }
    return rules;
}

/// The tool, fed by the test as it runs.
class CFed {
  public:
    explicit CFed(const std::string& arguments)
    {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        m_process = fork();
        if (m_process == 0) {
            dup2(ends[0], STDIN_FILENO);
            close(ends[0]);
            close(ends[1]);
            execl("/bin/sh", "sh", "-c", Command(arguments).c_str(), nullptr);
            _exit(127);
        }
        close(ends[0]);
        m_input = ends[1];
    }
    void Feed(const std::string& bytes) const
    {
        for (std::size_t at = 0; at < bytes.size();) {
            const ssize_t count = write(m_input, bytes.data() + at, bytes.size() - at);
            ASSERT_GT(count, 0);
            at += static_cast<std::size_t>(count);
        }
    }
    void Signal(int number) const { kill(m_process, number); }
    /// Memory that it takes now, in kB.
    unsigned long Memory() const
    {
        const std::string status = ReadFile("/proc/" + std::to_string(m_process) + "/status");
        return std::strtoul(status.c_str() + status.find("VmRSS:") + 6, nullptr, 10);
    }
    int Finish()
    {
        close(m_input);
        int status = -1;
        waitpid(m_process, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

  private:
    pid_t m_process = -1;
    int m_input = -1;
};

/// How many reports the metrics count.
unsigned long Reports(const std::string& metrics)
{
    const std::string text = ReadFile(metrics), name = "\nvyr_atsc30_reports_total ";
    const std::size_t at = text.find(name);
    return at == std::string::npos ? 0 : std::strtoul(text.c_str() + at + name.size(), nullptr, 10);
}

/// Waits for what another process does; a minute is enough for any machine.
bool Soon(const std::function<bool()>& done)
{
    for (int i = 0; i < 6000 && !done(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return done();
}

}  // namespace

/// Reports on the way change nothing of what is said at the end.
TEST(Watch, TheEndIsAsWithoutReportsOnTheWay)
{
    for (const auto& entry : std::filesystem::directory_iterator(DataFile("pcap"))) {
        const std::string input = "--json --set db/x=1 '" + entry.path().string() + "'";
        const std::string without = Inspect(input).out;
        const std::string with = Inspect("--every 1 " + input).out;
        EXPECT_EQ(LastLine(with), LastLine(without)) << input;
        const std::vector<nlohmann::json> interims = Interims(with);
        EXPECT_GE(interims.size(), 2u) << input;
        for (std::size_t i = 0; i < interims.size(); ++i) {
            EXPECT_EQ(interims[i]["number"], i + 1);
        }
    }
}

/// Signalling that comes late is missing at first, and then no more; nothing of it stays in a verdict.
TEST(Watch, WhatIsFoundSinceAndWhatHoldsNoMore)
{
    SBroadcast broadcast;
    broadcast.rounds = 31;
    broadcast.change = [](SSent& sent) { return sent.kind != SSent::SIGNALLING || sent.round >= 15; };
    const SResult result = Inspect("--json --every 10 -", broadcast.Bytes());
    const std::vector<nlohmann::json> interims = Interims(result.out);
    ASSERT_EQ(interims.size(), 3u);
    EXPECT_EQ(Rules(interims[0]["begun"]).count("no-signalling"), 1u);
    EXPECT_EQ(interims[0]["verdicts"][0]["verdict"], "does-not-play");
    EXPECT_EQ(Rules(interims[1]["over"]).count("no-signalling"), 1u);
    EXPECT_EQ(interims[1]["verdictsChanged"][0]["before"], "does-not-play");
    EXPECT_EQ(interims[2].value("verdictsChanged", nlohmann::json()), nlohmann::json());
    EXPECT_EQ(Rules(interims[2]["over"]), std::set<std::string>());
    EXPECT_EQ(Rules(interims[2]["begun"]), std::set<std::string>());
    EXPECT_EQ(interims[2]["verdicts"][0]["verdict"], "plays") << interims[2];
    EXPECT_EQ(interims[2]["summary"]["packets"], interims[2]["source"]["packet"]);
    // Another input has nothing to do with it.
    const CTemporary other(SBroadcast().Bytes());
    const std::vector<nlohmann::json> both =
        Interims(Inspect("--json --every 10 - '" + other.Name() + "'", broadcast.Bytes()).out);
    ASSERT_EQ(both.size(), 4u);
    EXPECT_EQ(both[3]["over"].size() + both[3].value("verdictsChanged", nlohmann::json()).size(), 0u);
    const std::string text = Inspect("--every 10 -", broadcast.Bytes()).out;
    EXPECT_NE(text.find("report 2\n  holds no more\n"), std::string::npos) << text;
    EXPECT_EQ(Inspect("-q --every 10 -", broadcast.Bytes()).out.find("report 1"), std::string::npos);
}

/// What goes on with other numbers is neither begun nor over; the same of something else is begun.
TEST(Watch, NumbersThatChangeAreNoNews)
{
    SBroadcast broadcast;
    broadcast.rounds = 151;
    broadcast.change = [](SSent& sent) {
        const bool cut = sent.kind == SSent::MEDIA && sent.lct.start != 0;
        return !cut || sent.round % 5 == 3 || (sent.lct.tsi == 20 && sent.round < 60);
    };
    const std::string bytes = broadcast.Bytes();
    const std::vector<nlohmann::json> interims = Interims(Inspect("--json --every 30 -", bytes).out);
    ASSERT_EQ(interims.size(), 5u);
    std::string messages;
    for (const nlohmann::json& interim : interims) {
        for (const char* list : {"begun", "over"}) {
            for (const nlohmann::json& finding : interim[list]) {
                const std::string message = finding["message"];
                messages += finding["rule"] == "many-objects-incomplete"
                                ? std::to_string(interim["number"].get<int>()) + ' ' + list + ' ' +
                                      message.substr(0, message.find(" of")) + '\n'
                                : "";
            }
        }
    }
    EXPECT_EQ(messages, "2 begun TSI 10\n4 begun TSI 20\n");
    EXPECT_NE(Inspect("--every 30 -", bytes)
                  .out.find("  service 1 \"NEWS\"  does not play: 24 of 37 pieces of its video arrive broken; before: "
                            "plays\n"),
              std::string::npos);
    EXPECT_EQ(interims[1]["verdictsChanged"][0]["causeNow"], "24 of 37 pieces of its video arrive broken");
}

/// The page is replaced as a whole while the input goes on, and loads itself again until the end.
TEST(Watch, ThePageOfAnInputThatGoesOn)
{
    const CTemporary page, metrics;
    const std::string link = page.Name() + ".link";
    std::filesystem::create_symlink(page.Name(), link);
    SBroadcast broadcast;
    CFed tool("--every 2 --html '" + link + "' --metrics '" + metrics.Name() + "' - > /dev/null");
    const std::string bytes = broadcast.Bytes();
    const std::ifstream old(page.Name());  // while it is open, no file that follows has its number
    struct stat before {};
    stat(page.Name().c_str(), &before);
    tool.Feed(bytes.substr(0, bytes.size() / 2));
    EXPECT_TRUE(
        Soon([&] { return ReadFile(page.Name()).find("http-equiv=\"refresh\" content=\"2\"") != std::string::npos; }));
    EXPECT_TRUE(Soon([&] { return ReadFile(metrics.Name()).find("# EOF") != std::string::npos; }));
    struct stat after {};
    stat(page.Name().c_str(), &after);
    EXPECT_NE(before.st_ino, after.st_ino);
    EXPECT_EQ(before.st_mode, after.st_mode);
    tool.Feed(bytes.substr(bytes.size() / 2));
    EXPECT_EQ(tool.Finish(), 0);
    EXPECT_EQ(ReadFile(page.Name()).find("refresh"), std::string::npos);
    EXPECT_TRUE(std::filesystem::is_symlink(link)) << "what it leads to is replaced";
    std::remove(link.c_str());
    EXPECT_EQ(
        Inspect("--metrics /dev/stderr pcap/gpac-a6-protected.pcap").err.find("# TYPE vyr_atsc30_reports counter"), 0u)
        << "what is no file is written to";
}

TEST(Watch, TheOutputIsOpenedAnewOnHangup)
{
    const CTemporary output("old");
    const std::string moved = output.Name() + ".1";
    SBroadcast broadcast;
    CFed tool("--json --every 1 --output '" + output.Name() + "' -");
    const std::string bytes = broadcast.Bytes();
    tool.Feed(bytes.substr(0, bytes.size() / 2));
    EXPECT_TRUE(Soon([&] { return ReadFile(output.Name()).find("\"interim\"") != std::string::npos; }));
    std::filesystem::rename(output.Name(), moved);
    tool.Signal(SIGHUP);
    tool.Feed(bytes.substr(bytes.size() / 2));
    EXPECT_EQ(tool.Finish(), 0);
    const std::string first = ReadFile(moved), second = ReadFile(output.Name());
    std::remove(moved.c_str());
    EXPECT_EQ(first.find("{"), 0u) << "it took the place of what was there";
    EXPECT_EQ(LastLine(second)["type"], "summary");
    EXPECT_EQ(Lines(first + second).size(), Lines(Inspect("--json --every 1 -", bytes).out).size())
        << "nothing is lost";
    EXPECT_EQ(Inspect("--output /nowhere/x pcap/gpac-a6-protected.pcap").status, 2);
    EXPECT_EQ(Inspect("--output '" + output.Name() + "' '" + output.Name() + "'").status, 2) << "it is an input";
}

/// Whatever names the broadcast has, each line is one that the format has, and no series is there twice.
TEST(Watch, MetricsAreWellFormed)
{
    SBroadcast broadcast;
    broadcast.services = With(broadcast.services, "NEWS", "a&quot;b\\&#10;}");
    broadcast.services += With(broadcast.services, "minorChannelNo=\"1\"", "minorChannelNo=\"2\"");
    const CTemporary metrics, certificates(CCapture(1).AddLls(ReadFile(DataFile("lls/openssl-cdt.bin"))).Bytes());
    Inspect("--metrics '" + metrics.Name() + "' - pcap/gpac-a2-multi-service.pcap '" + certificates.Name() + "'",
            broadcast.Bytes());
    const std::string text = ReadFile(metrics.Name());
    const std::regex line(
        "# (TYPE|UNIT|HELP) vyr_atsc30_[a-z_]+ .+|vyr_atsc30_[a-z_]+"
        "(\\{[a-z_]+=\"([^\"\\\\\n]|\\\\[\\\\\"n])*\"(,[a-z_]+=\"([^\"\\\\\n]|\\\\[\\\\\"n])*\")*\\})? -?[0-9.e+]+|# "
        "EOF");
    std::set<std::string> series;
    std::istringstream stream(text);
    for (std::string one; std::getline(stream, one);) {
        EXPECT_TRUE(std::regex_match(one, line)) << one;
        EXPECT_TRUE(one[0] == '#' || series.insert(one.substr(0, one.rfind(' '))).second) << one;
    }
    EXPECT_EQ(text.substr(text.size() - 6), "# EOF\n");
    EXPECT_NE(text.find("vyr_atsc30_services{input=\"pcap/gpac-a2-multi-service.pcap\",verdict=\"plays\"} 3\n"),
              std::string::npos)
        << text;
    EXPECT_TRUE(std::regex_search(text, std::regex("left_days\\{[^\n]*number=\"2\",subject=[^\n]*SMT[^\n]*\\} 309\\.")))
        << text;
    EXPECT_NE(text.find("session=\"239.255.7.1:30100\",source=\"192.0.2.10\",tsi=\"10\",state=\"whole\"} 4\n"),
              std::string::npos);
}

/// Packets that come late are missing for a while; a counter never gets less.
TEST(Watch, TheCounterOfLostPacketsNeverGetsLess)
{
    CCapture capture(1);
    for (unsigned second = 0; second < 10; ++second) {
        for (unsigned number = 1; number <= 10; ++number) {
            // Of the fifth second, they come in the sixth; two of the first never do.
            const unsigned sequence = second * 10 + number;
            if (second == 5) {
                capture.At(5000000 + number * 1000).AddSession(Mmtp({sequence - 10, 0, 100, 0, 0}, "x"), 7000);
            }
            if (second != 4 && (second != 0 || number != 5)) {
                capture.At(second * 1000000 + 500000 + number * 1000)
                    .AddSession(Mmtp({sequence, 0, 100, 0, 0}, "x"), 7000);
            }
        }
    }
    const CTemporary input(capture.Bytes()), written;
    Inspect("--mmtp 239.255.7.1:7000 --every 1 --output /dev/null --metrics /dev/stdout '" + input.Name() +
            "' | cat > '" + written.Name() + "'; true");
    const std::string pages = ReadFile(written.Name());
    const std::regex line("\nvyr_atsc30_session_packets_lost_total\\{[^\n]*\\} ([0-9]+)");
    std::string lost;
    for (std::sregex_iterator at(pages.begin(), pages.end(), line), end; at != end; ++at) {
        lost += (*at)[1].str() + ' ';
    }
    EXPECT_EQ(lost, "0 0 0 0 0 0 1 1 1 1 ");
}

/// docs/metrics.md has the table of the code.
TEST(Watch, MetricsAreDocumented)
{
    const std::string name = TreeFile("docs/metrics.md");
    const std::string text =
        "# Metrics\n\n`--metrics FILE` writes these in the text format of OpenMetrics 1.0, at the end of the run and, "
        "with "
        "`--every`, on the way; the file takes the place of the last one at once. Values count from the begin of the "
        "run. "
        "Texts of labels that come from the broadcast are printable, of up to 128 bytes; an empty one says that there "
        "is "
        "none. Series of a kind are bounded (256 services, sessions and places of signalling, 1,024 flows, 64 "
        "certificates).\n\n| name | type | unit | labels | what it is |\n|---|---|---|---|---|\n" +
        vyr::inspect::CMetricsReport::Documentation();
    if (std::getenv("VYR_RECORD") != nullptr) {
        std::ofstream(name) << text;
    }
    EXPECT_EQ(ReadFile(name), text);
}

/// A day of a broadcast whose signalling and guide of services change all the time, reported on every ten minutes.
TEST(Watch, ADayTakesNoMoreMemoryThanAnHour)
{
    const CTemporary page, metrics;
    // With a sanitizer, what is freed goes at once, as it does without.
    setenv("ASAN_OPTIONS", "quarantine_size_mb=0:thread_local_quarantine_size_kb=0", 1);
    CFed tool("--json --every 600 --html '" + page.Name() + "' --metrics '" + metrics.Name() + "' - > /dev/null");
    unsetenv("ASAN_OPTIONS");
    SBroadcast broadcast;
    unsigned long hour = 0;
    for (unsigned minute = 0; minute < 24 * 60; ++minute) {
        broadcast.systemTime = "<SystemTime currentUtcOffset=\"37\" utcLocalOffset=\"-PT5H\" dsStatus=\"" +
                               std::string(minute % 2 != 0 ? "true" : "false") + "\"/>";
        broadcast.mpd = With(broadcast.mpd, "id=\"p", "id=\"p" + std::string(1, static_cast<char>('a' + minute % 26)));
        broadcast.mpd = broadcast.mpd.size() > 2000 ? SBroadcast().mpd : broadcast.mpd;
        CCapture capture(1);
        const std::size_t header = minute == 0 ? 0 : CCapture(1).Bytes().size();
        broadcast.Round(capture, minute * 60);
        tool.Feed(capture.Bytes().substr(header));
        if (minute == 180) {
            EXPECT_TRUE(Soon([&] { return Reports(metrics.Name()) >= 16; }));
            hour = tool.Memory();
        }
    }
    EXPECT_TRUE(Soon([&] { return Reports(metrics.Name()) >= 141; }));
    EXPECT_LT(tool.Memory(), hour + 8192) << "kB, of " << hour;
    tool.Finish();
}
