#pragma once

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "mmt/MMTBytes.h"
#include "mmt/desc/MMTDesc.h"

/// Base of the descriptors whose payload is kept: read inside the bounds of their own length. Fields that do
/// not fit in it are absent, a group of fields that does not fit whole is absent as one, and a list ends
/// before its first entry whose head does not fit. Every std::string_view of their records lies in RawData():
/// it is not zero-terminated, and it lives until the next Parse or the descriptor's end.
class VYR_API CMMTDescPayload : public CMMTDesc {
  public:
    ~CMMTDescPayload() override;

    /// Leaves the cursor at the end that the length names. False: another tag, a length that runs past the
    /// item (which stays valid), or a cursor inside a byte.
    bool Parse(SItem* item) override;

    /// The payload behind the length, whatever was understood of it; null before Parse.
    const unsigned char* RawData() const { return m_raw.Data(); }
    /// Its length in bytes; 0 before Parse.
    unsigned int RawLength() const { return m_raw.Length(); }

  protected:
    /// `name` is the class's, for the log.
    CMMTDescPayload(const char* name, unsigned int tag);

    /// Whether the class reads descriptors of this tag.
    virtual bool t_Takes(unsigned int tag) const;
    /// Reads the payload, which is all that the item has, into the object's records in place of earlier ones.
    virtual void t_ParsePayload(SItem* payload) = 0;

    /// One bit.
    bool t_Flag(SItem* item) { return t_Value(item, 1) != 0; }
    /// The next `count` bytes; empty when they are not there.
    std::string_view t_View(SItem* item, unsigned int count);
    /// A length of `bits` bits, then as many bytes.
    std::string_view t_CountedView(SItem* item, unsigned int bits);
    /// A field of `bits` bits; it stays absent when it is not there.
    template <class T>
    void t_Field(SItem* item, unsigned int bits, std::optional<T>& field)
    {
        const unsigned int value = t_Value(item, bits);
        if (item->valid) {
            field = static_cast<T>(value);
        }
    }
    /// A list behind its number of entries, 8 bits: `head(entry)` reads what an entry must have to be listed,
    /// `rest(entry)` what follows.
    template <class TEntry, class THead, class TRest>
    void t_List(SItem* item, std::vector<TEntry>& list, THead head, TRest rest)
    {
        const unsigned int count = t_Value(item, 8);
        t_Entries(item, count, list, head, rest);
    }
    /// The same with the number at hand.
    template <class TEntry, class THead, class TRest>
    void t_Entries(SItem* item, unsigned int count, std::vector<TEntry>& list, THead head, TRest rest)
    {
        for (unsigned int i = 0; i < count && item->valid; ++i) {
            TEntry entry{};
            head(entry);
            if (item->valid) {
                rest(list.emplace_back(std::move(entry)));
            }
        }
    }
    /// A list of assets, which begin with their id behind a length of 32 bits; `rest(asset)` reads what follows.
    template <class TAsset, class TRest>
    void t_Assets(SItem* item, std::vector<TAsset>& assets, TRest rest)
    {
        assets.clear();
        t_List(
            item, assets, [&](TAsset& asset) { asset.assetId = t_CountedView(item, 32); }, rest);
    }

  private:
    const char* m_name;
    unsigned int m_wanted;
    vyr::CBytes m_raw;
};
