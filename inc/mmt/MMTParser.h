#pragma once

#include "../common/Parse.h"
#include "../platform/Api.h"

/// Base of every binary parser of MMT signalling (ISO/IEC 23008-1): messages, tables, descriptors,
/// elements, location and identifier units.
class VYR_API IMMTParser : public IParse {};
