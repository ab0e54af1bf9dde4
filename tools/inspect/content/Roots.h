#pragma once

#include <string>

#include "base/Bytes.h"

namespace vyr::inspect {

/// Name of the root element with its prefix, as far as 64 bytes go; empty: the bytes do not begin as XML does.
std::string RootElement(SView text);

/// A document of the standards that is not read by itself.
struct SKnownDocument {
    std::string text;         ///< what it is and why it is not read; empty: it is none that is known
    bool signalling = false;  ///< an object of a service's signalling may be one
};

SKnownDocument KnownDocument(SView text);

}  // namespace vyr::inspect
