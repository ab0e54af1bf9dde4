#include "mmt/msg/MMTMsgLs.h"

CMMTMsgLs::CMMTMsgLs() : CMMTMsgLicence(CLASS_TYPE_LS) {}

CMMTMsgLs::~CMMTMsgLs() = default;

bool CMMTMsgLs::Parse(SItem* item)
{
    return t_ParseLicences(item, "[CMMTMsgLs::Parse] Item size ERROR len[%u], length[%u]");
}
