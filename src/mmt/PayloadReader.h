#pragma once

#include <optional>
#include <string_view>

#include "common/Parse.h"

namespace vyr {

/// Reads a payload field by field. The first read that does not fit ends it: that field and all behind it are
/// absent. Views lie in the payload's bytes.
class CPayloadReader final : private IParse {
  public:
    explicit CPayloadReader(const SItem& payload) : m_item(payload) {}

    /// Whether every read so far had its bytes.
    bool Valid() const { return m_item.valid; }
    /// The cursor, for what has a parser of its own.
    SItem* Item() { return &m_item; }

    /// 0 when it is not there, as for reserved bits and counts.
    unsigned int Value(unsigned int bits) { return t_Value(&m_item, bits); }
    bool Flag() { return Value(1) != 0; }

    template <class T>
    void Field(unsigned int bits, std::optional<T>& field)
    {
        const unsigned int value = Value(bits);
        if (Valid()) {
            field = static_cast<T>(value);
        }
    }

    /// The next `count` bytes; null data when they are not there.
    std::string_view View(unsigned int count)
    {
        const unsigned char* bytes = t_Byte(&m_item, count);
        return bytes ? std::string_view(reinterpret_cast<const char*>(bytes), count) : std::string_view();
    }

  private:
    bool Parse(SItem* /*item*/) override { return false; }

    SItem m_item;
};

}  // namespace vyr
