#pragma once

#include <list>
#include <string>

/// What the broadcast and the unicast application service of a delivery method hold alike: base patterns
/// that the locations of the service's content begin with (ATSC A/331 table 7.1).
struct SAppSvc {
    std::list<std::string> basePatterns;  ///< in document order
};
