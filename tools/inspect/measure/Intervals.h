#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace vyr::inspect {

/// A set of numbers, as intervals of them.
class CIntervals {
  public:
    /// Adds the numbers from `begin` to before `end`, which is behind it. False, and nothing is added: that would make
    /// more than `most` intervals.
    bool Add(std::uint64_t begin, std::uint64_t end, std::size_t most)
    {
        // The usual case: what follows the last.
        if (!m_parts.empty() && begin >= m_parts.back().first && begin <= m_parts.back().second) {
            m_count += end > m_parts.back().second ? end - m_parts.back().second : 0;
            m_parts.back().second = std::max(m_parts.back().second, end);
            return true;
        }
        const auto from = std::lower_bound(m_parts.begin(), m_parts.end(), begin,
                                           [](const TPart& part, std::uint64_t at) { return part.second < at; });
        auto to = from;
        for (; to != m_parts.end() && to->first <= end; ++to) {
            begin = std::min(begin, to->first);
            end = std::max(end, to->second);
            m_count -= to->second - to->first;
        }
        if (from == to) {
            if (m_parts.size() >= most) {
                return false;
            }
            m_parts.insert(from, {begin, end});
        } else {
            *from = {begin, end};
            m_parts.erase(from + 1, to);
        }
        m_count += end - begin;
        return true;
    }
    bool Has(std::uint64_t number) const
    {
        const auto part = std::lower_bound(m_parts.begin(), m_parts.end(), number,
                                           [](const TPart& one, std::uint64_t at) { return one.second <= at; });
        return part != m_parts.end() && part->first <= number;
    }
    /// Takes the first interval out.
    void DropFirst()
    {
        m_count -= m_parts.front().second - m_parts.front().first;
        m_parts.erase(m_parts.begin());
    }
    /// The intervals, in order: the first number of each, and that behind its last.
    const std::vector<std::pair<std::uint64_t, std::uint64_t>>& All() const { return m_parts; }
    /// How many numbers, and in how many intervals.
    std::uint64_t Count() const { return m_count; }
    std::size_t Parts() const { return m_parts.size(); }
    /// The first number, and that behind the last; of no meaning without any.
    std::uint64_t Begin() const { return m_parts.empty() ? 0 : m_parts.front().first; }
    std::uint64_t End() const { return m_parts.empty() ? 0 : m_parts.back().second; }
    void Clear()
    {
        m_parts = {};
        m_count = 0;
    }

  private:
    using TPart = std::pair<std::uint64_t, std::uint64_t>;

    std::vector<TPart> m_parts;  ///< in order, with something between them
    std::uint64_t m_count = 0;
};

}  // namespace vyr::inspect
