#pragma once

#include "base/Bytes.h"

namespace vyr::inspect {

/// 0, or errno: why not all of it is written. An interrupt is none of the reasons.
int WriteAll(int file, SView bytes);

}  // namespace vyr::inspect
