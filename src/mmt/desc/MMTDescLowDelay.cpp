#include "mmt/desc/MMTDescLowDelay.h"

#include "common/BitReader.h"
#include "platform/Log.h"

void CMMTDescLowDelay::t_ParsePayload(vyr::CBitReader& reader)
{
    ParseFields(reader);
}

void CMMTDescLowDelay::ParseFields(vyr::CBitReader& reader)
{
    m_fields = {};
    reader.Field(32, m_fields.basePresentationTimeOffset);
    reader.Field(1, m_fields.codingDependencyStructureFlag);
    reader.Value(7);
    if (m_fields.codingDependencyStructureFlag.value_or(false)) {
        reader.Field(16, m_fields.periodOfIntrapicture);
    }
    reader.Field(32, m_fields.defaultSampleDuration);
    reader.Field(32, m_fields.defaultSampleSize);
    reader.Field(32, m_fields.defaultSampleFlags);
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
