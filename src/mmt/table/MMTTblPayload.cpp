#include "mmt/table/MMTTblPayload.h"

CMMTTblPayload::~CMMTTblPayload() = default;

bool CMMTTblPayload::t_ParsePayload(SItem* item, const char* error, SItem& payload)
{
    if (!t_ParseHeader(item, error)) {
        return false;
    }
    m_payload.Take(t_AllocAndCopy(item, Length()), Length());
    if (!m_payload) {
        return false;
    }
    payload = m_payload.Item();
    return true;
}

bool CMMTTblPayload::Process()
{
    return true;
}
