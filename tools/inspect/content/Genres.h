#pragma once

#include <string>

namespace vyr::inspect {

/// Reads the names of the genres from a file of up to 8 MiB, for the whole run. What is wrong with it; empty: nothing.
std::string ReadGenres(const std::string& name);

}  // namespace vyr::inspect
