#include "judge/Lists.h"

#include <algorithm>

namespace vyr::inspect {

bool ListsWhole(const SEvidence& evidence)
{
    std::map<std::string, std::size_t> groups;
    for (const auto& [key, list] : evidence.lists) {
        ++groups[key.first];
    }
    return !groups.empty() && std::all_of(evidence.lists.begin(), evidence.lists.end(), [&](const auto& entry) {
        const SListFacts& list = entry.second;
        const auto unread = [](const SSltService& service) { return !service.notListed.empty(); };
        return list.whole && groups[entry.first.first] > list.header.groupCountMinus1 &&
               std::none_of(list.services.begin(), list.services.end(), unread);
    });
}

}  // namespace vyr::inspect
