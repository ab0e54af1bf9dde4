#include "mmt/msg/MMTMsgLs.h"

CMMTMsgLs::CMMTMsgLs() : CMMTMsgLicence(CLASS_TYPE_LS) {}

bool CMMTMsgLs::Parse(SItem* item)
{
    return t_ParseLicences(item, "[CMMTMsgLs::Parse] Item size ERROR len[%u], length[%u]");
}
