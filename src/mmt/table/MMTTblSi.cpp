#include "mmt/table/MMTTblSi.h"

#include "common/OutOfMemory.h"
#include "mmt/Elements.h"

bool CMMTTblSi::Parse(SItem* item)
{
    SItem payload;
    if (!t_ParsePayload(item, "[CMMTTblSi::Parse] ERROR", payload)) {
        return false;
    }
    item->valid = vyr::ParseDescriptorLoop(&payload, payload.size, m_arrayDescriptor);
    return item->valid;
}

void CMMTTblSi::Dump() const
{
    CMMTTbl::Dump();
    vyr::DumpElements(m_arrayDescriptor);
}

bool CMMTTblSi::GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user)
{
    const vyr::CScoped<bool> visiting(t_visiting, true, t_visiting);
    return vyr::VisitDescriptors(m_arrayDescriptor, callback, user);
}
