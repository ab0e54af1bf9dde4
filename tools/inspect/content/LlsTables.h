#pragma once

#include <string>
#include <utility>
#include <vector>

#include "model/Report.h"

namespace vyr::inspect {

/// What became of a table other than the SLT.
struct STableOutcome {
    std::optional<SContent> content;
    std::string reason;  ///< why there is none
    std::vector<std::pair<EFault, std::string>> faults;
    std::vector<std::vector<unsigned char>> inner;  ///< tables within, each behind a header of its own
};

/// Name of a table; null: the id has none.
const char* TableName(unsigned tableId);
/// Whether ParseTable knows the table id.
bool HasParser(unsigned tableId);
/// Hands a whole LLS table that has a parser, header included, to it and reads what it found.
STableOutcome ParseTable(const SLlsHeader& header, SView bytes);

}  // namespace vyr::inspect
