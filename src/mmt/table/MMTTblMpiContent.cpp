#include "mmt/table/MMTTblMpiContent.h"

#include "common/OutOfMemory.h"
#include "mmt/Elements.h"

bool CMMTTblMpiContent::Parse(SItem* item)
try {
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTTblMpiContent::Parse");
    vyr::CBitReader reader(item);
    if (!vyr::KeepFirst(reader, 8, m_piContentType, 24, "!m_piContentType") ||
        !vyr::KeepFirst(reader, 8, m_piContentName, 32, "!m_piContentName")) {
        return false;
    }
    const unsigned int length = reader.Value(16);
    if (!reader.Valid() || !vyr::ParseDescriptorLoop(item, length, m_arrayDescriptor) ||
        !vyr::KeepFirst(reader, 16, m_piContent, 49, "!m_piContent")) {
        return false;
    }
    return reader.Valid();
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
