#include "route/SLS/UnicastAppSvc.h"

CUnicastAppSvc::CUnicastAppSvc() : CAppSvc("UnicastAppSvc") {}
