#include "Names.h"

namespace vyr::inspect {

const char* TableName(unsigned tableId)
{
    switch (tableId) {
        case 1:
            return "SLT";
        case 2:
            return "RRT";
        case 3:
            return "SystemTime";
        case 4:
            return "AEAT";
        case 5:
            return "OnscreenMessageNotification";
        case 6:
            return "CertificationData";
        case 0xFE:
            return "SignedMultiTable";
        case 0xFF:
            return "UserDefined";
        default:
            return nullptr;
    }
}

const char* ServiceCategoryName(int category)
{
    constexpr const char* k_names[] = {nullptr, "linear A/V", "linear audio", "application", "ESG", "EAS", "DRM data"};
    return category >= 0 && category <= 6 ? k_names[category] : nullptr;
}

const char* ProtocolName(int protocol)
{
    constexpr const char* k_names[] = {nullptr, "ROUTE", "MMTP"};
    return protocol >= 0 && protocol <= 2 ? k_names[protocol] : nullptr;
}

const char* UrlTypeName(int urlType)
{
    constexpr const char* k_names[] = {nullptr, "signaling server", "ESG server", "usage data server",
                                       "dynamic event server"};
    return urlType >= 0 && urlType <= 4 ? k_names[urlType] : nullptr;
}

const char* AlertTypeName(int type)
{
    constexpr const char* k_names[] = {nullptr, "alert", "update", "cancel"};
    return type >= 0 && type <= 3 ? k_names[type] : nullptr;
}

const char* AudienceName(int audience)
{
    constexpr const char* k_names[] = {nullptr, "public", "restricted", "private"};
    return audience >= 0 && audience <= 3 ? k_names[audience] : nullptr;
}

const char* LocationTypeName(int type)
{
    constexpr const char* k_names[] = {nullptr, "FIPS", "SGC", "polygon", "circle"};
    return type >= 0 && type <= 4 ? k_names[type] : nullptr;
}

const char* DropAttribute(CParseSLT::EDropReason reason)
{
    switch (reason) {
        case CParseSLT::DROP_NO_PROTECTED:
            return "protected";
        case CParseSLT::DROP_NO_HIDDEN:
            return "hidden";
        case CParseSLT::DROP_NO_BROADBAND:
        case CParseSLT::DROP_BROADBAND_UNSUPPORTED:
            return "broadbandAccessRequired";
        case CParseSLT::DROP_MAJOR_CHANNEL:
            return "majorChannelNo";
        case CParseSLT::DROP_MINOR_CHANNEL:
            return "minorChannelNo";
        case CParseSLT::DROP_DUPLICATE:
            break;
    }
    return nullptr;
}

}  // namespace vyr::inspect
