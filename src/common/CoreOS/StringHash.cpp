#include "common/CoreOS/StringHash.h"

#include <cstdint>
#include <cstring>
#include <new>

#include "common/OutOfMemory.h"
#include "platform/Log.h"

namespace {

struct SStringHashEntry {
    unsigned char* key;
    SStringHashEntry* previous;
    SStringHashEntry* next;
    const void* data;
    unsigned int bucket;
};

constexpr std::size_t k_room = 112;

/// h = h x 33 + byte over the key's bytes, unsigned, modulo 2^32.
unsigned int _StringHashKey(const unsigned char* key, std::size_t length)
{
    unsigned int h = 0;
    for (std::size_t i = 0; i < length; ++i) {
        h = h * 33 + key[i];
    }
    return h;
}

/// The smallest prime of at least n, but 2 for 1 and 0 for 0.
std::uint64_t TableSize(std::uint64_t n)
{
    if (n < 2) {
        return n * 2;
    }
    for (std::uint64_t d = 2; d * d <= n; ++d) {
        if (n % d == 0) {
            ++n;
            d = 1;
        }
    }
    return n;
}

}  // namespace

/// All entries stand in one list, ascending by bucket, the newest of a bucket first; a bucket points
/// at the first entry of its run. `dummy` is the cursor's place after a removal: it carries the links
/// of the removed entry, so that a step from it leads to that entry's neighbours.
struct CCStringHash::CSStringHash {
    SStringHashEntry* first;
    SStringHashEntry* last;
    SStringHashEntry* cur;
    SStringHashEntry dummy;
    unsigned int size;
    unsigned int tableSize;
    SStringHashEntry** table;
    int keyLength;
    unsigned char* room;  ///< for the next entry
    unsigned char* roomBegin;

    /// Parsers make a hash of a handful of handlers each: the table stands in the block of the state, and
    /// behind it room for the first entries.
    static CSStringHash* New(std::size_t buckets)
    {
        const std::size_t bytes = sizeof(CSStringHash) + buckets * sizeof(SStringHashEntry*);
        void* block = ::operator new(bytes + k_room, std::nothrow);
        if (!block) {
            return nullptr;
        }
        auto* hash = new (block) CSStringHash{};
        hash->table = reinterpret_cast<SStringHashEntry**>(hash + 1);
        std::memset(hash->table, 0, buckets * sizeof(SStringHashEntry*));
        hash->room = hash->roomBegin = static_cast<unsigned char*>(block) + bytes;
        return hash;
    }

    static void Delete(CSStringHash* hash) { ::operator delete(hash); }

    bool InRoom(const unsigned char* block) const { return block >= roomBegin && block < roomBegin + k_room; }

    /// An entry and its key copy behind it, in one block.
    SStringHashEntry* NewEntry(const void* key, std::size_t bytes, const void* data, unsigned int bucket)
    {
        std::size_t needed = sizeof(SStringHashEntry) + bytes;
        needed += (alignof(SStringHashEntry) - needed % alignof(SStringHashEntry)) % alignof(SStringHashEntry);
        unsigned char* block = room;
        if (needed <= static_cast<std::size_t>(roomBegin + k_room - room)) {
            room += needed;
        } else {
            block = new unsigned char[needed];
        }
        unsigned char* copy = block + sizeof(SStringHashEntry);
        std::memcpy(copy, key, bytes);
        return new (block) SStringHashEntry{copy, nullptr, nullptr, data, bucket};
    }

    /// Room is free again when the last entry is gone.
    void DeleteEntry(SStringHashEntry* entry)
    {
        unsigned char* block = reinterpret_cast<unsigned char*>(entry);
        if (!InRoom(block)) {
            delete[] block;
        }
        if (size == 0) {
            room = roomBegin;
        }
    }

    std::size_t Length(const void* key) const
    {
        return keyLength == -1 ? std::strlen(static_cast<const char*>(key)) : static_cast<std::size_t>(keyLength);
    }

    bool Equal(const SStringHashEntry* entry, const void* key) const
    {
        return keyLength == -1
                   ? std::strcmp(reinterpret_cast<const char*>(entry->key), static_cast<const char*>(key)) == 0
                   : std::memcmp(entry->key, key, static_cast<std::size_t>(keyLength)) == 0;
    }

    unsigned int Bucket(const void* key, std::size_t length) const
    {
        return length == 0 ? 0 : _StringHashKey(static_cast<const unsigned char*>(key), length) % tableSize;
    }

    /// Start of the first run behind bucket b; null: none.
    SStringHashEntry* NextRun(unsigned int b) const
    {
        while (++b < tableSize) {
            if (table[b]) {
                return table[b];
            }
        }
        return nullptr;
    }

    void LinkBefore(SStringHashEntry* entry, SStringHashEntry* successor)
    {
        entry->next = successor;
        entry->previous = successor ? successor->previous : last;
        (entry->previous ? entry->previous->next : first) = entry;
        (successor ? successor->previous : last) = entry;
    }

    void Unlink(SStringHashEntry* entry)
    {
        (entry->previous ? entry->previous->next : first) = entry->next;
        (entry->next ? entry->next->previous : last) = entry->previous;
    }
};

CCStringHash::CCStringHash() : m(nullptr) {}

CCStringHash::~CCStringHash()
{
    if (m) {
        // Required: no log line, only the sink.
        _TCParserAssert("!m", vyr::k_source.text, __LINE__);
    }
}

bool CCStringHash::Create(unsigned int tableSize, unsigned int keyLength)
{
    if (!VYR_ASSERT(!m, "!m") || !VYR_ASSERT(keyLength <= INT32_MAX || keyLength == UINT32_MAX, "keyLength")) {
        return false;
    }
    const std::uint64_t buckets = TableSize(tableSize);
    m = buckets <= UINT32_MAX ? CSStringHash::New(static_cast<std::size_t>(buckets)) : nullptr;
    if (!VYR_CHECK(m, "table")) {
        return false;
    }
    m->tableSize = static_cast<unsigned int>(buckets);
    m->keyLength = static_cast<int>(keyLength);
    return true;
}

void CCStringHash::Destroy()
{
    if (!VYR_ASSERT(m, "m") || !VYR_ASSERT(m->size == 0, "m->size == 0")) {
        return;
    }
    CSStringHash::Delete(m);
    m = nullptr;
}

bool CCStringHash::Add(const void* key, const void* data)
try {
    if (!VYR_ASSERT(m, "m") || !VYR_ASSERT(key, "key") || !VYR_ASSERT(m->tableSize > 0, "m->tableSize > 0")) {
        return false;
    }
    const std::size_t length = m->Length(key);
    const std::size_t bytes = m->keyLength == -1 ? length + 1 : length;
    SStringHashEntry* entry = m->NewEntry(key, bytes, data, m->Bucket(key, length));
    SStringHashEntry*& run = m->table[entry->bucket];
    m->LinkBefore(entry, run ? run : m->NextRun(entry->bucket));
    run = entry;
    ++m->size;
    m->cur = entry;
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool CCStringHash::Find(const void* key)
{
    if (!VYR_ASSERT(m, "m") || !key || m->tableSize == 0) {
        return false;
    }
    if (m->cur && m->cur != &m->dummy && m->Equal(m->cur, key)) {
        return true;
    }
    const unsigned int b = m->Bucket(key, m->Length(key));
    if (!m->table[b]) {
        m->cur = nullptr;
        return false;
    }
    for (SStringHashEntry* entry = m->table[b]; entry && entry->bucket == b; entry = entry->next) {
        if (m->Equal(entry, key)) {
            m->cur = entry;
            return true;
        }
    }
    // Required: unlike above, the cursor stays.
    return false;
}

void* CCStringHash::Key() const
{
    if (!VYR_ASSERT(m, "m") || !VYR_ASSERT(m->cur, "m->cur")) {
        return nullptr;
    }
    return m->cur->key;
}

void* CCStringHash::Data() const
{
    if (!VYR_ASSERT(m, "m") || !VYR_ASSERT(m->cur, "m->cur")) {
        return nullptr;
    }
    return const_cast<void*>(m->cur->data);
}

int CCStringHash::Count() const
{
    return VYR_ASSERT(m, "m") ? static_cast<int>(m->size) : 0;
}

bool CCStringHash::Remove()
{
    if (!VYR_ASSERT(m, "m") ||
        !VYR_ASSERT(m->cur != nullptr && m->cur != &m->dummy, "m->cur != NULL && m->cur != &m->dummy")) {
        return false;
    }
    SStringHashEntry* entry = m->cur;
    const unsigned int b = entry->bucket;
    if (m->table[b] == entry) {
        m->table[b] = entry->next && entry->next->bucket == b ? entry->next : nullptr;
    }
    m->dummy.previous = entry->previous;
    m->dummy.next = entry->next;
    m->Unlink(entry);
    --m->size;
    m->DeleteEntry(entry);
    m->cur = &m->dummy;
    return true;
}

bool CCStringHash::SetPosition(EPosState state, int index)
{
    if (!VYR_ASSERT(m, "m") || !m->first) {
        return false;
    }
    SStringHashEntry* entry = m->cur;
    switch (state) {
        case POS_HEAD:
            if (!VYR_ASSERT(index >= 0, "index >= 0")) {
                return false;
            }
            entry = m->first;
            break;
        case POS_CURRENT:
            break;
        case POS_TAIL:
            if (!VYR_ASSERT(index <= 0, "index <= 0")) {
                return false;
            }
            entry = m->last;
            break;
        default:
            return true;
    }
    for (; entry && index > 0; --index) {
        entry = entry->next;
    }
    for (; entry && index < 0; ++index) {
        entry = entry->previous;
    }
    if (!entry) {
        return false;
    }
    m->cur = entry;
    return true;
}
