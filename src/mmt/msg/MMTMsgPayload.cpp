#include "mmt/msg/MMTMsgPayload.h"

#include "common/BitReader.h"
#include "common/OutOfMemory.h"

bool CMMTMsgPayload::t_ParsePayload(SItem* item, unsigned int bits, const char* format, SItem& payload)
try {
    if (!t_ParseHeader(item, bits, format) || !vyr::CBitReader(item).Keep(Length(), m_payload)) {
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
