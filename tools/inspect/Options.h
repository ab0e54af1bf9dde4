#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "judge/Rules.h"
#include "model/Choice.h"
#include "model/Rule.h"
#include "platform/Platform.h"

namespace vyr::inspect {

/// A network to be read in place of files.
struct SLiveOptions {
    std::string interface;  ///< empty: none
    bool join = false;      ///< receive groups, and do not capture
    std::string filter;     ///< of libpcap; empty: none
    std::optional<double> seconds;
    std::optional<std::uint64_t> packets;  ///< datagrams, of groups
};

struct SOptions {
    std::vector<std::string> inputs;  ///< files, or the name of what is live
    SLiveOptions live;
    std::set<std::pair<std::uint32_t, std::uint16_t>> llsStreams;     ///< address and port
    std::set<std::pair<std::uint32_t, std::uint16_t>> routeSessions;  ///< to follow besides the announced ones
    std::set<std::pair<std::uint32_t, std::uint16_t>> mmtpSessions;   ///< the same
    std::string commandLine;                                          ///< with quotes where a shell needs them
    std::string html;                                                 ///< file to write the page to; empty: none
    std::string metrics;                                              ///< file of the metrics; empty: none
    std::string output;                                               ///< in place of standard output; empty: that
    std::string baseline;                                             ///< report to compare with; empty: none
    double every = 0;                                                 ///< seconds from report to report; 0: at the end
    std::string extract;                                              ///< folder to write out to; empty: none
    std::uint64_t extractLimit = 0;                                   ///< bytes
    bool files = false;                                               ///< write out those of other LCT sessions, too
    std::map<std::string, int> settings;
    ELogPriority log = LOG_PRIORITY_SILENT;
    bool strict = false;
    bool json = false;
    bool localTime = false;
    std::string genres;  ///< file of the genre names; empty: the library's own
    std::string trust;   ///< file of the certificates that are trusted; empty: none are
    bool quiet = false;
    bool noLimit = false;
    bool full = false;
    SChoices choices;
    std::optional<CWindow::SBound> from;
    std::optional<CWindow::SBound> until;
    CSeverities severities;
    SRuleSettings rules;
    ESeverity failOn = ESeverity::ERROR;
    bool progress = false;
};

/// Reads the command line. False: all is said (help, version, or what is wrong with it), and the
/// program ends with `*exitStatus`.
bool ReadOptions(int argc, const char* const* argv, SOptions& options, int* exitStatus);

}  // namespace vyr::inspect
