#include "SlsFollower.h"

#include <algorithm>
#include <utility>

#include "Gunzip.h"
#include "LibraryPort.h"
#include "Text.h"

namespace vyr::inspect {

namespace {

std::string Title(const TToi& toi)
{
    return "object " + ToiText(toi) + " of TSI 0";
}

}  // namespace

CSlsFollower::CSlsFollower(const SFollowed& followed, CReport& report)
    : m_followed(followed), m_report(report), m_reader(followed.session)
{
}

bool CSlsFollower::Take(const std::optional<TToi>& toi, SBytes object, const SSource& source)
{
    SSignalling signalling;
    signalling.source = source;
    signalling.session = m_followed.name;
    signalling.services = m_followed.Shown();
    signalling.toi = toi;
    signalling.size = object.size;
    signalling.gzip = IsGzip(object);
    SObject state = {object.size, ContentHash(object), 0};
    const auto known = toi ? m_objects.find(*toi) : m_objects.end();
    if (known != m_objects.end() && known->second.size == state.size && known->second.hash == state.hash) {
        signalling.status = EStatus::REPEATED;
        m_report.Signalling(signalling);
        return true;
    }
    std::vector<unsigned char> inflated;
    SBytes text = object;
    if (signalling.gzip) {
        if (!Gunzip(object, k_maxPackage, inflated)) {
            m_Remember(toi, state);
            return m_NotRead(toi, " does not inflate, or is larger than 8 MiB", source);
        }
        text = {inflated.data(), inflated.size()};
    }
    state.textHash = ContentHash(text);
    const std::size_t sizeBefore = known != m_objects.end() ? known->second.size : 0;
    const bool sameText = known != m_objects.end() && known->second.textHash == state.textHash;
    const bool isKnown = known != m_objects.end();
    m_Remember(toi, state);
    if (sameText) {
        signalling.status = EStatus::REPEATED;
        m_report.Signalling(signalling);
        return true;
    }
    const std::vector<SSlsText> texts = FindSlsDocuments(text);
    if (texts.empty()) {
        return m_NotRead(toi, " holds no signalling document", source);
    }
    TakeAssertions();
    std::string envelopeReason;
    signalling.contentType = PackageType(text);
    signalling.items = ReadEnvelope(text, envelopeReason);
    signalling.documents = m_reader.Read(text, texts);
    bool allNew = true;
    bool allUnchanged = true;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        SSlsDocument& document = signalling.documents[i];
        document.status = m_Compare(texts[i], document);
        allNew = allNew && document.status == EDocumentStatus::NEW;
        allUnchanged = allUnchanged && document.status == EDocumentStatus::UNCHANGED;
        m_parsed = m_parsed || document.content.has_value();
    }
    if (m_reader.UsbdService()) {
        m_usbdServices.insert(*m_reader.UsbdService());
    }
    signalling.status = isKnown        ? EStatus::CHANGED_WITHOUT_VERSION
                        : allNew       ? EStatus::NEW
                        : allUnchanged ? EStatus::NEW_VERSION_SAME_CONTENT
                                       : EStatus::CHANGED;
    m_report.Signalling(signalling);
    if (isKnown) {
        m_Fault(EFault::CHANGED_WITHOUT_VERSION,
                Title(*toi) + " changed without a new TOI (" + Counted(object.size, "byte") + ", before " +
                    std::to_string(sizeBefore) + ')',
                source);
    }
    if (!envelopeReason.empty()) {
        m_Fault(EFault::DOCUMENT_NOT_PARSED, "metadataEnvelope did not parse: " + envelopeReason, source);
    }
    for (const SSlsDocument& document : signalling.documents) {
        if (!document.content && document.status != EDocumentStatus::UNCHANGED) {
            m_Fault(EFault::DOCUMENT_NOT_PARSED,
                    std::string(DocumentName(document.kind)) + " did not parse: " + document.reason, source);
        }
    }
    for (const SAssertion& assertion : TakeAssertions()) {
        m_Fault(EFault::ASSERTION, "the library asserts \"" + assertion.expression + "\" at " + assertion.place,
                source);
    }
    return true;
}

bool CSlsFollower::Has(const TToi& toi, const std::optional<std::uint64_t>& size) const
{
    const auto known = m_objects.find(toi);
    return known != m_objects.end() && (!size || *size == known->second.size);
}

std::string CSlsFollower::Missing(unsigned serviceId) const
{
    if (m_usbdServices.empty() || m_usbdServices.count(serviceId) != 0) {
        return {};
    }
    const std::size_t others = m_usbdServices.size() - 1;
    return "the signalling on " + m_followed.name + " is of service " + std::to_string(*m_usbdServices.begin()) +
           (others != 0 ? " and " + std::to_string(others) + " more" : "");
}

void CSlsFollower::m_Remember(const std::optional<TToi>& toi, const SObject& object)
{
    if (!toi) {
        return;
    }
    const auto [entry, isNew] = m_objects.try_emplace(*toi);
    entry->second = object;
    if (isNew) {
        m_order.push_back(*toi);
    }
    if (m_order.size() > k_maxObjects) {
        m_objects.erase(m_order.front());
        m_order.pop_front();
    }
}

EDocumentStatus CSlsFollower::m_Compare(const SSlsText& text, SSlsDocument& document)
{
    const std::string shown = document.content ? document.content->headline + document.content->text : document.reason;
    const SDocument now = {ContentHash(text.bytes),
                           ContentHash({reinterpret_cast<const unsigned char*>(shown.data()), shown.size()})};
    std::optional<SDocument>& last = m_documents[static_cast<std::size_t>(text.kind)];
    const EDocumentStatus status = !last                    ? EDocumentStatus::NEW
                                   : last->hash != now.hash ? EDocumentStatus::CHANGED
                                                            : EDocumentStatus::UNCHANGED;
    document.sameText = last && last->textHash == now.textHash;
    last = now;
    return status;
}

void CSlsFollower::m_Fault(EFault code, const std::string& message, const SSource& source)
{
    m_lastFault = message;
    m_report.Fault(m_followed.Fault(code, message, source));
}

/// Of a raw file, its reader tells.
bool CSlsFollower::m_NotRead(const std::optional<TToi>& toi, const char* why, const SSource& source)
{
    if (toi) {
        m_Fault(EFault::OBJECT_NOT_READ, Title(*toi) + why, source);
    }
    return false;
}

}  // namespace vyr::inspect
