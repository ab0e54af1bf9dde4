#include "route/SLS/BroadcastAppSvc.h"

CBroadcastAppSvc::CBroadcastAppSvc() : CAppSvc("BroadcastAppSvc") {}
