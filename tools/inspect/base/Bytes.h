#pragma once

#include <cstddef>
#include <cstdint>

namespace vyr::inspect {

/// View of bytes that somebody else owns. The cuts never leave it; the readers need their bytes there.
struct SView {
    const unsigned char* data = nullptr;
    std::size_t size = 0;

    SView From(std::size_t at) const { return at < size ? SView{data + at, size - at} : SView{}; }
    SView First(std::size_t count) const { return {data, count < size ? count : size}; }
    unsigned char operator[](std::size_t at) const { return data[at]; }
    std::uint16_t Be16(std::size_t at) const { return static_cast<std::uint16_t>(data[at] << 8 | data[at + 1]); }
    std::uint32_t Be32(std::size_t at) const { return std::uint32_t{Be16(at)} << 16 | Be16(at + 2); }
};

}  // namespace vyr::inspect
