#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/Bytes.h"

namespace vyr::inspect {

/// Text that is safe on a terminal: control and direction characters and what is not UTF-8 become
/// visible escapes.
std::string Printable(const std::string& text);
/// JSON with escapes in place of the characters that Printable escapes: it says the same, and one line of it
/// is one line to every reader.
std::string PlainJson(const std::string& json);
std::string Hex(SView bytes);
/// "192.0.2.10".
std::string Ipv4Text(std::uint32_t address);
/// "2001:db8::1", of 16 bytes.
std::string Ipv6Text(const unsigned char* address);
/// A four-character code; as hex where a character is none.
std::string FourCcText(SView code);
/// "192.0.2.10:4937".
std::string EndpointText(std::uint32_t address, unsigned port);
/// What EndpointText makes a text of; none: it is no such text, or its port is 0.
std::optional<std::pair<std::uint32_t, std::uint16_t>> ReadEndpoint(const std::string& text);
/// The address that Ipv4Text makes a text of.
std::optional<std::uint32_t> ReadIpv4(const std::string& text);
/// "1 service", "2 services"; `plural` where an s does not do.
std::string Counted(std::uint64_t count, const std::string& singular, const std::string& plural = {});

/// The text, printable, between double quotes.
std::string Quoted(const std::string& text);
/// The texts that are not empty, set apart by commas.
std::string Joined(const std::vector<std::string>& texts);
/// " (en)", printable; nothing for no language.
std::string InLanguage(const std::string& lang);
/// The first columns of a printable text, "…" behind it when it is longer.
std::string Short(const std::string& text);
/// How many of the text's first bytes are whole characters.
std::size_t ClippedSize(const std::string& text, std::size_t bytes);
/// The text, or its first bytes with "…" behind them.
std::string Clipped(const std::string& text, std::size_t bytes);
/// The text with '#' for each of its numbers, decimals included: of what goes on, they change.
std::string WithoutNumbers(const std::string& text);
/// A line that tells that of `count` only `shown` are there; nothing when all are.
std::string MoreText(const char* indent, std::uint64_t count, std::uint64_t shown);
/// The text, or those of its lines that fit into as many bytes, and a line that tells how many more there are; nothing
/// when its first line does not fit.
std::string FirstLines(const std::string& text, std::size_t bytes);
/// An instant as "2026-11-21T02:02:23.328Z": to the nanosecond, in groups of three digits, at least `digits` of them.
std::string InstantText(std::int64_t seconds, std::int32_t nanoseconds, int digits = 3);
/// Seconds since 1970 likewise, to the microsecond and without a fraction that is 0; as a number when they are no date
/// of four digits.
std::string EpochText(double seconds);
/// Seconds since 1970 of an xs:dateTime with its zone, "2026-11-21T02:02:23.5-05:00", fractions cut; none: it is not
/// one, or gives no zone.
std::optional<std::int64_t> ReadInstant(const std::string& text);
/// Seconds since 1970 of NTP seconds, which begin anew in 2036: those below 2^31 are of that era.
std::int64_t NtpSeconds(std::uint32_t ntp);
/// A number to the sixth decimal, without needless digits: "2", "2.5".
std::string NumberText(double number);
/// An indented line: a label in a column of its own, then the text; nothing for no text.
std::string Line(const char* label, const std::string& text);

/// The lines of the text, each behind `indent`.
std::string Indented(const std::string& text, const std::string& indent);

/// Cells of a table's row, printable.
using TRow = std::vector<std::string>;
/// The rows as indented lines with their columns aligned.
std::string Aligned(const std::vector<TRow>& rows);
/// The rows below their heads without the columns that are empty; nothing for heads alone.
std::string TableText(const std::vector<TRow>& rows);

}  // namespace vyr::inspect
