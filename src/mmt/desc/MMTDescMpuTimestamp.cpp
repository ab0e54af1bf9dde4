#include "mmt/desc/MMTDescMpuTimestamp.h"

#include "common/BitReader.h"
#include "platform/Log.h"

void CMMTDescMpuTimestamp::t_ParsePayload(vyr::CBitReader& reader)
{
    constexpr unsigned int k_entrySize = 12;
    m_timestamps.clear();
    reader.Entries(reader.Left() / k_entrySize, m_timestamps, [&](STimestamp& timestamp) {
        timestamp.mpuSequenceNumber = reader.Value(32);
        // In halves: an aligned read of 64 bits yields only the low ones.
        const unsigned long long seconds = reader.Value(32);
        timestamp.presentationTime = seconds << 32 | reader.Value(32);
    });
}

void CMMTDescMpuTimestamp::Dump() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    VYR_DUMP("******MPU Timestamp Descriptor******");
    CMMTDesc::Dump();
    for (const STimestamp& timestamp : m_timestamps) {
        VYR_DUMP("mpu sequence number[%u] presentation time[0x%016llx]", timestamp.mpuSequenceNumber,
                 timestamp.presentationTime);
    }
}
