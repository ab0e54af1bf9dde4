#include "mmt/IdentifierUnit/IdentifierUnit3.h"

#include "common/BitReader.h"
#include "common/OutOfMemory.h"
#include "platform/Log.h"

bool CIdentifierUnit3::Parse(SItem* item)
try {
    vyr::CBitReader reader(item);
    const unsigned int length = reader.Value(16);
    if (!reader.Valid()) {
        return false;
    }
    VYR_ASSERT_AT(14, !m_representationID, "!m_representationID");
    reader.Keep(length, m_representationID);
    return reader.Valid();
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CIdentifierUnit3::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "representation id [%s]", m_representationID ? m_representationID.Text() : "");
}
