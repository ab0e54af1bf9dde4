#pragma once

#include "../platform/Api.h"

/// Version of the library that is running, such as "0.3.0"; a static string.
VYR_API const char* GetLibraryVersion();
