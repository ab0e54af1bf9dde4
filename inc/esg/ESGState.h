#pragma once

#include <memory>
#include <vector>

#include "../common/Owned.h"
#include "../common/XML.h"
#include "../platform/Api.h"

namespace vyr {
struct SESGChild;
struct SESGKind;
struct SHere;
struct SRows;
}  // namespace vyr

/// A text of the service guide: a zero-terminated copy; null when its attribute or element is not there,
/// empty when it is there without text.
using TESGText = std::unique_ptr<char[]>;

/// What every record of the guide's parsers has beside its values, for the parser's own use. Attributes and
/// elements that are not there leave their values null, 0 or false.
struct VYR_API SESGState {
    SESGState();
    virtual ~SESGState();
    SESGState(const SESGState&) = delete;
    SESGState& operator=(const SESGState&) = delete;

    CXML xml;                   ///< the document, while it is parsed
    const vyr::SESGKind* kind;  ///< what the parser is
};
