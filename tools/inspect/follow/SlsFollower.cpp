#include "follow/SlsFollower.h"

#include <algorithm>
#include <utility>

#include "base/Gunzip.h"
#include "base/Text.h"
#include "content/LibraryPort.h"
#include "content/Roots.h"

namespace vyr::inspect {

namespace {

std::string Title(const TToi& toi)
{
    return "object " + ToiText(toi) + " of TSI 0";
}

}  // namespace

CSlsFollower::CSlsFollower(const SFollowed& followed, CReport& report, TStsidListener stsidListener)
    : CFollower(followed, report, ""), m_reader(followed.session, std::move(stsidListener))
{
}

bool CSlsFollower::Take(const std::optional<TToi>& toi, SView object, const SSource& source)
{
    SSignalling signalling;
    signalling.source = source;
    signalling.session = t_followed.name;
    signalling.services = t_followed.Shown();
    signalling.toi = toi;
    signalling.size = object.size;
    signalling.gzip = IsGzip(object);
    SObject now = {object.size, ContentHash(object), 0, {}};
    const SObject* known = toi ? m_objects.Find(*toi) : nullptr;
    const bool sameToi = known != nullptr;
    const SObject before = sameToi ? *known : SObject{};
    // One that came before and whose documents were replaced since changes what holds.
    const bool stands = sameToi && m_Stands(before);
    if (stands && before.size == now.size && before.hash == now.hash && !m_readAgain) {
        m_objects.Hold(*toi);
        return m_Repeated(signalling);
    }
    std::vector<unsigned char> inflated;
    const bool whole = !signalling.gzip || Gunzip(object, k_maxPackage, inflated);
    const SView text = signalling.gzip ? SView{inflated.data(), inflated.size()} : object;
    now.textHash = !whole ? 0 : signalling.gzip ? ContentHash(text) : now.hash;
    const bool sameText = sameToi && whole && before.textHash == now.textHash;
    now.brought = sameText ? before.brought : now.brought;
    if (toi) {
        m_objects.Hold(*toi) = now;
    }
    if (!whole) {
        return m_NotRead(toi, " does not inflate, or is larger than 8 MiB", source);
    }
    if (sameText && stands) {
        if (m_readAgain) {
            m_reader.Read(text, FindSlsDocuments(text), [](const SSlsText&, std::optional<unsigned>) {
                return CSlsReader::SWanted{false, false};
            });
            m_readAgain = m_reader.Stsid() == nullptr;
        }
        return m_Repeated(signalling);
    }
    const std::vector<SSlsText> texts = FindSlsDocuments(text);
    SPackage package = ReadPackage(text, texts);
    if (texts.empty() && !package.hasEnvelope) {
        const SKnownDocument document = KnownDocument(text);
        return m_NotRead(toi,
                         " holds no signalling document" + (document.text.empty() ? "" : ": it is " + document.text),
                         source, document.signalling);
    }
    TakeAssertions();
    std::string envelopeReason;
    signalling.contentType = PackageType(text);
    signalling.items = ReadEnvelope(text, envelopeReason);
    signalling.documents = m_reader.Read(
        text, texts,
        [this](const SSlsText& document, std::optional<unsigned> service) { return m_Wants(document, service); });
    const bool changed = sameToi && !sameText;
    signalling.status = m_Status(texts, signalling.documents, package, changed, now);
    if (toi) {
        m_objects.Hold(*toi) = now;
    }
    signalling.sent = object;
    signalling.text = text;
    signalling.parts.swap(package.parts);
    signalling.moreParts = package.moreParts;
    signalling.partsEnded = package.ended;
    signalling.signature = std::move(package.signature);
    signalling.signedBytes = std::move(package.signedBytes);
    t_report.Signalling(signalling);
    package.parts.swap(signalling.parts);
    if (changed) {
        t_Finding(ERule::CHANGED_WITHOUT_VERSION,
                  Title(*toi) + " changed without a new TOI (" + Counted(now.size, "byte") + ", before " +
                      std::to_string(before.size) + ')',
                  source);
    }
    if (!envelopeReason.empty()) {
        t_Finding(ERule::DOCUMENT_NOT_PARSED, "metadataEnvelope did not parse: " + envelopeReason, source);
    }
    if (texts.empty()) {
        m_NotRead(toi, " holds no document that is read", source, true);
    }
    m_PackageFindings(package, envelopeReason.empty() ? signalling.items : std::vector<SEnvelopeItem>(), source);
    m_DocumentFindings(signalling.documents, source);
    return true;
}

bool CSlsFollower::m_Repeated(SSignalling& signalling)
{
    signalling.status = EStatus::REPEATED;
    t_report.Signalling(signalling);
    return true;
}

/// Whether what the object brought is what holds.
bool CSlsFollower::m_Stands(const SObject& object) const
{
    return std::all_of(object.brought.begin(), object.brought.end(), [this](const auto& document) {
        const auto standing = m_documents.find(document.first);
        return standing != m_documents.end() && standing->second == document.second;
    });
}

/// The slot of the service that the package is of: that of the first one, unless its USBD says something else.
unsigned CSlsFollower::m_Service()
{
    const std::optional<unsigned> service = m_reader.UsbdService();
    if (!service) {
        return 0;
    }
    t_services.insert(*service);
    if (m_slots.size() < k_maxServices) {
        m_slots.try_emplace(*service, static_cast<unsigned>(m_slots.size()));
    }
    return m_SlotOf(service).value_or(0);
}

/// None: it will have a new one.
std::optional<unsigned> CSlsFollower::m_SlotOf(std::optional<unsigned> service) const
{
    if (!service) {
        return 0;
    }
    const auto known = m_slots.find(*service);
    return known != m_slots.end()           ? std::optional<unsigned>(known->second)
           : m_slots.size() < k_maxServices ? std::nullopt
                                            : std::optional<unsigned>(0);
}

/// Nothing is wanted of a document that stands already.
CSlsReader::SWanted CSlsFollower::m_Wants(const SSlsText& text, std::optional<unsigned> service) const
{
    const std::optional<unsigned> known = m_SlotOf(service);
    if (!known) {
        return {};
    }
    const TSlot slot = {*known, text.kind};
    const auto standing = m_documents.find(slot);
    const std::string key = m_Key(slot);
    return {standing == m_documents.end() || standing->second != text.hash || t_report.WantsUnchanged(key),
            standing == m_documents.end() || t_report.WantsText(key)};
}

/// What is new of the object, and of each of its documents.
EStatus CSlsFollower::m_Status(const std::vector<SSlsText>& texts, std::vector<SSlsDocument>& documents,
                               const SPackage& package, bool sameToi, SObject& object)
{
    bool allNew = true;
    bool allUnchanged = true;
    const unsigned service = m_Service();
    object.brought.clear();
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const TSlot slot = {service, texts[i].kind};
        const EDocumentStatus status = m_Compare(slot, texts[i]);
        object.brought.emplace_back(slot, m_documents[slot]);
        documents[i].status = status;
        documents[i].key = m_Key(slot);
        allNew = allNew && status == EDocumentStatus::NEW;
        allUnchanged = allUnchanged && status == EDocumentStatus::UNCHANGED;
        t_parsed = t_parsed || documents[i].parsed;
    }
    if (package.hasUnread) {
        const TSlot slot = {service, k_unread};
        const auto [last, isNew] = m_documents.try_emplace(slot);
        allNew = allNew && isNew;
        allUnchanged = allUnchanged && !isNew && last->second == package.unreadHash;
        last->second = package.unreadHash;
        object.brought.emplace_back(slot, package.unreadHash);
    }
    return sameToi ? EStatus::CHANGED_WITHOUT_VERSION : StatusOf(allNew, false, allUnchanged);
}

/// What is wrong with a package, or worth knowing of it, is told of once while it stays so.
void CSlsFollower::m_PackageFindings(const SPackage& package, const std::vector<SEnvelopeItem>& items,
                                     const SSource& source)
{
    const auto tell = [&](ERule rule, const std::string& message) {
        std::string& last = m_toldOfPackage[rule];
        if (message != last && !message.empty()) {
            t_Finding(rule, message, source);
        }
        last = message;
    };
    tell(ERule::BAD_SIGNATURE, package.signatureFault);
    if (package.hasEnvelope && !items.empty()) {
        tell(ERule::ITEM_WITHOUT_PART, ItemsWithoutPart(package, items));
        tell(ERule::PART_WITHOUT_ITEM, PartsWithoutItem(package, items));
    }
}

/// A broken document that stays as it is is told of once.
void CSlsFollower::m_DocumentFindings(const std::vector<SSlsDocument>& documents, const SSource& source)
{
    for (const SSlsDocument& document : documents) {
        if (!document.parsed && document.status != EDocumentStatus::UNCHANGED) {
            t_Finding(ERule::DOCUMENT_NOT_PARSED,
                      std::string(DocumentName(document.kind)) + " did not parse: " + document.reason, source);
        }
    }
    t_AddAssertions(source);
}

bool CSlsFollower::Has(const TToi& toi, const std::optional<std::uint64_t>& size) const
{
    const SObject* known = m_objects.Find(toi);
    return known != nullptr && (!size || *size == known->size);
}

std::string CSlsFollower::m_Key(const TSlot& slot) const
{
    return std::to_string(t_number) + ' ' + std::to_string(slot.first) + ' ' + DocumentName(slot.second);
}

EDocumentStatus CSlsFollower::m_Compare(const TSlot& slot, const SSlsText& text)
{
    const auto [last, isNew] = m_documents.try_emplace(slot, text.hash);
    const bool changed = std::exchange(last->second, text.hash) != text.hash;
    return isNew ? EDocumentStatus::NEW : changed ? EDocumentStatus::CHANGED : EDocumentStatus::UNCHANGED;
}

/// Of a raw file, its reader tells.
bool CSlsFollower::m_NotRead(const std::optional<TToi>& toi, const std::string& why, const SSource& source, bool known)
{
    if (toi) {
        t_Finding(known ? ERule::OBJECT_PASSED_OVER : ERule::OBJECT_NOT_READ, Title(*toi) + why, source);
    }
    return false;
}

}  // namespace vyr::inspect
