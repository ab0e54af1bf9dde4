#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/Bytes.h"
#include "content/GuideFragment.h"
#include "model/OptionalContent.h"

namespace vyr::inspect {

constexpr std::size_t k_maxGuideObject = 8388608;  ///< bytes of an inflated object of the guide

/// What an object in entity mode (RFC 9223 2.1) has behind its header fields and the empty line; any other
/// object as it is.
SView EntityBody(SView object);

/// What the bytes of an object, inflated, are of the guide; none: nothing. A document is known by the name
/// of its root element. A unit is known by its table: it has entries, they and an encoding and a type for
/// each fit into the unit, the first fragment's encoding and type are known, and its end, where another
/// follows, is behind its start and in the unit.
std::optional<EGuideObject> GuideKind(SView bytes);

/// An object of the guide, as the library reads it.
struct SGuideRead {
    COptionalContent content;  ///< none: it did not parse
    std::vector<SGuideFragment> fragments;
    std::vector<SGuidePart> parts;    ///< of a unit, those of XML; views of its text
    std::vector<std::string> faults;  ///< of fragments, and of the object when it did not parse
};

/// Reads an object as it was sent; `text` is the same inflated.
SGuideRead ReadGuideObject(EGuideObject kind, SView object, SView text);

}  // namespace vyr::inspect
