#include "mmt/msg/MMTMsgLs.h"

bool CMMTMsgLs::Parse(SItem* item)
{
    return t_ParseLicences(item, "[CMMTMsgLs::Parse] Item size ERROR len[%u], length[%u]");
}
