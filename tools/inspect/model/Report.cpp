#include "model/Report.h"

#include "base/Limits.h"
#include "base/Text.h"
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

void CReport::Received(std::size_t bytes)
{
    m_writer.Received(bytes);
    if (m_page != nullptr) {
        m_page->Received(bytes);
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
        m_summary.signalling.documentsNotParsed += document.parsed || again ? 0 : 1;
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

void CReport::Delivery(const SDelivery& delivery)
{
    m_Tell([&](IReportWriter& writer) { writer.Delivery(delivery); });
}

void CReport::Fault(SFault fault)
{
    fault.message = Clipped(fault.message, Limit(k_longestMessage));
    if (fault.note) {
        ++m_summary.notes;
        ++m_summary.notesByCode[fault.code];
    } else {
        ++m_summary.faults;
        ++m_summary.faultsByCode[fault.code];
        if (m_summary.firstFaults.size() < k_firstFaults) {
            m_summary.firstFaults.push_back(fault);
        }
    }
    m_Move(fault.source);
    const unsigned header = fault.header ? 1u << 16 | unsigned{fault.header->tableId} << 8 | fault.header->groupId : 0;
    if (m_Joins(m_here[{fault.code, fault.note, header, {}}], fault, MostEntries())) {
        return;
    }
    const TAlike::key_type key = {fault.code, fault.note, header, fault.message};
    if (m_alike.size() < k_mostAlike || m_alike.count(key) != 0) {
        if (m_Joins(m_alike[key], fault, Limit(k_toldAlike))) {
            return;
        }
    }
    m_TellFault(fault);
}

/// The first faults of a kind are told of alone; false: this is one of them. The others are told of whenever they are
/// ten times as many as those before: an input may have no end.
bool CReport::m_Joins(SAlike& alike, const SFault& fault, std::uint64_t most)
{
    constexpr std::uint64_t k_growth = 10;
    if (alike.told < most) {
        ++alike.told;
        return false;
    }
    ++alike.held;
    alike.last = fault;
    if (alike.held == k_growth * alike.told) {
        m_TellHeld(alike);
    }
    return true;
}

void CReport::m_TellHeld(SAlike& alike)
{
    if (alike.held != 0) {
        alike.last.times = alike.held;
        m_TellFault(alike.last);
        alike.told += alike.held;
        alike.held = 0;
    }
}

void CReport::m_TellFault(const SFault& fault)
{
    if (!m_quiet || !fault.note) {
        m_writer.Fault(fault);
    }
    if (m_page != nullptr) {
        m_page->Fault(fault);
    }
}

void CReport::m_TellJoined(TAlike& alike)
{
    for (auto& [key, faults] : alike) {
        m_TellHeld(faults);
    }
    alike.clear();
}

/// What is held of the last place is told when it is left.
void CReport::m_Move(const SSource& place)
{
    if (place.packet != m_place.packet || place.file != m_place.file) {
        m_TellJoined(m_here);
    }
    if (place.file != m_place.file) {
        m_TellJoined(m_alike);
    }
    m_place = place;
}

void CReport::Finish()
{
    m_TellJoined(m_here);
    m_TellJoined(m_alike);
    m_Tell([&](IReportWriter& writer) { writer.Summary(m_summary); });
    if (m_quiet && m_writer.AlwaysSummary()) {
        m_writer.Summary(m_summary);
    }
}

}  // namespace vyr::inspect
