#include "report/HtmlGuide.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <map>
#include <vector>

#include "base/Text.h"
#include "report/Html.h"

namespace vyr::inspect {

namespace {

constexpr std::int64_t k_minute = 60;
constexpr std::int64_t k_day = 86400;
constexpr std::int64_t k_dayMinutes = 1440;
constexpr std::int64_t k_hourMinutes = 60;
constexpr std::int64_t k_leastMinutes = 10;         // of a box
constexpr std::int64_t k_wideMinutes = 25;          // of a box that has room for both times
constexpr std::int64_t k_mostDays = 8;              // of a programme
constexpr std::int64_t k_endOfTime = 253402300800;  // the year 10000
constexpr std::int64_t k_unknownLength = 30 * k_minute;
constexpr std::size_t k_longTitle = 96;
constexpr std::size_t k_longText = 4096;
constexpr std::size_t k_openProgrammes = 40;

/// Where a programme stands in the grid of a day: minutes since its midnight.
struct SBox {
    std::size_t service = 0;
    std::size_t programme = 0;
    std::int64_t begin = 0;
    std::int64_t end = 0;  ///< behind the last minute, more than `begin`
};

std::string Date(std::int64_t seconds)
{
    return EpochText(static_cast<double>(seconds)).substr(0, 10);
}

/// "Saturday 2026-11-21".
std::string Day(std::int64_t seconds)
{
    constexpr const char* k_days[] = {"Thursday", "Friday", "Saturday", "Sunday", "Monday", "Tuesday", "Wednesday"};
    return k_days[seconds / k_day % 7] + (' ' + Date(seconds));
}

std::string Clock(std::int64_t seconds)
{
    return EpochText(static_cast<double>(seconds)).substr(11, 5);
}

/// "+02:00" of an offset in seconds.
std::string OffsetText(long offset)
{
    const long minutes = std::labs(offset) / k_minute;
    const auto two = [](long number) { return (number < 10 ? "0" : "") + std::to_string(number); };
    return (offset < 0 ? "-" : "+") + two(minutes / k_hourMinutes) + ':' + two(minutes % k_hourMinutes);
}

std::string FirstText(const std::vector<SGuideText>& texts, const char* none)
{
    return texts.empty() ? std::string(none) : HtmlIsolated(HtmlClipped(texts[0].text, k_longTitle), texts[0].lang);
}

std::string Texts(const char* label, const std::vector<SGuideText>& texts)
{
    std::string html;
    for (const SGuideText& text : texts) {
        html += std::string("<div><dt>") + label + "</dt><dd>" +
                HtmlIsolated(HtmlClipped(text.text, k_longText), text.lang) +
                (text.lang.empty() ? std::string() : " <small>" + HtmlText(text.lang) + "</small>") + "</dd></div>";
    }
    return html;
}

std::string List(const char* label, const std::vector<std::string>& texts)
{
    const std::string joined = Joined(texts);
    return joined.empty() ? std::string()
                          : std::string("<div><dt>") + label + "</dt><dd>" +
                                HtmlIsolated(HtmlClipped(joined, k_longText)) + "</dd></div>";
}

class CGuidePage {
  public:
    CGuidePage(const SGuide& guide, const std::string& id, bool localTime, std::size_t limit)
        : m_guide(guide), m_id(id), m_local(localTime), m_limit(limit)
    {
    }

    std::string Render()
    {
        for (std::size_t service = 0; service < m_guide.services.size(); ++service) {
            const std::vector<SProgramme>& programmes = m_guide.services[service].programmes;
            m_programmes += programmes.size() + m_guide.services[service].leftOut;
            for (std::size_t i = 0; i < programmes.size(); ++i) {
                m_Place(programmes[i], {service, i});
            }
        }
        m_html = "<p>" + Counted(m_guide.services.size() + m_guide.leftOut, "service") + ", " +
                 Counted(m_programmes, "programme") + " of " + Counted(m_guide.fragments, "fragment");
        m_Count(m_guide.unscheduledContents, "content", " in no schedule");
        m_Count(m_guide.missingContents, "content", " of schedules missing");
        m_Count(m_guide.missingServices, "service", " missing");
        m_html += ". Times are " + m_Zones() + ".</p>";
        for (const auto& [day, boxes] : m_days) {
            m_Grid(day, boxes);
        }
        m_Lists();
        return m_html + (m_Full() ? "<p class=\"muted\">More than this page holds is left out here.</p>" : "");
    }

  private:
    bool m_Full() const { return m_html.size() >= m_limit; }

    /// What clocks show, as seconds since 1970 of a zone without offset; none: no date of four digits.
    std::optional<std::int64_t> m_Shown(const std::optional<std::int64_t>& seconds)
    {
        if (!seconds || *seconds < k_day || *seconds >= k_endOfTime - 2 * k_day) {
            return std::nullopt;
        }
        const std::time_t time = static_cast<std::time_t>(*seconds);
        std::tm parts{};
        if (!m_local || localtime_r(&time, &parts) == nullptr) {
            return seconds;
        }
        m_zones.emplace(parts.tm_gmtoff, parts.tm_zone);
        return *seconds + parts.tm_gmtoff;
    }

    /// "UTC", or the offsets that the programmes' times have: "CET (+01:00)".
    std::string m_Zones() const
    {
        std::vector<std::string> zones;
        for (const auto& [offset, name] : m_zones) {
            zones.push_back(name + " (" + OffsetText(offset) + ')');
        }
        return !m_local ? "UTC" : zones.empty() ? "local" : HtmlText(Joined(zones));
    }

    void m_Count(std::size_t count, const char* what, const char* why)
    {
        m_html += count != 0 ? "; " + Counted(count, what) + why : "";
    }

    /// "20:00–20:30"; behind another day's midnight with the date.
    std::string m_Span(const SProgramme& programme)
    {
        const auto start = m_Shown(programme.start);
        const auto end = m_Shown(programme.end);
        if (!start || !end) {
            return start ? Clock(*start) + "\u2013?" : "no time";
        }
        const bool sameDay = *end / k_day == *start / k_day || *end == (*start / k_day + 1) * k_day;
        return Clock(*start) + "\u2013" + (sameDay ? "" : Date(*end) + ' ') + Clock(*end);
    }

    std::string m_Anchor(std::size_t service, std::size_t programme) const
    {
        return m_id + '-' + std::to_string(service) + '-' + std::to_string(programme);
    }

    std::string m_ServiceName(std::size_t index) const
    {
        const SGuideService& service = m_guide.services[index];
        std::string html;
        if (service.majorChannelNo && service.minorChannelNo) {
            html = std::to_string(*service.majorChannelNo) + '.' + std::to_string(*service.minorChannelNo) + ' ';
        } else if (service.serviceId) {
            html = std::to_string(*service.serviceId) + ' ';
        }
        return html + FirstText(service.names, "no name");
    }

    /// Puts the programme into the grid of the day on which it starts, and of those on which it goes on.
    void m_Place(const SProgramme& programme, SBox box)
    {
        const auto shown = m_Shown(programme.start);
        if (!shown) {
            return;
        }
        const std::int64_t start = *shown;
        const auto ends = m_Shown(programme.end);
        const std::int64_t end = ends && *ends > start ? *ends : start + k_unknownLength;
        const std::int64_t day = start / k_day;
        m_AddBox(day, box, start % k_day / k_minute, (end - day * k_day) / k_minute);
        for (std::int64_t next = day + 1; next < day + k_mostDays && end >= next * k_day + k_minute; ++next) {
            m_AddBox(next, box, 0, (end - next * k_day) / k_minute);
        }
    }

    /// A box that is wide enough to be seen, and ends with its day.
    void m_AddBox(std::int64_t day, SBox box, std::int64_t begin, std::int64_t end)
    {
        box.begin = std::min(begin, k_dayMinutes - k_leastMinutes);
        box.end = std::min(k_dayMinutes, std::max(end, box.begin + k_leastMinutes));
        m_days[day].push_back(box);
    }

    void m_Grid(std::int64_t day, std::vector<SBox> boxes)
    {
        if (m_Full()) {
            return;
        }
        std::stable_sort(boxes.begin(), boxes.end(), [](const SBox& a, const SBox& b) {
            return a.service != b.service ? a.service < b.service : a.begin < b.begin;
        });
        std::int64_t first = k_dayMinutes;
        std::int64_t last = 0;
        for (const SBox& box : boxes) {
            first = std::min(first, box.begin / k_hourMinutes * k_hourMinutes);
            last = std::max(last, (box.end + k_hourMinutes - 1) / k_hourMinutes * k_hourMinutes);
        }
        std::string html;
        std::size_t row = 2;
        for (std::size_t at = 0; at < boxes.size() && m_html.size() + html.size() < m_limit;) {
            row += m_Service(boxes, at, row, first, html);
        }
        std::string hours;
        for (std::int64_t hour = first; hour < last; hour += k_hourMinutes) {
            const std::string column = std::to_string(hour - first + 2);
            hours += "<span class=\"hour\" style=\"grid-column:" + column + "/span 60;grid-row:1/" +
                     std::to_string(row) + "\">" + Clock(hour * k_minute) + "</span>";
        }
        m_html += "<div class=\"grid\"><h3>" + Day(day * k_day) +
                  "</h3><div class=\"scroll\"><div class=\"epg\" style=\"" +
                  "grid-template-columns:var(--head) repeat(" + std::to_string(last - first) + ",var(--minute))\">" +
                  hours + html + "</div></div></div>";
    }

    /// Writes the row of one service, with as many lanes as programmes overlap; gives their number. Those
    /// for which there is no lane are in the list alone.
    std::size_t m_Service(const std::vector<SBox>& boxes, std::size_t& at, std::size_t row, std::int64_t first,
                          std::string& html)
    {
        const std::size_t service = boxes[at].service;
        std::size_t left = 0;
        std::vector<std::int64_t> lanes;  // where each ends
        std::string programmes;
        for (; at < boxes.size() && boxes[at].service == service; ++at) {
            const SBox& box = boxes[at];
            std::size_t lane = 0;
            while (lane < lanes.size() && lanes[lane] > box.begin) {
                ++lane;
            }
            if (lane == k_mostLanes) {
                ++left;
                continue;
            }
            lanes.resize(std::max(lanes.size(), lane + 1));
            lanes[lane] = box.end;
            const SProgramme& programme = m_guide.services[service].programmes[box.programme];
            const bool narrow = box.end - box.begin < k_wideMinutes;
            programmes += "<a class=\"box\" href=\"#" + m_Anchor(service, box.programme) +
                          "\" style=\"grid-column:" + std::to_string(box.begin - first + 2) + '/' +
                          std::to_string(box.end - first + 2) + ";grid-row:" + std::to_string(row + lane) + "\"><b>" +
                          FirstText(programme.titles, "no title") + "</b> <small>" +
                          (narrow ? Clock(*m_Shown(programme.start)) : m_Span(programme)) + "</small></a>";
        }
        html += "<span class=\"name\" style=\"grid-row:" + std::to_string(row) + "/span " +
                std::to_string(lanes.size()) + "\">" + m_ServiceName(service) +
                (left != 0 ? " <small>" + Counted(left, "programme") + " more</small>" : std::string()) + "</span>" +
                programmes;
        return lanes.size();
    }

    void m_Lists()
    {
        const std::string open = m_programmes <= k_openProgrammes ? " open" : "";
        for (std::size_t i = 0; i < m_guide.services.size() && !m_Full(); ++i) {
            const SGuideService& service = m_guide.services[i];
            m_html += "<details class=\"item\"" + open + "><summary><b>" + m_ServiceName(i) + "</b> <small>" +
                      Counted(service.programmes.size() + service.leftOut, "programme") + "</small></summary><dl>" +
                      List("service id", {service.serviceId ? std::to_string(*service.serviceId) : std::string()}) +
                      List("globalServiceID", {service.globalServiceId}) + List("fragment", {service.fragmentId}) +
                      Texts("name", service.names) + Texts("description", service.descriptions) +
                      List("genre", service.genres) + "</dl>";
            std::string date;
            for (std::size_t p = 0; p < service.programmes.size() && !m_Full(); ++p) {
                m_Programme(service.programmes[p], m_Anchor(i, p), date);
            }
            m_html += "</details>";
        }
    }

    /// Writes a programme, under a heading where its day is not the last one's.
    void m_Programme(const SProgramme& programme, const std::string& anchor, std::string& date)
    {
        const auto start = m_Shown(programme.start);
        const std::string its = start ? Day(*start) : "No time";
        m_html += its != date ? "<h4>" + its + "</h4>" : "";
        date = its;
        m_html += "<details class=\"programme\"><summary><span class=\"time\">" + m_Span(programme) + "</span> <b>" +
                  FirstText(programme.titles, "no title") + "</b> " +
                  (programme.genres.empty()
                       ? std::string()
                       : "<small>" + HtmlIsolated(HtmlClipped(Joined(programme.genres), k_longTitle)) + "</small>") +
                  "</summary><dl id=\"" + anchor + "\">" + Texts("title", programme.titles) +
                  Texts("description", programme.descriptions) + List("genre", programme.genres) +
                  List("rating", programme.ratings) + List("audio", programme.audioLanguages) +
                  List("text", programme.textLanguages) +
                  List("content", {programme.contentId.empty() ? "none that came" : programme.contentId}) +
                  "</dl></details>";
    }

    static constexpr std::size_t k_mostLanes = 8;

    const SGuide& m_guide;
    const std::string& m_id;
    const bool m_local;
    const std::size_t m_limit;
    std::size_t m_programmes = 0;
    std::map<long, std::string> m_zones;               ///< by offset, seconds
    std::map<std::int64_t, std::vector<SBox>> m_days;  ///< by days since 1970
    std::string m_html;
};

}  // namespace

std::string HtmlGuide(const SGuide& guide, const std::string& id, bool localTime, std::size_t limit)
{
    return CGuidePage(guide, id, localTime, limit).Render();
}

}  // namespace vyr::inspect
