#pragma once

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

/// What is wrong with the elements of a page: one that is not closed where it must be, or that no report
/// has; empty: nothing.
inline std::string MarkupFault(const std::string& html)
{
    static const std::vector<std::string> k_known = {
        "html", "head", "meta",    "title", "style", "body",    "header", "nav",   "main",  "footer", "section",
        "h1",   "h2",   "h3",      "h4",    "p",     "a",       "b",      "bdi",   "br",    "small",  "span",
        "div",  "dl",   "details", "dt",    "dd",    "summary", "table",  "thead", "tbody", "tr",     "th",
        "td",   "ul",   "li",      "time",  "wbr",   "svg",     "desc",   "path",  "text"};
    std::vector<std::string> open;
    for (std::size_t at = html.find('<'); at != std::string::npos; at = html.find('<', at + 1)) {
        if (html.compare(at, 10, "<!DOCTYPE ") == 0) {
            continue;
        }
        const bool end = html[at + 1] == '/';
        const std::size_t begin = at + (end ? 2 : 1);
        std::size_t last = begin;
        while (last < html.size() && std::isalnum(static_cast<unsigned char>(html[last])) != 0) {
            ++last;
        }
        const std::string name = html.substr(begin, last - begin);
        const std::string where = html.substr(at, 80);
        const bool empty = name == "path" && html[html.find('>', at) - 1] == '/';
        if (std::find(k_known.begin(), k_known.end(), name) == k_known.end()) {
            return "unknown: " + where;
        }
        if (end) {
            if (open.empty() || open.back() != name) {
                return "closed out of turn: " + where;
            }
            open.pop_back();
        } else if (!empty && name != "meta" && name != "br" && name != "wbr") {
            open.push_back(name);
        }
    }
    return open.empty() ? "" : "never closed: " + open.back();
}
