#pragma once

// Every class of descriptor, for those who tell them apart.

#include "MMTDescAsp.h"
#include "MMTDescCaption.h"
#include "MMTDescCri.h"
#include "MMTDescDependency.h"
#include "MMTDescLowDelay.h"
#include "MMTDescMpuTimestamp.h"
#include "MMTDescSi.h"
#include "MMTDescSp.h"
#include "MMTDescVsp.h"
