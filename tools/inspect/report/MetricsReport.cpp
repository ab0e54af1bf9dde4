#include "report/MetricsReport.h"

#include <algorithm>
#include <set>
#include <type_traits>
#include <utility>
#include <vector>

#include "base/Names.h"
#include "base/Text.h"

namespace vyr::inspect {

namespace {

enum class EFamily {
    REPORTS,
    PACKETS,
    BYTES,
    DATAGRAMS,
    PACKETS_CUT,
    DROPPED,
    LOST,
    SERVICES,
    SERVICE_STATE,
    FINDINGS,
    SESSION_PACKETS,
    SESSION_BYTES,
    SESSION_RATE,
    PACKETS_LOST,
    OBJECTS,
    ARRIVALS,
    INTERVAL,
    CERTIFICATE,
    LAST_PACKET,
    LEFT_OUT
};

struct SFamily {
    const char* name;
    const char* type;
    const char* unit;
    const char* labels;
    const char* help;
};

/// In the order of EFamily, which is that of the page.
constexpr SFamily k_families[] = {
    {"reports", "counter", "", "", "Reports up to now, this one as well."},
    {"packets", "counter", "", "", "Packets of all inputs, whatever they carry."},
    {"bytes", "counter", "bytes", "input", "Bytes of UDP payloads."},
    {"datagrams", "counter", "", "", "UDP datagrams that were whole."},
    {"packets_cut", "counter", "", "input", "Packets of which the capture lacks a part."},
    {"packets_dropped", "counter", "", "", "Packets of live input that came and that this machine had no room for."},
    {"packets_lost_by_interface", "counter", "", "", "Packets that the interface says it lost."},
    {"services", "gauge", "", "input, verdict",
     "Services of the lists that hold, by what is concluded of them: plays, plays-but, does-not-play, cannot-tell."},
    {"service_verdict", "gauge", "", "input, list, service, channel, name, verdict",
     "1 for each service of the lists that hold, with its verdict of a receiver with broadband."},
    {"findings", "gauge", "", "rule, severity",
     "Findings of each rule: events since the run began, and what holds now. Rules without any have no series."},
    {"session_packets", "counter", "", "input, session, source, protocol", "UDP datagrams of the session."},
    {"session_bytes", "counter", "bytes", "input, session, source, protocol", "Bytes of UDP payloads of the session."},
    {"session_rate_bytes_per_second", "gauge", "", "input, session, source, protocol",
     "Mean rate since the report before, or since the input began."},
    {"session_packets_lost", "counter", "", "input, session, source, packet_id",
     "MMTP packets that are missing by their sequence numbers; before the end, those that can come no more."},
    {"session_objects", "gauge", "", "input, session, source, tsi, state",
     "Objects of an LCT session since the run began: whole, incomplete, cut (begun before it, or under way), unknown."},
    {"arrivals", "counter", "", "input, kind, place, id, group",
     "Tables of a group, and objects or messages of signalling of a session, repeats as well."},
    {"longest_interval_seconds", "gauge", "seconds", "input, kind, place, id, group",
     "The longest time between two of these since the run began."},
    {"certificate_left_days", "gauge", "days", "stream, group, number, subject",
     "Days that a certificate of the certification data is still valid, at the time of the last packet; less than 0: "
     "it "
     "is not."},
    {"last_packet_timestamp_seconds", "gauge", "seconds", "input", "When the last packet came, since 1970."},
    {"series_left_out", "gauge", "", "", "Series that are not here because there are too many."}};

std::string LabelText(const std::string& text)
{
    constexpr std::size_t k_longest = 128;
    std::string escaped;
    for (const char c : Clipped(Printable(text), k_longest)) {
        escaped += c == '\\' || c == '"' ? "\\" : "";
        escaped += c;
    }
    return escaped;
}

}  // namespace

/// The page as it grows, family by family.
class CMetricsReport::CPage {
  public:
    using TLabels = std::vector<std::pair<const char*, std::string>>;

    /// Up to `most` samples of the family follow.
    void Begin(EFamily family, std::size_t most = k_noLimit)
    {
        m_family = &k_families[static_cast<std::size_t>(family)];
        m_room = most;
        m_series.clear();
        const std::string name = k_prefix + std::string(m_family->name);
        m_text += "# TYPE " + name + ' ' + m_family->type + '\n';
        m_text += *m_family->unit != '\0' ? "# UNIT " + name + ' ' + m_family->unit + '\n' : std::string();
        m_text += "# HELP " + name + ' ' + m_family->help + '\n';
    }
    template <class TValue>
    void Add(const TLabels& labels, TValue value)
    {
        std::string series;
        for (const auto& [label, text] : labels) {
            series += (series.empty() ? "{" : ",") + std::string(label) + "=\"" + LabelText(text) + '"';
        }
        series += labels.empty() ? "" : "}";
        if (m_room == 0 || !m_series.insert(series).second) {
            ++m_leftOut;
            return;
        }
        --m_room;
        std::string number;
        if constexpr (std::is_integral_v<TValue>) {
            number = std::to_string(value);
        } else {
            number = NumberText(value);
        }
        m_text += k_prefix + std::string(m_family->name) + (std::string(m_family->type) == "counter" ? "_total" : "") +
                  series + ' ' + number + '\n';
    }
    std::string Finish()
    {
        Begin(EFamily::LEFT_OUT);
        Add({}, m_leftOut);
        return std::move(m_text) + "# EOF\n";
    }

    static constexpr char k_prefix[] = "vyr_atsc30_";

  private:
    static constexpr std::size_t k_noLimit = 4096;

    const SFamily* m_family = nullptr;
    std::size_t m_room = 0;
    std::set<std::string> m_series;  ///< of the family
    std::uint64_t m_leftOut = 0;
    std::string m_text;
};

std::string CMetricsReport::Documentation()
{
    std::string text;
    for (const SFamily& family : k_families) {
        const bool counter = std::string(family.type) == "counter";
        text += std::string("| `") + CPage::k_prefix + family.name + (counter ? "_total" : "") + "` | " + family.type +
                " | " + (*family.unit != '\0' ? family.unit : "–") + " | " +
                (*family.labels != '\0' ? family.labels : "–") + " | " + family.help + " |\n";
    }
    return text;
}

void CMetricsReport::BeginInterim()
{
    m_inputs = {m_verdicts.size(), m_deliveries.size()};
}

void CMetricsReport::Table(const STable& table)
{
    constexpr std::size_t k_mostTables = 64;
    for (const TListKey& gone : table.listsGone) {
        m_certificates.erase(gone);
    }
    const std::pair key(table.stream, unsigned{table.header.groupId});
    if (!table.certificates.empty() && (m_certificates.size() < k_mostTables || m_certificates.count(key) != 0)) {
        m_certificates[key] = table.certificates;
    }
}

void CMetricsReport::Delivery(const SDelivery& delivery)
{
    m_deliveries.push_back(delivery);
}

void CMetricsReport::Verdicts(const SVerdicts& verdicts)
{
    m_verdicts.push_back(verdicts);
}

void CMetricsReport::Interim(const SInterim&, const SSummary& summary)
{
    m_Make(summary, false);
    m_verdicts.resize(m_inputs.first);
    m_deliveries.resize(m_inputs.second);
}

void CMetricsReport::Summary(const SSummary& summary)
{
    m_Make(summary, true);
}

void CMetricsReport::m_Services(CPage& page) const
{
    constexpr EVerdict k_all[] = {EVerdict::PLAYS, EVerdict::PLAYS_BUT, EVerdict::DOES_NOT_PLAY, EVerdict::CANNOT_TELL};
    page.Begin(EFamily::SERVICES);
    for (const SVerdicts& verdicts : m_verdicts) {
        for (const EVerdict verdict : k_all) {
            page.Add({{"input", verdicts.source.file}, {"verdict", VerdictName(verdict)}},
                     std::count_if(verdicts.verdicts.begin(), verdicts.verdicts.end(),
                                   [&](const SVerdict& each) { return each.judgement.verdict == verdict; }));
        }
    }
    page.Begin(EFamily::SERVICE_STATE, k_mostServices);
    for (const SVerdicts& verdicts : m_verdicts) {
        for (const SVerdict& service : verdicts.verdicts) {
            page.Add({{"input", verdicts.source.file},
                      {"list", service.serviceList},
                      {"service", std::to_string(service.serviceId)},
                      {"channel", service.channel},
                      {"name", service.name},
                      {"verdict", VerdictName(service.judgement.verdict)}},
                     1);
        }
    }
}

void CMetricsReport::m_Findings(CPage& page, const SSummary& summary) const
{
    page.Begin(EFamily::FINDINGS);
    for (const auto& [rule, count] : summary.findings) {
        const auto severity = m_severities.find(rule);
        page.Add(
            {{"rule", RuleName(rule)},
             {"severity", SeverityName(severity != m_severities.end() ? severity->second : RuleOf(rule).severity)}},
            count);
    }
}

void CMetricsReport::m_Sessions(CPage& page, bool ended)
{
    const auto each = [this](const auto& visit) {
        for (const SDelivery& delivery : m_deliveries) {
            for (const SSessionDelivery& session : delivery.sessions) {
                const char* protocol = DeliveryProtocolName(session.protocol);
                visit(delivery, session,
                      CPage::TLabels{{"input", delivery.source.file},
                                     {"session", EndpointText(session.destination, session.port)},
                                     {"source", session.source != 0 ? Ipv4Text(session.source) : std::string()},
                                     {"protocol", protocol != nullptr ? protocol : ""}});
            }
        }
    };
    page.Begin(EFamily::SESSION_PACKETS, k_mostSessions);
    each([&](const SDelivery&, const SSessionDelivery& session, const CPage::TLabels& labels) {
        page.Add(labels, session.traffic.packets);
    });
    page.Begin(EFamily::SESSION_BYTES, k_mostSessions);
    each([&](const SDelivery&, const SSessionDelivery& session, const CPage::TLabels& labels) {
        page.Add(labels, session.traffic.bytes);
    });
    page.Begin(EFamily::SESSION_RATE, k_mostSessions);
    std::map<TSession, std::pair<std::uint64_t, double>> now;
    each([&](const SDelivery& delivery, const SSessionDelivery& session, const CPage::TLabels& labels) {
        const TSession key = {delivery.source.file, session.destination, session.port, session.source};
        const auto before = m_before.find(key);
        const auto [bytes, seconds] = before != m_before.end() ? before->second : std::pair<std::uint64_t, double>();
        const double time = delivery.seconds - seconds;
        page.Add(labels, time > 0 && session.traffic.bytes >= bytes
                             ? static_cast<double>(session.traffic.bytes - bytes) / time
                             : 0);
        now[key] = {session.traffic.bytes, delivery.seconds};
    });
    m_before = std::move(now);
    const auto eachFlow = [&](const char* label, const auto& visit) {
        each([&](const SDelivery&, const SSessionDelivery& session, CPage::TLabels labels) {
            for (const SFlowDelivery& flow : session.flows) {
                labels.resize(3);
                labels.emplace_back(label, std::to_string(flow.id));
                visit(flow, labels);
            }
        });
    };
    page.Begin(EFamily::PACKETS_LOST, k_mostFlows);
    eachFlow("packet_id", [&](const SFlowDelivery& flow, const CPage::TLabels& labels) {
        if (flow.packets) {
            page.Add(labels, ended ? flow.packets->lost : flow.packets->gone);
        }
    });
    page.Begin(EFamily::OBJECTS, k_mostFlows);
    eachFlow("tsi", [&](const SFlowDelivery& flow, CPage::TLabels labels) {
        if (!flow.objects) {
            return;
        }
        const SObjectsDelivery& objects = *flow.objects;
        labels.emplace_back("state", "");
        for (const auto& [state, count] : {std::pair("whole", objects.whole),
                                           {"incomplete", objects.incomplete},
                                           {"cut", objects.cut},
                                           {"unknown", objects.unknown}}) {
            labels.back().second = state;
            page.Add(labels, count);
        }
    });
}

void CMetricsReport::m_Arrivals(CPage& page) const
{
    static constexpr const char* k_kinds[] = {"table", "signalling", "message", "guide"};
    const auto each = [this](const auto& visit) {
        for (const SDelivery& delivery : m_deliveries) {
            for (const SArrivalLine& line : delivery.arrivals.lines) {
                const bool table = line.kind == EArrivals::TABLE;
                const bool numbered = table || line.kind == EArrivals::MESSAGE;
                visit(line,
                      CPage::TLabels{{"input", delivery.source.file},
                                     {"kind", line.insideMultiTable ? "table inside"
                                                                    : k_kinds[static_cast<std::size_t>(line.kind)]},
                                     {"place", line.place},
                                     {"id", numbered ? std::to_string(line.id) : std::string()},
                                     {"group", table ? std::to_string(line.groupId) : std::string()}});
            }
        }
    };
    page.Begin(EFamily::ARRIVALS, k_mostLines);
    each([&](const SArrivalLine& line, const CPage::TLabels& labels) { page.Add(labels, line.came); });
    page.Begin(EFamily::INTERVAL, k_mostLines);
    each([&](const SArrivalLine& line, const CPage::TLabels& labels) {
        if (line.gap) {
            page.Add(labels, *line.gap);
        }
    });
}

void CMetricsReport::m_Certificates(CPage& page) const
{
    constexpr double k_day = 86400;
    std::optional<std::int64_t> now;
    for (const SDelivery& delivery : m_deliveries) {
        now = delivery.traffic.last ? delivery.traffic.last->seconds : now;
    }
    page.Begin(EFamily::CERTIFICATE, k_mostCertificates);
    for (const auto& [table, certificates] : m_certificates) {
        for (std::size_t i = 0; now && i < certificates.size(); ++i) {
            page.Add({{"stream", table.first},
                      {"group", std::to_string(table.second)},
                      {"number", std::to_string(i + 1)},
                      {"subject", certificates[i]->subject}},
                     static_cast<double>(certificates[i]->notAfter - *now) / k_day);
        }
    }
}

void CMetricsReport::m_Make(const SSummary& summary, bool ended)
{
    CPage page;
    page.Begin(EFamily::REPORTS);
    page.Add({}, ++m_reports);
    const auto each = [&](EFamily family, const auto& value) {
        page.Begin(family);
        for (const SDelivery& delivery : m_deliveries) {
            page.Add({{"input", delivery.source.file}}, value(delivery));
        }
    };
    page.Begin(EFamily::PACKETS);
    page.Add({}, summary.packets.packets);
    each(EFamily::BYTES, [](const SDelivery& delivery) { return delivery.traffic.bytes; });
    page.Begin(EFamily::DATAGRAMS);
    page.Add({}, summary.packets.datagrams);
    each(EFamily::PACKETS_CUT, [](const SDelivery& delivery) { return delivery.packetsCut; });
    page.Begin(EFamily::DROPPED);
    page.Add({}, summary.packets.dropped);
    page.Begin(EFamily::LOST);
    page.Add({}, summary.packets.lostByInterface);
    m_Services(page);
    m_Findings(page, summary);
    m_Sessions(page, ended);
    m_Arrivals(page);
    m_Certificates(page);
    each(EFamily::LAST_PACKET,
         [](const SDelivery& delivery) { return delivery.traffic.last ? delivery.traffic.last->seconds : 0; });
    m_page = page.Finish();
}

}  // namespace vyr::inspect
