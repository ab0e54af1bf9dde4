#include "Options.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <filesystem>
#include <iostream>
#include <memory>
#include <system_error>

#include "ExitStatus.h"
#include "base/Text.h"
#include "common/Version.h"

namespace vyr::inspect {

namespace {

constexpr char k_footer[] =
    "Exit status: 0 all input is fine, 1 the input has errors (or what --fail-on says), 2 the tool could not do its "
    "work.\n"
    "\n"
    "Examples:\n"
    "  vyr-atsc30-inspect capture.pcapng\n"
    "  vyr-atsc30-inspect --json capture.pcap | jq 'select(.type == \"service\")'\n"
    "  vyr-atsc30-inspect --join eth1";

template <typename TNumber>
bool ReadNumber(const std::string& text, TNumber& number)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

std::set<std::pair<std::uint32_t, std::uint16_t>> ReadEndpoints(const char* option,
                                                                const std::vector<std::string>& texts)
{
    std::set<std::pair<std::uint32_t, std::uint16_t>> endpoints;
    for (const std::string& text : texts) {
        const auto endpoint = ReadEndpoint(text);
        if (!endpoint) {
            throw CLI::ValidationError(option, "'" + text + "' is not ADDRESS:PORT");
        }
        endpoints.insert(*endpoint);
    }
    return endpoints;
}

ELogPriority ReadLevel(const std::string& text)
{
    const std::map<std::string, ELogPriority> levels = {{"debug", LOG_PRIORITY_DEBUG},
                                                        {"info", LOG_PRIORITY_INFO},
                                                        {"error", LOG_PRIORITY_ERROR},
                                                        {"silent", LOG_PRIORITY_SILENT}};
    const auto level = levels.find(text);
    if (level == levels.end()) {
        throw CLI::ValidationError("--log", "'" + text + "' is not debug, info, error or silent");
    }
    return level->second;
}

std::pair<std::string, int> ReadSetting(const std::string& text)
{
    const std::size_t equals = text.find('=');
    int value = 0;
    if (equals == std::string::npos || equals == 0 || !ReadNumber(text.substr(equals + 1), value)) {
        throw CLI::ValidationError("--set", "'" + text + "' is not KEY=NUMBER");
    }
    return {text.substr(0, equals), value};
}

ERule ReadRule(const char* option, const std::string& name)
{
    const std::optional<ERule> rule = FindRule(name);
    if (!rule) {
        throw CLI::ValidationError(option, "'" + name + "' is no rule; --rules lists them");
    }
    return *rule;
}

ESeverity ReadSeverity(const char* option, const std::string& name)
{
    const std::optional<ESeverity> severity = FindSeverity(name);
    if (!severity) {
        throw CLI::ValidationError(option, "'" + name + "' is not error, warning or note");
    }
    return *severity;
}

void ReadChoices(const std::vector<std::string>& tables, const std::vector<std::string>& sessions, SChoices& choices)
{
    for (const std::string& text : tables) {
        const std::optional<unsigned> id = FindTable(text);
        if (!id) {
            throw CLI::ValidationError("--table", "'" + text + "' is no LLS table");
        }
        choices.tables[*id] = text;
    }
    for (const auto& [address, port] : ReadEndpoints("--session", sessions)) {
        choices.sessions.insert(EndpointText(address, port));
    }
}

/// Of no text, none.
std::optional<CWindow::SBound> ReadTime(const char* option, const std::string& text)
{
    const std::optional<CWindow::SBound> bound = CWindow::Read(text);
    if (!bound && !text.empty()) {
        throw CLI::ValidationError(option, "'" + text + "' is neither a time nor +SECONDS");
    }
    return bound;
}

std::uint64_t ReadSize(const char* option, std::string text)
{
    std::uint64_t size = 0;
    const std::string given = text;
    if (given.find('-') != std::string::npos || !CLI::AsSizeValue(false)(text).empty() || !ReadNumber(text, size)) {
        throw CLI::ValidationError(option, "'" + given + "' is no number of bytes");
    }
    return size;
}

/// `changes` are RULE=LEVEL.
CSeverities ReadSeverities(const std::vector<std::string>& changes, const std::vector<std::string>& ignored)
{
    CSeverities severities;
    for (const std::string& change : changes) {
        const std::size_t equals = std::min(change.find('='), change.size());
        const ERule rule = ReadRule("--severity", change.substr(0, equals));
        severities.Set(rule, ReadSeverity("--severity", change.substr(std::min(equals + 1, change.size()))));
    }
    for (const std::string& name : ignored) {
        severities.Ignore(ReadRule("--ignore", name));
    }
    return severities;
}

/// The arguments as a shell takes them.
std::string CommandLine(int argc, const char* const* argv)
{
    constexpr char k_plain[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_./:=,+@%";
    std::string line = "vyr-atsc30-inspect";
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const bool plain = !argument.empty() && argument.find_first_not_of(k_plain) == std::string::npos;
        line += plain ? ' ' + argument : " '";
        for (std::size_t at = 0; !plain && at < argument.size(); ++at) {
            line += argument[at] == '\'' ? std::string("'\\''") : std::string(1, argument[at]);
        }
        line += plain ? "" : "'";
    }
    return line;
}

constexpr std::uint16_t k_llsPort = 4937;

/// "ADDRESS%IF", or "IF".
void ReadJoin(const std::string& text, SOptions& options)
{
    const std::size_t percent = text.find('%');
    if (text.empty()) {
        return;
    }
    options.live.join = true;
    options.live.interface = text.substr(percent == std::string::npos ? 0 : percent + 1);
    const std::optional<std::uint32_t> address =
        percent != std::string::npos ? ReadIpv4(text.substr(0, percent)) : std::nullopt;
    if (options.live.interface.empty() || (percent != std::string::npos && !address)) {
        throw CLI::ValidationError("--join", "'" + text + "' is not [ADDRESS%]IF");
    }
    if (address) {
        options.llsStreams.insert({*address, k_llsPort});
        options.inputs = {Ipv4Text(*address) + '%' + options.live.interface};
    }
}

/// What the report calls the network, and where the LLS is when nothing else is said.
void NameLive(SOptions& options)
{
    if (options.llsStreams.empty()) {
        options.llsStreams.insert({0xE000173C, k_llsPort});
    }
    if (!options.live.interface.empty() && options.inputs.empty()) {
        const std::string group = options.live.join ? Ipv4Text(options.llsStreams.begin()->first) + '%' : std::string();
        options.inputs = {group + options.live.interface};
    }
}

/// What is written must not take the place of what is read.
void CheckFiles(const SOptions& options)
{
    std::vector<std::string> inputs = options.inputs;
    std::replace(inputs.begin(), inputs.end(), std::string("-"), std::string("/dev/stdin"));
    inputs.insert(inputs.end(), {options.genres, options.trust, options.baseline});
    for (const auto& [option, name] :
         {std::pair("--html", options.html), {"--metrics", options.metrics}, {"--output", options.output}}) {
        for (const std::string& input : inputs) {
            std::error_code none;
            if (!name.empty() && std::filesystem::is_regular_file(name, none) &&
                std::filesystem::equivalent(name, input, none)) {
                throw CLI::ValidationError(option, "'" + name + "' is an input");
            }
        }
    }
}

/// INPUT is required unless another option takes its place, which the library has no words for.
class CFormatter : public CLI::Formatter {
  public:
    std::string make_usage(const CLI::App*, std::string) const override
    {
        return "Usage: vyr-atsc30-inspect [OPTIONS] INPUT...\n"
               "       vyr-atsc30-inspect [OPTIONS] --interface IF\n"
               "       vyr-atsc30-inspect [OPTIONS] --join [ADDRESS%]IF\n";
    }
};

}  // namespace

bool ReadOptions(int argc, const char* const* argv, SOptions& options, int* exitStatus)
{
    constexpr char k_choosing[] = "Choosing";
    options.commandLine = CommandLine(argc, argv);
    CLI::App app("Shows the ATSC 3.0 signalling in packet captures, raw files and networks.", "vyr-atsc30-inspect");
    app.formatter(std::make_shared<CFormatter>());
    app.footer(k_footer);
#if CLI11_VERSION_MAJOR * 100 + CLI11_VERSION_MINOR >= 206
    app.get_formatter()->enable_footer_formatting(false);  // the examples are lines of their own
#endif
    app.set_help_flag("-h,--help", "Show this help and end");
    app.set_version_flag(
        "--version",
        std::string("vyr-atsc30-inspect " VYR_INSPECT_VERSION "\nlibvyr-atsc30-parser ") + GetLibraryVersion(),
        "Show the versions of the tool and of the library and end");
    std::string joined;
    std::vector<std::string> streams;
    std::vector<std::string> routeSessions;
    std::vector<std::string> mmtpSessions;
    std::vector<std::string> tables;
    std::vector<std::string> sessions;
    std::string from;
    std::string until;
    std::vector<std::string> settings;
    std::vector<std::string> ignored;
    std::vector<std::string> severities;
    std::string extractLimit = "1G";
    std::string failOn = SeverityName(options.failOn);
    bool rules = false;
    bool progress = false;
    bool noProgress = false;
    CLI::Option* const input = app.add_option(
        "INPUT", options.inputs,
        "pcap or pcapng capture, raw LLS table, ROUTE signalling, raw MMT message, service guide, or - for "
        "standard input");
    input->type_name("");
    constexpr char k_liveGroup[] = "Live input";
    CLI::Option* const interface = app.add_option("--interface", options.live.interface,
                                                  "Capture on it, in place of reading INPUT; needs privileges");
    interface->type_name("IF")->group(k_liveGroup);
    CLI::Option* const join = app.add_option("--join", joined,
                                             "Join the LLS group (ADDRESS in place of 224.0.23.60), and those of the "
                                             "sessions that signalling names; needs no privileges");
    join->type_name("[ADDRESS%]IF")->group(k_liveGroup);
    app.add_option("--filter", options.live.filter, "Capture only what passes the filter of libpcap as well")
        ->type_name("EXPR")
        ->needs(interface)
        ->group(k_liveGroup);
    CLI::Option* const duration = app.add_option("--duration", options.live.seconds, "End after that time");
    duration->type_name("SECONDS")->check(CLI::PositiveNumber.description(""))->group(k_liveGroup);
    CLI::Option* const packets =
        app.add_option("--packets", options.live.packets, "End after as many packets; with --join, datagrams");
    packets->type_name("N")->check(CLI::PositiveNumber.description(""))->group(k_liveGroup);
    constexpr char k_report[] = "Report";
    constexpr char k_judging[] = "Judging";
    app.add_flag("--json", options.json, "Write one JSON object per line in place of text")->group(k_report);
    app.add_option("--output", options.output, "Write the report to a file in place of standard output")
        ->type_name("FILE")
        ->group(k_report);
    app.add_option("--html", options.html, "Write the whole report as one HTML page as well")
        ->type_name("FILE")
        ->group(k_report);
    app.add_option("--metrics", options.metrics, "Write OpenMetrics as well")->type_name("FILE")->group(k_report);
    CLI::Option* const every = app.add_option(
        "--every", options.every, "Report on the way, too, as often in the input's time; write pages and metrics anew");
    every->type_name("SECONDS")->group(k_report)->check(CLI::Range(1.0, 86400.0).description(""));
    CLI::Option* const baseline =
        app.add_option("--baseline", options.baseline, "Report only what differs from an earlier report in JSON");
    baseline->type_name("FILE")->group(k_report);
    CLI::Option* const extract = app.add_option("--extract", options.extract,
                                                "Write out what is new or has changed, as it was sent and inflated")
                                     ->type_name("DIR")
                                     ->group("Files");
    app.add_flag("--files", options.files, "Write out the files of all LCT sessions that are not streaming, too")
        ->needs(extract)
        ->group("Files");
    app.add_option("--extract-limit", extractLimit, "Most bytes to write out (1G); k, M, G are 1024 times more")
        ->type_name("BYTES")
        ->needs(extract)
        ->group("Files");
    app.add_flag("--local-time", options.localTime, "Show the guide's times in the machine's time zone, not in UTC")
        ->group(k_report);
    app.add_option("--genres", options.genres, "Classification scheme with the names of the guide's genres")
        ->type_name("FILE")
        ->group(k_report);
    app.add_option("--trust", options.trust, "Certificates (PEM) that those of the broadcast are to lead to")
        ->type_name("FILE")
        ->group(k_judging);
    constexpr char k_receiver[] = "Receiver";
    const auto addEach = [&app](const char* option, const char* type, std::vector<std::string>& texts,
                                const char* about, const char* group) {
        app.add_option(option, texts, about)
            ->type_name(type)
            ->expected(1)
            ->allow_extra_args(false)
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
            ->group(group);
    };
    constexpr char k_endpoint[] = "ADDRESS:PORT";
    addEach("--lls", k_endpoint, streams, "LLS stream to read in place of 224.0.23.60:4937; may be repeated",
            k_receiver);
    addEach("--route", k_endpoint, routeSessions,
            "ROUTE session to follow though no service list announces it; may be repeated", k_receiver);
    addEach("--mmtp", k_endpoint, mmtpSessions,
            "MMTP session to follow though no service list announces it; may be repeated", k_receiver);
    app.add_flag("--strict", options.strict,
                 "Drop services that leave out protected, hidden or broadbandAccessRequired")
        ->group(k_receiver);
    addEach("--set", "KEY=VALUE", settings, "Receiver setting that the library asks for; may be repeated", k_receiver);
    addEach("--service", "ID|CHANNEL|NAME", options.choices.services,
            "Tell of that service alone (0x7D1, 7.1, NEWS); may be repeated, as those that follow", k_choosing);
    addEach("--table", "NAME|ID", tables, "Tell of LLS tables of that kind (SLT, AEAT, 0xFE)", k_choosing);
    addEach("--session", k_endpoint, sessions, "Tell of what is sent there", k_choosing);
    app.add_option("--from", from, "Look at packets from then on (2026-11-22T10:00:00Z, or +12.5 seconds)")
        ->type_name("TIME")
        ->group(k_choosing);
    app.add_option("--until", until, "Look at packets before then")->type_name("TIME")->group(k_choosing);
    addEach("--ignore", "RULE", ignored, "Say nothing of what breaks the rule; may be repeated", k_judging);
    addEach("--severity", "RULE=LEVEL", severities, "Make it an error, a warning or a note; may be repeated",
            k_judging);
    app.add_option("--fail-on", failOn, "Exit with status 1 from that level on: error (default), warning or note")
        ->type_name("LEVEL")
        ->group(k_judging);
    app.add_option("--max-interval", options.rules.longestInterval,
                   "Longest time between two service lists of a group, or two rounds of signalling, that is no warning "
                   "(5)")
        ->type_name("SECONDS")
        ->check(CLI::PositiveNumber.description(""))
        ->group(k_judging);
    app.add_flag("--rules", rules, "List the rules that a broadcast is judged by and end")->group(k_judging);
    std::string log = "silent";
    app.add_option("--log", log, "Library messages to show on stderr: debug, info, error, silent (default)")
        ->type_name("LEVEL")
        ->group(k_receiver);
    app.add_flag("--no-limit", options.noLimit,
                 "Write everything, however long the report becomes for what was received")
        ->group(k_report);
    app.add_flag("--full", options.full, "Show what changed whole, besides what changed of it")->group(k_report);
    app.add_flag("-q,--quiet", options.quiet, "Report errors and warnings only, and show no progress")->group(k_report);
    app.add_flag("--progress", progress, "Show progress even when stderr is not a terminal")->group(k_report);
    app.add_flag("--no-progress", noProgress, "Show no progress")->group(k_report);
    try {
        app.parse(argc, argv);
        options.log = ReadLevel(log);
        const std::size_t ways = (input->count() != 0 ? 1u : 0u) + interface->count() + join->count();
        if (ways == 0 && !rules) {
            throw CLI::RequiredError("INPUT");
        }
        if (ways > 1) {
            throw CLI::ValidationError("only one of INPUT, --interface and --join can be given");
        }
        if (input->count() != 0 && duration->count() + packets->count() != 0) {
            throw CLI::ValidationError("--duration and --packets need --interface or --join");
        }
        if (interface->count() + join->count() != 0 && options.live.interface.empty() && joined.empty()) {
            throw CLI::ValidationError(interface->count() != 0 ? "--interface" : "--join", "'' is no interface");
        }
        if (every->count() != 0 && baseline->count() != 0) {
            throw CLI::ValidationError("--every and --baseline cannot be given together");
        }
        CheckFiles(options);
        options.llsStreams = ReadEndpoints("--lls", streams);
        ReadJoin(joined, options);
        options.routeSessions = ReadEndpoints("--route", routeSessions);
        options.mmtpSessions = ReadEndpoints("--mmtp", mmtpSessions);
        for (const std::string& text : settings) {
            const auto [key, value] = ReadSetting(text);
            options.settings[key] = value;
        }
        options.severities = ReadSeverities(severities, ignored);
        options.failOn = ReadSeverity("--fail-on", failOn);
        ReadChoices(tables, sessions, options.choices);
        options.from = ReadTime("--from", from);
        options.until = ReadTime("--until", until);
        options.extractLimit = ReadSize("--extract-limit", extractLimit);
    } catch (const CLI::ParseError& error) {
        *exitStatus = app.exit(error, std::cout, std::cerr) == 0 ? EXIT_FINE : EXIT_FAILED;
        return false;
    }
    if (rules) {
        std::cout << RulesText(options.severities);
        *exitStatus = EXIT_FINE;
        return false;
    }
    NameLive(options);
    options.progress = !options.quiet && !noProgress && (progress || isatty(STDERR_FILENO) != 0);
    return true;
}

}  // namespace vyr::inspect
