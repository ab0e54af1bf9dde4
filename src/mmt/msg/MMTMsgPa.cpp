#include "mmt/msg/MMTMsgPa.h"

#include "common/OutOfMemory.h"
#include "mmt/Elements.h"
#include "mmt/table/MMTTblFactory.h"

struct CMMTMsgPa::STableUnit {
    unsigned char tableId;
    unsigned char version;
    unsigned short length;
    std::unique_ptr<CMMTTbl> table;
};

CMMTMsgPa::CMMTMsgPa()
    : CMMTMsg(CLASS_TYPE_PA), m_arrayTableUnit(vyr::g_CbRemove<STableUnit>, nullptr), m_visiting(false)
{
}

CMMTMsgPa::~CMMTMsgPa() = default;

bool CMMTMsgPa::Parse(SItem* item)
try {
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
    const unsigned int count = t_Value(item, 8);
    for (unsigned int i = 0; i < count; ++i) {
        auto unit = std::make_unique<STableUnit>();
        unit->tableId = static_cast<unsigned char>(t_Value(item, 8));
        unit->version = static_cast<unsigned char>(t_Value(item, 8));
        unit->length = static_cast<unsigned short>(t_Value(item, 16));
        if (!item->valid) {
            return false;
        }
        vyr::Append(m_arrayTableUnit, std::move(unit));
    }
    for (int i = 0; i < TableCount(); ++i) {
        auto* p_unit = vyr::ElementAt<STableUnit>(m_arrayTableUnit, i);
        if (!p_unit) {
            return vyr::AssertFailed({vyr::k_source.text, __func__, 76}, "p_unit");
        }
        std::unique_ptr<CMMTTbl> p_tbl(CMMTTblFactory::GenerateTbl(item));
        if (!p_tbl) {
            return vyr::CheckFailed({vyr::k_source.text, __func__, 89}, "p_tbl = CMMTTblFactory::GenerateTbl(item)");
        }
        if (!p_tbl->Parse(item)) {
            return vyr::CheckFailed({vyr::k_source.text, __func__, 90}, "p_tbl->Parse(item)");
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
        const auto* p_unit = vyr::ElementAt<STableUnit>(m_arrayTableUnit, i);
        if (!p_unit) {
            vyr::AssertFailed({vyr::k_source.text, __func__, 125}, "p_unit");
        } else if (p_unit->table) {
            p_unit->table->GetDescriptors(callback, user);
        }
    }
    return true;
}

CMMTTbl* CMMTMsgPa::Table(int index) const
{
    const auto* unit = vyr::ElementAt<STableUnit>(m_arrayTableUnit, index);
    return unit ? unit->table.get() : nullptr;
}

bool CMMTMsgPa::GetTableInfo(int index, unsigned char& tableId, unsigned char& version, unsigned short& length) const
{
    const auto* unit = vyr::ElementAt<STableUnit>(m_arrayTableUnit, index);
    if (unit) {
        tableId = unit->tableId;
        version = unit->version;
        length = unit->length;
    }
    return unit != nullptr;
}
