#include "model/Items.h"

#include "model/Guide.h"

namespace vyr::inspect {

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
