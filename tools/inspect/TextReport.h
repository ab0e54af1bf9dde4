#pragma once

#include <string>

#include "Output.h"
#include "Report.h"

namespace vyr::inspect {

/// The report for people.
class CTextReport : public IReportWriter {
  public:
    /// With `localTime`, the times of the guide are those of the machine's time zone.
    explicit CTextReport(COutput& output, bool localTime = false) : m_output(output), m_localTime(localTime) {}

    void Table(const STable& table) override;
    void Signalling(const SSignalling& signalling) override;
    void Message(const SMessage& message) override;
    void GuideObject(const SGuideObject& object) override;
    void Guide(const SGuide& guide) override;
    void Fault(const SFault& fault) override;
    void Summary(const SSummary& summary) override;

  private:
    COutput& m_output;
    const bool m_localTime;
};

}  // namespace vyr::inspect
