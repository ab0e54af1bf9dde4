#include "report/HtmlChart.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "base/Text.h"
#include "report/Html.h"

namespace vyr::inspect {

std::string Coordinate(double number)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.1f", number);
    const std::string all = text;
    return all.substr(0, all.size() - (all.back() == '0' ? 2 : 0));
}

std::vector<double> Ticks(double end, unsigned most)
{
    double step = std::pow(10, std::floor(std::log10(end / most)));
    for (const double factor : {2.0, 2.5, 2.0}) {  // 1, 2, 5, 10
        step *= end / step > most ? factor : 1;
    }
    std::vector<double> ticks;
    for (unsigned i = 0; i * step <= end; ++i) {
        ticks.push_back(i * step);
    }
    return ticks;
}

CTimeAxis::CTimeAxis(double seconds, double left, double right)
    : m_seconds(std::max(seconds, 1.0)), m_left(left), m_right(right)
{
    const struct {
        double seconds;
        const char* name;
    } units[] = {{60, "minutes"}, {3600, "hours"}, {86400, "days"}};
    constexpr double k_enough = 5;
    for (const auto& unit : units) {
        if (m_seconds > k_enough * unit.seconds) {
            m_unitSeconds = unit.seconds;
            m_unit = unit.name;
        }
    }
}

double CTimeAxis::X(double at) const
{
    return m_left + (m_right - m_left) * std::min(std::max(at, 0.0), m_seconds) / m_seconds;
}

std::vector<double> CTimeAxis::m_Ticks() const
{
    constexpr unsigned k_most = 8;
    return Ticks(m_seconds / m_unitSeconds, k_most);
}

std::string CTimeAxis::Rules(double top, double bottom) const
{
    std::string lines;
    for (const double tick : m_Ticks()) {
        lines += 'M' + Coordinate(X(tick * m_unitSeconds)) + ' ' + Coordinate(top) + 'V' + Coordinate(bottom);
    }
    return "<path class=\"rule\" d=\"" + lines + "\"/>";
}

std::string CTimeAxis::Labels(double y) const
{
    std::string html;
    for (const double tick : m_Ticks()) {
        html += "<text x=\"" + Coordinate(X(tick * m_unitSeconds)) + "\" y=\"" + Coordinate(y) +
                "\" text-anchor=\"middle\">" + NumberText(tick) + "</text>";
    }
    return html;
}

std::string AxisTitle(const CTimeAxis& axis, const SDelivery& delivery)
{
    const std::optional<STime>& first = delivery.traffic.first;
    const std::string since = axis.Unit() + std::string(" since ");
    if (delivery.clockSet != 0 || !first) {
        return since + "the capture began" + (delivery.clockSet != 0 ? ", without what its clock was set by" : "");
    }
    return since + InstantText(first->seconds, first->nanoseconds);
}

std::string HtmlPicture(const char* className, unsigned width, unsigned height, const std::string& id,
                        const std::string& title, const std::string& description, const std::string& html)
{
    return std::string("<svg class=\"") + className + "\" viewBox=\"0 0 " + std::to_string(width) + ' ' +
           std::to_string(height) + "\" role=\"img\" aria-labelledby=\"" + id + "-t " + id + "-d\"><title id=\"" + id +
           "-t\">" + HtmlText(title) + "</title><desc id=\"" + id + "-d\">" + HtmlText(description) + "</desc>" + html +
           "</svg>";
}

}  // namespace vyr::inspect
