#include "model/Items.h"

#include "base/Text.h"
#include "model/Guide.h"

namespace vyr::inspect {

std::string SessionOf(const SSltService& service)
{
    constexpr std::uint32_t k_noAddress = 0xFFFFFFFF;
    const bool usable = service.hasBroadcastSvcSignaling && service.slsDestinationIpAddress != 0 &&
                        service.slsDestinationIpAddress != k_noAddress && service.slsDestinationUdpPort > 0 &&
                        service.slsDestinationUdpPort <= 0xFFFF;
    return usable ? EndpointText(service.slsDestinationIpAddress, static_cast<unsigned>(service.slsDestinationUdpPort))
                  : std::string();
}

const char* DocumentName(ESlsDocument kind)
{
    constexpr const char* k_names[] = {"BundleDescriptionROUTE", "S-TSID", "EFDT", "MPD",
                                       "ApplicationList",        "HELD",   "RSAT"};
    return k_names[static_cast<std::size_t>(kind)];
}

const char* DocumentStatusName(EDocumentStatus status)
{
    constexpr const char* k_names[] = {"new", "changed", "unchanged"};
    return k_names[static_cast<std::size_t>(status)];
}

const char* GuideObjectName(EGuideObject kind)
{
    constexpr const char* k_names[] = {"SGDU", "ServiceGuideDeliveryDescriptor", "SGResponse", "fragment"};
    return k_names[static_cast<std::size_t>(kind)];
}

std::string ServiceListName(const std::string& stream, unsigned groupId)
{
    return (stream.empty() ? std::string() : stream + ' ') + "group " + std::to_string(groupId);
}

}  // namespace vyr::inspect
