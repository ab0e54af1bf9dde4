#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/JsonFwd.h"
#include "model/Items.h"
#include "model/ReportWriter.h"
#include "model/Verdict.h"
#include "report/Changes.h"
#include "report/LimitedOutput.h"

namespace vyr::inspect {

constexpr int k_schemaVersion = 3;

/// The objects of the JSON report that other forms show as well.
TJson TableJson(const STable& table);
TJson ServiceJson(const SSltService& service);
TJson VerdictJson(const SSource& source, const SVerdict& verdict);
/// What the verdict was and is, and why.
void PutChange(TJson& json, const SJudgement& before, const SJudgement& now);
TJson FindingJson(const SFinding& finding);
/// What is compared with the last table of the kind: its content, or the service list with its services. Null: it did
/// not parse, or its list is cut.
std::shared_ptr<const TJson> DocumentJson(const STable& table);
/// Tells a table or an object of the guide apart from all but those that it replaces.
std::string DocumentKey(const STable& table);
std::string DocumentKey(const SGuideObject& object);
TJson EnvelopeJson(const std::vector<SEnvelopeItem>& items);
TJson PartsJson(const std::vector<SPackagePart>& parts);

/// The report for programs: one JSON object per line. Of what changed, it has the changes against what it told last;
/// with `full`, the whole too.
class CJsonReport : public IReportWriter {
  public:
    explicit CJsonReport(COutput& output, bool full = false);

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
    bool WantsText(const std::string&) const override { return false; }
    bool WantsUnchanged(const std::string& key) const override { return m_full || m_last.Find(key) == nullptr; }
    bool AlwaysSummary() const override { return true; }
    void Received(std::size_t bytes) override { m_output.Received(bytes); }

  private:
    template <class TMake>
    bool m_Write(const char* type, TMake make);
    bool m_PutChanges(TJson& json, const std::string& key, const COptionalContent& now) const;
    void m_Remember(const std::string& key, bool told, std::shared_ptr<const TJson> json, const SSource& source);
    void m_Slt(const STable& table);
    TJson m_Json(const SSignalling& signalling, bool changes) const;

    CLimitedOutput m_output;
    const bool m_full;
    CLastShown m_last;
    std::shared_ptr<TJson> m_interim;  ///< verdicts of the report on the way that is made
};

}  // namespace vyr::inspect
