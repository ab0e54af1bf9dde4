#include "platform/LogRepeats.h"

#include <algorithm>

namespace vyr {

/// The place's entry, or one that it can have; null: all those near are in use.
CLogRepeats::SEntry* CLogRepeats::m_Find(const SPlace& place, std::int64_t now)
{
    constexpr std::size_t k_near = 16;
    const std::uintptr_t mixed = reinterpret_cast<std::uintptr_t>(place.function) * 31 +
                                 reinterpret_cast<std::uintptr_t>(place.format) * 17 +
                                 static_cast<std::uintptr_t>(place.line) * 7;
    SEntry* room = nullptr;
    for (std::size_t i = 0; i < k_near; ++i) {
        SEntry& entry = m_entries[(mixed + i) % k_places];
        const SPlace& held = entry.place;
        if (held.line == place.line && held.function == place.function && held.format == place.format) {
            return &entry;
        }
        if (!room && (entry.count == 0 || (now >= entry.end && entry.count <= k_shown))) {
            room = &entry;
        }
    }
    return room;
}

bool CLogRepeats::Admit(const SPlace& place, std::int64_t now)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    SEntry* entry = m_Find(place, now);
    if (!entry) {
        return true;
    }
    const bool another = entry->place.line != place.line || entry->place.function != place.function ||
                         entry->place.format != place.format;
    // Lines that another thread left uncounted in between are told with those of this second.
    if (another || entry->count == 0 || (now >= entry->end && entry->count <= k_shown)) {
        *entry = {place, now + k_nanoseconds, 0};
    }
    entry->count += entry->count != UINT32_MAX;
    if (entry->count > k_shown) {
        m_due = std::min(m_due, entry->end);
    }
    return entry->count <= k_shown;
}

bool CLogRepeats::TakeSummary(std::int64_t now, SSummary& summary)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (now < m_due) {
        return false;
    }
    m_due = INT64_MAX;
    bool taken = false;
    for (SEntry& entry : m_entries) {
        if (entry.count <= k_shown) {
            continue;
        }
        if (!taken && now >= entry.end) {
            summary = {entry.place, entry.count - k_shown};
            entry.count = 0;
            taken = true;
        } else {
            m_due = std::min(m_due, entry.end);
        }
    }
    return taken;
}

}  // namespace vyr
