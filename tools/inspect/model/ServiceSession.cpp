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

SFinding SFollowed::Finding(ERule rule, const std::string& message, const SSource& source) const
{
    SFinding finding = {rule, name.empty() ? message : message + " (" + name + ')', source};
    if (services.size() == 1) {
        finding.serviceId = *services.begin();
    }
    finding.session = name;
    return finding;
}

}  // namespace vyr::inspect
