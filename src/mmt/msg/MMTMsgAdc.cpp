#include "mmt/msg/MMTMsgAdc.h"

#include "common/BitReader.h"
#include "platform/Log.h"

bool CMMTMsgAdc::Parse(SItem* item)
{
    m_fields = {};
    SItem payload;
    if (!t_ParsePayload(item, 32, "[CMMTMsgAdc::Parse] Item size ERROR len[%u], actual_len[%u]", payload)) {
        return false;
    }
    vyr::CBitReader reader(&payload);
    reader.Field(32, m_fields.validityStartTime);
    reader.Field(32, m_fields.validityDuration);
    reader.Field(1, m_fields.adcLevelFlag);
    reader.Field(1, m_fields.flowLabelFlag);
    reader.Value(6);
    if (m_fields.adcLevelFlag.value_or(false)) {
        reader.Field(32, m_fields.mpuSequenceNumber);
    }
    reader.Field(16, m_fields.packetId);
    reader.Field(8, m_fields.lossTolerance);
    reader.Field(8, m_fields.jitterSensitivity);
    reader.Field(1, m_fields.classOfService);
    reader.Field(1, m_fields.bidirectionIndicator);
    reader.Value(6);
    if (m_fields.classOfService.value_or(false)) {
        reader.Field(16, m_fields.sustainableRate);
        reader.Field(16, m_fields.bufferSize);
    }
    reader.Field(16, m_fields.peakRate);
    reader.Field(8, m_fields.maxMfuSize);
    reader.Field(8, m_fields.mfuPeriod);
    if (m_fields.flowLabelFlag.value_or(false)) {
        reader.Field(7, m_fields.flowLabel);
    }
    return true;
}

void CMMTMsgAdc::Dump() const
{
    CMMTMsg::Dump();
    VYR_LOG(LOG_PRIORITY_DEBUG, "validity [%u + %u] MPU [%u] packet id [%u] loss [%u] jitter [%u]",
            m_fields.validityStartTime.value_or(0), m_fields.validityDuration.value_or(0),
            m_fields.mpuSequenceNumber.value_or(0), m_fields.packetId.value_or(0), m_fields.lossTolerance.value_or(0),
            m_fields.jitterSensitivity.value_or(0));
    VYR_LOG(LOG_PRIORITY_DEBUG, "class [%d] rate [%u] buffer [%u] peak [%u] MFU size [%u] period [%u] flow label [%u]",
            m_fields.classOfService.value_or(false), m_fields.sustainableRate.value_or(0),
            m_fields.bufferSize.value_or(0), m_fields.peakRate.value_or(0), m_fields.maxMfuSize.value_or(0),
            m_fields.mfuPeriod.value_or(0), m_fields.flowLabel.value_or(0));
}
