#pragma once

#include <string>
#include <vector>

#include "model/Delivery.h"

namespace vyr::inspect {

/// A number as coordinate: to a tenth.
std::string Coordinate(double number);
/// Round numbers from 0 through `end`, no more than about `most`.
std::vector<double> Ticks(double end, unsigned most);

/// The axis of time below a picture, from the capture's begin on: where a moment stands, in the picture's units.
class CTimeAxis {
  public:
    CTimeAxis(double seconds, double left, double right);

    double X(double at) const;
    /// Lines across the picture at round times; markup.
    std::string Rules(double top, double bottom) const;
    /// These times, on a line of text at that height; markup.
    std::string Labels(double y) const;
    /// "seconds", "minutes" and the like: what the times are in.
    const char* Unit() const { return m_unit; }

  private:
    std::vector<double> m_Ticks() const;

    double m_seconds;
    double m_left;
    double m_right;
    double m_unitSeconds = 1;
    const char* m_unit = "seconds";
};

/// "seconds since 2027-01-15T08:00:00.000Z": what the axis below a picture of the delivery shows.
std::string AxisTitle(const CTimeAxis& axis, const SDelivery& delivery);

/// A picture of that many units with its title and its description, as texts; `id` begins their ids. `html` is markup.
std::string HtmlPicture(const char* className, unsigned width, unsigned height, const std::string& id,
                        const std::string& title, const std::string& description, const std::string& html);

}  // namespace vyr::inspect
