#include "mmt/msg/MMTMsgLr.h"

CMMTMsgLr::CMMTMsgLr() : CMMTMsgLicence(CLASS_TYPE_LR) {}

bool CMMTMsgLr::Parse(SItem* item)
{
    return t_ParseLicences(item, "[CMMTMsgLr::Parse] Item size ERROR len[%u], length[%u]");
}
