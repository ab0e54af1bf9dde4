#pragma once

#include "../../platform/Api.h"

/// Growable array of untyped pointers. It owns its elements only in that it hands each one it drops
/// to the delete callback. The first four slots lie inside the object; after that it grows by eight
/// slots at a time, and from 1,024 slots on to twice as many. Not thread-safe. When memory is out, what would
/// grow it gives false and changes nothing; only a slot count whose size in bytes overflows throws
/// (std::bad_array_new_length).
class VYR_API CCPtrArray {
  public:
    /// `cbRemove` is called with `context` and each element that is dropped; it may be null. What changes the array is
    /// asserted inside it ("!calling"), false, and does nothing.
    CCPtrArray(void (*cbRemove)(void* context, void* element), void* context);
    /// RemoveAll, then frees the storage.
    virtual ~CCPtrArray();
    CCPtrArray(const CCPtrArray&) = delete;
    CCPtrArray& operator=(const CCPtrArray&) = delete;

    /// Appends `p`; true. False: memory is out.
    bool Add(void* p);
    /// Puts `p` before the slot `index` (0 to the size); true. Another index is asserted: false.
    bool Insert(int index, void* p);
    /// Stores `p` in slot `index`, growing with null slots as needed; an occupied slot's pointer is
    /// handed to the delete callback first. True; a negative index is asserted: false.
    bool Set(int index, void* p);

    /// Number of slots in use; indices run from 0 to one less.
    int Size() const { return m_size; }
    /// Number of times that Set filled an empty slot since the array was last emptied. Required: Add,
    /// Insert and RemoveAt leave it alone.
    int ValidCount() const { return m_validCount; }
    /// False outside the range; else true, and the slot's pointer through `out` unless that is null.
    bool GetAt(int index, void** out) const;
    /// The slot's pointer; an index outside the range is asserted: null.
    void* Data(int index) const;

    /// Hands the slot's pointer (even a null one) to the delete callback and closes the gap. True; an
    /// index outside the range is asserted: false.
    bool RemoveAt(int index);
    /// Drops, as RemoveAt would and in one pass, every slot for which `drop(user, index)` is true.
    /// Returns how many went.
    int RemoveIf(bool (*drop)(void* user, int index), void* user);
    /// Hands every non-null pointer to the delete callback and returns to the state of construction.
    /// Without a callback a non-empty array is asserted and stays: false.
    bool RemoveAll();

    /// Delete callback for arrays of borrowed pointers: does nothing.
    static void DummyCallback(void* context, void* element);

  private:
    static constexpr int k_inlineSlots = 4;
    static constexpr int k_step = 8;
    static constexpr int k_linear = 1024;

    bool m_Move(int capacity);
    int m_NextCapacity() const;
    bool m_Grow();

    void** m_slots;
    void* m_inline[k_inlineSlots];
    int m_size;
    int m_capacity;
    void* m_context;
    struct {
        void (*cbRemove)(void* context, void* element);
    } m_callback;
    int m_validCount;
};
