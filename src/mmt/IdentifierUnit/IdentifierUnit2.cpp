#include "mmt/IdentifierUnit/IdentifierUnit2.h"

#include "common/BitReader.h"
#include "common/OutOfMemory.h"
#include "platform/Log.h"

bool CIdentifierUnit2::Parse(SItem* item)
try {
    VYR_ASSERT_AT(10, !m_regex, "!m_regex");
    vyr::CBitReader reader(item);
    reader.Keep(reader.Value(16), m_regex);
    return reader.Valid();
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CIdentifierUnit2::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "regex [%s]", m_regex ? m_regex.Text() : "");
}
