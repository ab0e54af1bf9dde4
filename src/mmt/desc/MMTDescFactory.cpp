#include "mmt/desc/MMTDescFactory.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <memory>

#include "common/OutOfMemory.h"
#include "mmt/Elements.h"
#include "mmt/desc/MMTDescs.h"
#include "platform/FailureKeeping.h"
#include "platform/Log.h"

namespace {

/// 16 bits at a byte that the item has.
unsigned int Peek16(const unsigned char* bytes)
{
    return static_cast<unsigned int>(bytes[0]) << 8 | bytes[1];
}

constexpr struct {
    unsigned int tag;
    CMMTDesc* (*make)();
} k_descriptors[] = {{CMMTDescCri::k_tag, vyr::New<CMMTDesc, CMMTDescCri>},
                     {CMMTDescMpuTimestamp::k_tag, vyr::New<CMMTDesc, CMMTDescMpuTimestamp>},
                     {CMMTDescDependency::k_tag, vyr::New<CMMTDesc, CMMTDescDependency>},
                     {CMMTDescSi::k_tag, vyr::New<CMMTDesc, CMMTDescSi>},
                     {CMMTDescVsp::k_tag, vyr::New<CMMTDesc, CMMTDescVsp>},
                     {CMMTDescCaption::k_tag, vyr::New<CMMTDesc, CMMTDescCaption>},
                     {CMMTDescAsp::k_tag, vyr::New<CMMTDesc, CMMTDescAsp>},
                     {CMMTDescSp::k_tag, vyr::New<CMMTDesc, CMMTDescSp>},
                     {CMMTDescSp::k_licenseUrlTag, vyr::New<CMMTDesc, CMMTDescSp>},
                     {CMMTDescLowDelay::k_tag, vyr::New<CMMTDesc, CMMTDescLowDelay>}};

}  // namespace

void PrintDescriptorRawData(IParse::SItem* item)
{
    // More would not fit a line of the log, and every loop of a table may end in such a descriptor.
    constexpr unsigned int k_most = 1024;
    if (!VYR_ASSERT(item, "item") || !VYR_ASSERT(item->buffer, "item->buffer") ||
        !vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    const unsigned int begin = std::min(item->bitpos / 8, item->size);
    const unsigned char* bytes = item->buffer + begin;
    unsigned int size = std::min(item->size - begin, k_most);
    if (size >= 4) {
        size = std::min(size, 4 + Peek16(bytes + 2));
    }
    char line[k_most * 3 + 1] = "";
    for (unsigned int i = 0; i < size; ++i) {
        std::snprintf(line + std::size_t{3} * i, 4, "%02x ", bytes[i]);
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "RAW: %s", line);
}

CMMTDesc* CMMTDescFactory::GenerateDesc(IParse::SItem* item)
try {
    if (!VYR_ASSERT(item, "item") || !VYR_ASSERT(item->buffer, "item->buffer")) {
        return nullptr;
    }
    const std::uint64_t bits = static_cast<std::uint64_t>(item->size) * 8;
    if (bits < static_cast<std::uint64_t>(item->bitpos) + 16) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTDescFactory::GenerateDesc] item->bitpos + 16 = %d > item->size * 8 = %d",
                static_cast<int>(item->bitpos + 16), static_cast<int>(bits));
        return nullptr;
    }
    const unsigned int tag = Peek16(item->buffer + item->bitpos / 8);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTDescFactory::GenerateDesc] desTag: 0x%x", tag);
    for (const auto& row : k_descriptors) {
        if (row.tag == tag) {
            return row.make();
        }
    }
    vyr::KeepUnknownTag(tag);
    if (tag >= 0x8000) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTDescFactory::GenerateDesc] Private Description TAG [%u]", tag);
    } else if (tag >= 6) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTDescFactory::GenerateDesc] Reserved Description TAG [%u, 0x%x]", tag, tag);
    }
    PrintDescriptorRawData(item);
    return nullptr;
} catch (...) {
    return vyr::OutOfMemory<CMMTDesc*>(VYR_HERE);
}

bool CMMTDescFactory::ParseDescriptors(IParse::SItem* item, int length, CCPtrArray* array)
try {
    if (!VYR_ASSERT(item, "item") || !VYR_ASSERT(array, "array") || !VYR_ASSERT(length >= 0, "length >= 0")) {
        return false;
    }
    const std::uint64_t end = item->bitpos + static_cast<std::uint64_t>(length) * 8;
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTDescFactory::ParseDescriptors] item->bitpos:%d, max:%d",
            static_cast<int>(item->bitpos), static_cast<int>(end));
    while (item->bitpos < end) {
        std::unique_ptr<CMMTDesc> p_desc(CMMTDescFactory::GenerateDesc(item));
        // Required: a tag without a class ends the loop; what follows it is not parsed. No more than the loop
        // fails by it.
        if (!p_desc) {
            return vyr::StepFailed(VYR_HERE, "p_desc = CMMTDescFactory::GenerateDesc(item)");
        }
        if (!p_desc->Parse(item)) {
            return vyr::StepFailed(VYR_HERE, "p_desc->Parse(item)");
        }
        vyr::Append(*array, std::move(p_desc));
    }
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}
