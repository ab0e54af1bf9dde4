#pragma once

#include <memory>

#include "Parse.h"

namespace vyr {

/// Bytes that an object keeps of what it parsed: a copy of its own with a zero byte behind it.
class CBytes {
  public:
    /// Takes over a copy of `length` bytes with a zero byte behind it, in place of what is held. Null: nothing is
    /// held.
    void Take(unsigned char* copy, unsigned int length)
    {
        m_data.reset(copy);
        m_length = copy ? length : 0;
    }
    /// Nothing is held.
    void Clear() { Take(nullptr, 0); }

    /// True: there are bytes.
    explicit operator bool() const { return m_data != nullptr; }
    /// Null when nothing is held.
    const unsigned char* Data() const { return m_data.get(); }
    /// The same as zero-terminated text.
    const char* Text() const { return reinterpret_cast<const char*>(m_data.get()); }
    /// Number of bytes, without the zero byte.
    unsigned int Length() const { return m_length; }
    /// A cursor at their start; nothing can be read when nothing is held.
    IParse::SItem Item() const { return {m_data.get(), m_length, m_length * 8, 0, true}; }

  private:
    std::unique_ptr<unsigned char[]> m_data;
    unsigned int m_length = 0;
};

}  // namespace vyr
