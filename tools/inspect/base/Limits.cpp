#include "base/Limits.h"

namespace vyr::inspect {

namespace {

bool g_lifted = false;

}  // namespace

std::size_t Limit(std::size_t number)
{
    return g_lifted ? static_cast<std::size_t>(-1) : number;
}

std::size_t MostEntries()
{
    constexpr std::size_t k_mostEntries = 1000;
    return Limit(k_mostEntries);
}

std::size_t MostChanges()
{
    constexpr std::size_t k_mostChanges = 100;
    return Limit(k_mostChanges);
}

void LiftLimits(bool lift)
{
    g_lifted = lift;
}

}  // namespace vyr::inspect
