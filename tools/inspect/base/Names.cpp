#include "base/Names.h"

#include <cstdio>

namespace vyr::inspect {

const char* TableName(unsigned tableId)
{
    constexpr const char* k_names[] = {
        nullptr, "SLT", "RRT", "SystemTime", "AEAT", "OnscreenMessageNotification", "CertificationData"};
    if (tableId <= 6) {
        return k_names[tableId];
    }
    return tableId == 0xFE ? "SignedMultiTable" : tableId == 0xFF ? "UserDefined" : nullptr;
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

const char* PayloadFormatName(long long formatId)
{
    constexpr const char* k_names[] = {nullptr, "file", "entity", "unsigned package", "signed package"};
    return formatId >= 0 && formatId <= 4 ? k_names[formatId] : nullptr;
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

const char* MessageName(unsigned messageId)
{
    constexpr const char* k_names[] = {"CRI", "DCI", "SSWR",         "AL-FEC", "HRBM", "MC",   "AC", "AF",
                                       "RQF", "ADC", "HRBM removal", "LS",     "LR",   "NAMF", "LDC"};
    if (messageId == 0) {
        return "PA";
    }
    if (messageId <= 0x0020) {
        return messageId <= 0x0010 ? "MPI" : "MPT";
    }
    if (messageId >= 0x0200 && messageId <= 0x020E) {
        return k_names[messageId - 0x0200];
    }
    return messageId == 0x8100 ? "ATSC 3.0" : messageId == 0x8101 ? "signed message" : nullptr;
}

const char* MmtTableName(unsigned tableId)
{
    constexpr const char* k_names[] = {"CRI", "DCI", "SI"};
    if (tableId == 0) {
        return "PA";
    }
    if (tableId <= 0x20) {
        return tableId <= 0x10 ? "MPI" : "MP";
    }
    return tableId <= 0x23 ? k_names[tableId - 0x21] : nullptr;
}

const char* ContentTypeName(unsigned contentType)
{
    constexpr const char* k_names[] = {nullptr,
                                       "USBD",
                                       "MPD",
                                       "HELD",
                                       "application events",
                                       "video stream properties",
                                       "staggercast",
                                       "in-band events",
                                       "caption assets",
                                       "audio stream properties",
                                       "DWD",
                                       "RSAT",
                                       "security properties",
                                       "licence servers"};
    return contentType <= 13 ? k_names[contentType] : nullptr;
}

const char* ComponentTypeName(unsigned componentType)
{
    constexpr const char* k_names[] = {"audio", "video", "caption"};
    return componentType <= 2 ? k_names[componentType] : nullptr;
}

std::string MessageTitle(unsigned messageId)
{
    char number[16];
    std::snprintf(number, sizeof number, "0x%04X", messageId);
    const char* name = MessageName(messageId);
    return name != nullptr ? std::string(name) + " (" + number + ')' : "message " + std::string(number);
}

}  // namespace vyr::inspect
