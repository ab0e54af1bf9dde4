#include "Report.h"

#include "Guide.h"

namespace vyr::inspect {

const char* FaultName(EFault code)
{
    switch (code) {
        case EFault::INPUT_MISSING:
            return "input-missing";
        case EFault::INPUT_UNREADABLE:
            return "input-unreadable";
        case EFault::INPUT_DIRECTORY:
            return "input-directory";
        case EFault::INPUT_EMPTY:
            return "input-empty";
        case EFault::INPUT_UNKNOWN:
            return "input-unknown";
        case EFault::INPUT_TOO_LARGE:
            return "input-too-large";
        case EFault::CAPTURE_DAMAGED:
            return "capture-damaged";
        case EFault::LINK_TYPE:
            return "link-type";
        case EFault::PACKETS_CUT:
            return "packets-cut";
        case EFault::PACKETS_MALFORMED:
            return "packets-malformed";
        case EFault::TABLE_TOO_SHORT:
            return "table-too-short";
        case EFault::TABLE_NOT_PARSED:
            return "table-not-parsed";
        case EFault::CHANGED_WITHOUT_VERSION:
            return "changed-without-version";
        case EFault::SERVICE_DROPPED:
            return "service-dropped";
        case EFault::BAD_ADDRESS:
            return "bad-address";
        case EFault::BAD_CERTIFICATE:
            return "bad-certificate";
        case EFault::BAD_SIGNATURE:
            return "bad-signature";
        case EFault::TOO_MANY_SERVICES:
            return "too-many-services";
        case EFault::ASSERTION:
            return "assertion";
        case EFault::NO_LLS:
            return "no-lls";
        case EFault::NO_SLT:
            return "no-slt";
        case EFault::LCT_MALFORMED:
            return "lct-malformed";
        case EFault::MMTP_MALFORMED:
            return "mmtp-malformed";
        case EFault::OBJECT_NOT_READ:
            return "object-not-read";
        case EFault::DOCUMENT_NOT_PARSED:
            return "document-not-parsed";
        case EFault::MESSAGE_NOT_PARSED:
            return "message-not-parsed";
        case EFault::NO_SIGNALLING:
            return "no-signalling";
        case EFault::GUIDE_NOT_PARSED:
            return "guide-not-parsed";
        case EFault::GUIDE_INCOMPLETE:
            return "guide-incomplete";
        case EFault::GUIDE_TOO_LARGE:
            return "guide-too-large";
    }
    return "";
}

const char* StatusName(EStatus status)
{
    switch (status) {
        case EStatus::NEW:
            return "new";
        case EStatus::CHANGED:
            return "changed";
        case EStatus::REPEATED:
            return "repeated";
        case EStatus::CHANGED_WITHOUT_VERSION:
            return "changed-without-version";
        case EStatus::NEW_VERSION_SAME_CONTENT:
            return "new-version-same-content";
    }
    return "";
}

const char* DocumentName(ESlsDocument kind)
{
    constexpr const char* k_names[] = {"BundleDescriptionROUTE", "S-TSID", "EFDT", "MPD",
                                       "ApplicationList",        "HELD",   "RSAT"};
    return k_names[static_cast<std::size_t>(kind)];
}

const char* DocumentStatusName(EDocumentStatus status)
{
    constexpr const char* k_names[] = {"new", "changed", "unchanged"};
    return k_names[static_cast<std::size_t>(status)];
}

const char* GuideObjectName(EGuideObject kind)
{
    constexpr const char* k_names[] = {"SGDU", "ServiceGuideDeliveryDescriptor", "SGResponse", "fragment"};
    return k_names[static_cast<std::size_t>(kind)];
}

SSessionCounts& SSessionCounts::operator+=(const SSessionCounts& other)
{
    sessions += other.sessions;
    packets += other.packets;
    malformed += other.malformed;
    signalling += other.signalling;
    return *this;
}

SRouteCounts& SRouteCounts::operator+=(const SRouteCounts& other)
{
    SSessionCounts::operator+=(other);
    objects += other.objects;
    incomplete += other.incomplete;
    return *this;
}

SMmtpCounts& SMmtpCounts::operator+=(const SMmtpCounts& other)
{
    SSessionCounts::operator+=(other);
    otherVersions += other.otherVersions;
    otherTypes += other.otherTypes;
    messages += other.messages;
    return *this;
}

bool IsInputFault(EFault code)
{
    return code <= EFault::INPUT_TOO_LARGE;
}

std::string ServiceListName(const std::string& stream, unsigned groupId)
{
    return (stream.empty() ? std::string() : stream + ' ') + "group " + std::to_string(groupId);
}

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
    ++counts.byStatus[static_cast<std::size_t>(table.status)];
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
    ++m_summary.objects[static_cast<std::size_t>(signalling.status)];
    for (const SSlsDocument& document : signalling.documents) {
        const bool again = document.status == EDocumentStatus::UNCHANGED;
        m_summary.documentsNotParsed += document.content || again ? 0 : 1;
    }
    if (signalling.status != EStatus::REPEATED) {
        m_Tell([&](IReportWriter& writer) { writer.Signalling(signalling); });
    }
}

void CReport::Message(const SMessage& message)
{
    ++m_summary.messages[static_cast<std::size_t>(message.status)];
    if (message.status == EStatus::REPEATED) {
        return;
    }
    m_summary.messagesUnsupported += message.supported ? 0 : 1;
    m_summary.messagesNotParsed += message.supported && !message.content ? 1 : 0;
    m_Tell([&](IReportWriter& writer) { writer.Message(message); });
}

void CReport::GuideObject(const SGuideObject& object)
{
    ++m_summary.guide.objects[static_cast<std::size_t>(object.status)];
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
}

}  // namespace vyr::inspect
