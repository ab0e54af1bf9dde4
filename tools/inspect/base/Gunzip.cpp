#include "base/Gunzip.h"

#include <zlib.h>

#include <algorithm>
#include <cstring>

namespace vyr::inspect {

bool IsGzip(SView bytes)
{
    return bytes.size >= 2 && bytes.Be16(0) == 0x1F8B;
}

bool Gunzip(SView bytes, std::size_t limit, std::vector<unsigned char>& out)
{
    constexpr int k_gzipOnly = 15 + 16;
    constexpr std::size_t k_step = 65536;
    out.clear();
    z_stream stream{};
    stream.next_in = const_cast<Bytef*>(bytes.data);
    stream.avail_in = static_cast<uInt>(bytes.size);
    if (inflateInit2(&stream, k_gzipOnly) != Z_OK) {
        return false;
    }
    int result = Z_OK;
    while (result == Z_OK && out.size() < limit) {
        const std::size_t step = std::min(k_step, limit - out.size());
        out.resize(out.size() + step);
        stream.next_out = out.data() + out.size() - step;
        stream.avail_out = static_cast<uInt>(step);
        result = inflate(&stream, Z_NO_FLUSH);
        out.resize(out.size() - stream.avail_out);
    }
    // The last byte may be out and the trailer still unread.
    if (result == Z_OK) {
        Bytef more = 0;
        stream.next_out = &more;
        stream.avail_out = 1;
        result = inflate(&stream, Z_NO_FLUSH);
        result = stream.avail_out == 1 ? result : Z_BUF_ERROR;
    }
    inflateEnd(&stream);
    return result == Z_STREAM_END;
}

std::uint64_t ContentHash(SView bytes)
{
    constexpr std::size_t k_step = sizeof(std::uint64_t);
    const bool gzip = bytes.size >= k_step && IsGzip(bytes);
    std::uint64_t hash = 0xCBF29CE484222325u + bytes.size;
    for (std::size_t at = 0; at < bytes.size; at += k_step) {
        unsigned char step[k_step] = {};
        std::memcpy(step, bytes.data + at, std::min(k_step, bytes.size - at));
        if (gzip && at == 0) {
            std::memset(step + 4, 0, 4);
        }
        std::uint64_t word = 0;
        std::memcpy(&word, step, sizeof word);
        hash = (hash ^ word) * 0x9E3779B97F4A7C15u;
        hash ^= hash >> 32;
    }
    return hash;
}

}  // namespace vyr::inspect
