#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "base/Json.h"
#include "model/Items.h"
#include "model/ReportWriter.h"
#include "model/Verdict.h"
#include "report/Output.h"

namespace vyr::inspect {

/// What of a report is held against another one: the services of the lists that hold, their verdicts, and which rules
/// are broken where. Numbers of packets and times are no part of it.
struct SReportState {
    struct SService {
        TJson entry;  ///< its fields in the list; null: its list does not have it
        std::string title;
        std::optional<SVerdict> verdict;  ///< its judgements alone; none was given
    };
    struct SFindings {
        ESeverity severity = ESeverity::NOTE;
        std::string message;  ///< of the first
        std::uint64_t count = 0;
    };
    using TService = std::pair<std::string, unsigned>;              ///< service list and id
    using TPlace = std::tuple<std::string, unsigned, std::string>;  ///< rule, service (0x10000: none), session

    std::map<TService, SService> services;
    std::map<TPlace, SFindings> findings;
    std::map<std::string, bool> whole;  ///< by service list: it was told of without leaving any service out
    std::set<std::string> chosen;       ///< the options that chose what it tells of
    bool tables = false;                ///< any was told of
};

/// In place of a report, what is different from an earlier one: services that are gone, new or changed, verdicts, and
/// rules that are broken now.
class CBaselineReport : public IReportWriter {
  public:
    /// Reads the earlier report, in JSON Lines. Throws std::runtime_error where it is none, is cut, or is of other
    /// choices than `chosen`, by which this run tells. From `failOn` on, a rule that was not broken is worse. The
    /// output outlives this.
    CBaselineReport(COutput& output, const std::string& baseline, bool json, ESeverity failOn,
                    const std::vector<std::string>& chosen);

    void Table(const STable& table) override;
    void Signalling(const SSignalling&) override {}
    void Message(const SMessage&) override {}
    void GuideObject(const SGuideObject&) override {}
    void Guide(const SGuide&) override {}
    void Verdicts(const SVerdicts& verdicts) override;
    void Finding(const SFinding& finding) override;
    void Summary(const SSummary& summary) override;
    bool AlwaysSummary() const override { return true; }

    /// Whether anything is worse than it was; known behind the summary.
    bool Worse() const { return m_worse != 0; }

  private:
    void m_Services();
    void m_Verdict(const SReportState::TService& key, const SReportState::SService& before,
                   const SReportState::SService& now);
    void m_Findings();
    void m_Tell(const char* what, bool worse, const std::string& text, TJson fields);

    COutput& m_output;
    const std::string m_baseline;
    const bool m_json;
    const ESeverity m_failOn;
    SReportState m_before;
    SReportState m_now;
    std::size_t m_differences = 0;
    std::size_t m_worse = 0;
};

}  // namespace vyr::inspect
