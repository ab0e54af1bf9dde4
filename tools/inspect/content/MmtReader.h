#pragma once

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "base/Bytes.h"
#include "model/Finding.h"
#include "model/OptionalContent.h"

namespace vyr::inspect {

/// What the library makes of an MMT signalling message.
struct SMessageOutcome {
    bool supported = false;
    COptionalContent content;
    std::string reason;  ///< why there is none
    std::vector<std::pair<ERule, std::string>> faults;
    std::set<unsigned> services;  ///< whose signalling it carries, where it says so
};

/// Hands a whole message to its parser and reads what it found.
SMessageOutcome ReadMessage(SView bytes);

}  // namespace vyr::inspect
