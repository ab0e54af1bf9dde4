#include "report/DeliveryText.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "base/Limits.h"

namespace vyr::inspect {

namespace {

constexpr std::size_t k_mostRows = 100;
constexpr std::size_t k_shownServices = 8;
constexpr std::size_t k_shownObjects = 3;

std::string Decimal(double number, int digits)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", digits, number);
    return text;
}

std::string Rate(const std::optional<double>& rate)
{
    return rate ? Decimal(*rate, 1) : std::string();
}

/// Texts behind each other, with a mark between them.
class CParts {
  public:
    void Add(const std::string& text) { m_text += (m_text.empty() || text.empty() ? "" : "; ") + text; }
    void Add(std::uint64_t count, const char* what)
    {
        if (count != 0) {
            Add(std::to_string(count) + ' ' + what);
        }
    }
    const std::string& Text() const { return m_text; }

  private:
    std::string m_text;
};

std::string ServicesText(const std::vector<unsigned>& services)
{
    std::vector<std::string> shown;
    for (std::size_t i = 0; i < services.size() && i < k_shownServices; ++i) {
        shown.push_back(std::to_string(services[i]));
    }
    if (services.size() > k_shownServices) {
        shown.push_back(std::to_string(services.size() - k_shownServices) + " more");
    }
    return shown.empty() ? std::string() : (services.size() == 1 ? "service " : "services ") + Joined(shown);
}

std::string SilenceText(const STraffic& traffic, const SDelivery& delivery)
{
    const std::optional<double> silence = delivery.Silence(traffic);
    return silence ? "silent for the last " + Decimal(*silence, 1) + " s" : std::string();
}

void AddObjects(CParts& parts, const SObjectsDelivery& objects)
{
    parts.Add(objects.whole, objects.whole == 1 ? "object whole" : "objects whole");
    parts.Add(objects.repeats, objects.repeats == 1 ? "repeat" : "repeats");
    if (objects.incomplete != 0) {
        std::string text =
            std::to_string(objects.incomplete) + " incomplete, " + Counted(objects.bytesMissing, "byte") + " missing (";
        for (std::size_t i = 0; i < objects.firstIncomplete.size() && i < k_shownObjects; ++i) {
            const SIncompleteObject& object = objects.firstIncomplete[i];
            text += (i == 0 ? "TOI " : ", ") + ToiText(object.toi) +
                    (object.name.empty() ? "" : ' ' + Short(Printable(object.name))) + ": " +
                    std::to_string(object.bytes) + " of " +
                    (object.length ? std::to_string(*object.length) : std::string("?"));
        }
        parts.Add(text + (objects.incomplete > k_shownObjects ? ", \u2026)" : ")"));
    }
    parts.Add(objects.cut, "cut by the capture");
    parts.Add(objects.unknown, "of which nothing can be said");
}

void AddPackets(CParts& parts, const SFlowDelivery& flow)
{
    const SPacketsDelivery& packets = *flow.packets;
    if (packets.lost != 0) {
        parts.Add(std::to_string(packets.lost) + " lost (" + Decimal(100 * flow.ShareLost(), 2) + " %)");
    }
    parts.Add(packets.duplicates, packets.duplicates == 1 ? "duplicate" : "duplicates");
    parts.Add(packets.late, "out of order");
    parts.Add(packets.restarts, packets.restarts == 1 ? "restart" : "restarts");
}

TRow Row(std::string name, std::string protocol, const STraffic& traffic, std::string what, std::string objects)
{
    return {std::move(name),
            std::move(protocol),
            std::to_string(traffic.packets),
            std::to_string(traffic.bytes),
            Rate(traffic.meanRate),
            Rate(traffic.peakRate),
            traffic.gap ? Decimal(*traffic.gap, 3) : std::string(),
            std::move(what),
            std::move(objects)};
}

/// The services of the session need not be said again.
TRow FlowRow(const SFlowDelivery& flow, const SSessionDelivery& session, bool silent, const SDelivery& delivery)
{
    constexpr const char* k_payloads[] = {"MPUs", "generic objects", "signalling", "repair symbols"};
    CParts carries;
    carries.Add(flow.services != session.services ? ServicesText(flow.services) : std::string());
    carries.Add(Short(Printable(flow.carries)));
    if (flow.carries.empty() && flow.payloadType.value_or(std::size(k_payloads)) < std::size(k_payloads)) {
        carries.Add(k_payloads[*flow.payloadType]);
    }
    CParts parts;
    if (flow.objects) {
        AddObjects(parts, *flow.objects);
    }
    if (flow.packets) {
        AddPackets(parts, flow);
    }
    parts.Add(flow.repairPackets, "of repair");
    parts.Add(silent ? std::string() : SilenceText(flow.traffic, delivery));
    return Row((flow.objects ? "  TSI " : "  packet id ") + std::to_string(flow.id), {}, flow.traffic, carries.Text(),
               parts.Text());
}

TRow SessionRow(const SSessionDelivery& session, bool showSource, const SDelivery& delivery)
{
    const char* protocol = DeliveryProtocolName(session.protocol);
    CParts carries;
    carries.Add(ServicesText(session.services));
    carries.Add(Short(Printable(session.carries)));
    carries.Add(delivery.namesKnown && !session.Named() ? "nothing names it" : "");
    CParts parts;
    if (session.traffic.packets == 0) {
        parts.Add(delivery.unread ? "nothing that can be read" : "nothing came");
    }
    if (session.otherPackets != 0) {
        const bool mmtp = session.protocol == EDeliveryProtocol::MMTP;
        parts.Add(Counted(session.otherPackets, mmtp ? "is no MMTP packet" : "is no LCT packet of ROUTE",
                          mmtp ? "are no MMTP packets" : "are no LCT packets of ROUTE"));
    }
    parts.Add(session.otherVersions, "of other versions");
    parts.Add(session.packetsNoFlow, "of further flows");
    parts.Add(SilenceText(session.traffic, delivery));
    return Row(EndpointText(session.destination, session.port) +
                   (showSource ? " from " + Ipv4Text(session.source) : std::string()),
               protocol == nullptr ? std::string("-") : protocol + std::string(session.guessed ? "?" : ""),
               session.traffic, carries.Text(), parts.Text());
}

bool SameEndpoint(const SSessionDelivery& a, const SSessionDelivery& b)
{
    return a.destination == b.destination && a.port == b.port;
}

}  // namespace

std::string DeliveryHeadline(const SDelivery& delivery)
{
    const STraffic& all = delivery.traffic;
    std::string text = Counted(all.packets, "packet") + ", " + Counted(all.bytes, "byte");
    text += all.first ? " in " + Decimal(delivery.seconds, 3) + " s" : "";
    text += all.meanRate ? ", " + Rate(all.meanRate) + " kbit/s, peak " + Rate(all.peakRate) : "";
    text += delivery.clockSet != 0 ? "; the capture's clock was set " + Counted(delivery.clockSet, "time") : "";
    return text;
}

SDeliveryRows DeliveryRows(const SDelivery& delivery, std::size_t most)
{
    SDeliveryRows rows = {{"session", "protocol", "packets", "bytes", "kbit/s", "peak", "gap s", "carries", "came"},
                          {}};
    const std::vector<SSessionDelivery>& sessions = delivery.sessions;
    std::vector<std::size_t> order;
    std::vector<bool> named;
    for (std::size_t i = 0; i < sessions.size(); ++i) {
        order.push_back(i);
        named.push_back(sessions[i].Named());
    }
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return named[a] != named[b] ? named[a] : !named[a] && sessions[a].traffic.bytes > sessions[b].traffic.bytes;
    });
    const auto add = [&rows, most](TRow row, bool flow) {
        if (rows.rows.size() < most) {
            rows.rows.push_back({std::move(row), flow});
        } else {
            ++rows.more;
        }
    };
    for (const std::size_t i : order) {
        if (rows.rows.size() >= most) {
            rows.more += 1 + sessions[i].flows.size();
            continue;
        }
        const bool missing = sessions[i].traffic.packets == 0 && sessions[i].source != 0;
        const bool showSource = missing || (i > 0 && SameEndpoint(sessions[i - 1], sessions[i])) ||
                                (i + 1 < sessions.size() && SameEndpoint(sessions[i + 1], sessions[i]));
        add(SessionRow(sessions[i], showSource, delivery), false);
        const bool silent = !SilenceText(sessions[i].traffic, delivery).empty();
        for (const SFlowDelivery& flow : sessions[i].flows) {
            add(FlowRow(flow, sessions[i], silent, delivery), true);
        }
    }
    if (delivery.others.packets != 0) {
        rows.rows.push_back({Row("further sessions", {}, delivery.others, {}, {}), false});
    }
    return rows;
}

std::string DeliveryText(const SDelivery& delivery)
{
    const SDeliveryRows rows = DeliveryRows(delivery, Limit(k_mostRows));
    std::vector<TRow> table = {rows.titles};
    for (const SDeliveryRows::SRow& row : rows.rows) {
        table.push_back(row.cells);
    }
    return "delivery: " + DeliveryHeadline(delivery) + '\n' + TableText(table) + MoreText("  ", rows.more, 0);
}

}  // namespace vyr::inspect
