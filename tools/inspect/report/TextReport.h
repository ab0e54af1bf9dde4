#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/Text.h"
#include "model/Items.h"
#include "model/ReportWriter.h"
#include "report/Changes.h"
#include "report/LimitedOutput.h"

namespace vyr::inspect {

/// The line that tells of one thing that came: what it is, and what is new about it.
std::string Headline(const STable& table);
std::string Headline(const SSignalling& signalling);
std::string Headline(const SMessage& message);
std::string Headline(const SGuideObject& object);
/// The services of a list, below their column titles.
std::vector<TRow> ServiceRows(const std::vector<SSltService>& services);
/// What the summary counts, each behind its label.
std::vector<TRow> SummaryRows(const SSummary& summary);

/// The report for people. Of what changed, it tells what changed against what it told last.
class CTextReport : public IReportWriter {
  public:
    /// With `localTime`, the times of the guide are those of the machine's time zone; with `full`, what changed is
    /// shown whole as well.
    explicit CTextReport(COutput& output, bool localTime = false, bool full = false);

    void Table(const STable& table) override;
    void Signalling(const SSignalling& signalling) override;
    void Message(const SMessage& message) override;
    void GuideObject(const SGuideObject& object) override;
    void Guide(const SGuide& guide) override;
    void Delivery(const SDelivery& delivery) override;
    void Verdicts(const SVerdicts& verdicts) override;
    void Finding(const SFinding& finding) override;
    void Summary(const SSummary& summary) override;
    void BeginInterim() override;
    void Interim(const SInterim& interim, const SSummary& summary) override;
    bool WantsText(const std::string& key) const override { return m_full || m_last.Find(key) == nullptr; }
    bool WantsUnchanged(const std::string&) const override { return false; }
    void Received(std::size_t bytes) override { m_output.Received(bytes); }

  private:
    bool m_Write(const char* kind, const SSource& source, const std::string& text);
    template <class TWhole>
    std::string m_Body(const std::string& key, EStatus status, const std::shared_ptr<const TJson>& now,
                       TWhole whole) const;
    std::string m_SummaryText(const SSummary& summary) const;
    std::string m_DocumentText(const SSlsDocument& document) const;
    void m_Remember(const std::string& key, bool told, std::shared_ptr<const TJson> json, const SSource& source);

    CLimitedOutput m_output;
    const bool m_localTime;
    const bool m_full;
    CLastShown m_last;
    std::string m_verdicts;        ///< of all inputs
    std::string m_verdictsBefore;  ///< a report on the way
};

}  // namespace vyr::inspect
