// A script of reads over random bytes, against a reader that takes one bit at a time.
// Sources: src/common/Parse.cpp
#include <cstring>
#include <memory>

#include "Fuzz.h"
#include "common/Parse.h"
#include "platform/Platform.h"

namespace {

class CReader : public IParse {
  public:
    bool Parse(SItem*) override { return false; }
    using IParse::t_AllocAndCopy;
    using IParse::t_Byte;
    using IParse::t_Value;
    using IParse::t_Value64;
};

std::uint64_t BitByBit(const IParse::SItem& item, std::uint32_t bits)
{
    std::uint64_t value = 0;
    for (std::uint32_t i = item.bitpos; i < item.bitpos + bits; ++i) {
        value = value << 1 | (item.buffer[i / 8] >> (7 - i % 8) & 1u);
    }
    return value;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    SetLogPriority(LOG_PRIORITY_SILENT);
    if (size < 2) {
        return 0;
    }
    const std::size_t length = data[0] % size;
    CScript script(data + 1, size - 1 - length);
    const std::vector<unsigned char> bytes(data + size - length, data + size);
    const unsigned char nothing = 0;
    const std::uint32_t count = static_cast<std::uint32_t>(bytes.size());
    IParse::SItem item = {bytes.empty() ? &nothing : bytes.data(), count, count * 8, 0, true};
    CReader reader;
    while (!script.Done()) {
        const IParse::SItem before = item;
        const std::uint8_t kind = script.Byte();
        std::uint32_t bits = script.Byte() % 80;
        bits = kind & 0x40 ? 0xFFFFFF00u | bits : bits;
        const bool fits = before.valid && static_cast<std::uint64_t>(before.bitpos) + bits <= before.bitsize;
        const bool bytesFit = before.valid && before.bitpos / 8 + static_cast<std::uint64_t>(bits) <= before.size;
        switch (kind % 5) {
            case 0: {
                const unsigned int value = reader.t_Value(&item, bits);
                Require(value == (fits ? static_cast<unsigned int>(BitByBit(before, bits)) : 0u));
                Require(item.valid == fits && item.bitpos == before.bitpos + (fits ? bits : 0));
                break;
            }
            case 1: {
                const unsigned long long value = reader.t_Value64(&item, bits);
                const bool cut = before.bitpos % 8 == 0 && bits % 8 == 0 && bits <= 64;
                const std::uint64_t whole = fits ? BitByBit(before, bits) : 0;
                Require(value == (cut ? whole & 0xFFFFFFFF : whole));
                Require(item.valid == fits && item.bitpos == before.bitpos + (fits ? bits : 0));
                break;
            }
            case 2: {
                const unsigned char* p = reader.t_Byte(&item, bits);
                const bool aligned = before.bitpos % 8 == 0;
                Require(p == (aligned && bytesFit ? before.buffer + before.bitpos / 8 : nullptr));
                Require(aligned ? item.valid == bytesFit : item.valid == before.valid);
                break;
            }
            case 3: {
                const std::unique_ptr<unsigned char[]> copy(reader.t_AllocAndCopy(&item, bits));
                const bool aligned = before.bitpos % 8 == 0;
                Require((copy != nullptr) == (aligned && bytesFit));
                Require(!copy ||
                        (std::memcmp(copy.get(), before.buffer + before.bitpos / 8, bits) == 0 && copy[bits] == 0));
                break;
            }
            default:
                item.bitpos = item.valid ? script.Word() % (item.bitsize + 1) : 0;
                item.valid = true;
                break;
        }
    }
    return 0;
}
