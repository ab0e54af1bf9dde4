#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <vector>

/// Takes a fuzz input apart. Past its end everything is 0.
class CScript {
  public:
    CScript(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size) {}

    bool Done() const { return m_size == 0; }

    std::uint8_t Byte()
    {
        if (m_size == 0) {
            return 0;
        }
        --m_size;
        return *m_data++;
    }

    std::uint32_t Word() { return Byte() | static_cast<std::uint32_t>(Byte()) << 8; }

    /// What is left, in a heap block of exactly its size.
    std::vector<unsigned char> Rest() const { return std::vector<unsigned char>(m_data, m_data + m_size); }

  private:
    const std::uint8_t* m_data;
    std::size_t m_size;
};

/// Ends the run when what must hold does not.
inline void Require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

/// Calls `use` with each of the first `most` parts of an input that are not empty, every one in a heap
/// block of exactly its size; "\xFFNEXT" stands between them.
template <class TUse>
void ForEachPart(const std::vector<unsigned char>& all, int most, TUse use)
{
    static const unsigned char k_mark[] = {0xFF, 'N', 'E', 'X', 'T'};
    auto begin = all.begin();
    for (int i = 0; i < most && begin != all.end(); ++i) {
        const auto end = std::search(begin, all.end(), std::begin(k_mark), std::end(k_mark));
        const std::vector<unsigned char> part(begin, end);
        if (!part.empty()) {
            use(part);
        }
        begin = end == all.end() ? end : end + sizeof k_mark;
    }
}
