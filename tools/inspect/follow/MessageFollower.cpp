#include "follow/MessageFollower.h"

#include "base/Names.h"
#include "base/Text.h"
#include "content/LibraryPort.h"
#include "content/MessageHead.h"
#include "content/MmtReader.h"

namespace vyr::inspect {

CMessageFollower::CMessageFollower(const SFollowed& followed, CReport& report)
    : CFollower(followed, report, "its messages are none that the library supports")
{
}

void CMessageFollower::Take(const std::optional<std::uint16_t>& packetId, SView bytes, const SSource& source)
{
    const std::string place = packetId ? " of packet id " + std::to_string(*packetId) : "";
    SMessageHead head;
    if (!ReadMessageHead(bytes, head)) {
        t_Finding(ERule::MESSAGE_NOT_PARSED,
                  "a message" + place + " of " + Counted(bytes.size, "byte") + " is shorter than its header", source);
        return;
    }
    SMessage message;
    message.source = source;
    message.session = t_followed.name;
    message.services = t_followed.Shown();
    message.packetId = packetId;
    message.kind = head.kind;
    message.key = std::to_string(t_number) + ' ' + std::to_string(message.packetId.value_or(0));
    for (const unsigned part : head.kind) {
        message.key += ' ' + std::to_string(part);
    }
    message.id = head.id;
    message.version = head.version;
    message.payload = head.payload;
    message.sent = bytes.First(bytes.size - head.trailing.size);
    message.carried = head.content;
    std::size_t sizeBefore = 0;
    message.status =
        m_Compare({packetId.value_or(0), head.kind}, {head.versions, head.payload.size, head.hash}, sizeBefore);
    if (message.status == EStatus::REPEATED) {
        t_report.Message(message);
        return;
    }
    TakeAssertions();
    SMessageOutcome outcome = ReadMessage(bytes);
    message.supported = outcome.supported;
    message.content = std::move(outcome.content);
    t_parsed = t_parsed || message.content;
    for (const unsigned service : outcome.services) {
        if (t_services.size() < k_maxServices || t_followed.services.count(service) != 0) {
            t_services.insert(service);
        }
    }
    t_report.Message(message);
    const std::string title = MessageTitle(head.id) + " version " + std::to_string(head.version) + place;
    if (message.status == EStatus::CHANGED_WITHOUT_VERSION) {
        t_Finding(ERule::CHANGED_WITHOUT_VERSION,
                  title + " changed without a new version (payload of " + Counted(head.payload.size, "byte") +
                      ", before " + std::to_string(sizeBefore) + ')',
                  source);
    }
    if (!outcome.reason.empty()) {
        t_Finding(ERule::MESSAGE_NOT_PARSED, title + " did not parse: " + outcome.reason, source);
    }
    for (const auto& [rule, text] : outcome.faults) {
        t_Finding(rule, title + ": " + text, source);
    }
    t_AddAssertions(source);
}

EStatus CMessageFollower::m_Compare(const TKey& key, const SState& state, std::size_t& sizeBefore)
{
    const SState* known = m_messages.Find(key);
    const SState before = known != nullptr ? *known : SState();
    m_messages.Hold(key) = state;
    sizeBefore = before.size;
    return StatusOf(known == nullptr, before.versions == state.versions, before.hash == state.hash);
}

}  // namespace vyr::inspect
