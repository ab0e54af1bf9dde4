#include "mmt/table/MMTTblPayload.h"

#include "common/BitReader.h"
#include "common/OutOfMemory.h"

bool CMMTTblPayload::t_ParsePayload(SItem* item, const char* error, SItem& payload)
try {
    if (!t_ParseHeader(item, error) || !vyr::CBitReader(item).Keep(Length(), m_payload)) {
        return false;
    }
    payload = m_payload.Item();
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool CMMTTblPayload::Process()
{
    return true;
}
