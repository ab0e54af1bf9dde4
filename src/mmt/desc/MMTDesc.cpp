#include "mmt/desc/MMTDesc.h"

#include "platform/Log.h"

void CMMTDesc::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "descriptor tag[%u]", t_tag);
    VYR_LOG(LOG_PRIORITY_DEBUG, "descriptor length[%u]", t_length);
}
