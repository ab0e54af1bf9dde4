#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/JsonFwd.h"
#include "model/Source.h"

namespace vyr::inspect {

/// Places of an element in two arrays.
struct SAligned {
    static constexpr std::size_t k_none = static_cast<std::size_t>(-1);

    std::size_t before = k_none;  ///< none: it was added
    std::size_t after = k_none;   ///< none: it was removed
};
/// Which elements of two arrays are the same thing: by what names them (an id, an address, the value itself), or when
/// nothing does, those alike at either end, and the others one by one. First those of `after`, in order.
std::vector<SAligned> AlignedElements(const TJson& before, const TJson& after);

/// What differs, for people.
struct SDifferences {
    std::vector<std::string> lines;  ///< "Representation 10 bandwidth: 176 -> 352", printable
    std::uint64_t count = 0;         ///< of all, those that are not in `lines` as well
};
SDifferences Differences(const TJson& before, const TJson& after);

/// What differs, for programs: a JSON Patch (RFC 6902). Null: it would have more than 1,000 steps.
TJson BoundedPatch(const TJson& before, const TJson& after);
/// The same; null also when it would be longer than `after`.
TJson ChangesPatch(const TJson& before, const TJson& after);

/// What a form of the report has shown of each document, so that of the next one only what changed need be shown.
class CLastShown {
  public:
    static constexpr std::size_t k_mostBytes = 33554432;  ///< of JSON, of one input, about

    struct SShown {
        std::shared_ptr<const TJson> json;
        std::uint64_t packet = 0;
    };

    explicit CLastShown(std::size_t mostBytes = k_mostBytes) : m_most(mostBytes) {}

    /// Null: it is not kept.
    const SShown* Find(const std::string& key) const;
    /// What stands from now on; null: nothing that could be compared. The oldest go when all are too many.
    void Keep(const std::string& key, std::shared_ptr<const TJson> json, const SSource& source);

  private:
    struct SEntry {
        SShown shown;
        std::size_t bytes = 0;
        std::list<std::string>::iterator order;
    };
    using TEntries = std::map<std::string, SEntry>;

    void m_Drop(TEntries::iterator entry);

    const std::size_t m_most;
    std::string m_file;
    TEntries m_entries;
    std::list<std::string> m_order;  ///< of m_entries, oldest first
    std::size_t m_bytes = 0;
};

/// Lines that tell what changed against what was shown last: the differences, or that there are none to see, or that it
/// can be compared with nothing (either is null).
std::vector<std::string> ChangeLines(const CLastShown::SShown* last, const TJson* now);

}  // namespace vyr::inspect
