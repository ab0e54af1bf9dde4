#include "support/Places.h"

std::string TreeFile(const std::string& name)
{
    return VYR_TREE "/" + name;
}

std::string DataFile(const std::string& name)
{
    return TreeFile("tests/data/" + name);
}

std::string BuiltFile(const std::string& name)
{
    return VYR_BUILD "/" + name;
}

#ifdef VYR_INSPECT
const char* const k_inspect = VYR_INSPECT;
const char* const k_makeBroadcast = VYR_MAKE_BROADCAST;
#endif
const char* const k_emulator = VYR_EMULATOR;
