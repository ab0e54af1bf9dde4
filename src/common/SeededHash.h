#pragma once

#include <cstddef>
#include <cstdint>

namespace vyr {

/// Hash over numbers, mixed from a seed that differs from process to process: the numbers come off
/// the air, and nobody who sends them must be able to crowd one bucket of a table.
class CSeededHash {
  public:
    CSeededHash() : m_hash(Seed()) {}

    CSeededHash& Add(std::uint64_t value)
    {
        m_hash = (m_hash ^ value) * k_factor;
        m_hash ^= m_hash >> 29;
        return *this;
    }

    std::size_t Value() const { return static_cast<std::size_t>(m_hash); }

  private:
    static constexpr std::uint64_t k_factor = 0x9E3779B97F4A7C15u;

    /// The address of a static object, which the system lays out at random.
    static std::uint64_t Seed()
    {
        static const char s_anchor = 0;
        return reinterpret_cast<std::uintptr_t>(&s_anchor) * k_factor;
    }

    std::uint64_t m_hash;
};

}  // namespace vyr
