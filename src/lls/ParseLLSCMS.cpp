#include <algorithm>
#include <cstring>

#include "common/Inflate.h"
#include "common/OutOfMemory.h"
#include "lls/ParseLLS.h"
#include "platform/Log.h"

namespace {

constexpr std::size_t k_headerSize = 4;
constexpr std::size_t k_maxInflated = 524288;
constexpr char k_openingTag[] = "<CMSSignedData";
constexpr char k_closingTag[] = "</CMSSignedData>";
constexpr std::size_t k_openingLength = sizeof k_openingTag - 1;
constexpr std::size_t k_closingLength = sizeof k_closingTag - 1;

/// The payload as text, inflated when it is gzip: up to the first zero byte or the end; empty when it
/// does not inflate.
std::string PayloadText(const char* payload, std::size_t size)
{
    vyr::SInflated inflated;
    if (vyr::HasGzipMagic(payload, size)) {
        if (!vyr::Inflate(payload, size, k_maxInflated, inflated)) {
            return std::string();
        }
        payload = inflated.data.get();
        size = inflated.size;
    }
    return std::string(payload, std::find(payload, payload + size, '\0'));
}

}  // namespace

bool TCParseLLS::CheckCMS(const unsigned char* data, int length, std::string& xml, std::string& cms)
try {
    if (!VYR_ASSERT(data, "data") || !VYR_ASSERT(length >= static_cast<int>(k_headerSize), "length >= 4")) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[TCParseLLS::CheckCMS] TableId[%d] GroupId[%d] length[%d]", data[0], data[1], length);
    std::string text = PayloadText(reinterpret_cast<const char*>(data) + k_headerSize,
                                   static_cast<std::size_t>(length) - k_headerSize);

    const std::size_t start = text.find(k_openingTag);
    if (start == std::string::npos) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[TCParseLLS::CheckCMS]find start cms signed data !!!!!");
    const std::size_t end = text.find(k_closingTag);
    if (end == std::string::npos || end < start) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[TCParseLLS::CheckCMS]cms signed data parsing ERROR!!!!!");
        return false;
    }
    const std::size_t cmsLength = end - start + k_closingLength;
    VYR_LOG(LOG_PRIORITY_DEBUG, "[TCParseLLS::CheckCMS] cmsLength[%d]", static_cast<int>(cmsLength));
    // Required: the span runs 14 characters into the closing tag.
    std::string span = text.substr(start + k_openingLength, cmsLength - k_closingLength);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[TCParseLLS::CheckCMS] CMSDataSize[%zu], data[%s]", span.size(), span.c_str());
    if (span.size() <= k_openingLength + k_closingLength) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[TCParseLLS::CheckCMS]cms signed data parsing ERROR!!!!!");
        return false;
    }
    text.erase(start, cmsLength);
    xml = std::move(text);
    cms = std::move(span);
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}
