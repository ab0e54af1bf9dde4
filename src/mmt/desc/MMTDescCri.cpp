#include "mmt/desc/MMTDescCri.h"

#include "common/BitReader.h"
#include "platform/FailureKeeping.h"
#include "platform/Log.h"

bool CMMTDescCri::Parse(SItem* item)
{
    if (!VYR_ASSERT(item, "item")) {
        return false;
    }
    vyr::CBitReader reader(item);
    reader.Field(16, t_tag);
    reader.Field(16, t_length);
    if (!reader.Valid()) {
        return false;
    }
    if (t_tag != k_tag) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTDescCri::Parse] Wrong tag : %d", static_cast<int>(t_tag));
        return false;
    }
    if (t_length == 0 || t_length % k_unitSize != 0) {
        reader.Stop();
        return VYR_FAIL(FAILURE_SIZE, "[CMMTDescCri::Parse] DescLength mismatch ERROR Length = %u", t_length);
    }
    // Required: a descriptor of several records is accepted, and its records are not read.
    if (t_length != k_unitSize) {
        return true;
    }
    reader.Field(8, m_clockRelationId);
    reader.Field(6, m_reserved);
    m_stcSample = static_cast<unsigned int>(reader.Value64(42));
    m_ntpTimestampSample = static_cast<unsigned int>(reader.Value64(64));
    return reader.Valid();
}

void CMMTDescCri::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "******CRI Descriptor******");
    VYR_LOG(LOG_PRIORITY_DEBUG, "clock relation id[%u]", m_clockRelationId);
    VYR_LOG(LOG_PRIORITY_DEBUG, "stc samlpe[%u]", m_stcSample);
    VYR_LOG(LOG_PRIORITY_DEBUG, "ntp timestamp samlpe[%u]", m_ntpTimestampSample);
}
