#include "mmt/table/MMTTblCri.h"

#include "common/OutOfMemory.h"
#include "mmt/Elements.h"

bool CMMTTblCri::Parse(SItem* item)
try {
    SItem payload;
    if (!t_ParsePayload(item, "[CMMTTblCri::Parse] ERROR", payload)) {
        return false;
    }
    vyr::CBitReader reader(&payload);
    const unsigned int count = reader.Value(8);
    for (unsigned int i = 0; i < count && reader.Left() > 0; ++i) {
        const unsigned int begin = payload.bitpos;
        std::unique_ptr<CMMTDesc> descriptor(CMMTDescFactory::GenerateDesc(&payload));
        if (!descriptor || !descriptor->Parse(&payload)) {
            item->valid = payload.valid;
            break;
        }
        // A clock relation descriptor of several units leaves its body unread.
        const unsigned int next = begin + (4 + descriptor->Length()) * 8;
        m_arrayDescriptor.Append(std::move(descriptor));
        if (next > payload.bitsize) {
            break;
        }
        payload.bitpos = next;
    }
    return item->valid;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CMMTTblCri::Dump() const
{
    CMMTTbl::Dump();
    vyr::DumpElements(m_arrayDescriptor);
}

bool CMMTTblCri::GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user)
{
    const vyr::CScoped<bool> visiting(t_visiting, true, t_visiting);
    return vyr::VisitDescriptors(m_arrayDescriptor, callback, user);
}
