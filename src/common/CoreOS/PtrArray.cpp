#include "common/CoreOS/PtrArray.h"

#include <algorithm>
#include <climits>
#include <new>

#include "common/OutOfMemory.h"
#include "platform/Log.h"

namespace {

/// An array whose callback runs on this thread, and the one whose callback changed that one. No member of the array, as
/// programs have its layout.
class CCall {
  public:
    explicit CCall(const CCPtrArray* array) : m_array(array), m_outer(s_innermost) { s_innermost = this; }
    ~CCall() { s_innermost = m_outer; }
    CCall(const CCall&) = delete;
    CCall& operator=(const CCall&) = delete;

    /// Whether there is one for the array.
    static bool Of(const CCPtrArray* array)
    {
        for (const CCall* call = s_innermost; call; call = call->m_outer) {
            if (call->m_array == array) {
                return true;
            }
        }
        return false;
    }

  private:
    static thread_local const CCall* s_innermost;

    const CCPtrArray* m_array;
    const CCall* m_outer;
};

thread_local const CCall* CCall::s_innermost = nullptr;

}  // namespace

CCPtrArray::CCPtrArray(void (*cbRemove)(void*, void*), void* context)
    : m_slots(m_inline),
      m_inline{},
      m_size(0),
      m_capacity(k_inlineSlots),
      m_context(context),
      m_callback{cbRemove},
      m_validCount(0)
{
}

CCPtrArray::~CCPtrArray()
{
    RemoveAll();
    if (m_slots != m_inline) {
        delete[] m_slots;
    }
}

/// Moves the slots to a new array of `capacity`, the rest of it null. False: memory is out.
bool CCPtrArray::m_Move(int capacity)
try {
    void** slots = new void*[static_cast<std::size_t>(capacity)];
    std::fill(std::copy(m_slots, m_slots + m_capacity, slots), slots + capacity, nullptr);
    if (m_slots != m_inline) {
        delete[] m_slots;
    }
    m_slots = slots;
    m_capacity = capacity;
    return true;
} catch (const std::bad_array_new_length&) {
    throw;  // required: a slot count whose size overflows
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

/// The next step: eight slots more, and from k_linear slots on twice as many, so that long lists are not copied
/// once for every eight elements.
int CCPtrArray::m_NextCapacity() const
{
    if (m_capacity < k_linear) {
        return m_capacity + k_step;
    }
    return m_capacity <= INT_MAX / 2 ? m_capacity * 2 : INT_MAX;
}

bool CCPtrArray::m_Grow()
{
    if (m_size == INT_MAX) {
        throw std::bad_array_new_length();
    }
    return m_size < m_capacity || m_Move(m_NextCapacity());
}

bool CCPtrArray::Add(void* p)
{
    if (!VYR_ASSERT(!CCall::Of(this), "!calling") || !m_Grow()) {
        return false;
    }
    m_slots[m_size++] = p;
    return true;
}

bool CCPtrArray::Insert(int index, void* p)
{
    if (!VYR_ASSERT(0 <= index && index <= m_size, "0 <= index && index <= m_size") ||
        !VYR_ASSERT(!CCall::Of(this), "!calling") || !m_Grow()) {
        return false;
    }
    std::copy_backward(m_slots + index, m_slots + m_size, m_slots + m_size + 1);
    m_slots[index] = p;
    ++m_size;
    return true;
}

bool CCPtrArray::Set(int index, void* p)
{
    if (!VYR_ASSERT(0 <= index && index <= INT_MAX - k_step, "0 <= index") ||
        !VYR_ASSERT(!CCall::Of(this), "!calling")) {
        return false;
    }
    if (index >= m_capacity) {
        const int needed = (index + k_step) & ~(k_step - 1);
        if (!m_Move(m_capacity < k_linear ? needed : std::max(needed, m_NextCapacity()))) {
            return false;
        }
    }
    void* old = m_slots[index];
    if (!old) {
        ++m_validCount;
    } else if (m_callback.cbRemove) {
        const CCall call(this);
        m_callback.cbRemove(m_context, old);
    }
    m_slots[index] = p;
    m_size = std::max(m_size, index + 1);
    return true;
}

bool CCPtrArray::GetAt(int index, void** out) const
{
    if (index < 0 || index >= m_size) {
        return false;
    }
    if (out) {
        *out = m_slots[index];
    }
    return true;
}

void* CCPtrArray::Data(int index) const
{
    if (!VYR_ASSERT(0 <= index && index < m_size, "0 <= index && index < m_size")) {
        return nullptr;
    }
    return m_slots[index];
}

bool CCPtrArray::RemoveAt(int index)
{
    if (!VYR_ASSERT(0 <= index && index < m_size, "0 <= index && index < m_size") ||
        !VYR_ASSERT(!CCall::Of(this), "!calling")) {
        return false;
    }
    if (m_callback.cbRemove) {
        const CCall call(this);
        m_callback.cbRemove(m_context, m_slots[index]);
    }
    std::copy(m_slots + index + 1, m_slots + m_size, m_slots + index);
    m_slots[--m_size] = nullptr;
    return true;
}

int CCPtrArray::RemoveIf(bool (*drop)(void* user, int index), void* user)
{
    if (!VYR_ASSERT(!CCall::Of(this), "!calling")) {
        return 0;
    }
    const CCall call(this);
    int kept = 0;
    for (int i = 0; i < m_size; ++i) {
        if (!drop(user, i)) {
            m_slots[kept++] = m_slots[i];
        } else if (m_callback.cbRemove) {
            m_callback.cbRemove(m_context, m_slots[i]);
        }
    }
    const int removed = m_size - kept;
    std::fill(m_slots + kept, m_slots + m_size, nullptr);
    m_size = kept;
    return removed;
}

bool CCPtrArray::RemoveAll()
{
    if (m_size < 1) {
        return true;
    }
    if (!VYR_ASSERT(m_callback.cbRemove, "m_callback.cbRemove") || !VYR_ASSERT(!CCall::Of(this), "!calling")) {
        return false;
    }
    const CCall call(this);
    for (int i = 0; i < m_size; ++i) {
        if (m_slots[i]) {
            m_callback.cbRemove(m_context, m_slots[i]);
        }
    }
    if (m_slots != m_inline) {
        delete[] m_slots;
    }
    m_slots = m_inline;
    std::fill(m_inline, m_inline + k_inlineSlots, nullptr);
    m_size = 0;
    m_capacity = k_inlineSlots;
    m_validCount = 0;
    return true;
}

void CCPtrArray::DummyCallback(void* /*context*/, void* /*element*/) {}
