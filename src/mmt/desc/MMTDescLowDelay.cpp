#include "mmt/desc/MMTDescLowDelay.h"

#include "common/Log.h"

CMMTDescLowDelay::CMMTDescLowDelay() : CMMTDescPayload("CMMTDescLowDelay", 14) {}

void CMMTDescLowDelay::t_ParsePayload(SItem* payload)
{
    ParseFields(payload);
}

void CMMTDescLowDelay::ParseFields(SItem* fields)
{
    m_fields = {};
    t_Field(fields, 32, m_fields.basePresentationTimeOffset);
    t_Field(fields, 1, m_fields.codingDependencyStructureFlag);
    t_Value(fields, 7);
    if (m_fields.codingDependencyStructureFlag.value_or(false)) {
        t_Field(fields, 16, m_fields.periodOfIntrapicture);
    }
    t_Field(fields, 32, m_fields.defaultSampleDuration);
    t_Field(fields, 32, m_fields.defaultSampleSize);
    t_Field(fields, 32, m_fields.defaultSampleFlags);
}

void CMMTDescLowDelay::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "******Low Delay Descriptor******");
    CMMTDesc::Dump();
    VYR_LOG(LOG_PRIORITY_DEBUG, "base presentation time offset[%u] period of intrapicture[%u]",
            m_fields.basePresentationTimeOffset.value_or(0), m_fields.periodOfIntrapicture.value_or(0));
    VYR_LOG(LOG_PRIORITY_DEBUG, "default sample duration[%u] size[%u] flags[0x%x]",
            m_fields.defaultSampleDuration.value_or(0), m_fields.defaultSampleSize.value_or(0),
            m_fields.defaultSampleFlags.value_or(0));
}
