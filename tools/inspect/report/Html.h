#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "base/JsonFwd.h"

namespace vyr::inspect {

/// The text as it may stand in an HTML element or in a quoted attribute: printable, without markup.
std::string HtmlText(const std::string& text);
/// The text, or its first bytes with "…" behind them.
std::string HtmlClipped(const std::string& text, std::size_t bytes);
/// The text in an element that keeps its direction from what stands around it; its language as attribute,
/// if it is one.
std::string HtmlIsolated(const std::string& text, const std::string& lang = {});
/// "<th scope=...>...</th>" for a cell that heads its row or column; `html` is markup.
std::string HtmlHeader(const char* scope, const std::string& html);
/// The text as a badge of a class of the style: "good", "bad" or none.
std::string HtmlBadge(const char* kind, const std::string& text);
/// A table that scrolls in a container of its own; the titles are texts, the rows markup.
std::string HtmlTable(const char* className, const std::vector<std::string>& titles, const std::string& rows);
/// Any JSON object as markup: its values as a list of definitions, lists of flat objects as tables, what is
/// nested deeper to fold. Ends, and says so, soon after `limit` bytes.
std::string HtmlTree(const TJson& object, std::size_t limit = 262144);

}  // namespace vyr::inspect
