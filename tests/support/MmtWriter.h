#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

/// Writes binary tables: fields most significant bit first, and length fields that fill themselves in.
class CMmtBuilder {
  public:
    /// The low `bits` bits of `value`.
    CMmtBuilder& Put(unsigned int bits, std::uint64_t value)
    {
        for (unsigned int i = bits; i-- > 0; ++m_bits) {
            if (m_bits % 8 == 0) {
                m_bytes.push_back('\0');
            }
            const unsigned char bit = static_cast<unsigned char>((value >> i & 1) << (7 - m_bits % 8));
            m_bytes.back() = static_cast<char>(static_cast<unsigned char>(m_bytes.back()) | bit);
        }
        return *this;
    }
    /// Bytes as they are, at a byte boundary.
    CMmtBuilder& Put(const std::string& bytes)
    {
        Demand(m_bits % 8 == 0);
        m_bytes += bytes;
        m_bits += bytes.size() * 8;
        return *this;
    }
    /// A length field of `bits` bits that counts the bytes from behind it up to its Close.
    CMmtBuilder& Open(unsigned int bits)
    {
        Put(bits, 0);
        Demand(m_bits % 8 == 0);
        m_open.push_back({m_bytes.size(), bits / 8});
        return *this;
    }
    /// Fills in the length field opened last.
    CMmtBuilder& Close()
    {
        Demand(!m_open.empty());
        const SOpen open = m_open.back();
        m_open.pop_back();
        std::size_t length = m_bytes.size() - open.begin;
        for (std::size_t i = 1; i <= open.bytes; ++i, length >>= 8) {
            m_bytes[open.begin - i] = static_cast<char>(length);
        }
        return *this;
    }
    /// Bytes so far, one that is begun included.
    std::size_t Size() const { return m_bytes.size(); }
    /// The bytes; every length field is closed.
    std::string Bytes() const
    {
        Demand(m_open.empty() && m_bits % 8 == 0);
        return m_bytes;
    }

  private:
    static void Demand(bool inOrder)
    {
        if (!inOrder) {
            throw std::logic_error("fields out of step");
        }
    }

    struct SOpen {
        std::size_t begin;
        std::size_t bytes;
    };

    std::string m_bytes;
    std::size_t m_bits = 0;
    std::vector<SOpen> m_open;
};
