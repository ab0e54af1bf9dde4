#include "mmt/table/MMTTblMpi.h"

#include "common/OutOfMemory.h"
#include "mmt/Elements.h"
#include "platform/FailureKeeping.h"

CMMTTblMpi::CMMTTblMpi()
    : CMMTTbl(CLASS_TYPE_MPI),
      m_reservedBeforeMode(0),
      m_piMode(0),
      m_reservedBehindMode(0),
      m_arrayDescriptor(vyr::g_CbRemove<CMMTDesc>, nullptr),
      m_arrayPiContent(vyr::g_CbRemove<CMMTTblMpiContent>, nullptr)
{
}

CMMTTblMpi::~CMMTTblMpi() = default;

bool CMMTTblMpi::Parse(SItem* item)
try {
    if (!t_ParseHeader(item, "[CMMTTblMpi::Parse] ERROR")) {
        return false;
    }
    const unsigned char id = TableId();
    if (id < 0x01 || id > 0x10) {
        return VYR_FAIL(FAILURE_KIND, "[CMMTTblMpi::Parse] Table ID ERROR ID=%x", id);
    }
    m_reservedBeforeMode = static_cast<unsigned char>(t_Value(item, 4));
    m_piMode = static_cast<unsigned char>(t_Value(item, 2));
    m_reservedBehindMode = static_cast<unsigned char>(t_Value(item, 2));
    const unsigned int length = t_Value(item, 16);
    if (!item->valid || !vyr::ParseDescriptorLoop(item, length, &m_arrayDescriptor)) {
        return false;
    }
    const unsigned int contents = t_Value(item, 8);
    return item->valid &&
           vyr::ParseElements<CMMTTblMpiContent>(item, contents, m_arrayPiContent, {vyr::k_source.text, __func__, 71},
                                                 "p_content->Parse(item)", "m_arrayPiContent.Add(p_content)");
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CMMTTblMpi::Dump() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    CMMTTbl::Dump();
    VYR_LOG(LOG_PRIORITY_DEBUG, "reserved [%u] PI mode [%u] reserved [%u]", m_reservedBeforeMode, m_piMode,
            m_reservedBehindMode);
    vyr::DumpElements<CMMTDesc>(m_arrayDescriptor);
    vyr::DumpElements<CMMTTblMpiContent>(m_arrayPiContent);
}

bool CMMTTblMpi::GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user)
{
    const vyr::CScoped<bool> visiting(t_visiting, true, t_visiting);
    if (!vyr::VisitDescriptors(m_arrayDescriptor, callback, user)) {
        return false;
    }
    for (int i = 0; i < m_arrayPiContent.Size(); ++i) {
        vyr::ElementAt<CMMTTblMpiContent>(m_arrayPiContent, i)->GetDescriptors(callback, user);
    }
    return true;
}

CMMTDesc* CMMTTblMpi::Descriptor(int index) const
{
    return vyr::ElementAt<CMMTDesc>(m_arrayDescriptor, index);
}

CMMTTblMpiContent* CMMTTblMpi::PiContent(unsigned short index) const
{
    return vyr::ElementAt<CMMTTblMpiContent>(m_arrayPiContent, index);
}
