#pragma once

#include <memory>
#include <new>

#include "common/CoreOS/PtrArray.h"
#include "platform/Log.h"

// The one way out when memory is out. Inside the library it is std::bad_alloc (or std::length_error), and
// every public entry that can meet it is a function-try-block that gives the failure result:
//
//     bool CThing::Parse(...)
//     try {
//         ...
//     } catch (...) {
//         return vyr::OutOfMemory(VYR_HERE);
//     }
//
// Other exceptions can only come from a caller's callback and pass through, so that whatever must be undone
// is undone by destructors. Destroy and destructors allocate nothing.

namespace vyr {

/// HandleOutOfMemory, and what the entry returns then: false, null, an empty container or nothing.
template <class T = bool>
T OutOfMemory(const SHere& here)
{
    HandleOutOfMemory(here);
    return T();
}

/// What an allocation gave that tells its failure with null.
template <class T>
T* Allocated(T* object)
{
    if (!object) {
        throw std::bad_alloc();
    }
    return object;
}

/// Hands an object over to the array that owns its elements.
template <class T, class TDelete>
void Append(CCPtrArray& array, std::unique_ptr<T, TDelete> object)
{
    if (!array.Add(object.get())) {
        throw std::bad_alloc();
    }
    object.release();
}

/// Gives a variable a value for the life of this object, and another behind it.
template <class T>
class CScoped {
  public:
    CScoped(T& variable, T value, T after) : m_variable(variable), m_after(after) { m_variable = value; }
    ~CScoped() { m_variable = m_after; }
    CScoped(const CScoped&) = delete;
    CScoped& operator=(const CScoped&) = delete;

  private:
    T& m_variable;
    T m_after;
};

}  // namespace vyr
