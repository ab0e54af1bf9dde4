#pragma once

#include <type_traits>

#include "common/OutOfMemory.h"

namespace vyr {

/// Gives a value to a getter's output; false: memory is out, and the output is untouched.
template <class T, class TOut>
bool Give(const T& value, TOut& out, VYR_CALLER)
{
    if constexpr (std::is_trivially_copyable_v<T>) {
        out = static_cast<TOut>(value);
    } else {
        try {
            out = static_cast<TOut>(value);
        } catch (...) {
            return OutOfMemory(here);
        }
    }
    return true;
}

}  // namespace vyr
