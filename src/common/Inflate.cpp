#include "common/Inflate.h"

#include <zlib.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <new>

namespace vyr {
namespace {

/// The size that the last four bytes of a gzip stream tell, and a byte more: inflate stops at a full
/// buffer before it has seen the stream's end.
std::size_t TrailerSize(const void* data, std::size_t size)
{
    if (!HasGzipMagic(data, size) || size < 18) {
        return SIZE_MAX;
    }
    const unsigned char* bytes = static_cast<const unsigned char*>(data);
    std::size_t told = 0;
    for (std::size_t i = size; i > size - 4; --i) {
        told = told << 8 | bytes[i - 1];
    }
    return told + 1;
}

}  // namespace

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
    z_stream stream{};
    stream.next_in = static_cast<Bytef*>(const_cast<void*>(data));
    stream.avail_in = static_cast<uInt>(size);
    // 47: the largest window, gzip or zlib header detected.
    if (inflateInit2(&stream, 47) != Z_OK) {
        return false;
    }
    // What the trailer says of the size is a hint; the whole limit comes second.
    std::unique_ptr<char[]> buffer;
    std::size_t capacity = 0;
    int result = Z_BUF_ERROR;
    for (std::size_t room : {std::min(TrailerSize(data, size), limit), limit}) {
        if (result != Z_BUF_ERROR || stream.avail_out != 0 || (capacity > 0 && room <= capacity)) {
            break;
        }
        std::unique_ptr<char[]> larger(new (std::nothrow) char[room]);
        if (!larger) {
            break;
        }
        std::copy_n(buffer.get(), capacity, larger.get());
        buffer = std::move(larger);
        stream.next_out = reinterpret_cast<Bytef*>(buffer.get()) + capacity;
        stream.avail_out = static_cast<uInt>(room - capacity);
        capacity = room;
        result = inflate(&stream, Z_FINISH);
    }
    if (result == Z_STREAM_END) {
        out.data = std::move(buffer);
        out.size = stream.total_out;
    }
    inflateEnd(&stream);
    return result == Z_STREAM_END;
}

}  // namespace vyr
