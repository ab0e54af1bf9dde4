#include "common/Version.h"

const char* GetLibraryVersion()
{
    return VYR_VERSION;
}
