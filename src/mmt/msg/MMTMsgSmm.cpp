#include "mmt/msg/MMTMsgSmm.h"

#include "common/BitReader.h"
#include "common/OutOfMemory.h"
#include "mmt/msg/MMTMsgFactory.h"
#include "platform/Log.h"

bool CMMTMsgSmm::Parse(SItem* item)
try {
    m_message.reset();
    m_messageData = m_signedBlock = m_signature = {};
    SItem payload;
    if (!t_ParsePayload(item, 32, "[CMMTMsgSmm::Parse] Item size ERROR len[%u], length[%u]", payload)) {
        return false;
    }
    vyr::CBitReader reader(&payload);
    reader.Field(16, m_serviceId);
    m_messageData = reader.View(reader.Value(32));
    if (!reader.Valid()) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTMsgSmm::Parse] no message in [%u] bytes", PayloadLength());
        return true;
    }
    m_signedBlock = {reinterpret_cast<const char*>(Payload()), reader.Item()->bitpos / 8};
    m_signature = reader.View(reader.Value(16));
    m_ParseMessage();
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CMMTMsgSmm::m_ParseMessage()
{
    constexpr unsigned int k_deepest = 4;
    const auto* data = reinterpret_cast<const unsigned char*>(m_messageData.data());
    const unsigned int size = static_cast<unsigned int>(m_messageData.size());
    std::shared_ptr<CMMTMsg> message = CMMTMsgFactory::CreateMessage(data, size < 2 ? size : 2);
    if (message && message->ClassType() == CLASS_TYPE_SMM) {
        if (m_depth + 1 >= k_deepest) {
            VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTMsgSmm::Parse] signed messages are nested too deep");
            return;
        }
        static_cast<CMMTMsgSmm&>(*message).m_depth = m_depth + 1;
    }
    SItem item = {data, size, size * 8, 0, true};
    if (message && message->Parse(&item)) {
        m_message = std::move(message);
    }
}

void CMMTMsgSmm::Dump() const
{
    CMMTMsg::Dump();
    VYR_LOG(LOG_PRIORITY_DEBUG, "service id [%u] message of %zu bytes, signature of %zu", m_serviceId,
            m_messageData.size(), m_signature.size());
    if (m_message) {
        m_message->Dump();
    }
}

bool CMMTMsgSmm::Process()
{
    if (const std::shared_ptr<CMMTMsg> message = m_message) {
        message->Process();
    }
    return true;
}

bool CMMTMsgSmm::GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user)
{
    // A callback may parse this message anew.
    const std::shared_ptr<CMMTMsg> message = m_message;
    return !message || message->GetDescriptors(callback, user);
}
