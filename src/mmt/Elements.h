#pragma once

#include <algorithm>
#include <memory>

#include "common/BitReader.h"
#include "common/Owned.h"
#include "mmt/desc/MMTDesc.h"
#include "mmt/desc/MMTDescFactory.h"
#include "platform/Log.h"

// What MMT structures share: lists of owned elements, descriptor loops.

namespace vyr {

/// Makes a T: what stands in a row of a factory.
template <class TBase, class T>
TBase* New()
{
    return new T;
}

/// Keeps what a length of `bits` bits spans. False: the length is not there. What is held already is the caller's
/// failed assertion `text` at `line`.
inline bool KeepFirst(CBitReader& reader, unsigned int bits, CBytes& bytes, int line, const char* text, VYR_CALLER)
{
    const unsigned int length = reader.Value(bits);
    if (!reader.Valid()) {
        return false;
    }
    if (bytes) {
        AssertFailed({here.file, here.function, line}, text);
    }
    reader.Keep(length, bytes);
    return true;
}

/// Logs every element of an array, at debug priority.
template <class T>
void DumpElements(const TPtrArray<T>& array)
{
    if (!LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    for (int i = 0; i < array.Size(); ++i) {
        array.At(i)->Dump();
    }
}

/// Parses `count` elements into `array`. The first that fails ends it, logged as the caller's failed check of
/// `text` at `line`.
template <class T>
bool ParseElements(IParse::SItem* item, unsigned int count, TPtrArray<T>& array, int line, const char* text, VYR_CALLER)
{
    for (unsigned int i = 0; i < count; ++i) {
        auto element = std::make_unique<T>();
        if (!element->Parse(item)) {
            return CheckFailed({here.file, here.function, line}, text);
        }
        array.Append(std::move(element));
    }
    return true;
}

/// Parses a loop of `length` bytes of descriptors into `array` and puts the cursor behind it, whatever
/// became of its descriptors: one that is unknown costs nothing that follows the loop, and of a loop that runs past
/// the data, as many count as are there. False when a descriptor made the item invalid.
inline bool ParseDescriptorLoop(IParse::SItem* item, unsigned int length, TPtrArray<CMMTDesc>& array)
{
    // A descriptor may run past its loop, as a clock relation descriptor of 19 bytes can by 18. Further than
    // that it is refused: what it read would be read again with what follows, and copied once per loop.
    constexpr unsigned int k_overrun = 18;
    const unsigned int left = BytesLeft(*item);
    IParse::SItem loop = *item;
    loop.size = item->bitpos / 8 + std::min(left, length + k_overrun);
    loop.bitsize = loop.size * 8;
    CMMTDescFactory::ParseDescriptors(&loop, static_cast<int>(length), &array);
    item->valid = loop.valid;
    if (item->valid) {
        item->bitpos += std::min(length, left) * 8;
    }
    return item->valid;
}

/// Calls `callback(user, descriptor)` for each descriptor of the array; true. A null callback is the caller's
/// failed assertion.
inline bool VisitDescriptors(const TPtrArray<CMMTDesc>& array, void (*callback)(void* user, CMMTDesc* descriptor),
                             void* user, VYR_CALLER)
{
    if (!callback) {
        return AssertFailed(here, "callback");
    }
    for (int i = 0; i < array.Size(); ++i) {
        callback(user, array.At(i));
    }
    return true;
}

}  // namespace vyr
