#pragma once

#include <common/Parse.h>
#include <platform/Failure.h>

#include <fstream>
#include <iterator>
#include <string>

// What the examples share.

/// The bytes of a file; empty when it cannot be read.
inline std::string ReadFile(const std::string& name)
{
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// A cursor at the start of bytes that outlive it.
inline IParse::SItem Item(const std::string& bytes)
{
    const auto size = static_cast<unsigned int>(bytes.size());
    return {reinterpret_cast<const unsigned char*>(bytes.data()), size, size * 8, 0, true};
}

/// "239.255.7.1" of an address as the library has it.
inline std::string Dotted(unsigned int address)
{
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        text += std::to_string(address >> shift & 0xFF) + (shift != 0 ? "." : "");
    }
    return text;
}

/// Why the last call did not take everything; empty: it did.
inline std::string Reason(const char* document = "")
{
    const SFailure* failure = LastFailure(document);
    return failure == nullptr ? "" : failure->detail[0] != '\0' ? failure->detail : failure->step;
}
