#pragma once

#include <map>
#include <optional>
#include <string>
#include <tuple>

#include "model/Delivery.h"
#include "model/Items.h"
#include "model/ReportWriter.h"
#include "model/Signed.h"
#include "model/Verdict.h"

namespace vyr::inspect {

/// What is counted and judged, as OpenMetrics text, made at the summary and at each report on the way. Series are
/// bounded: k_mostServices, k_mostSessions and so on of each kind; what is beyond is counted in
/// vyr_atsc30_series_left_out.
class CMetricsReport : public IReportWriter {
  public:
    static constexpr std::size_t k_mostServices = 256;
    static constexpr std::size_t k_mostSessions = 256;
    static constexpr std::size_t k_mostFlows = 1024;  ///< of all sessions
    static constexpr std::size_t k_mostLines = 256;   ///< tables, and signalling of sessions
    static constexpr std::size_t k_mostCertificates = 64;

    void Table(const STable& table) override;
    void Signalling(const SSignalling&) override {}
    void Message(const SMessage&) override {}
    void GuideObject(const SGuideObject&) override {}
    void Guide(const SGuide&) override {}
    void Delivery(const SDelivery& delivery) override;
    void Verdicts(const SVerdicts& verdicts) override;
    void Finding(const SFinding& finding) override { m_severities[finding.rule] = finding.severity; }
    void BeginInterim() override;
    void Interim(const SInterim& interim, const SSummary& summary) override;
    void Summary(const SSummary& summary) override;

    /// The metrics; empty before the summary.
    const std::string& Page() const { return m_page; }
    /// What they are, for people, in Markdown.
    static std::string Documentation();

  private:
    class CPage;
    /// Input, destination, port and source of a session.
    using TSession = std::tuple<std::string, std::uint32_t, std::uint16_t, std::uint32_t>;

    void m_Make(const SSummary& summary, bool ended);
    void m_Services(CPage& page) const;
    void m_Findings(CPage& page, const SSummary& summary) const;
    void m_Sessions(CPage& page, bool ended);
    void m_Arrivals(CPage& page) const;
    void m_Certificates(CPage& page) const;

    std::vector<SVerdicts> m_verdicts;  ///< of each input
    std::vector<SDelivery> m_deliveries;
    std::pair<std::size_t, std::size_t> m_inputs;  ///< that both have without the report on the way
    std::map<ERule, ESeverity> m_severities;       ///< what the run makes of rules
    std::map<std::pair<std::string, unsigned>, TCertificates> m_certificates;
    std::map<TSession, std::pair<std::uint64_t, double>>
        m_before;  ///< bytes and seconds of sessions at the last report
    std::uint64_t m_reports = 0;
    std::string m_page;
};

}  // namespace vyr::inspect
