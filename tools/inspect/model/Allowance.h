#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "base/Limits.h"

namespace vyr::inspect {

/// How long one form of the report may become: a constant, and a multiple of the bytes that were received.
class CAllowance {
  public:
    static constexpr std::uint64_t k_constant = 1048576;
    static constexpr std::uint64_t k_multiple = 64;
    static constexpr std::uint64_t k_reserve = 262144;  ///< of the constant, kept for the summary

    explicit CAllowance(std::uint64_t constant = k_constant - k_reserve, std::uint64_t multiple = k_multiple)
        : m_constant(constant), m_multiple(multiple)
    {
    }

    void Received(std::size_t bytes) { m_received += bytes; }
    void Spend(std::size_t bytes) { m_spent += bytes; }
    /// What may still be spent.
    std::size_t Room() const
    {
        const std::uint64_t all = m_constant + m_multiple * m_received;
        return Limit(static_cast<std::size_t>(all - std::min(all, m_spent)));
    }

  private:
    std::uint64_t m_constant;
    std::uint64_t m_multiple;
    std::uint64_t m_received = 0;
    std::uint64_t m_spent = 0;
};

}  // namespace vyr::inspect
