#pragma once

#include <string>

namespace vyr::inspect {

/// Names of the numbers of the standards; null where a number has none.
const char* TableName(unsigned tableId);
const char* ServiceCategoryName(int category);
const char* ProtocolName(int protocol);
const char* UrlTypeName(int urlType);
const char* PayloadFormatName(long long formatId);
const char* AlertTypeName(int type);
const char* AudienceName(int audience);
const char* LocationTypeName(int type);
const char* MessageName(unsigned messageId);
const char* MmtTableName(unsigned tableId);
const char* ContentTypeName(unsigned contentType);
const char* ComponentTypeName(unsigned componentType);
/// "MPT (0x0020)".
std::string MessageTitle(unsigned messageId);

}  // namespace vyr::inspect
