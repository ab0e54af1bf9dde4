#include "report/Html.h"

#include <algorithm>
#include <set>

#include "base/Json.h"
#include "base/Text.h"

namespace vyr::inspect {

namespace {

constexpr std::size_t k_longText = 2048;
constexpr std::size_t k_summaryText = 80;
constexpr std::size_t k_mostItems = 100;
constexpr std::size_t k_mostRows = 200;
constexpr std::size_t k_mostColumns = 64;
constexpr std::size_t k_openRows = 20;
constexpr std::size_t k_inlineMembers = 6;
constexpr std::size_t k_summaryMembers = 3;
constexpr std::size_t k_wideCell = 80;  // with its markup
constexpr unsigned k_deepest = 16;

/// The name of a member, with places to break it.
std::string Key(const std::string& key)
{
    std::string html;
    for (const char c : HtmlText(key)) {
        html += c >= 'A' && c <= 'Z' && !html.empty() && html.back() >= 'a' && html.back() <= 'z' ? "<wbr>" : "";
        html += c;
        html += c == '_' ? "<wbr>" : "";
    }
    return html;
}

std::string MoreText(std::size_t count, const char* what)
{
    return "<span class=\"muted\">\u2026 " + Counted(count, what) + " more</span>";
}

/// A text, and its language if that is given: the form that texts with languages have in the JSON.
bool IsText(const TJson& json)
{
    const auto isString = [](const TJson& value) { return value.is_string(); };
    return json.is_object() && json.contains("text") && json.size() == (json.contains("lang") ? 2 : 1) &&
           std::all_of(json.begin(), json.end(), isString);
}

bool IsAtom(const TJson& json)
{
    return !json.is_structured() || IsText(json);
}

/// What fits into a cell of a table.
bool IsSimple(const TJson& json)
{
    const bool small = !json.is_object() || json.size() <= k_inlineMembers;
    return IsAtom(json) || (small && std::all_of(json.begin(), json.end(), IsAtom));
}

bool IsRow(const TJson& json)
{
    return json.is_object() && std::all_of(json.begin(), json.end(), IsSimple);
}

/// "slsProtocolName" beside "slsProtocol": shown behind the number.
bool IsNameOf(const TJson& object, const std::string& key)
{
    constexpr char k_name[] = "Name";
    constexpr std::size_t k_length = sizeof k_name - 1;
    return key.size() > k_length && key.compare(key.size() - k_length, k_length, k_name) == 0 &&
           object.contains(key.substr(0, key.size() - k_length));
}

std::string Atom(const TJson& json)
{
    if (IsText(json)) {
        const std::string lang = json.value("lang", "");
        return HtmlIsolated(HtmlClipped(json.value("text", ""), k_longText), lang) +
               (lang.empty() ? std::string() : " <small>" + HtmlText(HtmlClipped(lang, k_summaryText)) + "</small>");
    }
    if (json.is_string()) {
        const std::string& text = json.get_ref<const std::string&>();
        return text.empty() ? "<span class=\"muted\">empty</span>"
                            : HtmlIsolated(HtmlClipped(text, k_longText)) +
                                  (text.size() > k_longText ? " <small>" + Counted(text.size(), "byte") + "</small>"
                                                            : std::string());
    }
    if (json.is_boolean()) {
        return json.get<bool>() ? "yes" : "no";
    }
    return json.is_null() ? "\u2013" : json.is_number_float() ? NumberText(json.get<double>()) : json.dump();
}

std::string Cell(const TJson& json)
{
    if (IsAtom(json)) {
        return Atom(json);
    }
    if (json.empty()) {
        return "<span class=\"muted\">none</span>";
    }
    std::string html;
    if (json.is_object()) {
        for (const auto& [key, value] : json.items()) {
            html += (html.empty() ? "<span class=\"key\">" : ", <span class=\"key\">") + HtmlText(key) + "</span> " +
                    Atom(value);
        }
        return html;
    }
    for (std::size_t i = 0; i < json.size() && i < k_mostItems; ++i) {
        html += (i == 0 ? "" : IsText(json[i]) ? "<br>" : ", ") + Atom(json[i]);
    }
    return html + (json.size() > k_mostItems ? ", " + MoreText(json.size() - k_mostItems, "item") : "");
}

/// The value of a member, the name of a number behind it.
std::string Member(const TJson& object, const std::string& key)
{
    const TJson& value = object[key];
    const auto name = object.find(key + "Name");
    const bool named = name != object.end() && name->is_string() && !value.is_structured();
    return Cell(value) + (named ? " <span class=\"muted\">" + HtmlText(name->get<std::string>()) + "</span>" : "");
}

/// What tells one object of a list from the others: its first values; `shown` gets the names of those that
/// it shows whole.
std::string Identity(const TJson& object, std::set<std::string>& shown)
{
    std::string html;
    std::size_t count = 0;
    for (const auto& [key, value] : object.items()) {
        if (count == k_summaryMembers) {
            break;
        }
        if (!value.is_primitive() || IsNameOf(object, key)) {
            continue;
        }
        const bool cut = value.is_string() && value.get_ref<const std::string&>().size() > k_summaryText;
        html += "<span class=\"pair\"><span class=\"key\">" + HtmlText(key) + "</span> " +
                (cut ? HtmlIsolated(HtmlClipped(value.get_ref<const std::string&>(), k_summaryText))
                     : Member(object, key)) +
                "</span> ";
        ++count;
        if (!cut) {
            shown.insert({key, key + "Name"});
        }
    }
    return html;
}

class CTree {
  public:
    explicit CTree(std::size_t limit) : m_limit(limit) {}

    std::string Render(const TJson& object)
    {
        m_Members(object, {}, 0);
        return m_html + (m_Full() ? "<p class=\"muted\">More than this page holds is left out here.</p>" : "");
    }

  private:
    bool m_Full() const { return m_html.size() >= m_limit; }

    /// Writes the members, those aside that are shown already.
    void m_Members(const TJson& object, const std::set<std::string>& shown, unsigned depth)
    {
        bool list = false;
        for (const auto& [key, value] : object.items()) {
            if (IsSimple(value) && !IsNameOf(object, key) && shown.count(key) == 0 && !m_Full()) {
                const std::string cell = Member(object, key);
                m_html += std::string(list ? "" : "<dl class=\"members\">") +
                          (cell.size() > k_wideCell ? "<div class=\"wide\"><dt>" : "<div><dt>") + Key(key) +
                          "</dt><dd>" + cell + "</dd></div>";
                list = true;
            }
        }
        m_html += list ? "</dl>" : "";
        for (const auto& [key, value] : object.items()) {
            if (!IsSimple(value)) {
                m_Nested(key, value, depth);
            }
        }
    }

    void m_Nested(const std::string& key, const TJson& value, unsigned depth)
    {
        if (m_Full()) {
            return;
        }
        if (depth == k_deepest) {
            m_html += "<p>" + HtmlText(key) + ": nested too deep to be shown</p>";
        } else if (value.is_object()) {
            m_Fold(key, value, depth);
        } else if (value.size() > 1 && std::all_of(value.begin(), value.end(), IsRow)) {
            m_Table(key, value);
        } else {
            std::size_t shown = 0;
            for (const TJson& item : value) {
                if (shown == k_mostRows || m_Full()) {
                    m_html += "<p>" + HtmlText(key) + ": " + MoreText(value.size() - shown, "item") + "</p>";
                    break;
                }
                ++shown;
                if (item.is_object()) {
                    m_Fold(key, item, depth);
                } else if (IsSimple(item)) {
                    m_html += "<p><span class=\"key\">" + HtmlText(key) + "</span> " + Cell(item) + "</p>";
                } else {
                    m_Nested(key, item, depth + 1);
                }
            }
        }
    }

    /// An object below its first values; these alone when they are all it has.
    void m_Fold(const std::string& key, const TJson& object, unsigned depth)
    {
        std::set<std::string> shown;
        const std::string summary = HtmlText(key) + ' ' + Identity(object, shown);
        const bool leaf = std::all_of(object.items().begin(), object.items().end(),
                                      [&](const auto& member) { return shown.count(member.key()) != 0; });
        m_html += leaf ? "<p class=\"leaf\">" + summary + "</p>"
                       : "<details open class=\"tree\"><summary>" + summary + "</summary>";
        if (!leaf) {
            m_Members(object, shown, depth + 1);
            m_html += "</details>";
        }
    }

    void m_Table(const std::string& key, const TJson& rows)
    {
        const std::size_t most = std::min(rows.size(), k_mostRows);
        std::vector<std::string> columns;
        std::set<std::string> known;
        for (std::size_t i = 0; i < most; ++i) {
            for (const auto& [name, value] : rows[i].items()) {
                if (columns.size() < k_mostColumns && !IsNameOf(rows[i], name) && known.insert(name).second) {
                    columns.push_back(name);
                }
            }
        }
        std::string html;
        std::size_t shown = 0;
        for (; shown < most && m_html.size() + html.size() < m_limit; ++shown) {
            html += "<tr>";
            for (const std::string& column : columns) {
                html += "<td>" + (rows[shown].contains(column) ? Member(rows[shown], column) : "") + "</td>";
            }
            html += "</tr>";
        }
        m_html += std::string("<details class=\"tree\"") + (rows.size() <= k_openRows ? " open" : "") + "><summary>" +
                  HtmlText(key) + " <small>" + std::to_string(rows.size()) + "</small></summary>" +
                  HtmlTable("", columns, html) +
                  (shown < rows.size() ? "<p>" + MoreText(rows.size() - shown, "row") + "</p>" : "") + "</details>";
    }

    const std::size_t m_limit;
    std::string m_html;
};

}  // namespace

std::string HtmlText(const std::string& text)
{
    std::string printable = Printable(text);
    if (printable.find_first_of("&<>\"'") == std::string::npos) {
        return printable;
    }
    std::string html;
    for (const char c : printable) {
        switch (c) {
            case '&':
                html += "&amp;";
                break;
            case '<':
                html += "&lt;";
                break;
            case '>':
                html += "&gt;";
                break;
            case '"':
                html += "&quot;";
                break;
            case '\'':
                html += "&#39;";
                break;
            default:
                html += c;
        }
    }
    return html;
}

std::string HtmlClipped(const std::string& text, std::size_t bytes)
{
    return Clipped(text, bytes);
}

std::string HtmlIsolated(const std::string& text, const std::string& lang)
{
    constexpr std::size_t k_longestTag = 35;
    const bool tag = !lang.empty() && lang.size() <= k_longestTag && std::all_of(lang.begin(), lang.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
    });
    return (tag ? "<bdi lang=\"" + lang + "\">" : "<bdi>") + HtmlText(text) + "</bdi>";
}

std::string HtmlHeader(const char* scope, const std::string& html)
{
    return std::string("<th scope=\"") + scope + "\">" + html + "</th>";
}

std::string HtmlBadge(const char* kind, const std::string& text)
{
    return std::string("<span class=\"badge ") + kind + "\">" + HtmlText(text) + "</span>";
}

std::string HtmlTable(const char* className, const std::vector<std::string>& titles, const std::string& rows)
{
    std::string html = std::string("<div class=\"scroll\"><table class=\"") + className + "\"><thead><tr>";
    for (const std::string& title : titles) {
        html += HtmlHeader("col", HtmlText(title));
    }
    return html + "</tr></thead><tbody>" + rows + "</tbody></table></div>";
}

std::string HtmlTree(const TJson& object, std::size_t limit)
{
    return CTree(limit).Render(object);
}

}  // namespace vyr::inspect
