#include "mmt/IdentifierUnit/IdentifierUnitPriv.h"

#include "common/OutOfMemory.h"
#include "platform/Log.h"

bool CIdentifierUnitPriv::Parse(SItem* item)
try {
    if (!VYR_ASSERT_AT(8, item, "item")) {
        return false;
    }
    const unsigned int length = t_Value(item, 16);
    if (!item->valid) {
        return false;
    }
    VYR_ASSERT_AT(16, !m_priv, "!m_priv");
    m_priv.Take(t_AllocAndCopy(item, length), length);
    return item->valid;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CIdentifierUnitPriv::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "private identifier, bytes [%u]", m_priv.Length());
}
