#pragma once

#include "common/CoreOS/PtrArray.h"

namespace vyr::inspect {

/// Calls `use` with each element of an array of the library.
template <class TElement, class TUse>
void ForEach(const CCPtrArray& array, TUse use)
{
    for (int i = 0; i < array.Size(); ++i) {
        use(*static_cast<const TElement*>(array.Data(i)));
    }
}

}  // namespace vyr::inspect
