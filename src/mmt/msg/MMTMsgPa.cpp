#include "mmt/msg/MMTMsgPa.h"

#include "common/OutOfMemory.h"
#include "mmt/Elements.h"
#include "mmt/table/MMTTblFactory.h"
#include "platform/FailureKeeping.h"

struct CMMTMsgPa::STableUnit {
    unsigned char tableId;
    unsigned char version;
    unsigned short length;
    std::unique_ptr<CMMTTbl> table;
};

CMMTMsgPa::CMMTMsgPa() : CMMTMsg(CLASS_TYPE_PA) {}

bool CMMTMsgPa::Parse(SItem* item)
try {
    const vyr::CEntry entry;  // one record for all tables
    bool visiting = m_visiting;
    for (int i = 0; i < TableCount(); ++i) {
        const CMMTTbl* table = Table(i);
        visiting = visiting || (table && table->t_visiting);
    }
    if (!VYR_ASSERT(!visiting, "!m_visiting")) {
        return false;
    }
    m_arrayTableUnit.RemoveAll();
    if (!t_ParseHeader(item, 32, "[CMMTMsgPa::Parse] Item size ERROR len[%u], length[%u]")) {
        return false;
    }
    vyr::CBitReader reader(item);
    const unsigned int count = reader.Value(8);
    for (unsigned int i = 0; i < count; ++i) {
        auto unit = std::make_unique<STableUnit>();
        reader.Field(8, unit->tableId);
        reader.Field(8, unit->version);
        reader.Field(16, unit->length);
        if (!reader.Valid()) {
            return false;
        }
        m_arrayTableUnit.Append(std::move(unit));
    }
    for (int i = 0; i < TableCount(); ++i) {
        STableUnit* p_unit = m_arrayTableUnit.At(i);
        if (!VYR_ASSERT_AT(76, p_unit, "p_unit")) {
            return false;
        }
        std::unique_ptr<CMMTTbl> p_tbl(CMMTTblFactory::GenerateTbl(item));
        if (!VYR_CHECK_AT(89, p_tbl, "p_tbl = CMMTTblFactory::GenerateTbl(item)") ||
            !VYR_CHECK_AT(90, p_tbl->Parse(item), "p_tbl->Parse(item)")) {
            return false;
        }
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTMsgPa::Parse] Table ClassType: %d/%s", static_cast<int>(p_tbl->ClassType()),
                p_tbl->ClassString());
        p_unit->table = std::move(p_tbl);
    }
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CMMTMsgPa::Dump() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    CMMTMsg::Dump();
    for (int i = 0; i < TableCount(); ++i) {
        if (const CMMTTbl* table = Table(i)) {
            table->Dump();
        }
    }
}

bool CMMTMsgPa::Process()
{
    const vyr::CScoped<bool> visiting(m_visiting, true, m_visiting);
    for (int i = 0; i < TableCount(); ++i) {
        if (CMMTTbl* table = Table(i)) {
            table->Process();
        }
    }
    return true;
}

bool CMMTMsgPa::GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user)
{
    const vyr::CScoped<bool> visiting(m_visiting, true, m_visiting);
    for (int i = 0; i < TableCount(); ++i) {
        const STableUnit* p_unit = m_arrayTableUnit.At(i);
        if (VYR_ASSERT_AT(125, p_unit, "p_unit") && p_unit->table) {
            p_unit->table->GetDescriptors(callback, user);
        }
    }
    return true;
}

CMMTTbl* CMMTMsgPa::Table(int index) const
{
    const STableUnit* unit = m_arrayTableUnit.At(index);
    return unit ? unit->table.get() : nullptr;
}

bool CMMTMsgPa::GetTableInfo(int index, unsigned char& tableId, unsigned char& version, unsigned short& length) const
{
    const STableUnit* unit = m_arrayTableUnit.At(index);
    if (unit) {
        tableId = unit->tableId;
        version = unit->version;
        length = unit->length;
    }
    return unit != nullptr;
}
