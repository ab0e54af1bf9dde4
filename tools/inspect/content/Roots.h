#pragma once

#include <string>

#include "base/Bytes.h"

namespace vyr::inspect {

/// Name of the root element with its prefix, as far as 64 bytes go; empty: the bytes do not begin as XML does.
std::string RootElement(SView text);

}  // namespace vyr::inspect
