#pragma once

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "common/Bytes.h"

namespace vyr {

// What IParse::t_Value, t_Value64, t_Byte and t_AllocAndCopy do, assertions in their name included.
unsigned int ReadValue(IParse::SItem* item, unsigned int bits);
unsigned long long ReadValue64(IParse::SItem* item, unsigned int bits);
const unsigned char* ReadBytes(IParse::SItem* item, unsigned int count);
unsigned char* ReadCopy(IParse::SItem* item, unsigned int count);

/// Whole bytes behind the cursor.
inline unsigned int BytesLeft(const IParse::SItem& item)
{
    const unsigned int position = item.bitpos / 8;
    return position < item.size ? item.size - position : 0;
}

/// Reads an item field by field. The first read that does not fit makes the item invalid: that field and all
/// behind it are 0, absent or empty. Each read of a null item is asserted.
class CBitReader {
  public:
    explicit CBitReader(IParse::SItem* item) : m_item(item) {}

    /// Whether every read so far had its bytes.
    bool Valid() const { return m_item && m_item->valid; }
    /// Nothing behind the cursor can be read.
    void Stop() { m_item->valid = false; }
    /// The cursor, for what has a parser of its own.
    IParse::SItem* Item() { return m_item; }
    /// Whole bytes behind the cursor.
    unsigned int Left() const { return BytesLeft(*m_item); }

    unsigned int Value(unsigned int bits) { return ReadValue(m_item, bits); }
    unsigned long long Value64(unsigned int bits) { return ReadValue64(m_item, bits); }
    bool Flag() { return Value(1) != 0; }

    /// 0 when it is not there.
    template <class T>
    void Field(unsigned int bits, T& field)
    {
        field = static_cast<T>(Value(bits));
    }

    /// As it was when it is not there.
    template <class T>
    void Field(unsigned int bits, std::optional<T>& field)
    {
        const unsigned int value = Value(bits);
        if (Valid()) {
            field = static_cast<T>(value);
        }
    }

    /// The next `count` bytes where they lie; null when they are not there.
    const unsigned char* Bytes(unsigned int count) { return ReadBytes(m_item, count); }

    /// The same as a view, which is empty then.
    std::string_view View(unsigned int count)
    {
        // A read that failed inside a byte leaves a cursor that Bytes takes for misuse.
        const unsigned char* bytes = Valid() ? Bytes(count) : nullptr;
        return bytes ? std::string_view(reinterpret_cast<const char*>(bytes), count) : std::string_view();
    }

    /// A length of `bits` bits, then as many bytes.
    std::string_view CountedView(unsigned int bits) { return View(Value(bits)); }

    /// Copies the next `count` bytes in place of what is held. False: they are not there, nothing is held.
    bool Keep(unsigned int count, CBytes& bytes)
    {
        bytes.Take(ReadCopy(m_item, count), count);
        return static_cast<bool>(bytes);
    }

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
        list.shrink_to_fit();  // an entry can be many times its bytes
    }

    /// Entries that are read whole at once.
    template <class TEntry, class THead>
    void Entries(unsigned int count, std::vector<TEntry>& list, THead head)
    {
        Entries(count, list, head, [](TEntry& /*entry*/) {});
    }

    /// Entries behind their number, 8 bits.
    template <class TEntry, class... TRead>
    void List(std::vector<TEntry>& list, TRead... read)
    {
        const unsigned int count = Value(8);
        Entries(count, list, read...);
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
    IParse::SItem* m_item;
};

}  // namespace vyr
