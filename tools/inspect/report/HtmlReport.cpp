#include "report/HtmlReport.h"

#include <algorithm>
#include <ctime>

#include "base/Text.h"
#include "model/Interim.h"
#include "report/Html.h"
#include "report/HtmlStyle.h"
#include "report/TextReport.h"

namespace vyr::inspect {

namespace {

constexpr std::size_t k_fewServices = 4;
constexpr std::size_t k_mostComponentRows = 200;
constexpr std::size_t k_fewFiles = 3;
constexpr std::size_t k_longCommand = 4096;

std::string Section(const char* id, const char* title, const std::string& html)
{
    return std::string("<section id=\"") + id + "\"><h2>" + title + "</h2>" + html + "</section>\n";
}

/// The rows below those titles whose columns are not all empty.
std::string ColumnsInUse(const std::vector<std::string>& titles, const std::vector<TRow>& rows)
{
    std::vector<std::string> shown;
    std::vector<bool> used(titles.size());
    for (std::size_t i = 0; i < titles.size(); ++i) {
        used[i] = std::any_of(rows.begin(), rows.end(), [i](const TRow& row) { return !row[i].empty(); });
        if (used[i]) {
            shown.push_back(titles[i]);
        }
    }
    std::string html;
    for (const TRow& row : rows) {
        html += "<tr>";
        for (std::size_t i = 0; i < row.size(); ++i) {
            html += used[i] ? "<td>" + (row[i].empty() ? std::string() : HtmlIsolated(row[i])) + "</td>" : "";
        }
        html += "</tr>";
    }
    return HtmlTable("keep", shown, html);
}

std::string More(std::uint64_t count, const char* what)
{
    return count != 0 ? "<p class=\"muted\">and " + Counted(count, what) + " more</p>" : std::string();
}

}  // namespace

std::string CHtmlReport::m_Where(const SSource& source) const
{
    std::string html = t_files.size() > 1 ? HtmlIsolated(source.file) + ' ' : std::string();
    html += source.packet != 0 ? "packet " + std::to_string(source.packet) : "";
    if (source.time) {
        const std::string time = InstantText(source.time->seconds, source.time->nanoseconds);
        const bool oneDay = t_first && t_last && t_first->seconds / 86400 == t_last->seconds / 86400;
        const std::string shown = oneDay && time.size() > 11 ? time.substr(11, time.size() - 12) : time;
        html += ", <time datetime=\"" + HtmlText(time) + "\">" + HtmlText(shown) + "</time>";
    }
    return html;
}

std::string CHtmlReport::m_Input(std::size_t file) const
{
    return t_files.size() > 1 ? " <small>\u00b7 " + HtmlIsolated(t_files[file]) + "</small>" : std::string();
}

std::string CHtmlReport::m_Fold(const SPart& part, const char* attributes) const
{
    const std::string where = m_Where(part.source);
    std::string note = part.versions > 1 ? Counted(part.versions, "version") + ", the last: " : std::string();
    note += where;
    return std::string("<details ") + attributes + "><summary>" + part.title +
           (note.empty() ? "" : " <small>\u00b7 " + note + "</small>") + "</summary>" + part.html + "</details>";
}

std::string CHtmlReport::m_Lines(const SList<SLine>& list, const std::vector<std::string>& titles) const
{
    std::string rows;
    for (const SLine& line : list.items) {
        rows += "<tr><td>" + m_Where(line.source) + "</td>" + line.html + "</tr>";
    }
    return rows.empty() ? rows : HtmlTable("lines", titles, rows) + More(list.more, "line");
}

std::string CHtmlReport::m_Head(const SSummary& summary, bool final) const
{
    std::string files;
    for (const std::string& file : t_files) {
        files += (files.empty() ? "" : ", ") + HtmlIsolated(file == "-" ? "standard input" : file);
    }
    const std::string title = t_files.size() == 1 ? HtmlText(t_files[0]) : Counted(t_files.size(), "input");
    if (t_files.size() > k_fewFiles) {
        files = "<details><summary>" + title + "</summary>" + files + "</details>";
    }
    std::string html =
        "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
        "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
        "style-src 'unsafe-inline'\">"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">"
        "<meta name=\"referrer\" content=\"no-referrer\">"
        "<meta name=\"color-scheme\" content=\"light dark\">";
    html += final ? std::string() : "<meta http-equiv=\"refresh\" content=\"" + std::to_string(m_run.refresh) + "\">";
    html += "<title>ATSC 3.0 signalling: " + title + "</title><style>" + k_htmlStyle + "</style></head>\n<body>\n" +
            "<header><h1>ATSC 3.0 signalling</h1><div>" + files + "</div>";
    SInputTimes all;
    for (const SInputTimes& times : summary.times) {
        all.Add(times.first);
        all.Add(times.last);
    }
    if (all.first) {
        html += "<p class=\"muted\">" + InstantText(all.first->seconds, all.first->nanoseconds) + " to " +
                InstantText(all.last->seconds, all.last->nanoseconds) + "</p>";
    }
    return html + "</header>\n";
}

std::string CHtmlReport::m_Foot() const
{
    return "<footer class=\"muted\"><p>vyr-atsc30-inspect " VYR_INSPECT_VERSION ", " +
           HtmlText(EpochText(static_cast<double>(m_run.time.value_or(std::time(nullptr))))) + "</p>" +
           (m_run.commandLine.empty() ? std::string()
                                      : "<p>" + HtmlIsolated(HtmlClipped(m_run.commandLine, k_longCommand)) + "</p>") +
           "</footer>\n";
}

std::string CHtmlReport::m_Overview(const SSummary& summary) const
{
    const std::string found = Joined({summary.errors != 0 ? Counted(summary.errors, "error") : std::string(),
                                      summary.warnings != 0 ? Counted(summary.warnings, "warning") : std::string()});
    std::string html = found.empty() ? std::string("<p class=\"verdict good\">No problems found</p>")
                                     : std::string("<p class=\"verdict ") + (summary.errors != 0 ? "bad" : "warn") +
                                           "\"><a href=\"#problems\">" + found + " found</a></p>";
    html += "<dl>";
    for (const TRow& row : SummaryRows(summary)) {
        html += "<div><dt>" + HtmlText(row[0]) + "</dt><dd>" + HtmlText(row[1]) + "</dd></div>";
    }
    return html + "</dl>" +
           (t_left != 0 ? "<p>" + Counted(t_left, "part") + " left out: this page holds no more.</p>" : std::string());
}

std::string CHtmlReport::m_Missing(const TKey& key, const SServiceList& list, const SListed& service) const
{
    const auto why = t_missing.find({std::get<0>(key), list.name, std::to_string(service.id)});
    return why != t_missing.end() ? why->second : std::string();
}

std::string CHtmlReport::m_Services() const
{
    std::string html;
    std::size_t number = 0;
    for (const auto& [key, list] : t_lists) {
        const std::string where = m_Where(list.source);
        html += "<h3>" + list.title + (where.empty() ? "" : " <small>" + where + "</small>") + "</h3>";
        std::string rows;
        for (std::size_t i = 0; i < list.services.size(); ++i) {
            const SListed& service = list.services[i];
            const bool missing = !m_Missing(key, list, service).empty();
            const bool signalled = !missing && t_sessions.count({std::get<0>(key), service.session, {}}) != 0;
            const std::string link = "<a href=\"#s" + std::to_string(number) + '-' + std::to_string(i) + "\">";
            rows += "<tr>" + HtmlHeader("row", link + std::to_string(service.id) + "</a>") + service.cells + "<td>" +
                    (!service.notListed.empty() ? HtmlBadge("", "not listed") + ' ' + HtmlText(service.notListed)
                     : signalled                ? HtmlBadge("good", "received")
                     : missing                  ? HtmlBadge("bad", "missing")
                                                : std::string("\u2013")) +
                    "</td></tr>";
        }
        std::vector<std::string> titles = ServiceRows({})[0];
        titles.back() = "signalling";
        html += rows.empty() ? "<p class=\"muted\">No services.</p>" : HtmlTable("keep", titles, rows);
        ++number;
    }
    return html + (t_refusedLists != 0 ? "<p>" + HtmlBadge("bad", "refused") + " " +
                                             Counted(t_refusedLists, "service list") + " came and did not parse.</p>"
                                       : std::string());
}

std::string CHtmlReport::m_Guide() const
{
    std::string html = m_ByFile(t_guides);
    if (!t_guideObjects.empty()) {
        html += "<h3>Objects of the guide</h3>";
        for (const auto& [key, part] : t_guideObjects) {
            html += m_Fold(part, "class=\"doc\"");
        }
    }
    return html;
}

std::string CHtmlReport::m_ByFile(const std::map<std::size_t, SPart>& parts) const
{
    std::string html;
    for (const auto& [file, part] : parts) {
        html += t_files.size() > 1 ? "<h3>" + HtmlIsolated(t_files[file]) + "</h3>" : "";
        html += part.html;
    }
    return html;
}

std::string CHtmlReport::m_Alerts() const
{
    std::string html;
    for (const bool current : {true, false}) {
        for (const auto& [key, alert] : t_alerts) {
            if (alert.current == current) {
                SPart part = alert.part;
                part.title += ' ' + (current ? HtmlBadge("bad", "in the last table") : HtmlBadge("", "no longer sent"));
                html += m_Fold(part, current ? "class=\"item\" open" : "class=\"item\"");
            }
        }
    }
    return html;
}

/// The LCT sessions with the representations that they carry, and representations that none carries.
std::string CHtmlReport::m_Components(const SSession& session) const
{
    std::vector<TRow> rows;
    std::vector<bool> carried(session.representations.size());
    const auto either = [](const std::string& first, const std::string& second) {
        return first.empty() ? second : first;
    };
    std::uint64_t more = 0;
    const auto add = [&](TRow row) {
        more += rows.size() < k_mostComponentRows ? 0 : 1;
        if (more == 0) {
            rows.push_back(std::move(row));
        }
    };
    for (const SComponent& lct : session.lctSessions) {
        bool found = false;
        const TRow& own = lct.cells;
        for (std::size_t i = 0; i < session.representations.size() && !lct.id.empty(); ++i) {
            const TRow& other = session.representations[i].cells;
            if (session.representations[i].id == lct.id) {
                found = carried[i] = true;
                add({own[0], own[1], own[2], either(other[2], own[3]), other[0], other[1], either(other[3], own[4]),
                     lct.id});
            }
        }
        if (!found) {
            add({own[0], own[1], own[2], own[3], {}, {}, own[4], {}});
        }
    }
    for (std::size_t i = 0; i < session.representations.size(); ++i) {
        const TRow& other = session.representations[i].cells;
        if (!carried[i]) {
            add({{}, {}, {}, other[2], other[0], other[1], other[3], session.representations[i].id});
        }
    }
    return rows.empty()
               ? std::string()
               : "<h4>Components</h4>" +
                     ColumnsInUse({"TSI", "address", "kbit/s", "type", "codec", "bit/s", "language", "representation"},
                                  rows) +
                     More(more, "component");
}

std::string CHtmlReport::m_Documents(const SSession& session) const
{
    std::string html = m_Components(session);
    for (const auto& [kind, part] : session.parts) {
        html += m_Fold(part, "class=\"doc\"");
    }
    return html;
}

std::string CHtmlReport::m_Signalling() const
{
    std::string html;
    std::map<TKey, std::string> shown;  // the anchors of the sessions
    std::size_t services = 0;
    for (const auto& [key, list] : t_lists) {
        services += list.services.size();
    }
    const std::string open = services <= k_fewServices ? " open" : "";
    std::size_t number = 0;
    for (const auto& [key, list] : t_lists) {
        for (std::size_t i = 0; i < list.services.size(); ++i) {
            const SListed& service = list.services[i];
            const std::string anchor = 's' + std::to_string(number) + '-' + std::to_string(i);
            html += "<details class=\"item\"" + open + "><summary>" + service.title + m_Input(std::get<0>(key)) +
                    "</summary><div class=\"target\" id=\"" + anchor +
                    "\"><details class=\"doc\"><summary><b>SLT entry</b></summary>" + service.html + "</details>";
            if (const std::string why = m_Missing(key, list, service); !why.empty()) {
                html += "<p>" + HtmlBadge("bad", "missing") + ' ' + HtmlText(why) + "</p>";
            }
            const auto session = t_sessions.find({std::get<0>(key), service.session, {}});
            if (session != t_sessions.end()) {
                const auto [known, first] = shown.emplace(session->first, anchor);
                html += "<p class=\"muted\">Session " + HtmlText(service.session) +
                        (first ? "" : ": <a href=\"#" + known->second + "\">shown before</a>") + "</p>" +
                        (first ? m_Documents(session->second) : std::string());
            }
            html += "</div></details>";
        }
        ++number;
    }
    for (const auto& [key, session] : t_sessions) {
        if (shown.count(key) == 0) {
            html += "<details class=\"item\" open><summary><b>" +
                    (std::get<1>(key).empty() ? HtmlIsolated(t_files[std::get<0>(key)])
                                              : "Session " + HtmlText(std::get<1>(key))) +
                    "</b>" + (std::get<1>(key).empty() ? "" : m_Input(std::get<0>(key))) + "</summary>" +
                    m_Documents(session) + "</details>";
        }
    }
    return html;
}

std::string CHtmlReport::m_Tables() const
{
    std::string html;
    for (const auto& [key, part] : t_tables) {
        html += m_Fold(part, "class=\"doc\"");
    }
    return html;
}

std::string CHtmlReport::m_Certificates() const
{
    std::string html;
    for (const auto& [key, part] : t_certificates) {
        html += m_Fold(part, "class=\"item\" open");
    }
    return html.empty()
               ? html
               : "<p class=\"muted\">Signatures of multi-tables, certification data and packages are verified where "
                 "the "
                 "signer's certificate came: what does not verify is among the problems. Others are looked at for "
                 "their form.</p>" +
                     html;
}

std::string CHtmlReport::m_Problems(const SSummary& summary) const
{
    std::string html;
    for (const auto& [rule, count] : summary.findings) {
        html += (html.empty() ? "<p>" : ", ") + std::to_string(count) + ' ' + RuleName(rule);
    }
    return html + (html.empty() ? "" : "</p>") + m_Lines(t_findings, {"where", "problem", "what is wrong"});
}

void CHtmlReport::Summary(const SSummary& summary)
{
    m_Make(summary, true);
}

void CHtmlReport::Interim(const SInterim&, const SSummary& summary)
{
    m_Make(summary, false);
    t_EndInterim();
}

void CHtmlReport::m_Make(const SSummary& summary, bool final)
{
    const struct {
        const char* id;
        const char* title;
        std::string html;
    } sections[] = {
        {"verdicts", "Does it play?", m_ByFile(t_verdicts)},
        {"overview", "Overview", m_Overview(summary)},
        {"services", "Services", m_Services()},
        {"guide", "Service guide", m_Guide()},
        {"alerts", "Alerts", m_Alerts()},
        {"signalling", "Signalling of services", m_Signalling()},
        {"delivery", "Delivery", m_ByFile(t_deliveries)},
        {"rates", "Rates over time", m_ByFile(t_rates)},
        {"arrivals", "Arrivals of tables and signalling", m_ByFile(t_arrivals)},
        {"tables", "LLS tables", m_Tables()},
        {"certificates", "Certificates and signatures", m_Certificates()},
        {"problems", "Problems found", m_Problems(summary)},
        {"changes", "What changed", m_Lines(t_changes, {"where", "what came"})},
    };
    std::string contents;
    std::string html;
    for (const auto& section : sections) {
        if (section.html.empty()) {
            continue;
        }
        contents += std::string("<li><a href=\"#") + section.id + "\">" + section.title + "</a></li>";
        html += Section(section.id, section.title, section.html);
    }
    m_page = m_Head(summary, final) + "<nav aria-label=\"Contents\"><ul>" + contents + "</ul></nav>\n<main>\n" + html +
             "</main>\n" + m_Foot() + "</body></html>\n";
}

}  // namespace vyr::inspect
