#pragma once

#include <string>
#include <vector>

#include "base/Json.h"

namespace vyr::inspect {

/// What a table, document or message holds, ready for both forms of report.
struct SContent {
    std::string headline;  ///< "2 alerts"
    std::string text;      ///< indented lines
    TJson json = TJson::object();
    std::vector<std::string> faults;  ///< documents within that did not parse, and why
    bool whole = true;                ///< false: there is more in it that did not parse, or contradicts itself
};

}  // namespace vyr::inspect
