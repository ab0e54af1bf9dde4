#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "model/Source.h"

namespace vyr::inspect {

enum class EFault {
    INPUT_MISSING,
    INPUT_UNREADABLE,
    INPUT_DIRECTORY,
    INPUT_EMPTY,
    INPUT_UNKNOWN,
    INPUT_TOO_LARGE,
    CAPTURE_DAMAGED,
    LINK_TYPE,
    PACKETS_CUT,
    PACKETS_MALFORMED,
    TABLE_TOO_SHORT,
    TABLE_NOT_PARSED,
    CHANGED_WITHOUT_VERSION,
    SERVICE_DROPPED,
    BAD_ADDRESS,
    BAD_CERTIFICATE,
    BAD_SIGNATURE,
    TOO_MANY_SERVICES,
    ASSERTION,
    NO_LLS,
    NO_SLT,
    LCT_MALFORMED,
    MMTP_MALFORMED,
    OBJECT_NOT_READ,
    DOCUMENT_NOT_PARSED,
    ITEM_WITHOUT_PART,
    PART_WITHOUT_ITEM,
    MESSAGE_NOT_PARSED,
    NO_SIGNALLING,
    NO_SESSIONS,
    GUIDE_NOT_PARSED,
    GUIDE_INCOMPLETE,
    GUIDE_TOO_LARGE
};

constexpr const char* k_faultNames[] = {"input-missing",
                                        "input-unreadable",
                                        "input-directory",
                                        "input-empty",
                                        "input-unknown",
                                        "input-too-large",
                                        "capture-damaged",
                                        "link-type",
                                        "packets-cut",
                                        "packets-malformed",
                                        "table-too-short",
                                        "table-not-parsed",
                                        "changed-without-version",
                                        "service-dropped",
                                        "bad-address",
                                        "bad-certificate",
                                        "bad-signature",
                                        "too-many-services",
                                        "assertion",
                                        "no-lls",
                                        "no-slt",
                                        "lct-malformed",
                                        "mmtp-malformed",
                                        "object-not-read",
                                        "document-not-parsed",
                                        "item-without-part",
                                        "part-without-item",
                                        "message-not-parsed",
                                        "no-signalling",
                                        "no-sessions",
                                        "guide-not-parsed",
                                        "guide-incomplete",
                                        "guide-too-large"};

struct SFault {
    EFault code = EFault::INPUT_UNKNOWN;
    std::string message;
    SSource source;
    std::optional<SLlsHeader> header = std::nullopt;
    std::optional<unsigned> serviceId = std::nullopt;
    std::string attribute = {};
    std::string serviceList = {};  ///< as ServiceListName has it: of the service that is not signalled
    std::uint64_t times = 1;       ///< as often as it is told of by this
    bool note = false;             ///< nothing is wrong with the broadcast: it is worth knowing
};

/// "table-not-parsed" and the like.
const char* FaultName(EFault code);
/// Whether the input itself could not be inspected.
bool IsInputFault(EFault code);

}  // namespace vyr::inspect
