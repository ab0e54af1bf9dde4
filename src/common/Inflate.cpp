#include "common/Inflate.h"

#include <zlib.h>

#include <climits>
#include <new>

namespace vyr {

bool HasGzipMagic(const void* data, std::size_t size)
{
    const unsigned char* bytes = static_cast<const unsigned char*>(data);
    return size >= 2 && bytes[0] == 0x1F && bytes[1] == 0x8B;
}

bool Inflate(const void* data, std::size_t size, std::size_t limit, SInflated& out)
{
    if (size > UINT_MAX || limit > UINT_MAX) {
        return false;
    }
    std::unique_ptr<char[]> buffer(new (std::nothrow) char[limit]);
    if (!buffer) {
        return false;
    }
    z_stream stream{};
    stream.next_in = static_cast<Bytef*>(const_cast<void*>(data));
    stream.avail_in = static_cast<uInt>(size);
    stream.next_out = reinterpret_cast<Bytef*>(buffer.get());
    stream.avail_out = static_cast<uInt>(limit);
    // 47: the largest window, gzip or zlib header detected.
    if (inflateInit2(&stream, 47) != Z_OK) {
        return false;
    }
    const bool ended = inflate(&stream, Z_FINISH) == Z_STREAM_END;
    if (ended) {
        out.data = std::move(buffer);
        out.size = stream.total_out;
    }
    inflateEnd(&stream);
    return ended;
}

}  // namespace vyr
