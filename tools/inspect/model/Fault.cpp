#include "model/Fault.h"

#include <iterator>

namespace vyr::inspect {

const char* FaultName(EFault code)
{
    static_assert(std::size(k_faultNames) == static_cast<std::size_t>(EFault::GUIDE_TOO_LARGE) + 1);
    return k_faultNames[static_cast<std::size_t>(code)];
}

bool IsInputFault(EFault code)
{
    return code <= EFault::INPUT_TOO_LARGE;
}

}  // namespace vyr::inspect
