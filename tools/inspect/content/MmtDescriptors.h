#pragma once

#include <string>

#include "base/JsonFwd.h"

class CMMTDesc;

namespace vyr::inspect {

/// What an MMT descriptor says.
TJson DescriptorJson(const CMMTDesc& descriptor);
/// The same as a line behind `indent`.
std::string DescriptorText(const std::string& indent, const TJson& descriptor);

}  // namespace vyr::inspect
