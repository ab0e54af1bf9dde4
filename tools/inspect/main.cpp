#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <exception>
#include <memory>

#include "Inspector.h"
#include "Options.h"
#include "base/Limits.h"
#include "base/Text.h"
#include "extract/Extract.h"
#include "report/HtmlReport.h"
#include "report/JsonReport.h"
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
void WatchSignals()
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
}

/// Seconds since 1970: of SOURCE_DATE_EPOCH, so that the same run can give the same page, or of the clock.
std::int64_t ReportTime()
{
    const char* given = std::getenv("SOURCE_DATE_EPOCH");
    char* end = nullptr;
    const long long seconds = given != nullptr ? std::strtoll(given, &end, 10) : 0;
    return end != nullptr && end != given && *end == '\0' ? seconds : static_cast<std::int64_t>(std::time(nullptr));
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
    COutputFile file(options.html);
    if (file.Error() != 0) {
        return Failed(options.html, file.Error());
    }
    WatchSignals();
    CProgress progress(options.progress);
    COutput output(progress);
    CTextReport text(output, options.localTime, options.full);
    CJsonReport json(output, options.full);
    IReportWriter& writer = options.json ? static_cast<IReportWriter&>(json) : text;
    const bool paged = !options.html.empty();
    CHtmlReport page(options.localTime, {options.commandLine, ReportTime()});
    if (paged || !options.extract.empty()) {
        output.SetOptional();
    }
    CReport report(writer, options.quiet, paged ? &page : nullptr, options.severities);
    report.SetChoice(options.choices);
    const std::unique_ptr<CExtract> extract =
        options.extract.empty() ? nullptr : std::make_unique<CExtract>(report, options.extract, options.extractLimit);
    CInspector inspector(options, report, output, progress);
    exitStatus = inspector.Run();
    for (const std::string& choice : report.Choice().Unmatched()) {
        std::fprintf(stderr, "vyr-atsc30-inspect: %s: nothing of it came\n", Printable(choice).c_str());
    }
    if (paged) {
        file.Write(page.Page());
    }
    if (file.Error() != 0) {
        exitStatus = Failed(options.html, file.Error());
    }
    if (extract && extract->Error() != 0) {
        exitStatus = Failed(options.extract, extract->Error());
    }
    if (output.Error() != 0 && output.Error() != EPIPE) {
        exitStatus = Failed("standard output", output.Error());
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
