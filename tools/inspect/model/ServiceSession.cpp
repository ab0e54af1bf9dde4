#include "model/ServiceSession.h"

namespace vyr::inspect {

std::vector<unsigned> SFollowed::Shown() const
{
    constexpr std::size_t k_shownServices = 64;
    std::vector<unsigned> shown;
    for (auto service = services.begin(); service != services.end() && shown.size() < k_shownServices; ++service) {
        shown.push_back(*service);
    }
    return shown;
}

SFault SFollowed::Fault(EFault code, const std::string& message, const SSource& source) const
{
    SFault fault = {code, name.empty() ? message : message + " (" + name + ')', source};
    if (services.size() == 1) {
        fault.serviceId = *services.begin();
    }
    return fault;
}

}  // namespace vyr::inspect
