#pragma once

#include "../../platform/Api.h"

/// Hash from a key (a zero-terminated string, or a fixed number of bytes) to an untyped pointer, with
/// one cursor through which the caller reads, walks and removes. Duplicate keys are kept; Find meets
/// the newest first. Data pointers are not owned. Not thread-safe.
///
/// Walk: SetPosition(POS_HEAD, 0), then Key/Data and SetPosition(POS_CURRENT, 1) until it is false.
/// Remove may be called on the way; the next step goes on behind the removed entry.
class VYR_API CCStringHash {
  public:
    /// Where SetPosition counts from.
    enum EPosState {
        POS_HEAD = 0,     ///< counted from the first entry
        POS_CURRENT = 1,  ///< counted from the cursor, either way
        POS_TAIL = 2      ///< counted backwards from the last entry: index 0 or negative
    };

    CCStringHash();
    /// Frees nothing: Destroy comes first, else the assertion sink is told "!m".
    virtual ~CCStringHash();
    CCStringHash(const CCStringHash&) = delete;
    CCStringHash& operator=(const CCStringHash&) = delete;

    /// Makes the table: the smallest prime of at least `tableSize` buckets (1 becomes 2). `keyLength`
    /// is the length of every key in bytes, or all-ones for zero-terminated strings. False when made
    /// already (asserted) or when memory is out.
    bool Create(unsigned int tableSize, unsigned int keyLength);
    /// True between Create and Destroy.
    bool FlagCreate() const { return m != nullptr; }
    /// Frees the table; asserted, and nothing freed, while entries are left.
    virtual void Destroy();

    /// Adds an entry with a copy of the key and puts the cursor on it.
    bool Add(const void* key, const void* data);
    /// Puts the cursor on the newest entry of that key. When there is none: false, and the cursor is
    /// lost if the key's bucket is empty, else it stays.
    bool Find(const void* key);
    /// Key copy of the entry under the cursor, owned by the hash; null between two entries.
    void* Key() const;
    /// Data of the entry under the cursor; null between two entries.
    void* Data() const;
    /// Number of entries.
    int Count() const;
    /// Removes the entry under the cursor and leaves the cursor between its neighbours.
    bool Remove();
    /// Moves the cursor. False, with the cursor where it was, when the way leads out of the list.
    bool SetPosition(EPosState state, int index);

  private:
    struct CSStringHash;
    CSStringHash* m;
};
