#pragma once

#include <algorithm>
#include <memory>

#include "common/CoreOS/PtrArray.h"
#include "mmt/desc/MMTDesc.h"
#include "mmt/desc/MMTDescFactory.h"
#include "platform/Log.h"

// What MMT structures share: bytes left, lists of owned elements, descriptor loops.

namespace vyr {

/// Whole bytes behind the cursor.
inline unsigned int BytesLeft(const IParse::SItem& item)
{
    const unsigned int position = item.bitpos / 8;
    return position < item.size ? item.size - position : 0;
}

/// Release callback of an array that owns objects of T.
template <class T>
void g_CbRemove(void* /*context*/, void* element)
{
    delete static_cast<T*>(element);
}

/// Element `index` of an array of T; outside the range asserted: null.
template <class T>
T* ElementAt(const CCPtrArray& array, int index)
{
    return static_cast<T*>(array.Data(index));
}

/// Logs every element of an array of T, at debug priority.
template <class T>
void DumpElements(const CCPtrArray& array)
{
    if (!LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    for (int i = 0; i < array.Size(); ++i) {
        ElementAt<T>(array, i)->Dump();
    }
}

/// Parses `count` elements of T into `array`. The first that fails ends it, logged as a failed check of
/// `parseText` at `here`; one that cannot be added is logged with `addText`, a line below.
template <class T>
bool ParseElements(IParse::SItem* item, unsigned int count, CCPtrArray& array, const SHere& here, const char* parseText,
                   const char* addText)
{
    for (unsigned int i = 0; i < count; ++i) {
        auto element = std::make_unique<T>();
        if (!element->Parse(item)) {
            return CheckFailed(here, parseText);
        }
        if (!array.Add(element.get())) {
            return CheckFailed({here.file, here.function, here.line + 1}, addText);
        }
        element.release();
    }
    return true;
}

/// Parses a loop of `length` bytes of descriptors into `array` and puts the cursor behind it, whatever
/// became of its descriptors: one that is unknown costs nothing that follows the loop. False when a
/// descriptor made the item invalid, or the loop runs past the data.
inline bool ParseDescriptorLoop(IParse::SItem* item, unsigned int length, CCPtrArray* array)
{
    // A descriptor may run past its loop, as a clock relation descriptor of 19 bytes can by 18. Further than
    // that it is refused: what it read would be read again with what follows, and copied once per loop.
    constexpr unsigned int k_overrun = 18;
    const unsigned int left = BytesLeft(*item);
    IParse::SItem loop = *item;
    loop.size = item->bitpos / 8 + std::min(left, length + k_overrun);
    loop.bitsize = loop.size * 8;
    CMMTDescFactory::ParseDescriptors(&loop, static_cast<int>(length), array);
    item->valid = loop.valid && length <= left;
    if (item->valid) {
        item->bitpos += length * 8;
    }
    return item->valid;
}

/// Calls `callback(user, descriptor)` for each descriptor of the array; true.
inline bool VisitDescriptors(const CCPtrArray& array, void (*callback)(void* user, CMMTDesc* descriptor), void* user)
{
    if (!VYR_ASSERT(callback, "callback")) {
        return false;
    }
    for (int i = 0; i < array.Size(); ++i) {
        callback(user, ElementAt<CMMTDesc>(array, i));
    }
    return true;
}

}  // namespace vyr
