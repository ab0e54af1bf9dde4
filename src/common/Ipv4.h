#pragma once

#include <cstdint>

namespace vyr {

/// IPv4 text as inet_addr reads it, in host order: a.b.c.d is a x 2^24 + b x 2^16 + c x 2^8 + d.
/// Text that is no address gives 0xFFFFFFFF.
std::uint32_t Ipv4Address(const char* text);

}  // namespace vyr
