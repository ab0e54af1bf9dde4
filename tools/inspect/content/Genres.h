#pragma once

#include <string>

namespace vyr::inspect {

/// Reads the names of the genres from a file, for the whole run. False: it is no classification scheme.
bool ReadGenres(const std::string& name);

}  // namespace vyr::inspect
