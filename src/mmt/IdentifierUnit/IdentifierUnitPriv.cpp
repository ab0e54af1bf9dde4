#include "mmt/IdentifierUnit/IdentifierUnitPriv.h"

#include "common/OutOfMemory.h"
#include "platform/Log.h"

bool CIdentifierUnitPriv::Parse(SItem* item)
try {
    if (!item) {
        return vyr::AssertFailed({vyr::k_source.text, __func__, 8}, "item");
    }
    const unsigned int length = t_Value(item, 16);
    if (!item->valid) {
        return false;
    }
    if (m_priv) {
        vyr::AssertFailed({vyr::k_source.text, __func__, 16}, "!m_priv");
    }
    m_priv.Take(t_AllocAndCopy(item, length), length);
    return item->valid;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CIdentifierUnitPriv::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "private identifier, bytes [%u]", m_priv.Length());
}
