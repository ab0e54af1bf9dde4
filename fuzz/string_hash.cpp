// A script of calls on CCStringHash, against std::unordered_multimap for what it holds and a vector
// for the order of its list.
// Sources: src/common/CoreOS/StringHash.cpp
#include <algorithm>
#include <string>
#include <unordered_map>

#include "Fuzz.h"
#include "common/CoreOS/StringHash.h"
#include "platform/Platform.h"

namespace {

struct SEntry {
    std::string key;
    unsigned int bucket;
    std::uintptr_t data;
};

unsigned int Bucket(const std::string& key, unsigned int tableSize)
{
    unsigned int h = 0;
    for (const char c : key) {
        h = h * 33 + static_cast<unsigned char>(c);
    }
    return h % tableSize;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    SetLogPriority(LOG_PRIORITY_SILENT);
    CScript script(data, size);
    static constexpr unsigned int k_sizes[][2] = {{1, 2}, {4, 5}, {10, 11}, {13, 13}};
    const unsigned int(&sizes)[2] = k_sizes[script.Byte() % 4];
    CCStringHash hash;
    Require(hash.Create(sizes[0], ~0u));

    std::vector<SEntry> list;
    std::unordered_multimap<std::string, std::uintptr_t> model;
    // The cursor: an index, none (-1), or the gap before the index that `gap` names (-2).
    int cursor = -1;
    int gap = 0;
    std::uintptr_t next = 1;
    while (!script.Done()) {
        const std::uint8_t op = script.Byte();
        const std::string key(1 + op % 3u, static_cast<char>('a' + script.Byte() % 8));
        const unsigned int bucket = Bucket(key, sizes[1]);
        const int count = static_cast<int>(list.size());
        switch (op % 6) {
            case 0: {
                Require(hash.Add(key.c_str(), reinterpret_cast<void*>(next)));
                const auto place =
                    std::find_if(list.begin(), list.end(), [bucket](const SEntry& e) { return e.bucket >= bucket; });
                cursor = static_cast<int>(place - list.begin());
                list.insert(place, {key, bucket, next});
                model.emplace(key, next++);
                break;
            }
            case 1: {
                const bool stands = cursor >= 0 && list[static_cast<std::size_t>(cursor)].key == key;
                const auto place =
                    std::find_if(list.begin(), list.end(), [&key](const SEntry& e) { return e.key == key; });
                const bool found = hash.Find(key.c_str());
                Require(found == (model.count(key) > 0) && found == (place != list.end()));
                if (!stands && found) {
                    cursor = static_cast<int>(place - list.begin());
                } else if (!found && std::none_of(list.begin(), list.end(),
                                                  [bucket](const SEntry& e) { return e.bucket == bucket; })) {
                    cursor = -1;
                }
                break;
            }
            case 2:
                Require(hash.Remove() == (cursor >= 0));
                if (cursor >= 0) {
                    const SEntry entry = list[static_cast<std::size_t>(cursor)];
                    list.erase(list.begin() + cursor);
                    const auto range = model.equal_range(entry.key);
                    model.erase(std::find_if(range.first, range.second,
                                             [&entry](const auto& pair) { return pair.second == entry.data; }));
                    gap = cursor;
                    cursor = -2;
                }
                break;
            default: {
                const auto state = static_cast<CCStringHash::EPosState>(op % 6 - 3);
                const int steps = script.Byte() % 9 - 4;
                int target = -1;
                if (state == CCStringHash::POS_HEAD && steps >= 0) {
                    target = steps;
                } else if (state == CCStringHash::POS_TAIL && steps <= 0) {
                    target = count - 1 + steps;
                } else if (state == CCStringHash::POS_CURRENT && cursor == -2) {
                    target = steps > 0 ? gap + steps - 1 : (steps < 0 ? gap + steps : -2);
                } else if (state == CCStringHash::POS_CURRENT && cursor >= 0) {
                    target = cursor + steps;
                }
                const bool stays = target == -2 && state == CCStringHash::POS_CURRENT && cursor == -2 && steps == 0;
                const bool moved = count > 0 && (stays || (target >= 0 && target < count));
                Require(hash.SetPosition(state, steps) == moved);
                cursor = moved && !stays ? target : cursor;
                break;
            }
        }
        Require(hash.Count() == static_cast<int>(list.size()) && model.size() == list.size());
        const SEntry* entry = cursor >= 0 ? &list[static_cast<std::size_t>(cursor)] : nullptr;
        Require(hash.Data() == (entry ? reinterpret_cast<void*>(entry->data) : nullptr));
        Require(entry ? entry->key == static_cast<char*>(hash.Key()) : !hash.Key());
    }
    while (hash.SetPosition(CCStringHash::POS_HEAD, 0)) {
        hash.Remove();
    }
    hash.Destroy();
    return 0;
}
