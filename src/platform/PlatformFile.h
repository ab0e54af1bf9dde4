#pragma once

#include <string>

namespace vyr {

/// Path of a file of the platform that the library names itself, below the folder of SetFileRoot.
std::string PlatformFile(const char* path);

}  // namespace vyr
