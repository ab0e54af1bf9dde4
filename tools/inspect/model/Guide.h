#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "model/Items.h"

namespace vyr::inspect {

/// A text of the guide and its language (BCP 47; empty: not given).
struct SGuideText {
    std::string lang;
    std::string text;
};

/// One presentation of a content: a row of a programme list, a box of the time grid.
struct SProgramme {
    std::string contentId;              ///< id of the content fragment; empty: the schedule names none that came
    std::optional<std::int64_t> start;  ///< seconds since 1970, UTC; absent: no schedule gives it a time
    std::optional<std::int64_t> end;
    std::optional<std::int64_t> validFrom;  ///< of the fragments that it is of, the latest
    std::optional<std::int64_t> validTo;    ///< of those, the earliest
    std::string missingContent;             ///< id of the content that its schedule names, and that did not come
    std::vector<SGuideText> titles;
    std::vector<SGuideText> descriptions;
    std::vector<std::string> genres;
    std::vector<std::string> ratings;
    std::vector<std::string> audioLanguages;
    std::vector<std::string> textLanguages;
};

/// A service of the guide with its programmes.
struct SGuideService {
    std::string fragmentId;
    std::string globalServiceId;
    std::optional<unsigned> serviceId;  ///< of the service list, where the two can be joined
    std::optional<int> majorChannelNo;
    std::optional<int> minorChannelNo;
    std::optional<std::int64_t> validTo;
    std::vector<SGuideText> names;
    std::vector<SGuideText> descriptions;
    std::vector<std::string> genres;
    std::vector<SProgramme> programmes;  ///< by start, those without one last
    std::size_t leftOut = 0;             ///< programmes, the last of too many
};

/// The guide as it stands after the units that came: schedule, content and service fragments joined.
struct SGuide {
    SSource source;
    std::vector<SGuideService> services;
    std::size_t leftOut = 0;              ///< services, the last of too many
    std::size_t fragments = 0;            ///< that hold now
    std::size_t unscheduledContents = 0;  ///< content fragments that no schedule names
    std::size_t missingContents = 0;      ///< that schedules name, and that did not come
    std::size_t missingServices = 0;      ///< that schedules and contents name, and that did not come
    bool whole = true;                    ///< false: fragments or programmes were too many, and let go
};

/// What carries fragments of the guide, or announces them.
enum class EGuideObject { DELIVERY_UNIT, DELIVERY_DESCRIPTOR, RESPONSE, FRAGMENT };

/// A fragment as it stands in a delivery unit.
struct SGuidePart {
    unsigned type = 0;  ///< 1: service, 2: content, 3: schedule
    unsigned transportId = 0;
    unsigned version = 0;
    SView bytes;  ///< good during the report only
};

/// One object of the guide that is not a repeat.
struct SGuideObject {
    SSource source;
    std::string session;               ///< "239.255.7.1:30100"; empty for a raw file
    std::optional<std::uint64_t> tsi;  ///< not for a raw file
    std::optional<TToi> toi;           ///< not for a raw file
    std::string contentLocation;       ///< of the file, where the session's EFDT tells
    EGuideObject kind = EGuideObject::DELIVERY_UNIT;
    EStatus status = EStatus::NEW;
    std::size_t size = 0;  ///< bytes as they were sent
    bool gzip = false;
    COptionalContent content;  ///< none: it did not parse
    SView sent = {};           ///< good during the report only; none of a repeat
    SView text = {};           ///< without header fields, inflated
    std::vector<SGuidePart> parts = {};
};

/// "SGDU", "ServiceGuideDeliveryDescriptor", "SGResponse" or "fragment".
const char* GuideObjectName(EGuideObject kind);

}  // namespace vyr::inspect
