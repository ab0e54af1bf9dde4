#pragma once

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "common/Parse.h"

namespace vyr {

/// Reads a payload field by field. The first read that does not fit ends it: that field and all behind it are
/// absent. Views lie in the payload's bytes.
class CPayloadReader final : private IParse {
  public:
    explicit CPayloadReader(const SItem& payload) : m_item(payload) {}

    /// Whether every read so far had its bytes.
    bool Valid() const { return m_item.valid; }
    /// Nothing behind the cursor can be read.
    void Stop() { m_item.valid = false; }
    /// The cursor, for what has a parser of its own.
    SItem* Item() { return &m_item; }

    /// 0 when it is not there, as for reserved bits and counts.
    unsigned int Value(unsigned int bits) { return t_Value(&m_item, bits); }
    unsigned long long Value64(unsigned int bits) { return t_Value64(&m_item, bits); }
    bool Flag() { return Value(1) != 0; }

    template <class T>
    void Field(unsigned int bits, std::optional<T>& field)
    {
        const unsigned int value = Value(bits);
        if (Valid()) {
            field = static_cast<T>(value);
        }
    }

    /// Bytes of the whole payload behind the cursor.
    unsigned int Left() const { return m_item.size - m_item.bitpos / 8; }

    /// The next `count` bytes; empty when they are not there.
    std::string_view View(unsigned int count)
    {
        // A read that failed inside a byte leaves a cursor that t_Byte takes for misuse.
        const unsigned char* bytes = Valid() ? t_Byte(&m_item, count) : nullptr;
        return bytes ? std::string_view(reinterpret_cast<const char*>(bytes), count) : std::string_view();
    }

    /// A length of `bits` bits, then as many bytes.
    std::string_view CountedView(unsigned int bits) { return View(Value(bits)); }

    /// `count` entries: `head(entry)` reads what an entry must have to be listed, `rest(entry)` what follows.
    template <class TEntry, class THead, class TRest>
    void Entries(unsigned int count, std::vector<TEntry>& list, THead head, TRest rest)
    {
        for (unsigned int i = 0; i < count && Valid(); ++i) {
            TEntry entry{};
            head(entry);
            if (Valid()) {
                rest(list.emplace_back(std::move(entry)));
            }
        }
    }

    /// The same behind their number, 8 bits.
    template <class TEntry, class THead, class TRest>
    void List(std::vector<TEntry>& list, THead head, TRest rest)
    {
        const unsigned int count = Value(8);
        Entries(count, list, head, rest);
    }

    /// A list of assets, which begin with their id behind a length of 32 bits; `rest(asset)` reads what follows.
    template <class TAsset, class TRest>
    void Assets(std::vector<TAsset>& assets, TRest rest)
    {
        assets.clear();
        List(
            assets, [this](TAsset& asset) { asset.assetId = CountedView(32); }, rest);
    }

  private:
    bool Parse(SItem* /*item*/) override { return false; }

    SItem m_item;
};

}  // namespace vyr
