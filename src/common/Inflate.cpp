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

/// New array of `capacity` bytes that begins with the first `size` of the old one; null: memory is out.
std::unique_ptr<char[]> Resized(const char* old, std::size_t size, std::size_t capacity)
{
    std::unique_ptr<char[]> fresh(new (std::nothrow) char[capacity]);
    if (fresh) {
        std::copy_n(old, size, fresh.get());
    }
    return fresh;
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
    int result = inflateInit2(&stream, 47);
    if (result == Z_MEM_ERROR) {
        throw std::bad_alloc();
    }
    if (result != Z_OK) {
        return false;
    }
    // What the trailer says of the size is a hint; the whole limit comes second.
    std::unique_ptr<char[]> buffer;
    std::size_t capacity = 0;
    result = Z_BUF_ERROR;
    for (std::size_t room : {std::min(TrailerSize(data, size), limit), limit}) {
        if (result != Z_BUF_ERROR || stream.avail_out != 0 || (capacity > 0 && room <= capacity)) {
            break;
        }
        std::unique_ptr<char[]> larger = Resized(buffer.get(), capacity, room + 1);
        if (!larger) {
            result = Z_MEM_ERROR;
            break;
        }
        buffer = std::move(larger);
        stream.next_out = reinterpret_cast<Bytef*>(buffer.get()) + capacity;
        stream.avail_out = static_cast<uInt>(room - capacity);
        capacity = room;
        result = inflate(&stream, Z_FINISH);
    }
    if (result == Z_STREAM_END) {
        buffer[stream.total_out] = 0;
        out.data = std::move(buffer);
        out.size = stream.total_out;
    }
    inflateEnd(&stream);
    if (result == Z_MEM_ERROR) {
        throw std::bad_alloc();
    }
    return result == Z_STREAM_END;
}

const char* InflateBySteps(const void* data, std::size_t size, std::size_t limit, SInflated& out)
{
    constexpr std::size_t k_step = 51200;
    // What the trailer says is believed of texts, which do not shrink more than so.
    constexpr std::size_t k_likely = 128;
    const std::size_t told = TrailerSize(data, size);
    // A byte more than the limit tells a stream of just that size from a longer one.
    const std::size_t most = limit > 0 && limit < UINT_MAX ? limit + 1 : UINT_MAX;
    z_stream stream{};
    stream.next_in = static_cast<Bytef*>(const_cast<void*>(data));
    stream.avail_in = static_cast<uInt>(std::min<std::size_t>(size, UINT_MAX));
    if (inflateInit2(&stream, 47) != Z_OK) {
        return "inflateInit2 failure";
    }
    std::unique_ptr<char[]> buffer;
    std::size_t capacity = 0;
    std::size_t made = 0;
    int result = Z_OK;
    do {
        if (made == capacity) {
            capacity = std::min(capacity > 0 || told / k_likely > size ? std::max(k_step, capacity * 2) : told, most);
            buffer = Resized(buffer.get(), made, capacity);
        }
        if (!buffer || made == capacity) {
            result = Z_MEM_ERROR;
            break;
        }
        stream.next_out = reinterpret_cast<Bytef*>(buffer.get()) + made;
        stream.avail_out = static_cast<uInt>(capacity - made);
        result = inflate(&stream, Z_SYNC_FLUSH);
        made = capacity - stream.avail_out;
        if (result == Z_BUF_ERROR && stream.avail_in == 0) {
            result = Z_OK;  // nothing was left behind the last step
        }
    } while (result == Z_OK && (stream.avail_in > 0 || stream.avail_out == 0));
    inflateEnd(&stream);
    const bool done = (result == Z_OK || result == Z_STREAM_END) && made < most;
    if (done && made + 1 < capacity) {
        buffer = Resized(buffer.get(), made, made);
    }
    if (!done || !buffer) {
        return "inflate failure";
    }
    out.data = std::move(buffer);
    out.size = made;
    return nullptr;
}

}  // namespace vyr
