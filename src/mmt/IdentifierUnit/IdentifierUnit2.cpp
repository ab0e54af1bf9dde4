#include "mmt/IdentifierUnit/IdentifierUnit2.h"

#include "common/OutOfMemory.h"
#include "platform/Log.h"

bool CIdentifierUnit2::Parse(SItem* item)
try {
    VYR_ASSERT_AT(10, !m_regex, "!m_regex");
    const unsigned int length = t_Value(item, 16);
    m_regex.Take(t_AllocAndCopy(item, length), length);
    return item && item->valid;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CIdentifierUnit2::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "regex [%s]", m_regex ? m_regex.Text() : "");
}
