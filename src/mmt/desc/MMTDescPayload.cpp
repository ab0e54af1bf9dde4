#include "mmt/desc/MMTDescPayload.h"

#include "common/OutOfMemory.h"
#include "mmt/Elements.h"
#include "mmt/PayloadReader.h"
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
    t_tag = t_Value(item, 16);
    t_length = t_Value(item, 16);
    if (!item->valid) {
        return false;
    }
    if (!t_Takes(t_tag)) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[%s::Parse] Wrong tag : %d", m_name, static_cast<int>(t_tag));
        return false;
    }
    if (vyr::BytesLeft(*item) < t_length) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[%s::Parse] DescLength mismatch ERROR Length = %u", m_name, t_length);
        return false;
    }
    vyr::CBytes raw;
    raw.Take(t_AllocAndCopy(item, t_length), t_length);
    if (!raw) {
        return false;
    }
    m_raw = std::move(raw);
    vyr::CPayloadReader reader(m_raw.Item());
    t_ParsePayload(reader);
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}
