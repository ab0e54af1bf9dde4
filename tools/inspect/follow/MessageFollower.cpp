#include "follow/MessageFollower.h"

#include "base/Names.h"
#include "base/Text.h"
#include "content/LibraryPort.h"
#include "content/MessageHead.h"
#include "content/MmtReader.h"

namespace vyr::inspect {

CMessageFollower::CMessageFollower(const SFollowed& followed, CReport& report) : m_followed(followed), m_report(report)
{
}

void CMessageFollower::Take(const std::optional<std::uint16_t>& packetId, SView bytes, const SSource& source)
{
    const std::string place = packetId ? " of packet id " + std::to_string(*packetId) : "";
    SMessageHead head;
    if (!ReadMessageHead(bytes, head)) {
        m_Fault(EFault::MESSAGE_NOT_PARSED,
                "a message" + place + " of " + Counted(bytes.size, "byte") + " is shorter than its header", source);
        return;
    }
    SMessage message;
    message.source = source;
    message.session = m_followed.name;
    message.services = m_followed.Shown();
    message.packetId = packetId;
    message.kind = head.kind;
    message.id = head.id;
    message.version = head.version;
    message.payload = head.payload;
    std::size_t sizeBefore = 0;
    message.status =
        m_Compare({packetId.value_or(0), head.kind}, {head.versions, head.payload.size, head.hash}, sizeBefore);
    if (message.status == EStatus::REPEATED) {
        m_report.Message(message);
        return;
    }
    TakeAssertions();
    SMessageOutcome outcome = ReadMessage(bytes);
    const std::vector<SAssertion> assertions = TakeAssertions();
    message.supported = outcome.supported;
    message.content = std::move(outcome.content);
    m_parsed = m_parsed || message.content;
    for (const unsigned service : outcome.services) {
        if (m_services.size() < k_maxServices || m_followed.services.count(service) != 0) {
            m_services.insert(service);
        }
    }
    m_report.Message(message);
    const std::string title = MessageTitle(head.id) + " version " + std::to_string(head.version) + place;
    if (message.status == EStatus::CHANGED_WITHOUT_VERSION) {
        m_Fault(EFault::CHANGED_WITHOUT_VERSION,
                title + " changed without a new version (payload of " + Counted(head.payload.size, "byte") +
                    ", before " + std::to_string(sizeBefore) + ')',
                source);
    }
    if (!outcome.reason.empty()) {
        m_Fault(EFault::MESSAGE_NOT_PARSED, title + " did not parse: " + outcome.reason, source);
    }
    for (const auto& [code, text] : outcome.faults) {
        m_Fault(code, title + ": " + text, source);
    }
    for (const SAssertion& assertion : assertions) {
        m_Fault(EFault::ASSERTION, "the library asserts \"" + assertion.expression + "\" at " + assertion.place,
                source);
    }
}

std::string CMessageFollower::Missing(unsigned serviceId) const
{
    if (m_services.empty() || m_services.count(serviceId) != 0) {
        return {};
    }
    const std::size_t others = m_services.size() - 1;
    return "the signalling on " + m_followed.name + " is of service " + std::to_string(*m_services.begin()) +
           (others != 0 ? " and " + std::to_string(others) + " more" : "");
}

EStatus CMessageFollower::m_Compare(const TKey& key, const SState& state, std::size_t& sizeBefore)
{
    const auto [entry, isNew] = m_messages.try_emplace(key);
    const SState before = entry->second;
    entry->second = state;
    sizeBefore = before.size;
    if (isNew) {
        m_order.push_back(key);
        if (m_order.size() > k_maxMessages) {
            m_messages.erase(m_order.front());
            m_order.pop_front();
        }
        return EStatus::NEW;
    }
    const bool sameContent = before.hash == state.hash;
    if (before.versions == state.versions) {
        return sameContent ? EStatus::REPEATED : EStatus::CHANGED_WITHOUT_VERSION;
    }
    return sameContent ? EStatus::NEW_VERSION_SAME_CONTENT : EStatus::CHANGED;
}

void CMessageFollower::m_Fault(EFault code, const std::string& message, const SSource& source)
{
    m_lastFault = message;
    m_report.Fault(m_followed.Fault(code, message, source));
}

}  // namespace vyr::inspect
