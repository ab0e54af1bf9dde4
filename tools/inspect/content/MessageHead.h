#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "base/Bytes.h"

namespace vyr::inspect {

/// What an MMT signalling message says of itself, read without parsing it.
struct SMessageHead {
    std::uint16_t id = 0;
    std::uint8_t version = 0;
    SView payload;       ///< what the length spans, as far as it is there
    bool whole = false;  ///< whether all of it is there
    SView trailing;      ///< what stands behind it
    SView content;       ///< of an ATSC 3.0 message, or of one that a signed message wraps, as it was sent
    /// Whether messages are of one kind, so that one replaces the other: the message id; of an ATSC 3.0
    /// message the service, the content type and the URI, of an MPT message the package; of a signed message
    /// the service and what the message it wraps has.
    std::vector<unsigned> kind;
    /// The versions that go with the kind.
    std::vector<unsigned> versions;
    /// Number that tells the contents apart. Versions, signatures and the time stamp of a gzip header do not
    /// count: a sender may sign or compress each copy anew.
    std::uint64_t hash = 0;
};

constexpr unsigned k_atsc3Message = 0x8100;
constexpr unsigned k_signedMessage = 0x8101;

/// False: the bytes end before the length does.
bool ReadMessageHead(SView bytes, SMessageHead& head);

/// Content of an ATSC 3.0 message as it was sent; none: the payload ends before it does.
std::optional<SView> Atsc3Content(SView payload);

/// Whether the bytes are one message of a known id and nothing, or padding of up to 16 bytes, behind it; no
/// padding for the ids 0x0200 to 0x020E, which LLS tables of id 2 begin with, too.
bool IsMessageFile(SView bytes);

}  // namespace vyr::inspect
