#pragma once

#include <cstddef>
#include <memory>

namespace vyr {

/// Bytes of an inflated stream.
struct SInflated {
    std::unique_ptr<char[]> data;
    std::size_t size = 0;
};

/// Whether the bytes begin with the gzip magic 1F 8B.
bool HasGzipMagic(const void* data, std::size_t size);

/// Inflates one gzip or zlib stream of at most `limit` bytes. Only the end of the stream, trailer
/// included, is success; what follows it is not looked at. A zero byte stands behind what came out. On failure
/// `out` is untouched.
bool Inflate(const void* data, std::size_t size, std::size_t limit, SInflated& out);

/// Inflates what there is of one gzip or zlib stream, by steps: to its end, or until the input is used up,
/// into an array of the size that came out, or a byte more. At most `limit` bytes come out, 0: no limit. Null: done;
/// else what failed, for the log, and `out` is untouched. Memory that runs out is a failure.
const char* InflateBySteps(const void* data, std::size_t size, std::size_t limit, SInflated& out);

}  // namespace vyr
