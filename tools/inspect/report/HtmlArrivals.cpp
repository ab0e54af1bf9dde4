#include "report/HtmlArrivals.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "base/Names.h"
#include "base/Text.h"
#include "report/Html.h"
#include "report/HtmlChart.h"

namespace vyr::inspect {

namespace {

constexpr unsigned k_width = 480;
constexpr unsigned k_height = 24;
constexpr double k_left = 12;
constexpr double k_right = 448;
constexpr double k_middle = 12;
constexpr double k_apart = 4;            // marks that are closer are drawn as one
constexpr std::size_t k_fewRows = 12;    // that need no axis on top
constexpr std::size_t k_leastTimes = 3;  // between marks, to know a usual one
constexpr double k_silence = 2;          // times the usual
constexpr std::size_t k_told = 8;        // of each kind in a description

std::string Name(const SArrivalLine& line)
{
    std::vector<std::string> services;
    for (const unsigned service : line.services) {
        services.push_back(std::to_string(service));
    }
    const char* table = TableName(line.id);
    const std::string what[] = {(table != nullptr ? table + std::string(" (") : "table (") + std::to_string(line.id) +
                                    ") group " + std::to_string(line.groupId) +
                                    (line.insideMultiTable ? ", signed" : ""),
                                "signalling", MessageTitle(line.id), "service guide"};
    return line.place + ' ' + what[static_cast<std::size_t>(line.kind)] +
           (services.empty() ? "" : (services.size() == 1 ? ", service " : ", services ") + Joined(services));
}

/// What is drawn of a line.
struct SDrawn {
    std::vector<SArrivalMark> marks;
    std::vector<std::pair<double, double>> silences;  ///< from, to, in seconds
    std::vector<std::pair<double, double>> running;   ///< the times between
};

/// Joins marks that would touch, and finds the times in which nothing came for much longer than usual: that is the
/// median.
SDrawn Draw(const SArrivalLine& line, const CTimeAxis& axis, double end)
{
    SDrawn drawn;
    std::vector<double> times;
    for (const SArrivalMark& mark : line.marks) {
        if (!drawn.marks.empty() && axis.X(mark.at) - axis.X(drawn.marks.back().at) < k_apart) {
            drawn.marks.back().count += mark.count;
            drawn.marks.back().changes += mark.changes;
            continue;
        }
        if (!drawn.marks.empty()) {
            times.push_back(mark.at - drawn.marks.back().at);
        }
        drawn.marks.push_back(mark);
    }
    if (drawn.marks.empty()) {
        return drawn;
    }
    const bool known = times.size() >= k_leastTimes;
    double usual = 0;
    if (known) {
        const auto median = times.begin() + static_cast<std::ptrdiff_t>((times.size() - 1) / 2);
        std::nth_element(times.begin(), median, times.end());
        usual = *median;
    }
    const auto add = [&](double from, double to, bool edge) {
        if (known && to - from > k_silence * usual) {
            drawn.silences.emplace_back(from, to);
        } else if (!edge) {
            drawn.running.emplace_back(from, to);
        }
    };
    add(0, drawn.marks.front().at, true);
    for (std::size_t i = 1; i < drawn.marks.size(); ++i) {
        add(drawn.marks[i - 1].at, drawn.marks[i].at, false);
    }
    add(drawn.marks.back().at, end, true);
    return drawn;
}

/// Seconds, to the millisecond.
std::string Rounded(double seconds)
{
    return NumberText(std::round(seconds * 1000) / 1000);
}

std::string Description(const SDrawn& drawn)
{
    std::string text = Counted(drawn.marks.size(), "mark");
    std::size_t changes = 0;
    for (const SArrivalMark& mark : drawn.marks) {
        if (mark.changes != 0 && ++changes <= k_told) {
            text += (changes == 1 ? "; a change at second " : ", ") + Rounded(mark.at);
        }
    }
    text += changes > k_told ? " and " + std::to_string(changes - k_told) + " more" : "";
    for (std::size_t i = 0; i < drawn.silences.size() && i < k_told; ++i) {
        text += (i == 0 ? "; silent from second " : ", ") + Rounded(drawn.silences[i].first) + " to " +
                Rounded(drawn.silences[i].second);
    }
    return text +
           (drawn.silences.size() > k_told ? " and " + Counted(drawn.silences.size() - k_told, "time") + " more" : "") +
           '.';
}

std::string Path(const char* className, const std::string& path)
{
    return path.empty() ? path : std::string("<path class=\"") + className + "\" d=\"" + path + "\"/>";
}

std::string Picture(const SDrawn& drawn, const CTimeAxis& axis)
{
    const auto lines = [&axis](const std::vector<std::pair<double, double>>& spans) {
        std::string path;
        for (const auto& [from, to] : spans) {
            path += 'M' + Coordinate(axis.X(from)) + ' ' + Coordinate(k_middle) + 'H' + Coordinate(axis.X(to));
        }
        return path;
    };
    std::string ticks;
    std::string diamonds;
    for (const SArrivalMark& mark : drawn.marks) {
        const std::string at = 'M' + Coordinate(axis.X(mark.at)) + ' ';
        ticks += mark.changes == 0 ? at + "6v12" : "";
        diamonds += mark.changes != 0 ? at + "3l6 9l-6 9l-6-9z" : "";
    }
    return axis.Rules(0, k_height) + Path("running", lines(drawn.running)) + Path("silence", lines(drawn.silences)) +
           Path("came", ticks) + Path("changed", diamonds);
}

std::string Sample(const char* className, const char* path, const char* text)
{
    return std::string("<li><svg viewBox=\"0 0 24 24\" aria-hidden=\"true\"><path class=\"") + className + "\" d=\"" +
           path + "\"/></svg> " + text + "</li>";
}

}  // namespace

std::string HtmlArrivals(const SDelivery& delivery, const std::string& id)
{
    const std::vector<SArrivalLine>& lines = delivery.arrivals.lines;
    if (lines.empty()) {
        return {};
    }
    const CTimeAxis axis(delivery.seconds, k_left, k_right);
    unsigned number = 0;
    const auto picture = [&](const std::string& title, const std::string& description, const std::string& html) {
        return HtmlPicture("marks", k_width, k_height, id + '-' + std::to_string(number++), title, description, html);
    };
    const auto row = [](const std::string& head, const std::vector<std::string>& cells) {
        std::string html = "<tr>" + HtmlHeader("row", head);
        for (const std::string& cell : cells) {
            html += "<td>" + cell + "</td>";
        }
        return html + "</tr>";
    };
    const auto axisRow = [&] {
        return row(axis.Unit(), {picture("Axis of time", "From 0 to " + Rounded(delivery.seconds) + " seconds.",
                                         axis.Labels(k_middle + 4)),
                                 {},
                                 {},
                                 {}});
    };
    std::string rows = lines.size() > k_fewRows ? axisRow() : std::string();
    for (const SArrivalLine& line : lines) {
        const SDrawn drawn = Draw(line, axis, delivery.seconds);
        const std::string name = Name(line);
        rows += row(
            HtmlText(name),
            {drawn.marks.empty() ? std::string("no time")
                                 : picture(name + ": arrivals", Description(drawn), Picture(drawn, axis)),
             std::to_string(line.came), std::to_string(line.changes), line.gap ? Rounded(*line.gap) : std::string()});
    }
    return "<ul class=\"legend\">" + Sample("came", "M12 6v12", "came") +
           Sample("changed", "M12 3l6 9l-6 9l-6-9z", "came, and was another than before") +
           Sample("silence", "M0 12H24", "nothing came for more than twice the usual time") + "</ul>" +
           HtmlTable("arrivals", {"what", AxisTitle(axis, delivery), "came", "changed", "gap s"}, rows + axisRow()) +
           (delivery.arrivals.more != 0
                ? "<p class=\"muted\">and " + Counted(delivery.arrivals.more, "arrival") + " of others</p>"
                : "");
}

}  // namespace vyr::inspect
