#pragma once

#include <algorithm>
#include <cstdio>
#include <vector>

#include "Fuzz.h"
#include "content/LibraryPort.h"
#include "inspect/Markup.h"
#include "model/Report.h"
#include "report/HtmlReport.h"
#include "report/JsonReport.h"
#include "report/MetricsReport.h"
#include "report/Output.h"
#include "report/Progress.h"
#include "report/TextReport.h"

extern "C" int LLVMFuzzerInitialize(int*, char***);

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    return std::freopen("/dev/null", "w", stdout) ? 0 : 1;
}

namespace vyr::inspect {

/// The inspector's report as text or JSON, its page and its metrics.
class CFuzzReport {
  public:
    explicit CFuzzReport(bool json, bool localTime = false)
        : m_output(m_progress),
          m_text(m_output, localTime),
          m_json(m_output),
          m_page(localTime),
          m_report(json ? static_cast<IReportWriter&>(m_json) : m_text, false, {&m_page, &m_metrics})
    {
        InstallPlatform(LOG_PRIORITY_SILENT, {});
    }

    CReport& Report() { return m_report; }
    COutput& Output() { return m_output; }
    CProgress& Progress() { return m_progress; }

    /// Ends the report: nothing that came is markup in the page.
    const SSummary& Finish()
    {
        m_report.Finish();
        Require(MarkupFault(m_page.Page()).empty());
        return m_report.Summary();
    }

  private:
    CProgress m_progress{false};
    COutput m_output;
    CTextReport m_text;
    CJsonReport m_json;
    CHtmlReport m_page;
    CMetricsReport m_metrics;
    CReport m_report;
};

/// Calls `use` with each packet and the byte in front of it, which stands behind the packet's 16-bit
/// length; every packet in a heap block of exactly its size.
template <class TUse>
void ForEachPacket(const std::vector<unsigned char>& all, TUse use)
{
    for (std::size_t at = 0; at + 3 <= all.size();) {
        const std::size_t wanted = static_cast<std::size_t>(all[at] | all[at + 1] << 8);
        const unsigned pick = all[at + 2];
        at += 3;
        const std::size_t length = std::min(wanted, all.size() - at);
        const auto begin = all.begin() + static_cast<std::ptrdiff_t>(at);
        use(pick, std::vector<unsigned char>(begin, begin + static_cast<std::ptrdiff_t>(length)));
        at += length;
    }
}

}  // namespace vyr::inspect
