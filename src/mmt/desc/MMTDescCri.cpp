#include "mmt/desc/MMTDescCri.h"

#include "platform/Log.h"

bool CMMTDescCri::Parse(SItem* item)
{
    if (!VYR_ASSERT(item, "item")) {
        return false;
    }
    t_tag = t_Value(item, 16);
    t_length = t_Value(item, 16);
    if (!item->valid) {
        return false;
    }
    if (t_tag != 0) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTDescCri::Parse] Wrong tag : %d", static_cast<int>(t_tag));
        return false;
    }
    if (t_length == 0 || t_length % k_unitSize != 0) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTDescCri::Parse] DescLength mismatch ERROR Length = %u", t_length);
        item->valid = false;
        return false;
    }
    // Required: a descriptor of several records is accepted, and its records are not read.
    if (t_length != k_unitSize) {
        return true;
    }
    m_clockRelationId = static_cast<unsigned char>(t_Value(item, 8));
    m_reserved = static_cast<unsigned char>(t_Value(item, 6));
    m_stcSample = static_cast<unsigned int>(t_Value64(item, 42));
    m_ntpTimestampSample = static_cast<unsigned int>(t_Value64(item, 64));
    return item->valid;
}

void CMMTDescCri::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "******CRI Descriptor******");
    VYR_LOG(LOG_PRIORITY_DEBUG, "clock relation id[%u]", m_clockRelationId);
    VYR_LOG(LOG_PRIORITY_DEBUG, "stc samlpe[%u]", m_stcSample);
    VYR_LOG(LOG_PRIORITY_DEBUG, "ntp timestamp samlpe[%u]", m_ntpTimestampSample);
}
