#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "report/PageModel.h"

namespace vyr::inspect {

/// What stands at the foot of the page.
struct SRun {
    std::string commandLine;
    std::optional<std::int64_t> time = {};  ///< of the report, seconds since 1970; none: that of the clock
    unsigned refresh = 0;                   ///< seconds until the next report on the way; 0: there is none
};

/// The report as one page of HTML, complete in itself, made of what the model holds at the summary and at each report
/// on the way; the page of the latter is loaded again by itself.
class CHtmlReport : public CPageModel {
  public:
    /// With `localTime`, the times of the guide are those of the machine's time zone.
    explicit CHtmlReport(bool localTime = false, SRun run = {})
        : CPageModel(localTime, run.refresh != 0), m_run(std::move(run))
    {
    }

    void Summary(const SSummary& summary) override;
    void Interim(const SInterim& interim, const SSummary& summary) override;

    /// The page; empty before the summary.
    const std::string& Page() const { return m_page; }

  private:
    std::string m_Where(const SSource& source) const;
    std::string m_Fold(const SPart& part, const char* attributes) const;
    std::string m_Lines(const SList<SLine>& list, const std::vector<std::string>& titles) const;
    /// " · capture.pcap" where there are several inputs.
    std::string m_Input(std::size_t file) const;
    void m_Make(const SSummary& summary, bool final);
    std::string m_Head(const SSummary& summary, bool final) const;
    std::string m_Foot() const;
    std::string m_Overview(const SSummary& summary) const;
    std::string m_Services() const;
    std::string m_Guide() const;
    /// The parts, below the names of their inputs where there are several.
    std::string m_ByFile(const std::map<std::size_t, SPart>& parts) const;
    std::string m_Alerts() const;
    std::string m_Signalling() const;
    std::string m_Tables() const;
    std::string m_Certificates() const;
    std::string m_Problems(const SSummary& summary) const;
    std::string m_Components(const SSession& session) const;
    std::string m_Documents(const SSession& session) const;

    /// Why the service is not signalled; empty: nothing is missing of it.
    std::string m_Missing(const TKey& key, const SServiceList& list, const SListed& service) const;

    const SRun m_run;
    std::string m_page;
};

}  // namespace vyr::inspect
