#include "mmt/table/MMTTblMpiContent.h"

#include "common/OutOfMemory.h"
#include "mmt/Elements.h"

/// Copies what a length of `bits` spans into `bytes`; `held` is asserted when there is a copy already.
bool CMMTTblMpiContent::m_Copy(SItem* item, unsigned int bits, vyr::CBytes& bytes, int line, const char* held)
{
    const unsigned int length = t_Value(item, bits);
    if (!item || !item->valid) {
        return false;
    }
    if (bytes) {
        vyr::AssertFailed({vyr::k_source.text, "Parse", line}, held);
    }
    bytes.Take(t_AllocAndCopy(item, length), length);
    return true;
}

bool CMMTTblMpiContent::Parse(SItem* item)
try {
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTTblMpiContent::Parse");
    if (!m_Copy(item, 8, m_piContentType, 24, "!m_piContentType") ||
        !m_Copy(item, 8, m_piContentName, 32, "!m_piContentName")) {
        return false;
    }
    const unsigned int length = t_Value(item, 16);
    if (!item->valid || !vyr::ParseDescriptorLoop(item, length, m_arrayDescriptor) ||
        !m_Copy(item, 16, m_piContent, 49, "!m_piContent")) {
        return false;
    }
    return item->valid;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CMMTTblMpiContent::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "content type [%s] name [%s] length [%u]", m_piContentType ? PiContentType() : "",
            m_piContentName ? PiContentName() : "", m_piContent.Length());
    vyr::DumpElements(m_arrayDescriptor);
}

bool CMMTTblMpiContent::GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user)
{
    return vyr::VisitDescriptors(m_arrayDescriptor, callback, user);
}
