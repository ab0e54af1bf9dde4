#pragma once

#include <nlohmann/json_fwd.hpp>

namespace vyr::inspect {

/// JSON with its fields in order. For headers that only name it: those who write it include Json.h.
using TJson = nlohmann::ordered_json;

}  // namespace vyr::inspect
