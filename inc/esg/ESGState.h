#pragma once

#include <memory>
#include <vector>

#include "../common/Owned.h"
#include "../platform/Api.h"

namespace vyr {
struct SESGChild;
struct SESGKind;
}  // namespace vyr

/// A text of the service guide: a zero-terminated copy; null when its attribute or element is not there,
/// empty when it is there without text.
using TESGText = std::unique_ptr<char[]>;

/// Base of the records of the guide's parsers. Attributes and elements that are not there leave their values null, 0
/// or false.
struct VYR_API SESGState {
    SESGState();
    virtual ~SESGState();
    SESGState(const SESGState&) = delete;
    SESGState& operator=(const SESGState&) = delete;
};
