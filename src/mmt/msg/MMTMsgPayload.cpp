#include "mmt/msg/MMTMsgPayload.h"

#include "common/OutOfMemory.h"

bool CMMTMsgPayload::t_ParsePayload(SItem* item, unsigned int bits, const char* format, SItem& payload)
try {
    if (!t_ParseHeader(item, bits, format)) {
        return false;
    }
    m_payload.Take(t_AllocAndCopy(item, Length()), Length());
    if (!m_payload) {
        return false;
    }
    payload = m_payload.Item();
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool CMMTMsgPayload::Process()
{
    return true;
}

bool CMMTMsgPayload::GetDescriptors(void (* /*callback*/)(void* user, CMMTDesc* descriptor), void* /*user*/)
{
    return true;
}
