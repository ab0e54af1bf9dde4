#include "mmt/desc/MMTDescSi.h"

#include "common/Log.h"

CMMTDescSi::CMMTDescSi() : CMMTDescPayload("CMMTDescSi", 4) {}

void CMMTDescSi::t_ParsePayload(SItem* payload)
{
    constexpr unsigned int k_idSize = 16;
    m_systems.clear();
    t_List(
        payload, m_systems, [&](SSystem& system) { system.systemId = t_View(payload, k_idSize); },
        [&](SSystem& system) {
            t_List(
                payload, system.keyIds, [&](std::string_view& keyId) { keyId = t_View(payload, k_idSize); },
                [](std::string_view&) {});
            system.data = t_CountedView(payload, 16);
        });
}

void CMMTDescSi::Dump() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "******SI Descriptor******");
    CMMTDesc::Dump();
    for (const SSystem& system : m_systems) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "security system: key ids[%zu] data length[%zu]", system.keyIds.size(),
                system.data.size());
    }
}
