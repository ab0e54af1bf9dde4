#pragma once

#include <memory>
#include <new>
#include <vector>

#include "CoreOS/PtrArray.h"

/// Frees an object that is built in two phases: Destroy, then delete.
struct SDestroy {
    /// Destroys and deletes; null: nothing.
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

/// A CCPtrArray that owns its elements and knows their type; TFree lets one go.
template <class T, class TFree = std::default_delete<T>>
class TPtrArray : public CCPtrArray {
  public:
    TPtrArray() : CCPtrArray([](void*, void* element) { TFree()(static_cast<T*>(element)); }, nullptr) {}

    /// Appends an element, which is the array's from now on. Throws std::bad_alloc when memory is out.
    T* Append(std::unique_ptr<T, TFree> element)
    {
        if (!Add(element.get())) {
            throw std::bad_alloc();
        }
        return element.release();
    }
    /// The same of elements that are arrays, such as texts.
    template <class U>
    T* Append(std::unique_ptr<U[], TFree> element)
    {
        return Append(std::unique_ptr<T, TFree>(element.release()));
    }
    /// Element `index`, from 0; outside the range asserted: null.
    T* At(int index) const { return static_cast<T*>(Data(index)); }
    /// The same; outside the range null, in silence.
    T* Get(int index) const
    {
        void* element = nullptr;
        GetAt(index, &element);
        return static_cast<T*>(element);
    }
    /// The last element; null: there is none.
    T* Last() const { return Get(Size() - 1); }

    /// Walks the elements: for (T* element : array).
    struct SIterator {
        /// The array walked.
        const TPtrArray& array;
        /// Where in it: 0 to Size().
        int index;

        /// The element.
        T* operator*() const { return array.At(index); }
        /// Goes on to the next element.
        SIterator& operator++()
        {
            ++index;
            return *this;
        }
        /// Whether the two stand at different places.
        bool operator!=(const SIterator& other) const { return index != other.index; }
    };
    /// At the first element.
    SIterator begin() const { return {*this, 0}; }
    /// Behind the last element.
    SIterator end() const { return {*this, Size()}; }
};

/// An array of objects that are built in two phases.
template <class T>
using TOwnedArray = TPtrArray<T, SDestroy>;

/// An array of texts.
using TTextArray = TPtrArray<char, std::default_delete<char[]>>;
