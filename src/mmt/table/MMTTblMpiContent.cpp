#include "mmt/table/MMTTblMpiContent.h"

#include "common/OutOfMemory.h"
#include "mmt/Elements.h"

namespace {

/// Copies what a length of `bits` spans into `bytes`; the caller's assertion `held` fails when there is a copy already.
bool Copy(vyr::CBitReader& reader, unsigned int bits, vyr::CBytes& bytes, int line, const char* held, VYR_CALLER)
{
    const unsigned int length = reader.Value(bits);
    if (!reader.Valid()) {
        return false;
    }
    if (bytes) {
        vyr::AssertFailed({here.file, here.function, line}, held);
    }
    reader.Keep(length, bytes);
    return true;
}

}  // namespace

bool CMMTTblMpiContent::Parse(SItem* item)
try {
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTTblMpiContent::Parse");
    vyr::CBitReader reader(item);
    if (!Copy(reader, 8, m_piContentType, 24, "!m_piContentType") ||
        !Copy(reader, 8, m_piContentName, 32, "!m_piContentName")) {
        return false;
    }
    const unsigned int length = reader.Value(16);
    if (!reader.Valid() || !vyr::ParseDescriptorLoop(item, length, m_arrayDescriptor) ||
        !Copy(reader, 16, m_piContent, 49, "!m_piContent")) {
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
