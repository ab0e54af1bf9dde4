#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>

#include "Inspector.h"
#include "JsonReport.h"
#include "Options.h"
#include "TextReport.h"

namespace {

using namespace vyr::inspect;

/// An interrupt ends the input, so that the summary still comes.
void WatchSignals()
{
    std::signal(SIGPIPE, SIG_IGN);
    struct sigaction action {};
    action.sa_handler = [](int) { CInput::Stop(); };
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

int Inspect(int argc, char** argv)
{
    SOptions options;
    int exitStatus = EXIT_FINE;
    if (!ReadOptions(argc, argv, options, &exitStatus)) {
        return exitStatus;
    }
    WatchSignals();
    CProgress progress(options.progress);
    COutput output(progress);
    CTextReport text(output, options.localTime);
    CJsonReport json(output);
    IReportWriter& writer = options.json ? static_cast<IReportWriter&>(json) : text;
    CReport report(writer, options.quiet);
    CInspector inspector(options, report, output, progress);
    exitStatus = inspector.Run();
    if (output.Error() != 0 && output.Error() != EPIPE) {
        std::fprintf(stderr, "vyr-atsc30-inspect: standard output: %s\n", std::strerror(output.Error()));
        return EXIT_FAILED;
    }
    return exitStatus;
}

}  // namespace

int main(int argc, char** argv)
{
    try {
        return Inspect(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vyr-atsc30-inspect: %s\n", error.what());
        return EXIT_FAILED;
    }
}
