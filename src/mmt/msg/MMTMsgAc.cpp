#include "mmt/msg/MMTMsgAc.h"

#include "common/BitReader.h"
#include "common/OutOfMemory.h"
#include "platform/Log.h"

bool CMMTMsgAc::Parse(SItem* item)
try {
    m_entries.clear();
    SItem payload;
    if (!t_ParsePayload(item, 16, "[CMMTMsgAC::Parse] Item size ERROR len[%u], length[%u]", payload)) {
        return false;
    }
    vyr::CBitReader reader(&payload);
    reader.List(
        m_entries, [&](SEntry& entry) { reader.Field(16, entry.packetId); },
        [&](SEntry& entry) {
            reader.Field(32, entry.windowTimeout);
            const bool ipv6 = reader.Flag();
            reader.Value(7);
            if (reader.Valid()) {
                entry.serverAddress = reader.View(ipv6 ? 16 : 4);
                reader.Field(16, entry.serverPort);
            }
        });
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CMMTMsgAc::Dump() const
{
    CMMTMsg::Dump();
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    for (const SEntry& entry : m_entries) {
        VYR_DUMP("packet id [%u] window timeout [%u] address of %u bytes, port [%u]", entry.packetId,
                 entry.windowTimeout.value_or(0), static_cast<unsigned int>(entry.serverAddress.size()),
                 entry.serverPort.value_or(0));
    }
}
