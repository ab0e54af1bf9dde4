#include "report/HtmlRates.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>
#include <vector>

#include "base/Limits.h"
#include "base/Text.h"
#include "report/Html.h"
#include "report/HtmlChart.h"

namespace vyr::inspect {

namespace {

constexpr std::size_t k_mostPictures = 32;
constexpr std::size_t k_mostLayers = 6;  // of colours of their own
constexpr std::size_t k_mostColumns = 132;
constexpr unsigned k_width = 640;
constexpr unsigned k_height = 212;
constexpr double k_left = 76;
constexpr double k_right = 600;
constexpr double k_top = 24;
constexpr double k_bottom = 170;

/// A component of a picture: a flow, or what of the session is in none that is shown alone.
struct SComponent {
    const SSessionDelivery* session = nullptr;  ///< null: of those beyond the sessions that are kept
    const SFlowDelivery* flow = nullptr;
    std::uint64_t bytes = 0;
    bool rest = false;  ///< the session without its flows
};

struct SLayer {
    std::string name;
    std::string rates;
    std::uint64_t bytes = 0;
    std::vector<double> bins;  ///< bytes
};

std::string Rate(double rate)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.1f", rate);
    return text;
}

class CRates {
  public:
    CRates(const SDelivery& delivery, const std::string& id) : m_delivery(delivery), m_id(id)
    {
        // What is not whole would look like less.
        m_bins = static_cast<std::size_t>(delivery.seconds / delivery.binSeconds);
        m_group = (m_bins + k_mostColumns - 1) / k_mostColumns;
    }

    std::string Render(const std::function<std::string(unsigned)>& title)
    {
        if (m_bins == 0) {
            return "<p class=\"muted\">Less than a second of packets with times: nothing to show.</p>";
        }
        m_Sort();
        std::size_t shown = 0;
        for (const auto& [service, components] : m_services) {
            if (shown == Limit(k_mostPictures)) {
                m_html += "<p class=\"muted\">and " + Counted(m_services.size() - shown, "service") + " more</p>";
                break;
            }
            m_Picture(title(service), "Service " + std::to_string(service), components, true);
            ++shown;
        }
        m_Picture("LLS, and sessions of no service", "LLS, and sessions of no service", m_noService, false);
        const char* unnamed = m_delivery.namesKnown ? "Traffic without signalling" : "Other sessions";
        m_Picture(unnamed, unnamed, m_unnamed, false);
        return m_html;
    }

  private:
    /// Finds the picture of every session and flow.
    void m_Sort()
    {
        for (const SSessionDelivery& session : m_delivery.sessions) {
            std::vector<SComponent>& others = session.Named() ? m_noService : m_unnamed;
            const bool whole =
                session.services.empty() && std::all_of(session.flows.begin(), session.flows.end(),
                                                        [](const auto& flow) { return flow.services.empty(); });
            if (whole || session.flows.empty()) {
                m_Add(session.services, {&session, nullptr, session.traffic.bytes}, others);
                continue;
            }
            std::uint64_t rest = session.traffic.bytes;
            for (const SFlowDelivery& flow : session.flows) {
                m_Add(flow.services.empty() ? session.services : flow.services, {&session, &flow, flow.traffic.bytes},
                      others);
                rest -= std::min(rest, flow.traffic.bytes);
            }
            if (rest != 0) {
                m_Add(session.services, {&session, nullptr, rest, true}, others);
            }
        }
        if (m_delivery.others.packets != 0) {
            m_unnamed.push_back({nullptr, nullptr, m_delivery.others.bytes});
        }
    }

    void m_Add(const std::vector<unsigned>& services, const SComponent& component, std::vector<SComponent>& others)
    {
        if (services.empty()) {
            others.push_back(component);
        }
        for (const unsigned service : services) {
            m_services[service].push_back(component);
        }
    }

    void m_AddBins(SLayer& layer, const STraffic& traffic, double factor) const
    {
        for (std::size_t i = 0; i < traffic.bins.size() && traffic.firstBin + i < m_bins; ++i) {
            layer.bins[static_cast<std::size_t>(traffic.firstBin + i)] += factor * static_cast<double>(traffic.bins[i]);
        }
    }

    SLayer m_Layer(const SComponent& component, bool session) const
    {
        const STraffic& traffic = component.flow != nullptr      ? component.flow->traffic
                                  : component.session != nullptr ? component.session->traffic
                                                                 : m_delivery.others;
        SLayer layer;
        layer.bins.resize(m_bins);
        layer.bytes = component.bytes;
        m_AddBins(layer, traffic, 1);
        if (component.rest) {
            for (const SFlowDelivery& flow : component.session->flows) {
                m_AddBins(layer, flow.traffic, -1);
            }
        }
        layer.name = m_Name(component, session);
        layer.rates = traffic.meanRate && !component.rest
                          ? "mean " + Rate(*traffic.meanRate) + ", peak " + Rate(*traffic.peakRate) + " kbit/s"
                          : Counted(layer.bytes, "byte");
        return layer;
    }

    static std::string m_Name(const SComponent& component, bool session)
    {
        if (component.session == nullptr) {
            return "further sessions";
        }
        const SSessionDelivery& from = *component.session;
        std::string name = session ? EndpointText(from.destination, from.port) : std::string();
        const auto add = [&name](const std::string& text) { name += (name.empty() || text.empty() ? "" : " ") + text; };
        if (component.flow != nullptr) {
            add((component.flow->objects ? "TSI " : "packet id ") + std::to_string(component.flow->id));
            add(Short(Printable(component.flow->carries)));
        } else if (component.rest) {
            add("what is in no flow");
        } else if (const char* protocol = DeliveryProtocolName(from.protocol); protocol != nullptr && !from.guessed) {
            add(protocol);
        }
        return name.empty() ? "the session" : name;
    }

    /// The layers of a picture, the largest first; of too many, the last one is the sum of the others.
    std::vector<SLayer> m_Layers(std::vector<SComponent> components, bool session) const
    {
        std::stable_sort(components.begin(), components.end(),
                         [](const SComponent& a, const SComponent& b) { return a.bytes > b.bytes; });
        std::vector<SLayer> layers;
        for (std::size_t i = 0; i < components.size(); ++i) {
            SLayer layer = m_Layer(components[i], session);
            if (layers.size() <= k_mostLayers) {
                layers.push_back(std::move(layer));
                continue;
            }
            SLayer& others = layers.back();
            others.name = std::to_string(components.size() - k_mostLayers) + " others";
            others.bytes += layer.bytes;
            others.rates = Counted(others.bytes, "byte");
            std::transform(others.bins.begin(), others.bins.end(), layer.bins.begin(), others.bins.begin(),
                           std::plus<>());
        }
        return layers;
    }

    /// kbit/s of the layers on top of each other, column by column.
    std::vector<std::vector<double>> m_Stack(const std::vector<SLayer>& layers) const
    {
        constexpr double k_bitsOfKilobit = 1000.0 / 8;
        std::vector<std::vector<double>> tops(1, std::vector<double>((m_bins + m_group - 1) / m_group));
        for (const SLayer& layer : layers) {
            std::vector<double> top = tops.back();
            for (std::size_t i = 0; i < m_bins; ++i) {
                const std::size_t column = i / m_group;
                const std::size_t bins = std::min(m_group, m_bins - column * m_group);
                top[column] += layer.bins[i] / k_bitsOfKilobit / (static_cast<double>(bins) * m_delivery.binSeconds);
            }
            tops.push_back(std::move(top));
        }
        return tops;
    }

    void m_Picture(const std::string& title, const std::string& name, const std::vector<SComponent>& components,
                   bool service)
    {
        if (components.empty()) {
            return;
        }
        const bool oneSession = std::all_of(components.begin(), components.end(), [&](const SComponent& component) {
            return component.session == components[0].session;
        });
        const std::vector<SLayer> layers = m_Layers(components, !service || !oneSession);
        const std::vector<std::vector<double>> tops = m_Stack(layers);
        const auto most = std::max_element(tops.back().begin(), tops.back().end());
        m_html += "<h4>" + title + "</h4>";
        if (!(*most > 0)) {
            m_html += "<p class=\"muted\">Nothing came in the seconds that are whole.</p>";
            return;
        }
        const double columnSeconds = static_cast<double>(m_group) * m_delivery.binSeconds;
        std::string description = "Kilobits per second over time, " + Counted(layers.size(), "component") +
                                  " on top of each other, in the order of the legend from the bottom up. The most, " +
                                  Rate(*most) + " kbit/s, came within " + NumberText(columnSeconds) +
                                  " s from second " +
                                  NumberText(static_cast<double>(most - tops.back().begin()) * columnSeconds) + " on.";
        m_html += "<div class=\"scroll\">" +
                  HtmlPicture("chart", k_width, k_height, m_id + '-' + std::to_string(m_number++),
                              name + ": rate over time", description, m_Areas(layers, tops, *most)) +
                  "</div>" + m_Legend(layers);
    }

    std::string m_Areas(const std::vector<SLayer>& layers, const std::vector<std::vector<double>>& tops,
                        double most) const
    {
        constexpr unsigned k_rules = 5;
        const CTimeAxis axis(static_cast<double>(m_bins) * m_delivery.binSeconds, k_left, k_right);
        const auto y = [most](double rate) { return Coordinate(k_bottom - (k_bottom - k_top) * rate / most); };
        std::string rules;
        std::string texts;
        for (const double tick : Ticks(most, k_rules)) {
            rules += 'M' + Coordinate(k_left) + ' ' + y(tick) + 'H' + Coordinate(k_right);
            texts += "<text x=\"" + Coordinate(k_left - 6) + "\" y=\"" +
                     Coordinate(k_bottom - (k_bottom - k_top) * tick / most + 4) + "\" text-anchor=\"end\">" +
                     NumberText(tick) + "</text>";
        }
        std::string html = "<path class=\"rule\" d=\"" + rules + "\"/>" + texts + axis.Rules(k_top, k_bottom) +
                           axis.Labels(k_bottom + 16);
        std::vector<std::string> x;
        for (std::size_t column = 0; column <= tops[0].size(); ++column) {
            const std::size_t bin = std::min(column * m_group, m_bins);
            x.push_back(Coordinate(axis.X(static_cast<double>(bin) * m_delivery.binSeconds)));
        }
        for (std::size_t i = 0; i < layers.size(); ++i) {
            const std::vector<double>& top = tops[i + 1];
            const std::vector<double>& bottom = tops[i];
            std::string path = 'M' + x[0] + ' ' + y(top[0]);
            for (std::size_t column = 0; column < top.size(); ++column) {
                path += 'V' + y(top[column]) + 'H' + x[column + 1];
            }
            for (std::size_t column = top.size(); column-- > 0;) {
                path += 'V' + y(bottom[column]) + 'H' + x[column];
            }
            html += "<path class=\"" + m_Class(i) + "\" d=\"" + path + "Z\"><title>" + HtmlText(layers[i].name) +
                    "</title></path>";
        }
        return html + "<path class=\"axis\" d=\"M" + Coordinate(k_left) + ' ' + Coordinate(k_top) + 'V' +
               Coordinate(k_bottom) + 'H' + Coordinate(k_right) + "\"/><text x=\"" + Coordinate(k_left - 6) +
               "\" y=\"12\" text-anchor=\"end\">kbit/s</text><text x=\"" + Coordinate((k_left + k_right) / 2) +
               "\" y=\"206\" text-anchor=\"middle\">" + AxisTitle(axis, m_delivery) + "</text>";
    }

    std::string m_Legend(const std::vector<SLayer>& layers) const
    {
        std::string html = "<ul class=\"legend\">";
        for (std::size_t i = 0; i < layers.size(); ++i) {
            html += "<li><span class=\"" + m_Class(i) + "\"></span> " + HtmlIsolated(layers[i].name) + ": " +
                    layers[i].rates + "</li>";
        }
        return html + "</ul>";
    }

    static std::string m_Class(std::size_t layer)
    {
        return layer < k_mostLayers ? 'c' + std::to_string(layer) : "rest";
    }

    const SDelivery& m_delivery;
    const std::string m_id;
    std::size_t m_bins = 0;   ///< that are whole
    std::size_t m_group = 1;  ///< bins of a column
    unsigned m_number = 0;
    std::map<unsigned, std::vector<SComponent>> m_services;
    std::vector<SComponent> m_noService;
    std::vector<SComponent> m_unnamed;
    std::string m_html;
};

}  // namespace

std::string HtmlRates(const SDelivery& delivery, const std::string& id,
                      const std::function<std::string(unsigned serviceId)>& title)
{
    return CRates(delivery, id).Render(title);
}

}  // namespace vyr::inspect
