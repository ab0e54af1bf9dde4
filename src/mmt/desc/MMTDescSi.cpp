#include "mmt/desc/MMTDescSi.h"

#include "common/BitReader.h"
#include "platform/Log.h"

void CMMTDescSi::t_ParsePayload(vyr::CBitReader& reader)
{
    constexpr unsigned int k_idSize = 16;
    m_systems.clear();
    reader.List(
        m_systems, [&](SSystem& system) { system.systemId = reader.View(k_idSize); },
        [&](SSystem& system) {
            reader.List(system.keyIds, [&](std::string_view& keyId) { keyId = reader.View(k_idSize); });
            system.data = reader.CountedView(16);
        });
}

void CMMTDescSi::Dump() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    VYR_DUMP("******SI Descriptor******");
    CMMTDesc::Dump();
    for (const SSystem& system : m_systems) {
        VYR_DUMP("security system: key ids[%zu] data length[%zu]", system.keyIds.size(), system.data.size());
    }
}
