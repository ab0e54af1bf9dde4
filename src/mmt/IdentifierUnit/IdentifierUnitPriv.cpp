#include "mmt/IdentifierUnit/IdentifierUnitPriv.h"

#include "common/OutOfMemory.h"
#include "mmt/Elements.h"

bool CIdentifierUnitPriv::Parse(SItem* item)
try {
    if (!VYR_ASSERT_AT(8, item, "item")) {
        return false;
    }
    vyr::CBitReader reader(item);
    return vyr::KeepFirst(reader, 16, m_priv, 16, "!m_priv") && reader.Valid();
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CIdentifierUnitPriv::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "private identifier, bytes [%u]", m_priv.Length());
}
