#pragma once

#include <memory>
#include <vector>

/// Frees an object that is built in two phases: Destroy, then delete.
struct SDestroy {
    template <class T>
    void operator()(T* object) const
    {
        object->Destroy();
        delete object;
    }
};

/// Owner of one such object, or null.
template <class T>
using TOwned = std::unique_ptr<T, SDestroy>;

/// Owner of several, in document order.
template <class T>
using TOwnedList = std::vector<TOwned<T>>;
