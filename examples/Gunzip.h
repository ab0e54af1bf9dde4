#pragma once

#include <zlib.h>

#include <string>

/// A package as its documents stand in it: inflated, or as it is where it is no gzip. Empty: it does not inflate, or to
/// more than `most` bytes, which a transmitter reaches with a thousandth of it.
inline std::string Gunzip(const std::string& object, std::size_t most = 1 << 20)
{
    if (object.compare(0, 2, "\x1F\x8B") != 0) {
        return object;
    }
    std::string text(most, '\0');
    z_stream stream = {};
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(object.data()));
    stream.avail_in = static_cast<uInt>(object.size());
    stream.next_out = reinterpret_cast<Bytef*>(text.data());
    stream.avail_out = static_cast<uInt>(text.size());
    const bool whole = inflateInit2(&stream, 15 + 16) == Z_OK && inflate(&stream, Z_FINISH) == Z_STREAM_END;
    text.resize(whole ? stream.total_out : 0);
    inflateEnd(&stream);
    return text;
}
