#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "esg/ESGFragmentBase.h"
#include "model/Guide.h"

namespace vyr::inspect {

/// When a content is presented, seconds since 1970.
struct SGuideWindow {
    std::optional<std::int64_t> start;
    std::optional<std::int64_t> end;
};

/// A content of a schedule.
struct SGuideReference {
    std::string contentId;              ///< empty: it names none
    std::vector<SGuideWindow> windows;  ///< at least one
};

/// What the guide needs of a fragment.
struct SGuideFragment {
    unsigned type = 0;  ///< 1: service, 2: content, 3: schedule
    std::string id;
    unsigned version = 0;
    std::optional<std::int64_t> validFrom;
    std::optional<std::int64_t> validTo;
    std::string serviceId;                    ///< of the service fragment that a content or schedule names
    SGuideService service;                    ///< of a service
    SProgramme programme;                     ///< of a content
    std::vector<SGuideReference> references;  ///< of a schedule
    std::size_t size = 0;                     ///< bytes of its text
    std::uint64_t hash = 0;                   ///< of its text
};

/// "Service", "Content" and so on; null for a number that is no type of fragment.
const char* FragmentTypeName(unsigned type);

/// `fragment` has parsed, and is of the type: 1, 2 or 3.
SGuideFragment GuideFragment(unsigned type, const CESGFragmentBase& fragment);

}  // namespace vyr::inspect
