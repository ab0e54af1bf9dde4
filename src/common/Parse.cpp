#include "common/Parse.h"

#include <cstdint>
#include <cstring>

#include "common/BitReader.h"
#include "platform/Log.h"

namespace {

/// Apart from the readers, which need no stack for it.
[[gnu::noinline, gnu::cold]] bool NothingToRead(const IParse::SItem* item, const char* function, int line)
{
    return vyr::AssertFailed({vyr::k_source.text, function, line}, item ? "item->buffer" : "item");
}

/// The entry checks of every reader but the alignment: false when there is nothing to read from.
bool Readable(const IParse::SItem* item, const char* function, int line)
{
    return item && item->buffer ? item->valid : NothingToRead(item, function, line);
}

/// True when `bits` more bits end at or before `limit`, and inside a 32-bit cursor's reach.
bool Fits(IParse::SItem* item, std::uint64_t bits, std::uint64_t limit)
{
    const std::uint64_t end = item->bitpos + bits;
    item->valid = end <= limit && end <= UINT32_MAX;
    return item->valid;
}

std::uint64_t SizeInBits(const IParse::SItem* item)
{
    return static_cast<std::uint64_t>(item->size) * 8;
}

std::uint32_t FourBytes(const unsigned char* p)
{
    return std::uint32_t{p[0]} << 24 | std::uint32_t{p[1]} << 16 | std::uint32_t{p[2]} << 8 | p[3];
}

std::uint32_t Assemble(const unsigned char* p, unsigned int bytes)
{
    if (bytes == 4) {
        return FourBytes(p);
    }
    std::uint32_t value = 0;
    for (unsigned int i = 0; i < bytes; ++i) {
        value = value << 8 | p[i];
    }
    return value;
}

/// The low 64 bits of a field of any width at any bit, taken byte by byte.
[[gnu::noinline]] std::uint64_t Gather(const unsigned char* buffer, std::uint64_t bitpos, std::uint64_t bits)
{
    if (bits > 64) {
        bitpos += bits - 64;
        bits = 64;
    }
    if (bits == 0) {
        return 0;
    }
    const std::uint64_t last = bitpos + bits - 1;
    const unsigned char* p = buffer + bitpos / 8;
    const unsigned char* end = buffer + last / 8;
    std::uint64_t value = *p & (0xFFu >> bitpos % 8);
    while (p + 1 < end) {
        value = value << 8 | *++p;
    }
    const unsigned int tail = static_cast<unsigned int>(last % 8) + 1;
    if (p == end) {
        return value >> (8 - tail);
    }
    return value << tail | static_cast<unsigned int>(*end >> (8 - tail));
}

}  // namespace

// What asserts are the readers of IParse, whoever reads.
namespace vyr {

unsigned int ReadValue(IParse::SItem* item, unsigned int bits)
{
    if (!Readable(item, "t_Value", __LINE__)) {
        return 0;
    }
    // bitsize is the bound; a bitsize beyond the bytes is a caller's mistake that reads nothing.
    const std::uint32_t position = item->bitpos;
    const std::uint64_t end = std::uint64_t{position} + bits;
    if (end > item->bitsize || end > SizeInBits(item)) {
        item->valid = false;
        return 0;
    }
    item->bitpos = static_cast<std::uint32_t>(end);
    const unsigned char* p = item->buffer + position / 8;
    // What most fields are.
    if (position % 8 == 0) {
        switch (bits) {
            case 8:
                return *p;
            case 16:
                return static_cast<unsigned int>(p[0]) << 8 | p[1];
            case 32:
                return FourBytes(p);
            default:
                break;
        }
    }
    if (bits > 0 && position % 8 + bits <= 8) {
        return *p >> (8 - position % 8 - bits) & (0xFFu >> (8 - bits));
    }
    return static_cast<unsigned int>(Gather(item->buffer, position, bits));
}

unsigned long long ReadValue64(IParse::SItem* item, unsigned int bits)
{
    if (!Readable(item, "t_Value64", __LINE__) || !Fits(item, bits, SizeInBits(item))) {
        return 0;
    }
    const std::uint32_t position = item->bitpos;
    item->bitpos += bits;
    if (position % 8 == 0 && bits % 8 == 0 && bits <= 64) {
        // Required: an aligned wide read yields the field's last four bytes only.
        const unsigned int bytes = bits / 8;
        const unsigned int skipped = bytes > 4 ? bytes - 4 : 0;
        return Assemble(item->buffer + position / 8 + skipped, bytes - skipped);
    }
    return Gather(item->buffer, position, bits);
}

const unsigned char* ReadBytes(IParse::SItem* item, unsigned int count)
{
    const bool readable = Readable(item, "t_Byte", __LINE__);
    if (!item || !item->buffer) {
        return nullptr;
    }
    if (item->bitpos % 8 != 0) {
        AssertFailed({k_source.text, "t_Byte", __LINE__}, "item->bitpos % 8 == 0");
        return nullptr;
    }
    if (!readable || !Fits(item, static_cast<std::uint64_t>(count) * 8, SizeInBits(item))) {
        return nullptr;
    }
    const unsigned char* bytes = item->buffer + item->bitpos / 8;
    item->bitpos += count * 8;
    return bytes;
}

unsigned char* ReadCopy(IParse::SItem* item, unsigned int count)
{
    const unsigned char* bytes = Readable(item, "t_AllocAndCopy", __LINE__) ? ReadBytes(item, count) : nullptr;
    if (!bytes) {
        return nullptr;
    }
    const std::size_t length = count;
    unsigned char* copy = new unsigned char[length + 1];
    std::memcpy(copy, bytes, length);
    copy[length] = 0;
    return copy;
}

}  // namespace vyr

IParse::~IParse() = default;

unsigned int IParse::t_Value(SItem* item, unsigned int bits)
{
    return vyr::ReadValue(item, bits);
}

unsigned long long IParse::t_Value64(SItem* item, unsigned int bits)
{
    return vyr::ReadValue64(item, bits);
}

const unsigned char* IParse::t_Byte(SItem* item, unsigned int count)
{
    return vyr::ReadBytes(item, count);
}

unsigned char* IParse::t_AllocAndCopy(SItem* item, unsigned int count)
{
    return vyr::ReadCopy(item, count);
}
