#pragma once

#include <cstdint>
#include <optional>

#include "base/Bytes.h"
#include "model/Source.h"

namespace vyr::inspect {

/// One LCT packet of a ROUTE session (RFC 5651 5.1, RFC 9223 2).
struct SLctPacket {
    bool source = false;        ///< carries source data; false: repair data
    bool closeSession = false;  ///< no more packets of the session come
    bool closeObject = false;   ///< the last bytes of the object
    std::uint8_t codePoint = 0;
    std::uint64_t tsi = 0;  ///< 16 to 48 bits
    TToi toi;
    std::optional<std::uint64_t> transferLength;  ///< bytes of the whole object, from EXT_TOL or EXT_FTI
    std::uint32_t startOffset = 0;                ///< of the data in the object
    SView data;                                   ///< empty: the packet only closes its object or session
};

/// Reads one UDP payload. False: it is no LCT packet of version 1, or ends inside its header.
bool ReadLct(SView payload, SLctPacket& packet);

}  // namespace vyr::inspect
