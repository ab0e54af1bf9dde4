#pragma once

#include <cstddef>
#include <list>
#include <map>
#include <utility>

namespace vyr::inspect {

/// A map of the newest entries: when there are too many, the one goes that was held longest ago.
template <class TKey, class TValue>
class CBoundedMap {
  public:
    explicit CBoundedMap(std::size_t most) : m_most(most) {}

    /// Null: there is none.
    const TValue* Find(const TKey& key) const
    {
        const auto entry = m_entries.find(key);
        return entry != m_entries.end() ? &entry->second.first : nullptr;
    }
    /// The entry of the key, an empty one if there was none. `letGo` is called with key and entry of the one that
    /// goes for it.
    template <class TLetGo>
    TValue& Hold(const TKey& key, TLetGo letGo)
    {
        const auto [entry, isNew] = m_entries.try_emplace(key);
        auto& [value, place] = entry->second;
        if (!isNew) {
            m_order.splice(m_order.end(), m_order, place);
            return value;
        }
        place = m_order.insert(m_order.end(), key);
        if (m_order.size() > m_most) {
            const auto oldest = m_entries.find(m_order.front());
            letGo(oldest->first, oldest->second.first);
            m_entries.erase(oldest);
            m_order.pop_front();
        }
        return value;
    }
    TValue& Hold(const TKey& key)
    {
        return Hold(key, [](const TKey&, const TValue&) {});
    }

  private:
    const std::size_t m_most;
    std::map<TKey, std::pair<TValue, typename std::list<TKey>::iterator>> m_entries;
    std::list<TKey> m_order;  ///< of m_entries, the first to go first
};

}  // namespace vyr::inspect
