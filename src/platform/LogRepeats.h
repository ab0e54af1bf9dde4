#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>

#include "platform/Platform.h"

namespace vyr {

/// Joins the lines of a log that come from one place within a second: the first k_shown are shown, the rest
/// is counted and told in one line. Thread-safe; a fixed table, which never allocates.
class CLogRepeats {
  public:
    static constexpr unsigned int k_shown = 100;               ///< lines of a place that are shown in a second
    static constexpr std::size_t k_places = 512;               ///< kept at once; a place that finds no room is shown
    static constexpr std::int64_t k_nanoseconds = 1000000000;  ///< a second, from the first line on

    /// Where a line comes from; texts that stay.
    struct SPlace {
        const char* function = nullptr;
        const char* format = nullptr;
        int line = 0;
        ELogPriority priority = LOG_PRIORITY_DEBUG;
    };

    /// How many lines of a place were not shown.
    struct SSummary {
        SPlace place;
        unsigned int more = 0;
    };

    /// Whether a line that comes at `now`, in nanoseconds of a clock that never goes back, is to be shown. To
    /// be asked when TakeSummary has nothing more.
    bool Admit(const SPlace& place, std::int64_t now);

    /// Takes the count of a place whose second was over at `now`; false: there is none.
    bool TakeSummary(std::int64_t now, SSummary& summary);

  private:
    struct SEntry {
        SPlace place{};
        std::int64_t end = 0;    ///< of the second that is counted
        unsigned int count = 0;  ///< lines in it; 0: never used
    };

    SEntry* m_Find(const SPlace& place, std::int64_t now);

    std::mutex m_mutex;
    std::int64_t m_due = INT64_MAX;  ///< when the first second with lines that were not shown ends
    std::array<SEntry, k_places> m_entries{};
};

}  // namespace vyr
