#include "model/Source.h"

#include <cstdio>

namespace vyr::inspect {

std::string ToiText(const TToi& toi)
{
    if (toi.first == 0) {
        return std::to_string(toi.second);
    }
    char text[40];
    std::snprintf(text, sizeof text, "0x%llx%016llx", static_cast<unsigned long long>(toi.first),
                  static_cast<unsigned long long>(toi.second));
    return text;
}

}  // namespace vyr::inspect
