// The conversions of times: any text gives some number.
// Sources: src/common/ATSC3TimeUtility.cpp src/common/XsTime.cpp
#include <cmath>
#include <string>

#include "Fuzz.h"
#include "common/ATSC3TimeUtility.h"
#include "common/EpochTime.h"
#include "common/XsTime.h"
#include "platform/Platform.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    SetLogPriority(LOG_PRIORITY_SILENT);
    const std::string text(data, data + size);
    const int seconds = TimeUtility::DurationToSec(text.c_str());
    // Turning the sign turns the result.
    if (!text.empty() && text[0] == '+') {
        const std::string negative = '-' + text.substr(1);
        Require(0u - static_cast<unsigned>(seconds) ==
                static_cast<unsigned>(TimeUtility::DurationToSec(negative.c_str())));
    }
    TimeUtility::ConvertDateTime2Epoch(text.c_str());
    g_EpochTime(text.c_str());
    double exact = 0;
    Require(!vyr::ReadDuration(text.c_str(), exact) || std::isfinite(exact));
    Require(!vyr::ReadDateTime(text.c_str(), exact) || std::isfinite(exact));
    return 0;
}
