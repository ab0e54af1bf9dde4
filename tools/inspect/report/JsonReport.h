#pragma once

#include <vector>

#include "base/JsonFwd.h"
#include "model/Items.h"
#include "model/ReportWriter.h"
#include "report/LimitedOutput.h"

namespace vyr::inspect {

/// The objects of the JSON report that other forms show as well.
TJson TableJson(const STable& table);
TJson ServiceJson(const STable& table, const SSltService& service);
TJson EnvelopeJson(const std::vector<SEnvelopeItem>& items);
TJson PartsJson(const std::vector<SPackagePart>& parts);

/// The report for programs: one JSON object per line, complete in itself.
class CJsonReport : public IReportWriter {
  public:
    explicit CJsonReport(COutput& output);

    void Table(const STable& table) override;
    void Signalling(const SSignalling& signalling) override;
    void Message(const SMessage& message) override;
    void GuideObject(const SGuideObject& object) override;
    void Guide(const SGuide& guide) override;
    void Fault(const SFault& fault) override;
    void Summary(const SSummary& summary) override;
    bool AlwaysSummary() const override { return true; }
    void Received(std::size_t bytes) override { m_output.Received(bytes); }

  private:
    void m_Write(const char* type, TJson&& json);

    CLimitedOutput m_output;
};

}  // namespace vyr::inspect
