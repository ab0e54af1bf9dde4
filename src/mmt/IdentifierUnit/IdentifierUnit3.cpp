#include "mmt/IdentifierUnit/IdentifierUnit3.h"

#include "common/OutOfMemory.h"
#include "platform/Log.h"

bool CIdentifierUnit3::Parse(SItem* item)
try {
    const unsigned int length = t_Value(item, 16);
    if (!item || !item->valid) {
        return false;
    }
    VYR_ASSERT_AT(14, !m_representationID, "!m_representationID");
    m_representationID.Take(t_AllocAndCopy(item, length), length);
    return item->valid;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CIdentifierUnit3::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "representation id [%s]", m_representationID ? m_representationID.Text() : "");
}
