#pragma once

#include <vector>

#include "base/Bytes.h"

namespace vyr::inspect {

bool IsGzip(SView bytes);
/// Inflates one gzip stream of at most `limit` bytes; what follows it is not looked at. False: it is
/// damaged, has no end, or is larger.
bool Gunzip(SView bytes, std::size_t limit, std::vector<unsigned char>& out);
/// Number that tells contents apart. A sender that compresses each copy anew changes nothing but the
/// time stamp of the gzip header, which does not count.
std::uint64_t ContentHash(SView bytes);

}  // namespace vyr::inspect
