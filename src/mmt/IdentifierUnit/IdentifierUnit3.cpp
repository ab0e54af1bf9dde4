#include "mmt/IdentifierUnit/IdentifierUnit3.h"

#include "common/OutOfMemory.h"
#include "mmt/Elements.h"

bool CIdentifierUnit3::Parse(SItem* item)
try {
    vyr::CBitReader reader(item);
    return vyr::KeepFirst(reader, 16, m_representationID, 14, "!m_representationID") && reader.Valid();
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CIdentifierUnit3::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "representation id [%s]", m_representationID ? m_representationID.Text() : "");
}
