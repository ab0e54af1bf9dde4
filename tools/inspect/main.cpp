#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <exception>
#include <memory>
#include <optional>
#include <vector>

#include "Inspector.h"
#include "Options.h"
#include "base/Limits.h"
#include "base/Text.h"
#include "extract/Extract.h"
#include "report/BaselineReport.h"
#include "report/HtmlReport.h"
#include "report/JsonReport.h"
#include "report/MetricsReport.h"
#include "report/TextReport.h"

namespace {

using namespace vyr::inspect;

/// Takes the numbers of standard streams that are closed, so that no file of ours gets one of them: what goes to
/// standard output would go there.
void OpenStandardStreams()
{
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (fcntl(stream, F_GETFD) == -1 && errno == EBADF && open("/dev/null", O_RDWR) != stream) {
            std::_Exit(EXIT_FAILED);
        }
    }
}

/// An interrupt ends the input, so that the summary still comes; a second one ends the program.
void WatchSignals(bool reopening)
{
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    struct sigaction action {};
    action.sa_handler = [](int) {
        CInput::Stop();
        std::signal(SIGINT, SIG_DFL);
        std::signal(SIGTERM, SIG_DFL);
    };
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    if (reopening) {
        action.sa_handler = [](int) { COutput::Reopen(); };
        action.sa_flags = SA_RESTART;
        sigaction(SIGHUP, &action, nullptr);
    }
}

/// Seconds since 1970, of SOURCE_DATE_EPOCH: so that the same run can give the same page.
std::optional<std::int64_t> ReportTime()
{
    const char* given = std::getenv("SOURCE_DATE_EPOCH");
    char* end = nullptr;
    const long long seconds = given != nullptr ? std::strtoll(given, &end, 10) : 0;
    return end != nullptr && end != given && *end == '\0' ? std::optional<std::int64_t>(seconds) : std::nullopt;
}

int Failed(const std::string& output, int error)
{
    std::fprintf(stderr, "vyr-atsc30-inspect: %s: %s\n", Printable(output).c_str(), std::strerror(error));
    return EXIT_FAILED;
}

int Inspect(int argc, char** argv)
{
    SOptions options;
    int exitStatus = EXIT_FINE;
    if (!ReadOptions(argc, argv, options, &exitStatus)) {
        return exitStatus;
    }
    LiftLimits(options.noLimit);
    COutputFile pageFile(options.html);
    COutputFile metricsFile(options.metrics);
    for (const COutputFile* file : {&pageFile, &metricsFile}) {
        if (file->Error() != 0) {
            return Failed(file->Name(), file->Error());
        }
    }
    const bool paged = !options.html.empty();
    const bool measured = !options.metrics.empty();
    WatchSignals(paged || measured || !options.output.empty());
    CProgress progress(options.progress);
    COutput output(progress, options.output);
    if (output.Error() != 0) {
        return Failed(options.output, output.Error());
    }
    if (paged || measured || !options.extract.empty()) {
        output.SetOptional();
    }
    CTextReport text(output, options.localTime, options.full);
    CJsonReport json(output, options.full);
    std::optional<CBaselineReport> compared;
    if (!options.baseline.empty()) {
        compared.emplace(output, options.baseline, options.json, options.failOn, options.choices.Options());
    }
    IReportWriter& writer = compared       ? static_cast<IReportWriter&>(*compared)
                            : options.json ? static_cast<IReportWriter&>(json)
                                           : text;
    CHtmlReport page(options.localTime,
                     {options.commandLine, ReportTime(), static_cast<unsigned>(std::ceil(options.every))});
    CMetricsReport metrics;
    std::vector<IReportWriter*> others;
    if (paged) {
        others.push_back(&page);
    }
    if (measured) {
        others.push_back(&metrics);
    }
    // What is compared is everything, however little of it is told.
    CReport report(writer, options.quiet && !compared, others, options.severities);
    report.SetChoice(options.choices);
    report.SetListener([&] {
        pageFile.Write(page.Page());
        metricsFile.Write(metrics.Page());
    });
    const std::unique_ptr<CExtract> extract =
        options.extract.empty() ? nullptr : std::make_unique<CExtract>(report, options.extract, options.extractLimit);
    CInspector inspector(options, report, output, progress);
    exitStatus = inspector.Run();
    for (const std::string& choice : report.Choice().Unmatched()) {
        std::fprintf(stderr, "vyr-atsc30-inspect: %s: nothing of it came\n", Printable(choice).c_str());
    }
    if (compared && exitStatus != EXIT_FAILED) {
        exitStatus = compared->Worse() ? EXIT_FINDINGS : EXIT_FINE;
    }
    for (const COutputFile* file : {&pageFile, &metricsFile}) {
        if (file->Error() != 0) {
            exitStatus = Failed(file->Name(), file->Error());
        }
    }
    if (extract && extract->Error() != 0) {
        exitStatus = Failed(options.extract, extract->Error());
    }
    if (output.Error() != 0 && output.Error() != EPIPE) {
        exitStatus = Failed(options.output.empty() ? "standard output" : options.output, output.Error());
    }
    return exitStatus;
}

}  // namespace

int main(int argc, char** argv)
{
    OpenStandardStreams();
    try {
        return Inspect(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vyr-atsc30-inspect: %s\n", error.what());
        return EXIT_FAILED;
    }
}
