#pragma once

#include <string>
#include <vector>

#include "report/PageModel.h"

namespace vyr::inspect {

/// The report as one page of HTML, complete in itself, made at the summary of what the model holds.
class CHtmlReport : public CPageModel {
  public:
    /// With `localTime`, the times of the guide are those of the machine's time zone.
    explicit CHtmlReport(bool localTime = false) : CPageModel(localTime) {}

    void Summary(const SSummary& summary) override;

    /// The page; empty before the summary.
    const std::string& Page() const { return m_page; }

  private:
    std::string m_Where(const SSource& source) const;
    std::string m_Fold(const SPart& part, const char* attributes) const;
    std::string m_Lines(const SList<SLine>& list, const std::vector<std::string>& titles) const;
    std::string m_Head() const;
    std::string m_Overview(const SSummary& summary) const;
    std::string m_Services() const;
    std::string m_Guide() const;
    std::string m_Alerts() const;
    std::string m_Signalling() const;
    std::string m_Tables() const;
    std::string m_Certificates() const;
    std::string m_Problems(const SSummary& summary) const;
    std::string m_Documents(const SSession& session) const;

    /// Why the service is not signalled; empty: nothing is missing of it.
    std::string m_Missing(const TKey& key, const SServiceList& list, const SListed& service) const;

    std::string m_page;
};

}  // namespace vyr::inspect
