#include "mmt/desc/MMTDesc.h"

#include "platform/Log.h"

CMMTDesc::CMMTDesc() : t_tag(0xFFFF), t_length(0) {}

CMMTDesc::~CMMTDesc() = default;

void CMMTDesc::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "descriptor tag[%u]", t_tag);
    VYR_LOG(LOG_PRIORITY_DEBUG, "descriptor length[%u]", t_length);
}
