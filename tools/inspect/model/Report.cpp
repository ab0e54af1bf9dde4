#include "model/Report.h"

#include "model/Guide.h"

namespace vyr::inspect {

CReport::CReport(IReportWriter& writer, bool quiet, IReportWriter* page)
    : m_writer(writer), m_page(page), m_quiet(quiet)
{
}

template <class TTell>
void CReport::m_Tell(TTell tell)
{
    if (!m_quiet) {
        tell(m_writer);
    }
    if (m_page != nullptr) {
        tell(*m_page);
    }
}

void CReport::Table(const STable& table)
{
    STableCounts& counts = m_summary.tables[table.header.tableId];
    counts.byStatus.Add(table.status);
    counts.notParsed += table.parserExists && !table.slt && !table.content && table.status != EStatus::REPEATED ? 1 : 0;
    if (table.interval) {
        ++counts.intervals;
        counts.intervalSum += *table.interval;
    }
    m_summary.servicesDropped += table.slt ? table.slt->dropped : 0;
    m_Tell([&](IReportWriter& writer) { writer.Table(table); });
}

void CReport::Signalling(const SSignalling& signalling)
{
    m_summary.signalling.byStatus.Add(signalling.status);
    for (const SSlsDocument& document : signalling.documents) {
        const bool again = document.status == EDocumentStatus::UNCHANGED;
        m_summary.signalling.documentsNotParsed += document.content || again ? 0 : 1;
    }
    if (signalling.status != EStatus::REPEATED) {
        m_Tell([&](IReportWriter& writer) { writer.Signalling(signalling); });
    }
}

void CReport::Message(const SMessage& message)
{
    m_summary.messages.byStatus.Add(message.status);
    if (message.status == EStatus::REPEATED) {
        return;
    }
    m_summary.messages.notSupported += message.supported ? 0 : 1;
    m_summary.messages.notParsed += message.supported && !message.content ? 1 : 0;
    m_Tell([&](IReportWriter& writer) { writer.Message(message); });
}

void CReport::GuideObject(const SGuideObject& object)
{
    m_summary.guide.byStatus.Add(object.status);
    if (object.status != EStatus::REPEATED) {
        m_Tell([&](IReportWriter& writer) { writer.GuideObject(object); });
    }
}

void CReport::Guide(const SGuide& guide)
{
    m_Tell([&](IReportWriter& writer) { writer.Guide(guide); });
}

void CReport::Fault(const SFault& fault)
{
    if (fault.note) {
        ++m_summary.notes;
        ++m_summary.notesByCode[fault.code];
        m_Tell([&](IReportWriter& writer) { writer.Fault(fault); });
        return;
    }
    ++m_summary.faults;
    ++m_summary.faultsByCode[fault.code];
    if (m_summary.firstFaults.size() < k_firstFaults) {
        m_summary.firstFaults.push_back(fault);
    }
    m_writer.Fault(fault);
    if (m_page != nullptr) {
        m_page->Fault(fault);
    }
}

void CReport::Finish()
{
    m_Tell([&](IReportWriter& writer) { writer.Summary(m_summary); });
    if (m_quiet && m_writer.AlwaysSummary()) {
        m_writer.Summary(m_summary);
    }
}

}  // namespace vyr::inspect
