#pragma once

#include <cstddef>

#include "model/Items.h"
#include "model/ReportWriter.h"

namespace vyr::inspect {

/// What a run finds, on its way to the writer: counts it for the summary.
class CReport {
  public:
    /// With `quiet`, the writer is told of faults only, and of the summary if it always wants it; the page, if there
    /// is one, of everything.
    CReport(IReportWriter& writer, bool quiet, IReportWriter* page = nullptr);

    void Table(const STable& table);
    void Signalling(const SSignalling& signalling);
    void Message(const SMessage& message);
    void GuideObject(const SGuideObject& object);
    void Guide(const SGuide& guide);
    void Fault(const SFault& fault);
    void Finish();
    /// For the counts that only its users know.
    SSummary& Summary() { return m_summary; }

  private:
    static constexpr std::size_t k_firstFaults = 20;

    template <class TTell>
    void m_Tell(TTell tell);

    IReportWriter& m_writer;
    IReportWriter* const m_page;
    const bool m_quiet;
    SSummary m_summary;
};

}  // namespace vyr::inspect
