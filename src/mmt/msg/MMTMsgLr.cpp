#include "mmt/msg/MMTMsgLr.h"

bool CMMTMsgLr::Parse(SItem* item)
{
    return t_ParseLicences(item, "[CMMTMsgLr::Parse] Item size ERROR len[%u], length[%u]");
}
