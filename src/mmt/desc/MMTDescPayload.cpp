#include "mmt/desc/MMTDescPayload.h"

#include "common/BitReader.h"
#include "common/OutOfMemory.h"
#include "platform/FailureKeeping.h"
#include "platform/Log.h"

CMMTDescPayload::CMMTDescPayload(const char* name, unsigned int tag) : m_name(name), m_wanted(tag) {}

bool CMMTDescPayload::t_Takes(unsigned int tag) const
{
    return tag == m_wanted;
}

bool CMMTDescPayload::Parse(SItem* item)
try {
    if (!VYR_ASSERT(item, "item")) {
        return false;
    }
    vyr::CBitReader reader(item);
    reader.Field(16, t_tag);
    reader.Field(16, t_length);
    if (!reader.Valid()) {
        return false;
    }
    if (!t_Takes(t_tag)) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[%s::Parse] Wrong tag : %d", m_name, static_cast<int>(t_tag));
        return false;
    }
    if (reader.Left() < t_length) {
        return VYR_FAIL(FAILURE_SIZE, "[%s::Parse] DescLength mismatch ERROR Length = %u", m_name, t_length);
    }
    vyr::CBytes raw;
    if (!reader.Keep(t_length, raw)) {
        return false;
    }
    m_raw = std::move(raw);
    SItem payload = m_raw.Item();
    vyr::CBitReader fields(&payload);
    t_ParsePayload(fields);
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}
