#pragma once

#include <string>

#include "Output.h"
#include "Report.h"

namespace vyr::inspect {

/// The report for people.
class CTextReport : public IReportWriter {
  public:
    explicit CTextReport(COutput& output) : m_output(output) {}

    void Table(const STable& table) override;
    void Signalling(const SSignalling& signalling) override;
    void Message(const SMessage& message) override;
    void Fault(const SFault& fault) override;
    void Summary(const SSummary& summary) override;

  private:
    COutput& m_output;
};

}  // namespace vyr::inspect
