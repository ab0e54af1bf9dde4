#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace vyr {

/// Hash over numbers and texts, mixed from a seed that differs from process to process: they come off the
/// air, and nobody who sends them must be able to crowd one bucket of a table.
class CSeededHash {
  public:
    CSeededHash() : m_hash(Seed()) {}

    CSeededHash& Add(std::uint64_t value)
    {
        m_hash = (m_hash ^ value) * k_factor;
        m_hash ^= m_hash >> 29;
        return *this;
    }

    /// Four bytes at a time: of eight, the highest bit is nothing that a multiplication would spread.
    CSeededHash& Add(std::string_view text)
    {
        Add(text.size());
        for (std::uint32_t part = 0; !text.empty(); part = 0) {
            const std::size_t size = std::min(text.size(), sizeof part);
            std::memcpy(&part, text.data(), size);
            text.remove_prefix(size);
            Add(part);
        }
        return *this;
    }

    std::size_t Value() const { return static_cast<std::size_t>(m_hash); }

  private:
    static constexpr std::uint64_t k_factor = 0x9E3779B97F4A7C15u;

    /// The time of the first use, and the address of a static object, which systems lay out at random.
    static std::uint64_t Seed()
    {
        static const std::uint64_t s_seed =
            static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count()) * k_factor ^
            reinterpret_cast<std::uintptr_t>(&s_seed);
        return s_seed;
    }

    std::uint64_t m_hash;
};

}  // namespace vyr
