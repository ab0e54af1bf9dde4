#include "mmt/IdentifierUnit/IdentifierUnitPriv.h"

#include "common/BitReader.h"
#include "common/OutOfMemory.h"
#include "platform/Log.h"

bool CIdentifierUnitPriv::Parse(SItem* item)
try {
    if (!VYR_ASSERT_AT(8, item, "item")) {
        return false;
    }
    vyr::CBitReader reader(item);
    const unsigned int length = reader.Value(16);
    if (!reader.Valid()) {
        return false;
    }
    VYR_ASSERT_AT(16, !m_priv, "!m_priv");
    reader.Keep(length, m_priv);
    return reader.Valid();
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CIdentifierUnitPriv::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "private identifier, bytes [%u]", m_priv.Length());
}
