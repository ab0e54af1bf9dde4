#include "common/Ipv4.h"

#include <arpa/inet.h>

namespace vyr {

std::uint32_t Ipv4Address(const char* text)
{
    // The usual form, four decimal numbers, is read here; inet_addr is slow, and knows all the others.
    std::uint32_t address = 0;
    const char* p = text;
    for (int part = 0; part < 4; ++part) {
        if (part > 0 && *p++ != '.') {
            return ntohl(inet_addr(text));
        }
        std::uint32_t value = 0;
        const char* first = p;
        while (*p >= '0' && *p <= '9' && p - first < 3) {
            value = value * 10 + static_cast<std::uint32_t>(*p++ - '0');
        }
        // A leading zero makes the number octal.
        if (p == first || value > 255 || (*first == '0' && p - first > 1)) {
            return ntohl(inet_addr(text));
        }
        address = address << 8 | value;
    }
    return *p ? ntohl(inet_addr(text)) : address;
}

}  // namespace vyr
