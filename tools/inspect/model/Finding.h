#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "model/Rule.h"
#include "model/Source.h"

namespace vyr::inspect {

/// A rule that the input does not keep, and where.
struct SFinding {
    ERule rule = ERule::INPUT_UNKNOWN;
    std::string message;
    SSource source;
    std::optional<SLlsHeader> header = std::nullopt;
    std::optional<unsigned> serviceId = std::nullopt;
    std::string attribute = {};
    std::string serviceList = {};          ///< as ServiceListName has it: of the service that is not signalled
    std::string session = {};              ///< "239.255.7.1:30100"; empty: of none, or of several
    std::string about = {};                ///< the session of one that does not weigh on its services
    std::uint64_t times = 1;               ///< as often as it is told of by this
    ESeverity severity = ESeverity::NOTE;  ///< what the run makes of the rule; CReport sets it
};

}  // namespace vyr::inspect
