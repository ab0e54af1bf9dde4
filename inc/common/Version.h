#pragma once

#include "../platform/Api.h"

/// Version of the library that is running, such as "1.0.0"; a static string.
VYR_API const char* GetLibraryVersion();
