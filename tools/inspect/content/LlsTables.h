#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/Bytes.h"
#include "model/Finding.h"
#include "model/OptionalContent.h"
#include "model/Signed.h"

namespace vyr::inspect {

/// What became of a table other than the SLT.
struct STableOutcome {
    COptionalContent content;
    std::string reason;  ///< why there is none
    std::vector<std::pair<ERule, std::string>> faults;
    std::vector<std::vector<unsigned char>> inner;             ///< tables within, each behind a header of its own
    bool cmsSignedData = false;                                ///< it has an element of that name
    std::shared_ptr<const SSigned> signedBytes;                ///< null: it has no signature that is verified
    TCertificates certificates;                                ///< that it announces, the first ones
    std::vector<std::vector<unsigned char>> certificateBytes;  ///< of those that can be read, DER
};

/// Whether ParseTable knows the table id.
bool HasParser(unsigned tableId);
/// The broadcast stream (bsid) of a whole LLS table, header included: a service list, or a signed multi-table that has
/// one. None: it is neither, or does not say.
std::optional<unsigned> TableBsid(SView table);
/// Hands a whole LLS table that has a parser, header included, to it and reads what it found.
STableOutcome ParseTable(const SLlsHeader& header, SView bytes);

}  // namespace vyr::inspect
