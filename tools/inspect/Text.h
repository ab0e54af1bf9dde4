#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "Bytes.h"

namespace vyr::inspect {

/// Text that is safe on a terminal: control and direction characters and what is not UTF-8 become
/// visible escapes.
std::string Printable(const std::string& text);
/// Columns that a printable text takes: one per code point.
std::size_t DisplayWidth(const std::string& text);
std::string Hex(SBytes bytes);
/// "192.0.2.10".
std::string Ipv4Text(std::uint32_t address);
/// "192.0.2.10:4937".
std::string EndpointText(std::uint32_t address, unsigned port);
/// "1 service", "2 services"; `plural` where an s does not do.
std::string Counted(std::uint64_t count, const std::string& singular, const std::string& plural = {});

/// Cells of a table's row, printable.
using TRow = std::vector<std::string>;
/// The rows as indented lines with their columns aligned.
std::string Aligned(const std::vector<TRow>& rows);

}  // namespace vyr::inspect
